#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

namespace korvel::sim {

// What a scenario's "permissions" sets.
struct PermissionRules {
    QString start;        // "granted" or "fresh": what a Mac begins with; empty: what is there stays
    QJsonObject items;    // by name: what an item says instead of its own; a name of its own adds a permission
    QStringList deny;     // what the user refuses when asked for it
    int promptMs = 500;   // how long the user takes to answer one prompt
    bool partial = false; // the agent's replies hold "ok" alone
};

// The privacy permissions that the system keeps for the agent, by their English names.
struct Permissions {
    QString start = QStringLiteral("granted"); // what the Mac began with
    QJsonObject states;                        // by name; what is not named is as at the start
    QJsonObject given;                         // the states by name that the scenario gave last

    bool operator==(const Permissions &) const = default;
};

// The rules in a scenario's "permissions"; a "start" of another name counts as none.
PermissionRules permissionRules(const QJsonObject &settings);

// Takes over what the rules say otherwise than before: a new start sets every state, a new state its own.
void follow(Permissions &permissions, const PermissionRules &rules);

// The names of all permissions, in the order of the report.
QStringList permissionNames(const PermissionRules &rules);

// "granted", "denied", "undetermined", "notrunning", or something that begins with "unknown".
QString stateOf(const Permissions &permissions, const QString &name);
bool isPermissionState(const QString &state);

// What the user answers to the system's prompt for one permission. Accessibility cannot be granted in a prompt.
QString promptAnswer(const PermissionRules &rules, const QString &name);

// What the agent says of them: "ok", "missing" (names), and "items" with all but those that are granted.
QJsonObject permissionReport(const Permissions &permissions, const PermissionRules &rules, bool chinese);

} // namespace korvel::sim
