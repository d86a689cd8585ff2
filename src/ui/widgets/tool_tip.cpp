#include "ui/widgets/tool_tip.h"

#include <QTextDocument>

namespace korvel {

QString plainToolTip(const QString &text) {
    return Qt::mightBeRichText(text) ? QStringLiteral("<span>") + text.toHtmlEscaped() + QStringLiteral("</span>")
                                     : text;
}

} // namespace korvel
