// The drawing of a label, compared with independent drawings.

#include "src/paint/labelpainter.h"

#include "support/support.h"

#include <QFontMetrics>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QTest>

#include <algorithm>

namespace {

const QColor red(250, 8, 50);
const QColor almost_nothing(255, 255, 255, 1);

/// The expected look of a label.
struct TSpecimen
{
    QString text;
    int border_type = 0;
    bool selected = false;
    int width = 32;
    int height = 32;
    int font_size = 12;
    QColor color{250, 8, 50, 255};
};

QFont Arial(double size)
{
    QFont font(QStringLiteral("Arial"));
    font.setPointSizeF(size);
    font.setWeight(QFont::Bold);
    font.setItalic(false);
    return font;
}

/// The width of a text, measured on the kind of device that labels are drawn on.
int Text_Width(const QString& text, double font_size)
{
    QPixmap device(1, 1);
    return QFontMetrics(Arial(font_size), &device).boundingRect(QRect(), 0, text).width();
}

void Draw_Shape(QPainter* painter, const TSpecimen& label)
{
    const double r = (label.width - 5) / 2;
    const QRectF box(-r, -r, label.width - 6, label.height - 6);
    if (label.border_type == 1)
        painter->drawRect(box);
    if (label.border_type == 2)
        painter->drawEllipse(box);
    QPolygonF shape;
    if (label.border_type == 4)
        shape << QPointF(0, -r) << QPointF(-r, 0) << QPointF(-r, r) << QPointF(r, r)
              << QPointF(r, 0);
    if (label.border_type == 8)
        shape << QPointF(0, -r) << QPointF(-r, 0) << QPointF(0, r) << QPointF(r, 0);
    if (!shape.isEmpty())
        painter->drawPolygon(shape, Qt::OddEvenFill);
}

/// Draws the expected label with a separate painter.
QImage Drawing(const TSpecimen& label)
{
    QImage image(label.width, label.height, QImage::Format_ARGB32_Premultiplied);
    image.fill(0);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.fillRect(0, 0, label.width, label.height, QColor(255, 255, 255, 1));
    painter.translate(label.width / 2, label.height / 2);
    if (label.selected) {
        const int q = (label.width - 1) / 2;
        painter.setPen(QPen(QBrush(QColor(0, 0, 255, 128)), 1.0));
        painter.setBrush(QBrush(QColor(0, 0, 255, 64)));
        painter.drawRect(QRectF(-q, -q, label.width - 2, label.height - 2));
    }
    painter.setPen(QPen(QBrush(label.color), 2.0));
    painter.setBrush(QBrush(QColor(255, 255, 255, 1)));
    Draw_Shape(&painter, label);

    QString text = label.text;
    double size = label.font_size;
    const int measured = Text_Width(text, size);
    const double fit = measured > 0 ? (label.width - 5) * 0.67 / measured : 1.0;
    if (fit < 0.2)
        text = QStringLiteral("*");
    else if (fit < 1.0)
        size *= fit;
    painter.setFont(Arial(size));
    const int r = (label.width - 5) / 2;
    const QRect whole(-r, -r, label.width - 5, label.height - 5);
    const QRect lower(-r, 0, label.width - 5, (label.height - 5) / 2);
    painter.drawText(label.border_type == 4 ? lower : whole, Qt::AlignHCenter | Qt::AlignVCenter,
                     text);
    painter.end();
    return image;
}

QImage Painted(const TSpecimen& label)
{
    const TLabelStyle style{label.width, label.height, label.font_size, label.color};
    QPixmap pixmap = LabelPainter::Template(style);
    LabelPainter::Paint(&pixmap, style, label.text, label.border_type, label.selected);
    return pixmap.toImage();
}

TSpecimen Specimen(int border_type, bool selected = false, const QString& text = QString())
{
    TSpecimen label;
    label.text = text;
    label.border_type = border_type;
    label.selected = selected;
    label.width = 45;
    label.height = 45;
    label.font_size = 16;
    return label;
}

/// The columns of a row, or the rows of a column, whose pixels have exactly this colour.
QList<int> Positions(const QImage& image, const QColor& color, int row, int column = -1)
{
    QList<int> positions;
    const int count = column < 0 ? image.width() : image.height();
    for (int i = 0; i < count; ++i) {
        const QPoint point = column < 0 ? QPoint(i, row) : QPoint(column, i);
        if (image.pixelColor(point) == color)
            positions.append(i);
    }
    return positions;
}

/// A label 100 wide and high without a border, with a text of this size in its middle.
QImage Text_Alone(const QString& text, double font_size)
{
    QImage image(105, 105, QImage::Format_ARGB32_Premultiplied);
    image.fill(0);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(image.rect(), almost_nothing);
    painter.setPen(QPen(red, 2));
    painter.setFont(Arial(font_size));
    painter.translate(52, 52);
    painter.drawText(QRect(-50, -50, 100, 100), Qt::AlignCenter, text);
    painter.end();
    return image;
}

/// A text of exactly this measured width.
QString Text_Of_Width(int width, double font_size)
{
    for (int wide = 0; wide < width; ++wide) {
        for (int narrow = 0; narrow < width; ++narrow) {
            const QString text =
                QString(wide, QLatin1Char('n')) + QString(narrow, QLatin1Char('i'));
            const int measured = Text_Width(text, font_size);
            if (measured == width)
                return text;
            if (measured > width)
                break;
        }
    }
    return QString();
}

} // namespace

