#include "support/modal.h"
#include "support/pages.h"
#include "support/support.h"
#include "support/view.h"
#include "support/widgets.h"

#include "src/labelwidget.h"
#include "src/pagewidget.h"
#include "src/paint/reportgeometry.h"
#include "src/reportheaderdialog.h"
#include "src/settingswidget.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFile>
#include <QFileDialog>
#include <QFont>
#include <QFontMetrics>
#include <QLine>
#include <QLineEdit>
#include <QListWidget>
#include <QModelIndex>
#include <QPrinter>
#include <QProcess>
#include <QRegularExpression>
#include <QRegularExpressionMatch>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

namespace {

using TReportSettings = TQuillet::TReportSettings;

/// An A4 page in device pixels by resolution code: 210 and 297 mm at 96 dots per inch are 793.7 and
/// 1122.5 pixels, and so on. Qt derives them from 595 x 842 points, rounded.
const QSize portrait_sizes[] = {{793, 1123}, {1587, 2245}, {2380, 3368}, {3173, 4491}};

/// Rule widths in device pixels by resolution code.
constexpr int rule_widths[] = {1, 2, 2, 3};

/// The page image is grey, so that it differs in brightness from the lines on it and the white
/// around it. Brightness stays sharp in the file; colours do not.
const QColor page_grey(204, 204, 204);
const QSize page_size(600, 780);
constexpr int label_size = 40;

/// The output of a PDF program; fails the test when the program fails.
QByteArray Output(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0) {
        QTest::qFail(qPrintable(program + QStringLiteral(": ") +
                                QString::fromUtf8(process.readAllStandardError()) +
                                process.errorString()),
                     __FILE__, __LINE__);
        return QByteArray();
    }
    return process.readAllStandardOutput();
}

/// Renders a page of a file in grey, at a resolution in dots per inch.
QImage Rendered(const QString& file, int page, int resolution)
{
    const QString number = QString::number(page);
    const QByteArray picture =
        Output(QStringLiteral("pdftoppm"),
               {"-gray", "-r", QString::number(resolution), "-f", number, "-l", number, file});
    return QImage::fromData(picture, "pgm").convertToFormat(QImage::Format_Grayscale8);
}

/// Renders a part of a page with pdftocairo. pdftoppm stretches images to whole pixels, by up to
/// one on either side.
QImage Rendered_Part(const QString& file, int page, int resolution, const QRect& part)
{
    const QString number = QString::number(page);
    const QByteArray picture = Output(
        QStringLiteral("pdftocairo"),
        {"-png", "-gray", "-singlefile", "-r", QString::number(resolution), "-f", number, "-l",
         number, "-x", QString::number(part.x()), "-y", QString::number(part.y()), "-W",
         QString::number(part.width()), "-H", QString::number(part.height()), file, "-"});
    return QImage::fromData(picture, "png").convertToFormat(QImage::Format_Grayscale8);
}

int Page_Count(const QString& file)
{
    const QByteArray information = Output(QStringLiteral("pdfinfo"), {file});
    const QRegularExpression pattern(QStringLiteral("Pages: +(\\d+)"));
    return pattern.match(QString::fromUtf8(information)).captured(1).toInt();
}

/// "WIDTH x HEIGHT" of each page in points.
QStringList Page_Sizes(const QString& file)
{
    const QByteArray information =
        Output(QStringLiteral("pdfinfo"), {"-f", "1", "-l", "9999", file});
    const QRegularExpression pattern(QStringLiteral("size: +(\\d+ x \\d+)"));
    QStringList sizes;
    auto matches = pattern.globalMatch(QString::fromUtf8(information));
    while (matches.hasNext())
        sizes += matches.next().captured(1);
    return sizes;
}

/// The text lines of a page.
QStringList Lines(const QString& file, int page)
{
    const QString number = QString::number(page);
    const QString text = QString::fromUtf8(
        Output(QStringLiteral("pdftotext"), {"-layout", "-f", number, "-l", number, file, "-"}));
    QStringList lines;
    for (const QString& line : text.split(QRegularExpression(QStringLiteral("[\n\f]")))) {
        if (!line.trimmed().isEmpty())
            lines += line.simplified();
    }
    return lines;
}

const QString maker_line = QStringLiteral("The Quillet Project - www.quillet.example Page %1");

/// A word of a page with its box in device pixels, including line spacing.
struct TWord
{
    QString text;
    QRectF box;
};

