#pragma once

#include <QProxyStyle>

namespace korvel {

/// Another style, with edges and separators that can be told from what is around them in every look. Many styles derive
/// them from the window's colour and leave them all but invisible on a dark one.
class ContrastStyle final : public QProxyStyle {
public:
    /// Over the style of the system, or of that name.
    explicit ContrastStyle(const QString &base = {}) : QProxyStyle(base) {}

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget = nullptr) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget = nullptr) const override;
    int styleHint(StyleHint hint, const QStyleOption *option = nullptr, const QWidget *widget = nullptr,
                  QStyleHintReturn *returnData = nullptr) const override;
};

} // namespace korvel
