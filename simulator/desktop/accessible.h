#pragma once

#include <QDBusConnection>
#include <QList>
#include <QRect>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

namespace korvel::sim {

// One element of a window as assistive technology is told of it.
struct AccessibleElement {
    QString role; // AT-SPI's English name for it, such as "push button"
    QString name;
    QString text; // what a field tells of what it holds; empty for what is no field
    QRect area;   // on the screen
    bool enabled = false;
    bool focusable = false;
    bool focused = false;
    bool checked = false; // a choice that is made
};

// A window on the screen.
struct AccessibleWindow {
    QString role;
    QString name;
    QString description;
    QRect area;                        // on the screen, without its frame
    bool active = false;               // it has the keyboard
    QList<AccessibleElement> elements; // those that show, in the program's order

    // The first element of that name; nothing without one.
    std::optional<AccessibleElement> find(const QString &name) const;
    // The same among those of one role.
    std::optional<AccessibleElement> find(const QString &role, const QString &name) const;
    // The element that has the focus; nothing without one.
    std::optional<AccessibleElement> focus() const;
};

// Reads windows as a screen reader does: over AT-SPI on the accessibility bus of the session that the environment
// names, which the first reading starts.
class AccessibleReader {
public:
    AccessibleReader();
    ~AccessibleReader();
    AccessibleReader(const AccessibleReader &) = delete;
    AccessibleReader &operator=(const AccessibleReader &) = delete;

    // The windows that a process shows; empty when it shows none, or tells assistive technology nothing.
    QList<AccessibleWindow> windows(qint64 pid);

    // From now on collects what is told of texts that are typed, removed or replaced, and of notifications. False when
    // it cannot.
    bool listen();
    // The characters told of since then, one after the other.
    QString typed() const;
    // What the notifications said that have appeared since then; a screen reader reads each.
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