QList<TWord> Words(const QString& file, int resolution)
{
    const QString listing =
        QString::fromUtf8(Output(QStringLiteral("pdftotext"), {"-bbox", file, "-"}));
    const QRegularExpression pattern(QStringLiteral(
        "<word xMin=\"([^\"]+)\" yMin=\"([^\"]+)\" xMax=\"([^\"]+)\" yMax=\"([^\"]+)\">([^<]*)<"));
    QList<TWord> words;
    auto matches = pattern.globalMatch(listing);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        const auto pixels = [&](int group) {
            constexpr double points_per_inch = 72.0;
            return match.captured(group).toDouble() * resolution / points_per_inch;
        };
        words += {match.captured(5),
                  QRectF(QPointF(pixels(1), pixels(2)), QPointF(pixels(3), pixels(4)))};
    }
    return words;
}

TFontMeasure Font_Measure(int points, const QPrinter& printer)
{
    const QFontMetrics metrics(QFont(QStringLiteral("Helvetica"), points, QFont::Normal, false),
                               &printer);
    return {metrics.height(), metrics.xHeight()};
}

/// Gives a printer the report's settings, to measure fonts.
void Set_Up(QPrinter* printer, const TReportSettings& settings)
{
    printer->setOutputFormat(QPrinter::PdfFormat);
    printer->setResolution(settings.resolution * 96);
}

TReportGeometry Geometry(const TReportSettings& settings)
{
    QPrinter printer(QPrinter::HighResolution);
    Set_Up(&printer, settings);
    const QSize portrait = portrait_sizes[settings.resolution - 1];
    const QRect page(QPoint(0, 0), settings.orientation == 0 ? portrait : portrait.transposed());
    return TReportGeometry(page, {settings.resolution, !settings.header_1.isEmpty(),
                                  !settings.header_2.isEmpty(), Font_Measure(12, printer),
                                  Font_Measure(6, printer)});
}

/// Distance of the base line from the top of a line of the report's font.
int Ascent(int points, const TReportSettings& settings)
{
    QPrinter printer(QPrinter::HighResolution);
    Set_Up(&printer, settings);
    return QFontMetrics(QFont(QStringLiteral("Helvetica"), points), &printer).ascent();
}

bool Is_Dark(int shade)
{
    return shade < 110;
}

bool Is_Page_Grey(int shade)
{
    return shade > 190 && shade < 218;
}

/// The box of all pixels of a kind in an area; right and bottom are exclusive.
template <typename TKind>
QRectF Box(const QImage& image, const QRect& area, TKind is_kind)
{
    QRect box;
    const QRect inside = area & image.rect();
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        const uchar* const line = image.constScanLine(y);
        for (int x = inside.left(); x <= inside.right(); ++x) {
            if (is_kind(line[x]))
                box |= QRect(x, y, 1, 1);
        }
    }
    return QRectF(box);
}

/// Describes two boxes if one of their edges differs by more than one device pixel; otherwise
/// empty.
QString Distance(const QRectF& found, const QRectF& wanted)
{
    const double distances[] = {found.left() - wanted.left(), found.top() - wanted.top(),
                                found.right() - wanted.right(), found.bottom() - wanted.bottom()};
    for (const double distance : distances) {
        if (std::abs(distance) <= 1.0)
            continue;
        QString text;
        QDebug(&text) << "box" << found << "instead of" << wanted;
        return text;
    }
    return QString();
}

/// The area of a rule's stroke: half its width around the line and at its square ends.
QRectF Stroke(const QLine& line, int width)
{
    const double half = width / 2.0;
    return QRectF(QPointF(line.p1()), QPointF(line.p2())).adjusted(-half, -half, half, half);
}

/// Two labels with a square border, far from each other and from the middle lines of the page.
std::vector<TDataItem> Square_Labels()
{
    return {{1, 1, QString(), 1, QPointF(100, 120), false},
            {2, 2, QString(), 1, QPointF(480, 650), false}};
}

QImage Grey_Page(const QColor& colour = page_grey, const QSize& size = page_size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

} // namespace

/// The PDF report, read with poppler and qpdf, and the state after its export.
class TestReport : public QObject
{
    Q_OBJECT

    std::unique_ptr<TOpenWindow> d_window;
    std::unique_ptr<QTemporaryDir> d_folder;

