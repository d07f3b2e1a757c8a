#pragma once

#include <QProxyStyle>

/// Fusion with visible outlines in black windows.
///
/// Fusion draws the outlines of editors, buttons and lists darker than the window. On black, as in
/// themes with high contrast, they would disappear. Other palettes look as Fusion draws them.
class TContrastStyle : public QProxyStyle
{
    Q_OBJECT

public:
    TContrastStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override;
    /// Without the light copy of a disabled text, which is brighter on black than the text.
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override;
};
