#include "ui/contrast_style.h"

#include "ui/text_styles.h"

#include <QPainter>
#include <QStyleOption>

namespace korvel {

namespace {

constexpr int DERIVED = 140; // styles make an edge of the window's colour, that much darker, in percent

/// The option with a window's colour from which a style derives `edge`.
template <class Option>
Option withEdge(const Option &option, const QColor &edge) {
    Option own(option);
    own.palette.setColor(QPalette::Window, edge.lighter(DERIVED));
    return own;
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
    default:
        break;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (element == PE_PanelMenu) {
        painter->setPen(edge);
        painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
    }
}

void ContrastStyle::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                                const QWidget *widget) const {
    const auto *entry = element == CE_MenuItem ? qstyleoption_cast<const QStyleOptionMenuItem *>(option) : nullptr;
    if (!entry || entry->menuItemType != QStyleOptionMenuItem::Separator)
        return QProxyStyle::drawControl(element, option, painter, widget);
    constexpr int MARGIN = 5;
    const int y = entry->rect.center().y();
    painter->setPen(edgeColour(entry->palette));
    painter->drawLine(entry->rect.left() + MARGIN, y, entry->rect.right() - MARGIN, y);
}

int ContrastStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                             QStyleHintReturn *returnData) const {
    if (hint == SH_EtchDisabledText)
        return 0; // on a dark menu the light copy of a text beside it blurs it
    return QProxyStyle::styleHint(hint, option, widget, returnData);
}

} // namespace korvel
