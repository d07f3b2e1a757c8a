#include "src/paint/reportpainter.h"

#include "support/support.h"

#include <QFontMetrics>
#include <QImage>
#include <QPainter>
#include <QTest>

namespace {

const QRect page(0, 0, 400, 600);

// The page's margins are 400 * 0.09 = 36 and 600 * 0.045 = 27 pixels: 36 and 399 - 36 = 363, 27 and
// 599 - 27 = 572. A third of the 328 columns between is 109.8 with half a pixel for rounding; three
// times 109 columns from 36 on end at 362.
constexpr int edge_left = 36;
constexpr int text_right = 363;
constexpr int rule_right = 362;
constexpr int edge_top = 27;
constexpr int edge_bottom = 572;

QRect Corners(int left, int top, int right, int bottom)
{
    return QRect(QPoint(left, top), QPoint(right, bottom));
}

QImage Blank()
{
    QImage image(page.size(), QImage::Format_RGB32);
    constexpr int dots_per_metre = 3780; // 96 dots per inch
    image.setDotsPerMeterX(dots_per_metre);
    image.setDotsPerMeterY(dots_per_metre);
    image.fill(Qt::white);
    return image;
}

/// A picture that scaling does not change when it already has the target's size.
QPixmap Picture(const QSize& size)
{
    return QPixmap::fromImage(Support::Picture(size.width(), size.height()));
}

/// The lines of a page that depend on the fonts of the machine.
struct TLines
{
    int heading = 0; ///< height of a heading line
    int hy = 0;      ///< header rule
    int fy = 0;      ///< edge_top of the footer
};

QFont Font(int points)
{
    return QFont(QStringLiteral("Helvetica"), points);
}

TLines Lines(int header_count)
{
    const QImage device = Blank();
    const QFontMetrics heading(Font(12), &device);
    const QFontMetrics footer(Font(6), &device);
    const int band = header_count == 0 ? 0 : header_count * heading.height() + heading.xHeight();
    return {heading.height(), edge_top + band, edge_bottom - footer.height() - footer.xHeight()};
}

void Draw_Rules_And_Footer(QPainter* painter, const TLines& lines, int width, const QString& number)
{
    painter->setPen(QPen(Qt::black, width));
    painter->drawLine(edge_left, lines.fy - 1, rule_right, lines.fy - 1);
    painter->drawLine(edge_left, lines.hy, rule_right, lines.hy);
    painter->setPen(QPen(Qt::black));
    painter->setFont(Font(6));
    const QRect footer = Corners(edge_left, lines.fy, text_right, edge_bottom - 1);
    painter->drawText(footer, Qt::AlignLeft | Qt::AlignBottom,
                      QStringLiteral("The Quillet Project - www.quillet.example"));
    painter->drawText(footer, Qt::AlignRight | Qt::AlignBottom, number);
}

} // namespace

