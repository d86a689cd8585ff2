#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>

namespace korvel {

/// Who causes a window to open.
enum class OpenedBy {
    User,    ///< The user has just requested it.
    Program, ///< The user may be typing elsewhere, so the window ignores keys at first.
};

struct NoticeView;

/// The floating panel that shows one notice. Never takes the focus.
class NoticePanel {
public:
    virtual ~NoticePanel() = default;
    /// Replaces the current notice. Calls `clicked` on mouse-down.
    virtual void show(const NoticeView &view, std::function<void()> clicked) = 0;
    virtual void hide() = 0;
};

/// An input field of an alert.
struct AlertField {
    enum class Kind {
        Code,    ///< Six digits; the first button is enabled only when all are entered.
        Text,    ///< One line.
        Secret,  ///< One line, masked.
        Address, ///< One line in a small monospaced font, below a caption.
    };
    Kind kind = Kind::Text;
    QString label = {}; ///< Placeholder, or the caption of an Address.
    QString text = {};  ///< Initial content.
    bool operator==(const AlertField &) const = default;
};

/// An alert as data: its texts, fields and buttons.
struct AlertView {
    QString title;                 ///< The product's own words; names in it are passed through shownName().
    QString fromOutside = {};      ///< Text from the agent or a server, above `text`; the only part that scrolls.
    QString text = {};             ///< The product's own words. Both texts are plain and may contain line breaks.
    bool warning = false;          ///< Looks like a warning.
    QList<QString> buttons;        ///< Most important first.
    int escape = 0;                ///< The harmless button, pressed by Escape and closing; -1: none.
    int main = 0;                  ///< The default button, pressed by Return. Has the focus if there is no field.
    QList<AlertField> fields = {}; ///< The first one has the focus when the alert opens.
    bool operator==(const AlertView &) const = default;
};

/// The user's answer to an alert.
struct AlertAnswer {
    int button = -1;        ///< Index into AlertView::buttons; -1: closed without a button.
    QStringList texts = {}; ///< Contents of the fields.
};

/// Shows one alert at a time, without a nested event loop.
class Alerts {
public:
    virtual ~Alerts() = default;
    /// Whether any alert is open.
    virtual bool isOpen() const = 0;
    /// Opens an alert and calls `answered` once, when it closes. If another alert is open, brings that one to the front
    /// and returns false.
    virtual bool open(const AlertView &view, OpenedBy by, std::function<void(const AlertAnswer &)> answered) = 0;
};

} // namespace korvel