class TestLabelPainter : public QObject
{
    Q_OBJECT

private slots:
    void the_template_is_transparent_and_of_the_styles_size();
    void the_style_starts_with_the_default_look();
    void labels_are_drawn_pixel_by_pixel_as_designed_data();
    void labels_are_drawn_pixel_by_pixel_as_designed();
    void painting_frame_and_text_is_the_same_as_painting_the_label();
    void no_pixel_of_a_label_is_fully_transparent();
    void the_square_spans_from_its_corner_around_the_centre();
    void the_ellipse_touches_the_squares_edges();
    void the_triangle_is_a_square_base_under_a_pointed_roof();
    void the_diamond_touches_all_four_sides();
    void other_codes_draw_no_border_data();
    void other_codes_draw_no_border();
    void the_radius_of_a_flat_label_comes_from_its_width();
    void the_highlight_lies_beneath_border_and_text();
    void the_highlight_fills_the_label();
    void the_text_has_the_labels_color();
    void the_text_of_a_triangle_is_in_its_base();
    void a_text_of_exactly_the_fitting_width_keeps_its_size();
    void a_text_twice_as_wide_is_drawn_at_half_the_size();
    void a_text_that_would_get_too_small_becomes_a_star();
    void an_empty_text_does_not_change_the_frame();
    void the_painter_and_the_font_metrics_measure_alike();
    void a_label_without_size_is_not_drawn();
};

void TestLabelPainter::the_template_is_transparent_and_of_the_styles_size()
{
    const QPixmap pixmap = LabelPainter::Template({65, 35, 12, red});
    QCOMPARE(pixmap.size(), QSize(65, 35));
    QVERIFY(pixmap.hasAlphaChannel());
    QImage expected(65, 35, QImage::Format_ARGB32);
    expected.fill(0);
    QCOMPARE(Support::Difference(pixmap.toImage(), expected), QString());
}

void TestLabelPainter::the_style_starts_with_the_default_look()
{
    const TLabelStyle style;
    QCOMPARE(style.width, 32);
    QCOMPARE(style.height, 32);
    QCOMPARE(style.font_size, 12);
    QCOMPARE(style.color, QColor(250, 8, 50, 255));
}

void TestLabelPainter::labels_are_drawn_pixel_by_pixel_as_designed_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("font_size");
    QTest::addColumn<QColor>("color");

    QTest::newRow("initial style") << 32 << 32 << 12 << red;
    QTest::newRow("40 x 40") << 45 << 45 << 16 << QColor(0xf7, 0x97, 0x41);
    QTest::newRow("60 x 30") << 65 << 35 << 12 << QColor(0, 90, 30);
    QTest::newRow("30 x 60") << 35 << 65 << 12 << QColor(10, 20, 200, 128);
    QTest::newRow("smallest") << 15 << 15 << 4 << QColor(Qt::black);
    QTest::newRow("odd") << 38 << 38 << 13 << QColor(Qt::white);
    QTest::newRow("large") << 205 << 205 << 80 << red;
    QTest::newRow("tiny") << 8 << 8 << 12 << red;
}

void TestLabelPainter::labels_are_drawn_pixel_by_pixel_as_designed()
{
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(int, font_size);
    QFETCH(QColor, color);
    const QStringList texts{
        QString(),
        QStringLiteral("1"),
        QStringLiteral("-42"),
        QStringLiteral("1000"),
        QStringLiteral("2147483647"),
        QStringLiteral("gable"),
        QStringLiteral("a text of some words"),
        QStringLiteral("one\ntwo"),
        QStringLiteral("a\tb"),
        QStringLiteral("&R&&D"),
        QStringLiteral("   "),
        QStringLiteral("\u00c4\u20ac"),
        QString(400, QLatin1Char('w')),
    };
    for (const int border_type : {0, 1, 2, 3, 4, 8, 16, -1}) {
        for (const QString& text : texts) {
            for (const bool selected : {false, true}) {
                const TSpecimen label{text, border_type, selected, width, height, font_size, color};
                const QString difference = Support::Difference(Painted(label), Drawing(label));
                QVERIFY2(difference.isEmpty(),
                         qPrintable(QStringLiteral("%1, border %2, selected %3: %4")
                                        .arg(text.left(30))
                                        .arg(border_type)
                                        .arg(selected)
                                        .arg(difference)));
            }
        }
    }
}

