#include "ports/preferred_languages.h"

#include "platform/mac/native_session_mac.h"

namespace korvel {

QStringList preferredLanguages() {
    return QString::fromStdString(native::preferredLanguageLines()).split(u'\n', Qt::SkipEmptyParts);
}

} // namespace korvel
