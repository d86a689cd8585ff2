#pragma once

#include "ports/server_client.h"

namespace korvel {

/// Whether the signature is that of the message by the key; false for what is neither.
bool ed25519Valid(const SignatureProof &proof);

} // namespace korvel