void TestLabelPainter::painting_frame_and_text_is_the_same_as_painting_the_label()
{
    const TLabelStyle style{45, 45, 16, red};
    for (const int border_type : {0, 1, 2, 4, 8}) {
        for (const bool selected : {false, true}) {
            QPixmap frame = LabelPainter::Template(style);
            LabelPainter::Paint_Frame(&frame, style, border_type, selected);
            const QImage bare = frame.toImage();
            for (const char* text : {"7", "a long text"}) {
                QPixmap label = frame;
                LabelPainter::Paint_Text(&label, style, QLatin1String(text), border_type);
                QCOMPARE(Support::Difference(
                             label.toImage(),
                             Drawing(Specimen(border_type, selected, QLatin1String(text)))),
                         QString());
            }
            QCOMPARE(Support::Difference(frame.toImage(), bare), QString());
        }
    }
}

void TestLabelPainter::no_pixel_of_a_label_is_fully_transparent()
{
    for (const int border_type : {0, 1, 2, 4, 8}) {
        const QImage image = Painted(Specimen(border_type));
        QCOMPARE(image.size(), QSize(45, 45));
        int smallest = 255;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                smallest = std::min(smallest, qAlpha(image.pixel(x, y)));
        }
        QCOMPARE(smallest, 1);
        QCOMPARE(image.pixelColor(0, 0), almost_nothing);
        QCOMPARE(image.pixelColor(44, 44), almost_nothing);
    }
}

void TestLabelPainter::the_square_spans_from_its_corner_around_the_centre()
{
    // From (-20, -20), 39 wide and high, around (22, 22): edges at 2 and 41, two pixels wide.
    const QImage image = Painted(Specimen(1));
    const QList<int> expected{1, 2, 40, 41};
    QCOMPARE(Positions(image, red, 22), expected);
    QCOMPARE(Positions(image, red, -1, 22), expected);
    QCOMPARE(image.pixelColor(0, 22), almost_nothing);
    QCOMPARE(image.pixelColor(42, 22), almost_nothing);
    QCOMPARE(image.pixelColor(2, 2), red);
    QCOMPARE(image.pixelColor(40, 40), red);
}

void TestLabelPainter::the_ellipse_touches_the_squares_edges()
{
    // Its extreme points lie in the middle of the square's edges, at 21.5, and it leaves the
    // square's corners free.
    const QImage image = Painted(Specimen(2));
    for (const int edge : {1, 2, 40, 41}) {
        QVERIFY2(image.pixelColor(edge, 21).alpha() > 200, qPrintable(QString::number(edge)));
        QVERIFY2(image.pixelColor(21, edge).alpha() > 200, qPrintable(QString::number(edge)));
    }
    QCOMPARE(image.pixelColor(0, 21).alpha(), 1);
    QVERIFY(image.pixelColor(43, 21).alpha() <= 2);
    QVERIFY(image.pixelColor(5, 5).alpha() <= 2);
    QVERIFY(image.pixelColor(37, 37).alpha() <= 2);
}

void TestLabelPainter::the_triangle_is_a_square_base_under_a_pointed_roof()
{
    // Corners, relative to (22, 22): (0, -20), (-20, 0), (-20, 20), (20, 20), (20, 0).
    const QImage image = Painted(Specimen(4));
    const QList<int> walls{1, 2, 41, 42};
    QCOMPARE(Positions(image, red, 30), walls);
    QCOMPARE(Positions(image, red, -1, 30).last(), 42);
    QCOMPARE(image.pixelColor(30, 41), red);
    QCOMPARE(image.pixelColor(30, 43).alpha(), 1);
    // Half-way up the roof, which rises at 45 degrees, its line is 10 from the middle and the
    // centre. These pixels lie on the middle of the line and are covered as a whole.
    QCOMPARE(image.pixelColor(11, 12), red);
    QCOMPARE(image.pixelColor(32, 12), red);
    QCOMPARE(image.pixelColor(5, 5).alpha(), 1);
    QCOMPARE(image.pixelColor(39, 5).alpha(), 1);
    QVERIFY(image.pixelColor(22, 2).alpha() > 128);
}

