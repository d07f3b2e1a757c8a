// Outlines of the widgets in a black window, and in the usual palettes.

#include "src/widgets/contraststyle.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QSpinBox>
#include <QStyleFactory>
#include <QTest>
#include <QToolButton>

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>

class TestContrastStyle : public QObject
{
    Q_OBJECT

private slots:
    void an_outline_is_visible_in_a_black_window_data();
    void an_outline_is_visible_in_a_black_window();
    void other_palettes_look_as_before_data();
    void other_palettes_look_as_before();
    void a_disabled_text_has_no_light_copy_in_a_black_window();
    void it_has_the_name_of_the_style_it_draws_with();
};

using TMaker = std::function<QWidget*()>;
Q_DECLARE_METATYPE(TMaker)

namespace {

// What accessibility guidelines (WCAG 2.1, 1.4.11) ask of the parts of a control.
constexpr double least_contrast = 3.0;

template <class TWidget>
void Add_Row(const char* name)
{
    QTest::newRow(name) << TMaker([] { return new TWidget; });
}

void Add_Widgets()
{
    QTest::addColumn<TMaker>("maker");
    Add_Row<QLineEdit>("editor");
    Add_Row<QPushButton>("button");
    Add_Row<QToolButton>("tool button");
    Add_Row<QCheckBox>("check box");
    Add_Row<QRadioButton>("radio button");
    Add_Row<QListWidget>("list");
    Add_Row<QComboBox>("combo box");
    Add_Row<QSpinBox>("spin box");
    Add_Row<QMenu>("menu");
    QTest::newRow("slider") << TMaker([] { return new QSlider(Qt::Horizontal); });
}

QImage Picture(const TMaker& maker, QStyle* style, const QPalette& palette)
{
    const std::unique_ptr<QWidget> widget(maker());
    widget->setStyle(style);
    for (QWidget* const child : widget->findChildren<QWidget*>())
        child->setStyle(style);
    widget->setPalette(palette);
    widget->resize(120, 40);
    QImage image(widget->size(), QImage::Format_RGB32);
    image.fill(palette.color(QPalette::Window));
    widget->render(&image);
    return image;
}

/// Relative luminance, by the formula of WCAG 2.1.
double Luminance(QRgb color)
{
    const auto linear = [](int value) {
        const double part = value / 255.0;
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(color)) + 0.7152 * linear(qGreen(color)) +
           0.0722 * linear(qBlue(color));
}

/// The largest contrast of a pixel with black.
double Contrast_With_Black(const QImage& image)
{
    double largest = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            largest = std::max(largest, Luminance(image.pixel(x, y)));
    }
    return (largest + 0.05) / 0.05;
}

/// White on black. What is not an outline is black, too.
QPalette Black()
{
    QPalette palette(Qt::black);
    for (const auto role : {QPalette::Base, QPalette::Button, QPalette::Light, QPalette::Midlight,
                            QPalette::Text, QPalette::ButtonText, QPalette::Highlight})
        palette.setColor(role, Qt::black);
    palette.setColor(QPalette::WindowText, Qt::white);
    return palette;
}

} // namespace

void TestContrastStyle::an_outline_is_visible_in_a_black_window_data()
{
    Add_Widgets();
}

void TestContrastStyle::an_outline_is_visible_in_a_black_window()
{
    QFETCH(TMaker, maker);
    TContrastStyle style;
    const double contrast = Contrast_With_Black(Picture(maker, &style, Black()));
    QVERIFY2(contrast >= least_contrast, qPrintable(QString::number(contrast)));
}

void TestContrastStyle::other_palettes_look_as_before_data()
{
    Add_Widgets();
}

void TestContrastStyle::other_palettes_look_as_before()
{
    QFETCH(TMaker, maker);
    TContrastStyle style;
    const std::unique_ptr<QStyle> fusion(QStyleFactory::create("fusion"));
    for (const QPalette& palette : {fusion->standardPalette(), QPalette(QColor(49, 48, 46))}) {
        QCOMPARE(Picture(maker, &style, palette), Picture(maker, fusion.get(), palette));
    }
}

void TestContrastStyle::a_disabled_text_has_no_light_copy_in_a_black_window()
{
    TContrastStyle style;
    QStyleOption option;
    QCOMPARE(style.styleHint(QStyle::SH_EtchDisabledText, &option, nullptr, nullptr), 1);
    option.palette = Black();
    QCOMPARE(style.styleHint(QStyle::SH_EtchDisabledText, &option, nullptr, nullptr), 0);
}

void TestContrastStyle::it_has_the_name_of_the_style_it_draws_with()
{
    QCOMPARE(TContrastStyle().objectName(), QString("fusion"));
}

QTEST_MAIN(TestContrastStyle)
#include "test_contraststyle.moc"
