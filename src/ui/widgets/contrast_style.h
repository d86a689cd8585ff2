#pragma once

#include <QProxyStyle>

namespace korvel {

/// A proxy style whose edges and separators have enough contrast in every appearance. Many styles derive them from the
/// window colour, which makes them nearly invisible on dark windows.
class ContrastStyle final : public QProxyStyle {
public:
    /// Wraps the platform's style, or the style named `base`.
    explicit ContrastStyle(const QString &base = {}) : QProxyStyle(base) {}

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget = nullptr) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget = nullptr) const override;
    int styleHint(StyleHint hint, const QStyleOption *option = nullptr, const QWidget *widget = nullptr,
                  QStyleHintReturn *returnData = nullptr) const override;
};

} // namespace korvel
