#pragma once

#include <QByteArray>

namespace korvel {

/// Whether `signature` is that of `message` by the raw public `key` (Ed25519, RFC 8032); false for what is neither.
bool ed25519Valid(const QByteArray &key, const QByteArray &signature, const QByteArray &message);

} // namespace korvel