void TestLabelPainter::the_diamond_touches_all_four_sides()
{
    const QImage image = Painted(Specimen(8));
    // Half-way along each of the edges, which rise at 45 degrees, 10 from the centre.
    for (const QPoint& middle : {QPoint(12, 11), QPoint(31, 11), QPoint(12, 32), QPoint(31, 32)})
        QCOMPARE(image.pixelColor(middle), red);
    for (const QPoint& corner : {QPoint(22, 2), QPoint(2, 22), QPoint(22, 41), QPoint(41, 22)})
        QVERIFY(image.pixelColor(corner).alpha() > 128);
    for (const QPoint& outside : {QPoint(5, 5), QPoint(39, 5), QPoint(5, 39), QPoint(39, 39)})
        QCOMPARE(image.pixelColor(outside).alpha(), 1);
}

void TestLabelPainter::other_codes_draw_no_border_data()
{
    QTest::addColumn<int>("border_type");
    for (const int border_type : {3, 5, 6, 7, 9, 16, -1})
        QTest::newRow(qPrintable(QString::number(border_type))) << border_type;
}

void TestLabelPainter::other_codes_draw_no_border()
{
    QFETCH(int, border_type);
    const QString text = QStringLiteral("12");
    QCOMPARE(Support::Difference(Painted(Specimen(border_type, true, text)),
                                 Painted(Specimen(0, true, text))),
             QString());
    QImage nothing(45, 45, QImage::Format_ARGB32_Premultiplied);
    nothing.fill(almost_nothing);
    QCOMPARE(Support::Difference(Painted(Specimen(border_type)), nothing), QString());
}

void TestLabelPainter::the_radius_of_a_flat_label_comes_from_its_width()
{
    // 65 x 35, radius 30 around (32, 17): the diamond's upper and lower corners, at -13 and 47, are
    // cut off, so that its edges end in the pixmap's top and bottom rows.
    TSpecimen label = Specimen(8);
    label.width = 65;
    label.height = 35;
    const QImage diamond = Painted(label);
    QCOMPARE(diamond.size(), QSize(65, 35));
    QCOMPARE(diamond.pixelColor(32, 0), QColor(255, 255, 255, 2));
    // 17 rows above the centre the edge is 30 - 17 = 13 away from the middle.
    QVERIFY(diamond.pixelColor(32 - 13, 0).alpha() > 128);
    QVERIFY(diamond.pixelColor(32 + 12, 0).alpha() > 128);
    QVERIFY(diamond.pixelColor(32 - 13, 34).alpha() > 128);

    // The base of the triangle would be at 47, below the pixmap; its walls are at 2 and 62.
    label.border_type = 4;
    const QList<int> walls{1, 2, 61, 62};
    QCOMPARE(Positions(Painted(label), red, 34), walls);

    // The square starts at -13 and is 29 high: only its lower edge, at 16, and its walls are
    // visible.
    label.border_type = 1;
    const QImage square = Painted(label);
    const QList<int> sides{1, 2, 60, 61};
    QCOMPARE(Positions(square, red, 5), sides);
    const QList<int> lower_edge{15, 16};
    QCOMPARE(Positions(square, red, -1, 32), lower_edge);
}

void TestLabelPainter::the_highlight_lies_beneath_border_and_text()
{
    const QImage plain = Painted(Specimen(1, false, QStringLiteral("8")));
    const QImage selected = Painted(Specimen(1, true, QStringLiteral("8")));
    int opaque = 0;
    for (int y = 0; y < 45; ++y) {
        for (int x = 0; x < 45; ++x) {
            if (plain.pixelColor(x, y) != red)
                continue;
            ++opaque;
            QCOMPARE(selected.pixelColor(x, y), red);
        }
    }
    // The four sides of the border alone: 41 x 41 less 37 x 37, less the bevelled corners.
    QVERIFY(opaque >= 41 * 41 - 37 * 37 - 4);
}

