#pragma once

#include "ports/opened_by.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>

namespace korvel {

/// A field that an alert asks the user to fill in.
struct AlertField {
    enum class Kind {
        Code,    ///< Six digits; the first button is enabled only with all of them.
        Text,    ///< One line.
        Secret,  ///< One line that is not shown.
        Address, ///< One line in a small monospaced font, below a caption.
    };
    Kind kind = Kind::Text;
    QString label = {}; ///< Placeholder, or the caption of an Address.
    QString text = {};  ///< What it holds at first.
    bool operator==(const AlertField &) const = default;
};

/// An alert as data: what it says and which answers it offers.
struct AlertView {
    QString title;                 ///< The product's own words; a name in it is a shownName().
    QString fromOutside = {};      ///< What the agent or a server says, above `text`; all that may be scrolled.
    QString text = {};             ///< The product's own words. Both are plain and may hold line breaks.
    bool warning = false;          ///< Looks like a warning.
    QList<QString> buttons;        ///< In the order of their weight.
    int escape = 0;                ///< The harmless button, which Escape and closing stand for; -1: none of them.
    int main = 0;                  ///< The button that Return presses, and that has the focus where there is no field.
    QList<AlertField> fields = {}; ///< The first has the focus when the alert opens.
    bool operator==(const AlertView &) const = default;
};

/// How an alert was answered.
struct AlertAnswer {
    int button = -1;        ///< Index into AlertView::buttons; -1: closed without one.
    QStringList texts = {}; ///< What the fields held.
};

/// Shows alerts, one at a time, without a nested event loop.
class Alerts {
public:
    virtual ~Alerts() = default;
    /// Whether an alert is open, whichever feature opened it.
    virtual bool isOpen() const = 0;
    /// Opens an alert and calls `answered` once, when it is closed. While another one is open, brings that to the front
    /// instead, does nothing more and gives false.
    virtual bool open(const AlertView &view, OpenedBy by, std::function<void(const AlertAnswer &)> answered) = 0;
};

} // namespace korvel
