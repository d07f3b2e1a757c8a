// Replaces the window colour from which Fusion computes an outline, for those elements only that
// have an outline and do not fill their background with the window colour.

#include "src/widgets/contraststyle.h"

#include <QStyleFactory>
#include <QStyleOption>

namespace {

// Up to this HSV value, a window is too dark for a darker outline.
constexpr int largest_dark_value = 32;
// What Fusion passes to QColor::darker for an outline (outline() in qfusionstyle_p_p.h).
constexpr int outline_factor = 140;

bool Needs_Outline(const QPalette& palette)
{
    return palette.color(QPalette::Window).value() <= largest_dark_value;
}

/// A palette that gives outlines a colour in the middle between text and window.
QPalette With_Outline(QPalette palette)
{
    const QColor window = palette.color(QPalette::Window);
    const QColor text = palette.color(QPalette::Active, QPalette::WindowText);
    const QColor outline((window.red() + text.red()) / 2, (window.green() + text.green()) / 2,
                         (window.blue() + text.blue()) / 2);
    palette.setColor(QPalette::Window, outline.lighter(outline_factor));
    return palette;
}

/// Calls a function with a copy of the option that has visible outlines; false if the option has
/// another type.
template <class TOption, class TBase, class TFunction>
bool Draw_With_Outline(const TBase* option, const TFunction& draw)
{
    const auto* const typed = qstyleoption_cast<const TOption*>(option);
    if (!typed)
        return false;
    TOption copy(*typed);
    copy.palette = With_Outline(copy.palette);
    draw(&copy);
    return true;
}

} // namespace

TContrastStyle::TContrastStyle()
    : QProxyStyle(QStyleFactory::create(QStringLiteral("fusion")))
{
    setObjectName(baseStyle()->objectName());
}

void TContrastStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                   QPainter* painter, const QWidget* widget) const
{
    const auto draw = [=](const QStyleOption* drawn) {
        QProxyStyle::drawPrimitive(element, drawn, painter, widget);
    };
    const auto draw_with_outline = [=] {
        switch (element) {
        case PE_Frame:
        case PE_FrameLineEdit:
        case PE_PanelLineEdit:
            return Draw_With_Outline<QStyleOptionFrame>(option, draw);
        case PE_PanelButtonCommand:
        case PE_IndicatorCheckBox:
        case PE_IndicatorRadioButton:
            return Draw_With_Outline<QStyleOptionButton>(option, draw);
        case PE_PanelMenu:
            return Draw_With_Outline<QStyleOptionMenuItem>(option, draw);
        case PE_PanelButtonTool:
            return Draw_With_Outline<QStyleOption>(option, draw);
        default:
            return false;
        }
    };
    if (!Needs_Outline(option->palette) || !draw_with_outline())
        draw(option);
}

void TContrastStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                        QPainter* painter, const QWidget* widget) const
{
    const auto draw = [=](const QStyleOptionComplex* drawn) {
        QProxyStyle::drawComplexControl(control, drawn, painter, widget);
    };
    const auto draw_with_outline = [=] {
        switch (control) {
        case CC_ComboBox:
            return Draw_With_Outline<QStyleOptionComboBox>(option, draw);
        case CC_Slider:
            return Draw_With_Outline<QStyleOptionSlider>(option, draw);
        case CC_SpinBox:
            return Draw_With_Outline<QStyleOptionSpinBox>(option, draw);
        default:
            return false;
        }
    };
    if (!Needs_Outline(option->palette) || !draw_with_outline())
        draw(option);
}

int TContrastStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                              QStyleHintReturn* data) const
{
    if (hint == SH_EtchDisabledText && option && Needs_Outline(option->palette))
        return 0;
    return QProxyStyle::styleHint(hint, option, widget, data);
}
