#pragma once

#include "app/model/tray_state.h"
#include "ports/windows.h"

#include <QString>
#include <functional>

namespace korvel {

/// Everything that the pairing window shows.
struct PairView {
    QString title;
    QString code;           ///< The code, a mark, or the placeholder.
    bool codeMuted = false; ///< Shown in the placeholder's colour.
    QString codeName;       ///< Accessible name of the code: its digits one by one.
    QString line;
    QString hint;  ///< Empty: hidden.
    QString error; ///< Empty: hidden.
    QString button;
    bool refreshVisible = false;
    bool refreshEnabled = true;
    bool operator==(const PairView &) const = default;
};

struct PairContext {
    bool bound = false;
    bool authDead = false;
    bool accountGone = false;
};

/// The result of a refresh of the pairing window.
struct PairUpdate {
    enum class Step {
        Show,      ///< Show the view.
        Vanish,    ///< Hide the window silently.
        Celebrate, ///< Show the success; the window closes automatically after 1.4 s.
        Keep,      ///< Change nothing while the success is shown.
    };
    Step step = Step::Show;
    PairView view;
    bool operator==(const PairUpdate &) const = default;
};

/// Computes the window from the report, and updates the flags in `pairing`.
PairUpdate pairView(const QJsonObject &e2, PairState &pairing, const PairContext &context);

/// The characters of a code separated by spaces, for screen readers.
QString spelledOut(const QString &code);

/// Interface of the pairing window for its feature.
class PairPanel {
public:
    struct Events {
        std::function<void()> buttonClicked;
        std::function<void()> renewClicked;
    };
    virtual ~PairPanel() = default;
    virtual void connect(Events events) = 0;
    virtual bool isVisible() const = 0;
    /// Shows the window in front with keyboard focus, centred if it was not on the screen.
    virtual void present(const PairView &view, OpenedBy by) = 0;
    virtual void apply(const PairView &view) = 0;
    virtual void hide() = 0;
};

} // namespace korvel