    int Add_Page(const std::vector<TDataItem>& items = {}, const QColor& colour = page_grey)
    {
        return Support::Add_Page(d_window.get(), Grey_Page(colour), items);
    }

    void Show_Page(int page_id) { Support::Show_Page(d_window.get(), page_id); }

    QList<int> Page_Ids() const { return d_window->d_page_widget->Page_Ids(); }

    QString File() const { return d_folder->filePath(QStringLiteral("report.pdf")); }

    QStringList Files() const
    {
        return QDir(d_folder->path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    /// Answers the header dialog.
    static Support::TAnswer Headers(const QString& header_1, const QString& header_2)
    {
        return Support::Click(QStringLiteral("Accept"), [=](QWidget* widget) {
            auto* const dialog = qobject_cast<TReportHeaderDialog*>(widget);
            const QList<QLineEdit*> editors = dialog->findChildren<QLineEdit*>();
            Support::Type_Over(editors[0], header_1);
            Support::Type_Over(editors[1], header_2);
        });
    }

    /// Triggers the command and answers its dialogs.
    QString Run(const std::vector<Support::TAnswer>& answers)
    {
        return Support::Run_Answering([this] { d_window->d_action_export_pdf->trigger(); },
                                      answers);
    }

    void Compare_Rules(const QImage& page, const TReportGeometry& geometry, int code)
    {
        const int width = rule_widths[code - 1];
        for (const QLine& rule : {geometry.Header_Rule(), geometry.Footer_Rule()}) {
            // Nothing else that is dark is this near to the rule.
            const int room = width / 2 + 2;
            const QRect area(0, rule.y1() - room, page.width(), 2 * room + 1);
            const QRectF box = Box(page, area, Is_Dark);
            QCOMPARE(Distance(box, Stroke(rule, width)), QString());
            QVERIFY2(std::abs(box.height() - width) <= 1,
                     qPrintable(QString::number(box.height())));
        }
    }

    /// @return  the rectangle of the image.
    QRect Compare_Picture(const QImage& page, const TReportGeometry& geometry)
    {
        const QSize scaled = page_size.scaled(geometry.Target().size(), Qt::KeepAspectRatio);
        const QRect image_rect = geometry.Centred(scaled);
        // No label crosses the middle lines.
        const QPoint middle = image_rect.center();
        const QRectF across = Box(page, QRect(0, middle.y(), page.width(), 1), Is_Page_Grey);
        const QRectF down = Box(page, QRect(middle.x(), 0, 1, page.height()), Is_Page_Grey);
        const QRectF box(QPointF(across.left(), down.top()),
                         QPointF(across.right(), down.bottom()));
        [&] { QCOMPARE(Distance(box, QRectF(image_rect)), QString()); }();
        return image_rect;
    }

    void Compare_Labels(int page_number, const QRect& image_rect, int code)
    {
        const double scale_x = static_cast<double>(image_rect.width()) / page_size.width();
        const double scale_y = static_cast<double>(image_rect.height()) / page_size.height();
        for (const TDataItem& label : Square_Labels()) {
            // The border of a label of 40 pixels extends from 20 pixels before its centre to 19
            // after it, with a pen two pixels wide.
            const QRectF border(label.position - QPointF(21, 21), label.position + QPointF(20, 20));
            const QRectF wanted(image_rect.left() + border.left() * scale_x,
                                image_rect.top() + border.top() * scale_y, border.width() * scale_x,
                                border.height() * scale_y);
            const QRect area = wanted.toAlignedRect().adjusted(-8, -8, 8, 8);
            const QImage part = Rendered_Part(File(), page_number, code * 96, area);
            const QRectF found = Box(part, part.rect(), Is_Dark).translated(area.topLeft());
            QCOMPARE(Distance(found, wanted), QString());
        }
    }

    /// Letters without a descender end at the base line.
    void Compare_Text(const QImage& page, const QRect& line, int base_line)
    {
        // The rule below overlaps the line.
        constexpr int rule_room = 3;
        const QRectF box = Box(page, line.adjusted(0, 0, 0, -rule_room), Is_Dark);
        QVERIFY2(std::abs(box.bottom() - base_line) <= 1.0,
                 qPrintable(QStringLiteral("%1 instead of %2").arg(box.bottom()).arg(base_line)));
    }

private slots:
    void init()
    {
        d_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(d_folder->isValid());
        d_window = Support::New_Window(label_size, Qt::black);
    }

    void cleanup()
    {
        d_window.reset();
        d_folder.reset();
    }

    void everything_is_at_its_position_on_the_page_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<int>("orientation");
        QTest::addColumn<QString>("header_1");
        QTest::addColumn<QString>("header_2");
        for (int code = 1; code <= 4; ++code) {
            QTest::addRow("portrait, code %d", code) << code << 0 << "HEAD"
                                                     << "LINE";
            QTest::addRow("landscape, code %d", code) << code << 1 << "HEAD"
                                                      << "LINE";
        }
        QTest::newRow("no header") << 1 << 0 << ""
                                   << "";
        QTest::newRow("first header") << 1 << 0 << "HEAD"
                                      << "";
        QTest::newRow("second header") << 1 << 0 << ""
                                       << "LINE";
        QTest::newRow("landscape, first header") << 2 << 1 << "HEAD"
                                                 << "";
        QTest::newRow("landscape, second header") << 2 << 1 << ""
                                                  << "LINE";
        QTest::newRow("landscape, no header") << 2 << 1 << ""
                                              << "";
    }
    void everything_is_at_its_position_on_the_page()
    {
        QFETCH(const int, code);
        QFETCH(const int, orientation);
        QFETCH(const QString, header_1);
        QFETCH(const QString, header_2);
        const TReportSettings settings{orientation, code, header_1, header_2};
        Add_Page();
        Add_Page(Square_Labels());
        QVERIFY(d_window->Export_PDF(File(), Page_Ids(), settings));
        const TReportGeometry geometry = Geometry(settings);

        const QImage page = Rendered(File(), 2, code * 96);
        QVERIFY(!page.isNull());
        Compare_Rules(page, geometry, code);
        Compare_Labels(2, Compare_Picture(page, geometry), code);
        if (!header_1.isEmpty())
            Compare_Text(page, geometry.Header_1(),
                         geometry.Header_1().top() + Ascent(12, settings));
        if (!header_2.isEmpty())
            Compare_Text(page, geometry.Header_2(),
                         geometry.Header_2().top() + Ascent(12, settings));

        // Both pages have the same words in the same places, except the page number.
        const QList<TWord> words = Words(File(), code * 96);
        QStringList texts;
        for (const TWord& word : words) {
            texts += word.text;
            if (word.text == QLatin1String("HEAD") || word.text == QLatin1String("LINE") ||
                word.text == QLatin1String("The"))
                QVERIFY2(std::abs(word.box.left() - geometry.Footer().left()) <= 1.0,
                         qPrintable(word.text));
            if (word.text == QLatin1String("1") || word.text == QLatin1String("2"))
                QVERIFY2(std::abs(word.box.right() - geometry.Footer().right() - 1) <= 1.0,
                         qPrintable(word.text));
            const QRectF footer = geometry.Footer().adjusted(-1, -1, 1, 1);
            QCOMPARE(footer.contains(word.box.center()),
                     word.text != QLatin1String("HEAD") && word.text != QLatin1String("LINE"));
        }
        QString expected = (header_1 + ' ' + header_2 + ' ' + maker_line).simplified();
        QCOMPARE(texts.join(' '), expected.arg(1) + ' ' + expected.arg(2));
    }

    void qpdf_and_poppler_accept_the_report_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<int>("orientation");
        QTest::addColumn<QString>("size");
        for (int code = 1; code <= 4; ++code) {
            QTest::addRow("portrait, code %d", code) << code << 0 << "595 x 842";
            QTest::addRow("landscape, code %d", code) << code << 1 << "842 x 595";
        }
        QTest::newRow("any other orientation is landscape") << 1 << -7 << "842 x 595";
    }
    void qpdf_and_poppler_accept_the_report()
    {
        QFETCH(const int, code);
        QFETCH(const int, orientation);
        QFETCH(const QString, size);
        for (int i = 0; i < 3; ++i)
            Add_Page(Square_Labels());
        QVERIFY(d_window->Export_PDF(File(), Page_Ids(), {orientation, code, "A", "B"}));
        QVERIFY(Output(QStringLiteral("qpdf"), {"--check", File()}).contains("No syntax"));
        QCOMPARE(Page_Sizes(File()), QStringList({size, size, size}));
        QCOMPARE(Files(), QStringList({QStringLiteral("report.pdf")}));
    }

