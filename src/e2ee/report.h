#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringView>
#include <initializer_list>
#include <optional>

namespace korvel {

// Accessors of the agent's encryption report. A key that is absent or of another type counts as its default, so that
// all windows and menu lines agree on the Mac's state.

/// The fields of a received report that the tray reads and stores, with bounded sizes.
QJsonObject boundedReport(const QJsonObject &received);

/// The report's state; "off" if it has none.
QString e2State(const QJsonObject &e2);
/// Whether `state` is one of `states`.
bool isOneOf(const QString &state, std::initializer_list<QStringView> states);
/// Whether encryption is not running, which matters only if the account requires it.
bool isIdle(const QString &state);
/// Whether the account requires encryption.
bool e2Required(const QJsonObject &e2);
/// This Mac's pairing code; none if there is none to show.
std::optional<QString> e2PairShow(const QJsonObject &e2);
bool e2PairWrong(const QJsonObject &e2);
bool e2PairDone(const QJsonObject &e2);
/// Devices that request to join, in the report's order.
QList<QJsonObject> e2Pending(const QJsonObject &e2);
/// Security alarms not yet dismissed, in the report's order.
QList<QJsonObject> e2Alarms(const QJsonObject &e2);

/// Whether this Mac still has to be paired.
bool e2NeedsPairing(const QJsonObject &e2, bool bound, bool authDead);
bool canShowPairCode(const QJsonObject &e2, bool bound, bool authDead);

/// Display name of the device that requests to join; `unnamed` if it has none.
QString deviceName(const QJsonObject &request, const QString &unnamed);
/// Display name of a device platform word such as "ios".
QString e2Platform(const QJsonValue &platform);

/// The complete sentence for the report's state; none if the state has no sentence.
std::optional<QString> e2StatusText(const QJsonObject &e2);

} // namespace korvel
