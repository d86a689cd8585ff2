#include "platform/preferred_languages.h"

#include "platform/native_session_mac.h"

namespace korvel {

QStringList preferredLanguages() {
    return QString::fromStdString(native::preferredLanguageLines()).split(u'\n', Qt::SkipEmptyParts);
}

} // namespace korvel
