#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringView>
#include <initializer_list>
#include <optional>

namespace korvel {

// Read-only views of the agent's encryption report. A key that is absent or of another type counts as its default, so
// that every window and menu line agrees on what state the Mac is in.

/// The report's state; "off" when it says none.
QString e2State(const QJsonObject &e2);
/// Whether `state` is one of `states`.
bool isOneOf(const QString &state, std::initializer_list<QStringView> states);
/// A state that tells nothing by itself: encryption is not up, which matters only when the account requires it.
bool isIdle(const QString &state);
/// The account requires encryption.
bool e2Required(const QJsonObject &e2);
/// This Mac's pairing code; none while there is none to show.
std::optional<QString> e2PairShow(const QJsonObject &e2);
bool e2PairWrong(const QJsonObject &e2);
bool e2PairDone(const QJsonObject &e2);
/// Devices that ask to join, in the report's order.
QList<QJsonObject> e2Pending(const QJsonObject &e2);
/// Security alarms not yet dismissed, in the report's order.
QList<QJsonObject> e2Alarms(const QJsonObject &e2);

/// Whether this Mac has still to be paired.
bool e2NeedsPairing(const QJsonObject &e2, bool bound, bool authDead);
bool canShowPairCode(const QJsonObject &e2, bool bound, bool authDead);

/// The name of the device that asks to join, as the screen shows it; `unnamed` when it gave none.
QString deviceName(const QJsonObject &request, const QString &unnamed);
/// Display name of a device platform word such as "ios".
QString e2Platform(const QJsonValue &platform);

/// The sentence for the report's state, ending as the text stands; none when the state has none.
std::optional<QString> e2StatusText(const QJsonObject &e2);

} // namespace korvel
