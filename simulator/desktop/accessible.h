#pragma once

#include <QDBusConnection>
#include <QList>
#include <QRect>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

namespace korvel::sim {

// One element of a window as assistive technology sees it.
struct AccessibleElement {
    QString role; // AT-SPI's English name, such as "push button"
    QString name;
    QString text; // content of a field; empty for other elements
    QRect area;   // on the screen
    bool enabled = false;
    bool focusable = false;
    bool focused = false;
    bool checked = false; // of a check box or radio button
};

// A window on the screen.
struct AccessibleWindow {
    QString role;
    QString name;
    QString description;
    QRect area;                        // on the screen, frame excluded
    bool active = false;               // has the keyboard focus
    QList<AccessibleElement> elements; // the visible ones, in the program's order

    // The first element of that name; none if there is none.
    std::optional<AccessibleElement> find(const QString &name) const;
    // The first element of that role and name.
    std::optional<AccessibleElement> find(const QString &role, const QString &name) const;
    // The element that has the focus; none without one.
    std::optional<AccessibleElement> focus() const;
};

// Reads windows as a screen reader does: over AT-SPI on the accessibility bus of the session in the environment. The
// first read starts the bus.
class AccessibleReader {
public:
    AccessibleReader();
    ~AccessibleReader();
    AccessibleReader(const AccessibleReader &) = delete;
    AccessibleReader &operator=(const AccessibleReader &) = delete;

    // The visible windows of a process; empty if there are none, or it is not accessible.
    QList<AccessibleWindow> windows(qint64 pid);

    // Starts collecting text changes and notifications. False on failure.
    bool listen();
    // The characters typed, inserted or removed since listen(), in order.
    QString typed() const;
    // The notifications that appeared since listen(), which a screen reader reads out.
    QStringList notifications() const;

private:
    struct Object {
        QString service;
        QString path;
    };

    bool connect();
    QRect area(const Object &object) const;
    QVariantList call(const Object &object, const QString &interface, const QString &method,
                      const QVariantList &arguments = {}) const;
    QString property(const Object &object, const QString &name) const;
    QList<Object> children(const Object &object) const;
    std::optional<Object> program(qint64 pid) const;
    quint64 states(const Object &object) const;
    AccessibleElement element(const Object &object, quint64 states) const;
    void collect(const Object &object, int depth, QList<AccessibleElement> &elements) const;

    class Listener;
    std::unique_ptr<Listener> listener;
    QString connectionName;
    QDBusConnection bus;
};

} // namespace korvel::sim
