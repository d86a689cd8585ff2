#pragma once

#include "app/model/fixed_config.h"
#include "app/model/tray_state.h"
#include "ports/server_client.h"

#include <optional>

namespace korvel {

/// The text that the publisher signs: prefix, file, version and hash, a line each, without a line feed at the end.
QByteArray signedMessage(const QString &prefix, const UpdateInfo &info);

/// By what to check that the publisher of UPDATE_PUBKEY signed this package; none when key or signature is no base64.
std::optional<SignatureProof> updateSignature(const FixedConfig &config, const UpdateInfo &info);

/// Whether the publisher signed this package; an error: nobody knows.
void verifyUpdate(ServerClient &servers, const FixedConfig &config, const UpdateInfo &info, Done<bool> done);

} // namespace korvel
