#pragma once

#include "app/model/fixed_config.h"
#include "app/model/tray_state.h"
#include "ports/server_client.h"

#include <optional>

namespace korvel {

/// The text that the publisher signs: prefix, file, version and hash on a line each, without a final line feed.
QByteArray signedMessage(const QString &prefix, const UpdateInfo &info);

/// The data to verify this package's signature with UPDATE_PUBKEY; none if the key or the signature is not base64.
std::optional<SignatureProof> updateSignature(const FixedConfig &config, const UpdateInfo &info);

/// Whether the publisher signed this package. An error means that the check could not run.
void verifyUpdate(ServerClient &servers, const FixedConfig &config, const UpdateInfo &info, Done<bool> done);

} // namespace korvel