    void headers_may_contain_any_text_data()
    {
        QTest::addColumn<QString>("header_1");
        QTest::addColumn<QString>("header_2");
        QTest::newRow("placeholders") << "%1 of %2"
                                      << "100% %n %L1";
        QTest::newRow("beyond ASCII")
            << QStringLiteral("Prüfbericht – Čáslav") << QStringLiteral("Отчёт № 7, 5 µm");
        QTest::newRow("markup and a mnemonic") << "<b>R&D</b>"
                                               << "a && b";
    }
    void headers_may_contain_any_text()
    {
        QFETCH(const QString, header_1);
        QFETCH(const QString, header_2);
        Add_Page();
        QVERIFY(d_window->Export_PDF(File(), Page_Ids(), {0, 2, header_1, header_2}));
        QCOMPARE(Lines(File(), 1), QStringList({header_1, header_2, maker_line.arg(1)}));
    }

    void a_long_header_ends_at_the_margin()
    {
        Add_Page();
        const QString header(500, QLatin1Char('W'));
        QVERIFY(d_window->Export_PDF(File(), Page_Ids(), {0, 1, header, QString()}));
        const TReportGeometry geometry = Geometry({0, 1, header, QString()});
        const QImage page = Rendered(File(), 1, 96);
        const QRect right(geometry.Header_1().right() + 2, 0, page.width(), page.height());
        QVERIFY(Box(page, right, Is_Dark).isEmpty());
    }

