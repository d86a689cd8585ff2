#pragma once

#include <QList>
#include <QString>
#include <functional>

namespace korvel {

/// An alert as data: what it says and which answers it offers.
struct AlertView {
    QString title;
    QString text;           ///< Plain text; may hold line breaks.
    bool warning = false;   ///< Looks like a warning.
    QList<QString> buttons; ///< The first is the default one.
    int escape = 0;         ///< The harmless button, which Escape and closing stand for; -1: none of them.
    bool codeField = false; ///< Asks for a six-digit code, and enables the first button only with one.
    bool operator==(const AlertView &) const = default;
};

/// How an alert was answered.
struct AlertAnswer {
    int button = -1; ///< Index into AlertView::buttons; -1: closed without one.
    QString code;    ///< What the code field held.
};

/// Shows alerts, one at a time, without a nested event loop.
class Alerts {
public:
    virtual ~Alerts() = default;
    /// Opens an alert and calls `answered` once. While another one is open, brings that to the front instead, does
    /// nothing more and gives false.
    virtual bool open(const AlertView &view, std::function<void(const AlertAnswer &)> answered) = 0;
};

} // namespace korvel