/// Draws report pages on an image instead of a printer.
class TestReportPainter : public QObject
{
    Q_OBJECT

private slots:
    void a_page_is_drawn_part_by_part_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<int>("rule_width");
        QTest::addColumn<QString>("header_1");
        QTest::addColumn<QString>("header_2");
        QTest::newRow("code 1") << 1 << 1 << "First, 100%1"
                                << "Second & last";
        QTest::newRow("code 2") << 2 << 2 << "First, 100%1"
                                << "Second & last";
        QTest::newRow("code 3") << 3 << 2 << "First, 100%1"
                                << "Second & last";
        QTest::newRow("code 4") << 4 << 3 << "First, 100%1"
                                << "Second & last";
        QTest::newRow("first header") << 2 << 2 << "First"
                                      << "";
        QTest::newRow("second header") << 2 << 2 << ""
                                       << "Second";
        QTest::newRow("no header") << 2 << 2 << ""
                                   << "";
    }
    void a_page_is_drawn_part_by_part()
    {
        QFETCH(const int, code);
        QFETCH(const int, rule_width);
        QFETCH(const QString, header_1);
        QFETCH(const QString, header_2);
        const TLines lines = Lines((header_1.isEmpty() ? 0 : 1) + (header_2.isEmpty() ? 0 : 1));
        const QRect target =
            Corners(edge_left + code, lines.hy + code, rule_right - code, lines.fy - 1 - code);
        const QPixmap picture = Picture(target.size());

        QImage expected = Blank();
        QPainter painter(&expected);
        painter.drawPixmap(target, picture);
        Draw_Rules_And_Footer(&painter, lines, rule_width, QStringLiteral("Page 12"));
        painter.setFont(Font(12));
        const int second_top = header_1.isEmpty() ? edge_top : edge_top + lines.heading;
        const int first_bottom = header_2.isEmpty() ? lines.hy : second_top;
        if (!header_1.isEmpty())
            painter.drawText(Corners(edge_left, edge_top, text_right, first_bottom - 1),
                             Qt::AlignLeft | Qt::AlignTop, header_1);
        if (!header_2.isEmpty())
            painter.drawText(Corners(edge_left, second_top, text_right, lines.hy - 1),
                             Qt::AlignLeft | Qt::AlignTop, header_2);
        painter.end();

        QImage drawn = Blank();
        QPainter device(&drawn);
        TReportPainter report(&device, code, header_1, header_2, page);
        report.Draw_Frame(12);
        report.Draw_Picture(picture);
        device.end();
        QCOMPARE(Support::Difference(drawn, expected), QString());
    }

    void a_picture_of_another_shape_is_scaled_and_centred()
    {
        const TLines lines = Lines(0);
        const QRect target = Corners(edge_left + 1, lines.hy + 1, rule_right - 1, lines.fy - 2);
        QCOMPARE(target.width(), 325);
        // Half as wide as high: scaled to half the target's height, which leaves room at the sides.
        QPixmap picture(100, 200);
        picture.fill(Qt::green);
        QImage drawn = Blank();
        QPainter device(&drawn);
        TReportPainter report(&device, 1, QString(), QString(), page);
        report.Draw_Frame(1);
        report.Draw_Picture(picture);
        device.end();

        const int width = target.height() / 2;
        const int inset = (target.width() - width) / 2;
        const QColor green(Qt::green);
        const int middle = target.center().y();
        QCOMPARE(drawn.pixelColor(target.left() + inset - 1, middle), QColor(Qt::white));
        QCOMPARE(drawn.pixelColor(target.left() + inset + 1, middle), green);
        QCOMPARE(drawn.pixelColor(target.right() - inset - 1, middle), green);
        QCOMPARE(drawn.pixelColor(target.right() - inset + 1, middle), QColor(Qt::white));
        QCOMPARE(drawn.pixelColor(target.center().x(), target.top()), green);
        QCOMPARE(drawn.pixelColor(target.center().x(), target.bottom()), green);
    }

    void a_picture_is_scaled_smoothly()
    {
        const TLines lines = Lines(0);
        const QRect target = Corners(edge_left + 1, lines.hy + 1, rule_right - 1, lines.fy - 2);
        // Black and white lines of one pixel. Scaling them to half the size gives grey.
        QImage stripes(target.size() * 2, QImage::Format_RGB32);
        stripes.fill(Qt::white);
        QPainter striper(&stripes);
        for (int y = 0; y < stripes.height(); y += 2)
            striper.drawLine(0, y, stripes.width(), y);
        striper.end();
        QImage drawn = Blank();
        QPainter device(&drawn);
        TReportPainter report(&device, 1, QString(), QString(), page);
        report.Draw_Frame(1);
        report.Draw_Picture(QPixmap::fromImage(stripes));
        device.end();
        for (const QPoint& pixel : {target.center(), target.center() + QPoint(0, 1)}) {
            const int grey = drawn.pixelColor(pixel).green();
            QVERIFY2(grey > 100 && grey < 155, qPrintable(QString::number(grey)));
        }
    }

    void a_page_with_a_null_picture_has_everything_else()
    {
        QTest::ignoreMessage(QtWarningMsg, "QPixmap::scaled: Pixmap is a null pixmap");
        QImage expected = Blank();
        QPainter painter(&expected);
        Draw_Rules_And_Footer(&painter, Lines(0), 1, QStringLiteral("Page 1"));
        painter.end();
        QImage drawn = Blank();
        QPainter device(&drawn);
        TReportPainter report(&device, 1, QString(), QString(), page);
        report.Draw_Frame(1);
        report.Draw_Picture(QPixmap());
        device.end();
        QCOMPARE(Support::Difference(drawn, expected), QString());
    }

    void without_a_footer_the_picture_has_its_room()
    {
        QImage drawn = Blank();
        QPainter device(&drawn);
        TReportFooter footer;
        const QRect with_footer =
            TReportPainter(&device, 1, QString(), QString(), page, footer).Room();
        footer.is_drawn = false;
        TReportPainter report(&device, 1, QString(), QString(), page, footer);
        QCOMPARE(with_footer.bottom(), Lines(0).fy - 2);
        QCOMPARE(report.Room().bottom(), edge_bottom - 2);
        QCOMPARE(report.Room().topRight(), with_footer.topRight());
        report.Draw_Frame(1);
        device.end();
        // Below the lower rule there is nothing.
        QCOMPARE(drawn.pixelColor(edge_left, edge_bottom - 1), QColor(Qt::black));
        for (int y = edge_bottom; y < drawn.height(); ++y) {
            for (int x = 0; x < drawn.width(); ++x)
                QCOMPARE(drawn.pixelColor(x, y), QColor(Qt::white));
        }
    }

    void a_further_page_moves_only_the_outer_edges()
    {
        // 390 x 590 at (5, 5) has margins of 35 and 26: 5 + 35 = 40, 394 - 35 = 359 and
        // 594 - 26 = 568.
        // The rules' lines and right ends stay.
        const TLines lines = Lines(0);
        QImage expected = Blank();
        QPainter painter(&expected);
        painter.setPen(QPen(Qt::black, 1));
        painter.drawLine(40, lines.fy - 1, rule_right, lines.fy - 1);
        painter.drawLine(40, lines.hy, rule_right, lines.hy);
        painter.setFont(Font(6));
        const QRect footer = Corners(40, lines.fy, 359, 567);
        painter.drawText(footer, Qt::AlignLeft | Qt::AlignBottom,
                         QStringLiteral("The Quillet Project - www.quillet.example"));
        painter.drawText(footer, Qt::AlignRight | Qt::AlignBottom, QStringLiteral("Page 2"));
        painter.end();

        QTest::ignoreMessage(QtWarningMsg, "QPixmap::scaled: Pixmap is a null pixmap");
        QImage drawn = Blank();
        QPainter device(&drawn);
        TReportPainter report(&device, 1, QString(), QString(), page);
        report.Set_Page(QRect(5, 5, 390, 590));
        report.Draw_Frame(2);
        report.Draw_Picture(QPixmap());
        device.end();
        QCOMPARE(Support::Difference(drawn, expected), QString());
    }
};

QTEST_MAIN(TestReportPainter)
#include "test_reportpainter.moc"
