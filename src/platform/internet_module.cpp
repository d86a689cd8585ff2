#include "platform/internet.h"
#include "update/ed25519.h"
#include "update/sha256.h"

/// The module's one entry. Whatever else it holds is its own: it is given and gives values and interfaces only.
extern "C" Q_DECL_EXPORT const korvel::InternetParts *korvelInternetParts() {
    static const korvel::InternetParts PARTS{.makeServerClient = &korvel::makeServerClient,
                                             .sha256File = &korvel::sha256File,
                                             .ed25519Valid = &korvel::ed25519Valid};
    return &PARTS;
}
