#pragma once

#include "app/model/tray_state.h"

#include <QString>

namespace korvel {

/// Everything that the pairing window shows.
struct PairView {
    QString title;
    QString code;           ///< The code, a mark, or the placeholder.
    bool codeMuted = false; ///< The placeholder's colour.
    QString codeName;       ///< What a screen reader says for the code: its digits one by one.
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

/// What a refresh of the pairing window comes to.
struct PairUpdate {
    enum class Step {
        Show,      ///< The view is shown.
        Vanish,    ///< The window goes without a word.
        Celebrate, ///< The view tells the success; the window closes itself after a moment.
        Keep,      ///< Nothing changes: the success is being shown.
    };
    Step step = Step::Show;
    PairView view;
    bool operator==(const PairUpdate &) const = default;
};

/// Recomputes the window from the report, and its flags with it.
PairUpdate pairView(const QJsonObject &e2, PairState &pairing, const PairContext &context);

/// The characters of a code with blanks between, as a screen reader says them.
QString spelledOut(const QString &code);

} // namespace korvel
