#include "ui/widgets/contrast_style.h"

#include "ui/widgets/text_styles.h"

#include <QPainter>
#include <QStyleOption>

namespace korvel {

namespace {

constexpr int DERIVED = 140; // percent: styles derive edges from the window colour, darker by this factor

/// Adjusts the window colour so that a style derives `edge` from it.
template <class Option>
Option withEdge(const Option &option, const QColor &edge) {
    Option own(option);
    own.palette.setColor(QPalette::Window, edge.lighter(DERIVED));
    return own;
}

/// One point wide on each side. A pen would be uneven where a point has several pixels.
void drawFrame(const QRect &rect, const QColor &edge, QPainter &painter) {
    const QRegion frame = QRegion(rect) - rect.adjusted(1, 1, -1, -1);
    for (const QRect &side : frame)
        painter.fillRect(side, edge);
}

} // namespace

void ContrastStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                                  const QWidget *widget) const {
    const QColor edge = edgeColour(option->palette);
    switch (element) {
    case PE_IndicatorCheckBox:
    case PE_PanelButtonCommand:
        if (const auto *button = qstyleoption_cast<const QStyleOptionButton *>(option)) {
            const QStyleOptionButton own = withEdge(*button, edge);
            return QProxyStyle::drawPrimitive(element, &own, painter, widget);
        }
        break;
    case PE_FrameLineEdit:
        if (const auto *frame = qstyleoption_cast<const QStyleOptionFrame *>(option)) {
            const QStyleOptionFrame own = withEdge(*frame, edge);
            return QProxyStyle::drawPrimitive(element, &own, painter, widget);
        }
        break;
    case PE_PanelMenu:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        return drawFrame(option->rect, edge, *painter);
    case PE_FrameMenu:
        return drawFrame(option->rect, edge, *painter);
    default:
        break;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void ContrastStyle::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                                const QWidget *widget) const {
    const auto *entry = element == CE_MenuItem ? qstyleoption_cast<const QStyleOptionMenuItem *>(option) : nullptr;
    if (!entry || entry->menuItemType != QStyleOptionMenuItem::Separator)
        return QProxyStyle::drawControl(element, option, painter, widget);
    constexpr int MARGIN = 5;
    const QRect line(entry->rect.left() + MARGIN, entry->rect.center().y(), entry->rect.width() - 2 * MARGIN, 1);
    painter->fillRect(line, edgeColour(entry->palette));
}

int ContrastStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                             QStyleHintReturn *returnData) const {
    if (hint == SH_EtchDisabledText)
        return 0; // on a dark menu, the etched copy blurs the text
    return QProxyStyle::styleHint(hint, option, widget, returnData);
}

} // namespace korvel
