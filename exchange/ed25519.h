#pragma once

#include "ports/server_client.h"

namespace korvel {

/// Whether the signature matches message and key; false if key or signature is malformed.
bool ed25519Valid(const SignatureProof &proof);

} // namespace korvel