void TestLabelPainter::the_highlight_fills_the_label()
{
    // From (-22, -22), 43 wide and high, around (22, 22): edges at 0 and 43, one pixel wide, half
    // of it in each of the pixels beside them.
    const QImage image =
        Painted(Specimen(0, true)).convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const auto pixel = [&image](int x, int y) {
        return reinterpret_cast<const QRgb*>(image.constScanLine(y))[x];
    };
    // A quarter of blue over an almost transparent pixel: 64 + 1 * 191 / 255.
    QCOMPARE(pixel(20, 20), qRgba(1, 1, 65, 65));
    QCOMPARE(pixel(1, 22), qRgba(1, 1, 65, 65));
    QCOMPARE(pixel(41, 41), qRgba(1, 1, 65, 65));
    QVERIFY(qAlpha(pixel(0, 22)) > 65);
    QVERIFY(qAlpha(pixel(42, 22)) > 65);
    QVERIFY(qAlpha(pixel(43, 22)) > 1 && qAlpha(pixel(43, 22)) < 128);
    QCOMPARE(pixel(44, 22), qRgba(1, 1, 1, 1));
    QCOMPARE(pixel(22, 44), qRgba(1, 1, 1, 1));
}

void TestLabelPainter::the_text_has_the_labels_color()
{
    TSpecimen label = Specimen(0, false, QStringLiteral("1"));
    label.color = QColor(12, 34, 56);
    const QImage image = Painted(label);
    QRect inked;
    for (int y = 0; y < 45; ++y) {
        for (int x = 0; x < 45; ++x) {
            if (image.pixelColor(x, y) == label.color)
                inked |= QRect(x, y, 1, 1);
        }
    }
    // Centred: the figure's ink is around the middle of the pixmap.
    QVERIFY(inked.height() >= 10);
    QVERIFY(std::abs(inked.center().x() - 22) <= 3);
    QVERIFY(std::abs(inked.center().y() - 22) <= 3);
}

void TestLabelPainter::the_text_of_a_triangle_is_in_its_base()
{
    const QImage frame = Painted(Specimen(4));
    const QImage image = Painted(Specimen(4, false, QStringLiteral("1")));
    int highest = 45;
    for (int y = 44; y >= 0; --y) {
        for (int x = 0; x < 45; ++x) {
            if (image.pixel(x, y) != frame.pixel(x, y))
                highest = y;
        }
    }
    QVERIFY(highest >= 22);
    QVERIFY(highest < 45);
}

void TestLabelPainter::a_text_of_exactly_the_fitting_width_keeps_its_size()
{
    // 0.67 of a label 100 wide.
    const QString text = Text_Of_Width(67, 16);
    QVERIFY(!text.isEmpty());
    const TSpecimen label{text, 0, false, 105, 105, 16, red};
    QCOMPARE(Support::Difference(Painted(label), Text_Alone(text, 16)), QString());
}

void TestLabelPainter::a_text_twice_as_wide_is_drawn_at_half_the_size()
{
    const QString text = Text_Of_Width(134, 15);
    QVERIFY(!text.isEmpty());
    const TSpecimen label{text, 0, false, 105, 105, 15, red};
    QCOMPARE(Support::Difference(Painted(label), Text_Alone(text, 7.5)), QString());
}

void TestLabelPainter::a_text_that_would_get_too_small_becomes_a_star()
{
    // A label 40 wide has room for 26.8; five times that is 134.
    const QString widest = Text_Of_Width(134, 16);
    const QString too_wide = Text_Of_Width(135, 16);
    QVERIFY(!widest.isEmpty());
    QVERIFY(!too_wide.isEmpty());
    const QImage star = Painted(Specimen(1, false, QStringLiteral("*")));
    QCOMPARE(Support::Difference(Painted(Specimen(1, false, too_wide)), star), QString());
    QVERIFY(!Support::Difference(Painted(Specimen(1, false, widest)), star).isEmpty());
}

void TestLabelPainter::an_empty_text_does_not_change_the_frame()
{
    const TLabelStyle style{45, 45, 16, red};
    QPixmap frame = LabelPainter::Template(style);
    LabelPainter::Paint_Frame(&frame, style, 2, true);
    QCOMPARE(Support::Difference(Painted(Specimen(2, true)), frame.toImage()), QString());
}

void TestLabelPainter::the_painter_and_the_font_metrics_measure_alike()
{
    QPixmap pixmap(10, 10);
    QPainter painter(&pixmap);
    for (const char* text : {"", "1", "long text", "one\ntwo", "   ", "fi&"}) {
        const QString measured = QLatin1String(text);
        painter.setFont(Arial(13));
        QCOMPARE(painter.boundingRect(QRect(0, 0, 0, 0), 0, measured).width(),
                 Text_Width(measured, 13));
    }
}

void TestLabelPainter::a_label_without_size_is_not_drawn()
{
    const TLabelStyle style{0, 0, 12, red};
    QPixmap pixmap = LabelPainter::Template(style);
    LabelPainter::Paint(&pixmap, style, QStringLiteral("1"), 1, true);
    QVERIFY(pixmap.isNull());
}

QTEST_MAIN(TestLabelPainter)
#include "test_labelpainter.moc"