    void pages_follow_the_list_and_are_counted_from_one()
    {
        // The pages differ in brightness.
        const int first = Add_Page({}, QColor(195, 195, 195));
        const int second = Add_Page({}, QColor(205, 205, 205));
        const int third = Add_Page({}, QColor(215, 215, 215));
        d_window->d_data.Remove_Page(first);
        d_window->d_page_widget->Remove_Page(first);
        const int fourth = Add_Page({}, QColor(225, 225, 225));
        // The same as dragging the first row to the end.
        auto* const pages = Support::Only<QListWidget>(*d_window->d_page_widget);
        QVERIFY(pages->model()->moveRow(QModelIndex(), 0, QModelIndex(), 3));
        QCOMPARE(Page_Ids(), QList<int>({third, fourth, second}));
        QCOMPARE(Run({Headers(QString(), QString()), Support::Choose({File()})}), QString());
        QCOMPARE(Page_Count(File()), 3);
        const int shades[] = {215, 225, 205};
        for (int number = 1; number <= 3; ++number) {
            QCOMPARE(Lines(File(), number), QStringList({maker_line.arg(number)}));
            const QImage page = Rendered(File(), number, 48);
            const int shade = qGray(page.pixel(page.rect().center()));
            QVERIFY2(std::abs(shade - shades[number - 1]) <= 2, qPrintable(QString::number(shade)));
        }
    }

    void a_report_of_a_hundred_pages_is_complete()
    {
        for (int i = 0; i < 100; ++i)
            Support::Add_Page(d_window.get(), Grey_Page(page_grey, QSize(60, 80)),
                              {{1, i, QString(), 2, QPointF(30, 40), false}});
        QVERIFY(d_window->Export_PDF(File(), Page_Ids(), {0, 1, "A", QString()}));
        QVERIFY(Output(QStringLiteral("qpdf"), {"--check", File()}).contains("No syntax"));
        QCOMPARE(Page_Count(File()), 100);
        QCOMPARE(Lines(File(), 100), QStringList({"A", maker_line.arg(100)}));
    }

    void a_page_without_an_image_is_exported()
    {
        const int page = Add_Page(Square_Labels());
        const int empty = Support::Add_Page(d_window.get(), QImage());
        Show_Page(page);
        const QStringList view = Support::View_In_Words(*d_window);
        QVERIFY(d_window->Export_PDF(File(), {empty, page}, {0, 1, QString(), QString()}));
        QVERIFY(Output(QStringLiteral("qpdf"), {"--check", File()}).contains("No syntax"));
        QCOMPARE(Page_Count(File()), 2);
        QCOMPARE(Lines(File(), 1), QStringList({maker_line.arg(1)}));
        const TReportGeometry geometry = Geometry({0, 1, QString(), QString()});
        const QImage first = Rendered(File(), 1, 96);
        Compare_Rules(first, geometry, 1);
        const QRect between = geometry.Target().adjusted(0, 4, 0, -4);
        QVERIFY(Box(first, between, [](int shade) { return shade != 255; }).isEmpty());
        Compare_Picture(Rendered(File(), 2, 96), geometry);
        QCOMPARE(Support::View_In_Words(*d_window), view);
    }

