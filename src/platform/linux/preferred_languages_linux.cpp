#include "ports/preferred_languages.h"

#include <QLocale>

namespace korvel {

QStringList preferredLanguages() { return QLocale::system().uiLanguages(); }

} // namespace korvel
