#pragma once

#include "app/fixed_config.h"
#include "app/tray_state.h"

namespace korvel {

/// The text that the publisher signs: prefix, file, version and hash, a line each, without a line feed at the end.
QByteArray signedMessage(const QString &prefix, const UpdateInfo &info);

/// Whether the publisher of UPDATE_PUBKEY signed this package: Ed25519 (RFC 8032) over signedMessage.
bool updateSignatureValid(const FixedConfig &config, const UpdateInfo &info);

} // namespace korvel