    void without_pages_or_a_valid_resolution_nothing_is_written_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<bool>("has_pages");
        QTest::newRow("no pages") << 2 << false;
        QTest::newRow("code 0") << 0 << true;
        QTest::newRow("code 5") << 5 << true;
        QTest::newRow("code -1") << -1 << true;
        QTest::newRow("neither") << 0 << false;
    }
    void without_pages_or_a_valid_resolution_nothing_is_written()
    {
        QFETCH(const int, code);
        QFETCH(const bool, has_pages);
        Show_Page(Add_Page(Square_Labels()));
        const QList<int> pages = has_pages ? Page_Ids() : QList<int>();
        const QStringList view = Support::View_In_Words(*d_window);
        QVERIFY(!d_window->Export_PDF(File(), pages, {0, code, "A", "B"}));
        QCOMPARE(Files(), QStringList());
        Support::Write_File(File(), "old");
        QVERIFY(!d_window->Export_PDF(File(), pages, {0, code, "A", "B"}));
        QCOMPARE(Support::Read_File(File()), QByteArray("old"));
        QCOMPARE(Support::View_In_Words(*d_window), view);
        QVERIFY(!d_window->d_data_changed);
    }

    void a_file_that_cannot_be_opened_is_a_failure_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("missing folder") << "/missing/folder/report.pdf";
        QTest::newRow("not a folder for files") << "/proc/report.pdf";
        QTest::newRow("a folder") << QDir::tempPath();
        QTest::newRow("below a file") << QCoreApplication::applicationFilePath() + "/report.pdf";
        QTest::newRow("no name") << "";
    }
    void a_file_that_cannot_be_opened_is_a_failure()
    {
        QFETCH(const QString, path);
        Show_Page(Add_Page(Square_Labels()));
        const QStringList view = Support::View_In_Words(*d_window);
        int labels_moved = 0;
        const QObject listener;
        connect(d_window->d_display_widget, &TDisplayWidget::Update_Item_Position, &listener,
                [&] { ++labels_moved; });
        const QStringList before =
            QDir(QDir::tempPath()).entryList(QDir::AllEntries | QDir::Hidden);
        QVERIFY(!d_window->Export_PDF(path, Page_Ids(), {0, 1, "A", "B"}));
        QCOMPARE(QDir(QDir::tempPath()).entryList(QDir::AllEntries | QDir::Hidden), before);
        // No page was drawn.
        QCOMPARE(labels_moved, 0);
        QCOMPARE(Support::View_In_Words(*d_window), view);
        QVERIFY(!d_window->d_data_changed);
    }

    void a_write_protected_file_is_a_failure_data()
    {
        QTest::addColumn<bool>("folder_protected");
        QTest::newRow("of the folder") << true;
        QTest::newRow("of the file") << false;
    }
    void a_write_protected_file_is_a_failure()
    {
        QFETCH(const bool, folder_protected);
        Add_Page();
        if (!folder_protected)
            Support::Write_File(File(), "old");
        const QString path = folder_protected ? d_folder->path() : File();
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::ExeOwner));
        const Support::TChildResult result = Support::Run_In_Child([this] {
            Support::Obey_File_Permissions();
            return d_window->Export_PDF(File(), Page_Ids(), {0, 1, "A", "B"}) ? 1 : 0;
        });
        QVERIFY(
            QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        QVERIFY2(result.exited, result.error_output.constData());
        QCOMPARE(result.exit_code, 0);
        QCOMPARE(Files(), folder_protected ? QStringList() : QStringList({"report.pdf"}));
        QCOMPARE(Support::Read_File(File()), folder_protected ? QByteArray() : QByteArray("old"));
    }

    void an_export_to_a_full_device_reports_success()
    {
        Show_Page(Add_Page(Square_Labels()));
        const QStringList view = Support::View_In_Words(*d_window);
        QVERIFY(d_window->Export_PDF(QStringLiteral("/dev/full"), Page_Ids(), {0, 1, "A", "B"}));
        QCOMPARE(Support::View_In_Words(*d_window), view);
    }

    void an_existing_report_is_replaced()
    {
        Add_Page();
        Support::Write_File(File(), QByteArray(2000000, 'x'));
        QVERIFY(d_window->Export_PDF(File(), Page_Ids(), {0, 1, "A", "B"}));
        QVERIFY(Output(QStringLiteral("qpdf"), {"--check", File()}).contains("No syntax"));
        QCOMPARE(Files(), QStringList({QStringLiteral("report.pdf")}));
    }

    void a_file_name_without_a_suffix_is_used_unchanged()
    {
        Add_Page();
        QCOMPARE(Run({Headers(QString(), QString()),
                      Support::Choose({d_folder->filePath(QStringLiteral("Bericht 7"))})}),
                 QString());
        QCOMPARE(Files(), QStringList({QStringLiteral("Bericht 7")}));
        QCOMPARE(Page_Count(d_folder->filePath(QStringLiteral("Bericht 7"))), 1);
    }

    void afterwards_the_active_page_is_shown_without_a_selection()
    {
        const int first = Add_Page(Square_Labels());
        Add_Page({{7, 70, QStringLiteral("text"), 2, QPointF(30, 30), false}}, Qt::yellow);
        Show_Page(first);
        const QStringList unselected = Support::View_In_Words(*d_window);
        auto* const list = Support::Only<QListWidget>(*d_window->d_label_widget);
        Support::Click_Row(list, 1);
        QVERIFY(Support::View_In_Words(*d_window) != unselected);
        TDisplayWidget* const view = d_window->d_display_widget;
        QList<int> pages;
        const QObject listener;
        connect(view, &TDisplayWidget::Update_Item_Position, &listener, [&] {
            QVERIFY(!view->updatesEnabled());
            pages += d_window->d_data.Active_Page();
        });
        QVERIFY(d_window->Export_PDF(File(), Page_Ids(), {0, 1, "A", "B"}));
        QCOMPARE(pages, QList<int>({1, 1, 2, 1, 1}));
        QCOMPARE(d_window->d_data.Active_Page(), first);
        QCOMPARE(Support::View_In_Words(*d_window), unselected);
        // List and document keep their selection.
        QCOMPARE(d_window->d_label_widget->Selected_Items(), std::vector<int>({2}));
        QVERIFY(d_window->d_data.Item(1).selected);
    }

    void the_view_stays_without_an_active_page()
    {
        Add_Page(Square_Labels());
        QCOMPARE(d_window->d_data.Active_Page(), -1);
        const QImage background = d_window->d_display_widget->Background_Pixmap().toImage();
        QVERIFY(d_window->Export_PDF(File(), Page_Ids(), {0, 1, "A", "B"}));
        QCOMPARE(d_window->d_data.Active_Page(), -1);
        QVERIFY(Support::Labels(*d_window->d_display_widget).isEmpty());
        QCOMPARE(Support::Difference(d_window->d_display_widget->Background_Pixmap().toImage(),
                                     background),
                 QString());
        QVERIFY(d_window->d_display_widget->updatesEnabled());
    }

    void the_command_needs_a_page()
    {
        QVERIFY(!d_window->d_action_export_pdf->isEnabled());
        Add_Page();
        QVERIFY(d_window->d_action_export_pdf->isEnabled());
    }

    void the_command_asks_for_headers_and_a_file()
    {
        Add_Page();
        Add_Page();
        d_window->d_working_dir.setPath(QDir::tempPath());
        d_window->d_settings_widget->Set_PDF_Orientation(1);
        d_window->d_settings_widget->Set_PDF_Resolution(3);
        const auto look_and_choose = [this](QWidget* widget) {
            const auto* const dialog = qobject_cast<QFileDialog*>(widget);
            QVERIFY(dialog);
            QCOMPARE(dialog->windowTitle(), QStringLiteral("Export PDF file"));
            QCOMPARE(dialog->parentWidget(), d_window.get());
            QCOMPARE(dialog->directory(), QDir(QDir::tempPath()));
            QCOMPARE(dialog->nameFilters(), QStringList({QStringLiteral("PDF File (*.pdf)")}));
            QCOMPARE(dialog->acceptMode(), QFileDialog::AcceptSave);
            Support::Choose({File()})(widget);
        };
        QCOMPARE(Run({Headers(QStringLiteral("Top"), QStringLiteral("Below")), look_and_choose}),
                 QString());
        QCOMPARE(d_window->d_working_dir.absolutePath(), d_folder->path());
        QCOMPARE(Page_Sizes(File()), QStringList({"842 x 595", "842 x 595"}));
        for (int number = 1; number <= 2; ++number)
            QCOMPARE(Lines(File(), number), QStringList({"Top", "Below", maker_line.arg(number)}));
        // At 288 dots per inch each image is as high as its target.
        const TReportGeometry geometry = Geometry({1, 3, "Top", "Below"});
        Compare_Picture(Rendered(File(), 1, 288), geometry);
    }

    void cancelling_does_nothing_data()
    {
        QTest::addColumn<bool>("at_the_headers");
        QTest::newRow("at the headers") << true;
        QTest::newRow("at the file name") << false;
    }
    void cancelling_does_nothing()
    {
        QFETCH(const bool, at_the_headers);
        Add_Page(Square_Labels());
        d_window->d_working_dir.setPath(d_folder->path());
        std::vector<Support::TAnswer> answers{Headers(QStringLiteral("Top"), QString()),
                                              Support::Cancel()};
        if (at_the_headers)
            answers = {Support::Click(QStringLiteral("Cancel"))};
        QCOMPARE(Run(answers), QString());
        QCOMPARE(Files(), QStringList());
        QCOMPARE(d_window->d_working_dir.path(), d_folder->path());
        QVERIFY(!d_window->d_data_changed);
    }

    void the_header_dialog_is_kept_with_its_texts()
    {
        Add_Page();
        QVERIFY(d_window->d_header_dialog == nullptr);
        QCOMPARE(Run({Headers(QStringLiteral("Top"), QStringLiteral("Below")), Support::Cancel()}),
                 QString());
        const TReportHeaderDialog* const dialog = d_window->d_header_dialog;
        QCOMPARE(dialog->parentWidget(), d_window.get());
        QString shown;
        QCOMPARE(Run({Support::Click(QStringLiteral("Accept"),
                                     [&](QWidget* widget) {
                                         for (const QLineEdit* editor :
                                              widget->findChildren<QLineEdit*>())
                                             shown += editor->text() + '/';
                                     }),
                      Support::Choose({File()})}),
                 QString());
        QCOMPARE(shown, QStringLiteral("Top/Below/"));
        QCOMPARE(d_window->d_header_dialog, dialog);
        QCOMPARE(Lines(File(), 1), QStringList({"Top", "Below", maker_line.arg(1)}));
    }

    void header_lines_mark_the_document_as_changed_data()
    {
        QTest::addColumn<QString>("header_1");
        QTest::addColumn<QString>("header_2");
        QTest::addColumn<bool>("before");
        QTest::addColumn<bool>("after");
        QTest::newRow("none") << ""
                              << "" << false << false;
        QTest::newRow("none, changed before") << ""
                                              << "" << true << true;
        QTest::newRow("first") << "A"
                               << "" << false << true;
        QTest::newRow("second") << ""
                                << "B" << false << true;
        QTest::newRow("both") << "A"
                              << "B" << false << true;
        QTest::newRow("a blank is a text") << " "
                                           << "" << false << true;
    }
    void header_lines_mark_the_document_as_changed()
    {
        QFETCH(const QString, header_1);
        QFETCH(const QString, header_2);
        QFETCH(const bool, before);
        QFETCH(const bool, after);
        Add_Page();
        d_window->d_data_changed = before;
        QCOMPARE(Run({Headers(header_1, header_2), Support::Choose({File()})}), QString());
        QCOMPARE(d_window->d_data_changed, after);
    }

    void a_failed_export_is_not_reported_but_sets_the_working_folder()
    {
        Add_Page();
        d_window->d_working_dir.setPath(d_folder->path());
        // The file dialog refuses names in missing folders, but not names that it cannot write.
        QCOMPARE(Run({Headers(QStringLiteral("A"), QString()),
                      Support::Choose({QStringLiteral("/proc/report.pdf")})}),
                 QString());
        QCOMPARE(d_window->d_working_dir.path(), QStringLiteral("/proc"));
        QVERIFY(d_window->d_data_changed);
    }

    void exporting_labels_marks_the_document_as_changed()
    {
        Add_Page(Square_Labels());
        QVERIFY(d_window->Export_PDF(File(), Page_Ids(), {0, 1, QString(), QString()}));
        QVERIFY(d_window->d_data_changed);
    }
};

QTEST_MAIN(TestReport)
#include "test_report.moc"
