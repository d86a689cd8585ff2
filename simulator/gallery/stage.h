#pragma once

#include "simulator/gallery/gallery_case.h"

class QWidget;

namespace korvel::gallery {

enum class Appearance { Light, Dark };

/// How a case is looked at.
struct Setting {
    bool chinese = false;
    Appearance appearance = Appearance::Light;
    bool operator==(const Setting &) const = default;
};

/// All four.
QList<Setting> allSettings();
/// Those in which a case differs.
QList<Setting> settingsOf(const Case &shown);
/// What tells a case in this setting from the same one in another: its language, its look, as "en" and "light".
QStringList differencesOf(const Case &shown, const Setting &setting);

/// Makes language and colours those of the setting for what is shown from now on.
void apply(const Setting &setting);

/// A case on the screen, until it is destroyed.
class Staged {
public:
    explicit Staged(const Case &shown);
    ~Staged();
    /// Its window; null when it shows none, or more than one.
    QWidget *window() const;

private:
    std::shared_ptr<void> shown;
};

} // namespace korvel::gallery
