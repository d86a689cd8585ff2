#include "platform/preferred_languages.h"

#include <QLocale>

namespace korvel {

QStringList preferredLanguages() { return QLocale::system().uiLanguages(); }

} // namespace korvel
