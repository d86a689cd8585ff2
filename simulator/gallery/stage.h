#pragma once

#include "simulator/gallery/gallery_case.h"

class QWidget;

namespace korvel::gallery {

enum class Appearance { Light, Dark };

/// Language and appearance in which a case is shown.
struct Setting {
    bool chinese = false;
    Appearance appearance = Appearance::Light;
    bool operator==(const Setting &) const = default;
};

QList<Setting> allSettings();
/// The settings in which the case differs.
QList<Setting> settingsOf(const Case &shown);
/// The differences of a case in this setting: language and appearance, such as "en" and "light".
QStringList differencesOf(const Case &shown, const Setting &setting);

/// Applies language and colours to the windows shown next.
void apply(const Setting &setting);

/// Shows a case until destruction.
class Staged {
public:
    explicit Staged(const Case &shown);
    ~Staged();
    /// Its window; null if it shows none or several.
    QWidget *window() const;

private:
    std::shared_ptr<void> shown;
};

} // namespace korvel::gallery
