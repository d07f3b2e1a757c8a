#include "support/project.h"
#include "support/support.h"
#include "support/tool.h"

#include "src/export/printedpdf.h"
#include "src/paint/labelpainter.h"

#include <QDateTime>
#include <QPainter>
#include <QPixmap>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include <csignal>

using Support::Header;
using Support::Item_Element;
using Support::Item_List;
using Support::Page_Record;
using Support::TToolResult;

namespace {

const QByteArray color = "#0a141e";

QImage Picture(int width, int height)
{
    return Support::Picture(width, height, 3);
}

QByteArray Page(const QByteArray& name, const QImage& picture,
                const QByteArray& items = Item_List())
{
    return Page_Record(name, Support::Png(picture), items);
}

QString Time_Stamp()
{
    return QDateTime::currentDateTime().toString(QStringLiteral("ddMMyyyyhhmmss"));
}

} // namespace

/// Tests the commands that draw: export-images, export-pdf and thumbnail.
class TestCliExports : public Support::TToolTest
{
    Q_OBJECT

    void Write_Project(const QByteArray& pages, int count) const
    {
        Write("a.quillet", Header(32, color, "", "", static_cast<quint32>(count)) + pages);
    }

    /// Writes a file under each name that the image of a page can get within the next minute, and
    /// returns the names in order.
    QStringList Write_Images_Of_Next_Minute(const QString& page_name, int number) const
    {
        const QDateTime now = QDateTime::currentDateTime();
        constexpr int seconds = 60;
        for (int second = 0; second < seconds; ++second) {
            const QString stamp = now.addSecs(second).toString(QStringLiteral("ddMMyyyyhhmmss"));
            Support::Write_File(
                Path(QStringLiteral("out/%1-%2%3.png").arg(page_name, stamp).arg(number)), "old");
        }
        return Support::Entries(Path("out"));
    }

    QImage Thumbnail_Of(const QByteArray& page, const QStringList& options = {}) const
    {
        Write_Project(page, 1);
        const TToolResult result =
            Run(QStringList{"thumbnail", "a.quillet", "--output", "t.png"} + options);
        return result.status == 0 ? QImage(Path("t.png"), "PNG") : QImage();
    }

private slots:
    void init()
    {
        TToolTest::init();
        QVERIFY(QDir(d_folder->path()).mkdir("out"));
    }

    void image_files_are_named_as_the_window_names_them()
    {
        Write_Project(Page("a/b:c", Picture(20, 10)) + Page("", Picture(30, 10)), 2);
        const QString before = Time_Stamp();
        QCOMPARE(Run({"export-images", "a.quillet", "--folder", "out"}).status, 0);
        const QStringList names = Support::Entries(Path("out"));
        QCOMPARE(names.size(), 2);
        const QRegularExpression first("^Image_2-(\\d{14})2\\.png$");
        const QRegularExpression second("^a_b_c-(\\d{14})1\\.png$");
        const QString stamp = first.match(names.at(0)).captured(1);
        QCOMPARE(second.match(names.at(1)).captured(1), stamp);
        const auto time = [](const QString& text) {
            return QDateTime::fromString(text, QStringLiteral("ddMMyyyyhhmmss"));
        };
        QVERIFY(time(before) <= time(stamp) && time(stamp) <= QDateTime::currentDateTime());
        QCOMPARE(QImage(Path("out/" + names.at(0))).size(), QSize(30, 10));
    }

    void an_existing_image_is_kept_without_force()
    {
        Write_Project(Page("a", Picture(20, 10)) + Page("b", Picture(30, 10)), 2);
        const QStringList old_names = Write_Images_Of_Next_Minute("b", 2);
        const TToolResult refused = Run({"export-images", "a.quillet", "--folder", "out"});
        QCOMPARE(refused.status, 1);
        QVERIFY(QRegularExpression("^quillet-cli: out/b-\\d{14}2\\.png: already exists; ")
                    .match(refused.errors)
                    .hasMatch());
        QCOMPARE(Support::Entries(Path("out")), old_names);

        QCOMPARE(Run({"export-images", "a.quillet", "--folder", "out", "--force"}).status, 0);
        QCOMPARE(Support::Entries(Path("out")).size(), old_names.size() + 1);
    }

    void a_failed_image_export_removes_its_images()
    {
        // The name is too long for any file system.
        Write_Project(Page("a", Picture(20, 10)) + Page(QByteArray(300, 'x'), Picture(30, 10)), 2);
        const TToolResult result = Run({"export-images", "a.quillet", "--folder", "out"});
        QCOMPARE(result.status, 1);
        QVERIFY2(QRegularExpression("^quillet-cli: out/x+-\\d{14}2\\.png: cannot be written\n$")
                     .match(result.errors)
                     .hasMatch(),
                 qPrintable(result.errors));
        QCOMPARE(Support::Entries(Path("out")), QStringList());
    }

    void an_interrupted_export_leaves_no_unfinished_file_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("SIGHUP") << SIGHUP;
        QTest::newRow("SIGINT") << SIGINT;
        QTest::newRow("SIGTERM") << SIGTERM;
    }
    void an_interrupted_export_leaves_no_unfinished_file()
    {
        QFETCH(int, signal);
        // Enough pages that the export is not finished when the signal arrives.
        QByteArray pages;
        constexpr int page_count = 200;
        for (int page = 0; page < page_count; ++page)
            pages += Page("page", Picture(400, 300));
        Write_Project(pages, page_count);
        QProcess process;
        process.setWorkingDirectory(d_folder->path());
        process.start(Support::Tool_Path(),
                      {"export-pdf", "a.quillet", "--output", "out/report.pdf"});
        QTRY_VERIFY(!Support::Entries(Path("out")).isEmpty());
        kill(static_cast<pid_t>(process.processId()), signal);
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.exitStatus(), QProcess::CrashExit);
        QCOMPARE(process.exitCode(), signal);
        QCOMPARE(Support::Entries(Path("out")), QStringList());
    }

    void a_failed_image_export_keeps_existing_images()
    {
        // The name is too long for any file system.
        Write_Project(Page("a", Picture(20, 10)) + Page(QByteArray(300, 'x'), Picture(30, 10)), 2);
        const QStringList old_names = Write_Images_Of_Next_Minute("a", 1);
        const TToolResult result =
            Run({"export-images", "a.quillet", "--folder", "out", "--force"});
        QCOMPARE(result.status, 1);
        QCOMPARE(Support::Entries(Path("out")), old_names);
    }

    void the_image_folder_must_exist_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("reason");
        QTest::newRow("missing") << "missing"
                                 << "No such file or directory";
        QTest::newRow("a file") << "a.quillet"
                                << "Not a directory";
    }
    void the_image_folder_must_exist()
    {
        QFETCH(const QString, folder);
        QFETCH(const QString, reason);
        Write_Project(Page("a", Picture(20, 10)), 1);
        const TToolResult result = Run({"export-images", "a.quillet", "--folder", folder});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors, "quillet-cli: " + folder + ": cannot be written: " + reason + '\n');
    }

    void a_document_without_pages_cannot_be_drawn_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("images") << QStringList{"export-images", "a.quillet", "--folder", "out"};
        QTest::newRow("report") << QStringList{"export-pdf", "a.quillet", "--output", "out/r.pdf"};
        QTest::newRow("thumbnail")
            << QStringList{"thumbnail", "a.quillet", "--output", "out/t.png"};
    }
    void a_document_without_pages_cannot_be_drawn()
    {
        QFETCH(const QStringList, arguments);
        Write_Project(QByteArray(), 0);
        const TToolResult result = Run(arguments);
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors, QStringLiteral("quillet-cli: a.quillet: has no pages\n"));
        QCOMPARE(Support::Entries(Path("out")), QStringList());
    }

    void a_report_is_complete()
    {
        Write_Project(Page("a", Picture(20, 10)), 1);
        QCOMPARE(Run({"export-pdf", "a.quillet", "--output", "out/r.pdf"}).status, 0);
        QVERIFY(PrintedPdf::Is_Complete(Path("out/r.pdf")));
        QCOMPARE(Support::Entries(Path("out")), QStringList{"r.pdf"});
    }

    void each_report_setting_has_several_names_data()
    {
        QTest::addColumn<QString>("option");
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<bool>("is_default");
        const auto row = [](const char* option, const QStringList& names, bool is_default = false) {
            QTest::newRow(qPrintable(names.first())) << QString(option) << names << is_default;
        };
        row("--orientation", {"portrait", "0"}, true);
        row("--orientation", {"landscape", "LANDSCAPE", "1"});
        row("--resolution", {"96", "96 DPI", "1"});
        row("--resolution", {"180", "180 dpi", "2"}, true);
        row("--resolution", {"276", "276 Dpi", "3"});
        row("--resolution", {"372", "372 DPI", "4"});
    }
    void each_report_setting_has_several_names()
    {
        QFETCH(const QString, option);
        QFETCH(const QStringList, names);
        QFETCH(const bool, is_default);
        Write_Project(Page("a", Picture(20, 10)), 1);
        const auto report = [this](const QStringList& options) {
            const QStringList command{"export-pdf", "a.quillet", "--output", "r.pdf", "--force"};
            const int status = Run(command + options).status;
            return status == 0 ? Support::Timeless_Pdf(Path("r.pdf")) : QByteArray();
        };
        const QByteArray expected = report({option, names.first()});
        QVERIFY(!expected.isEmpty());
        for (const QString& name : names.mid(1))
            QCOMPARE(Support::Byte_Difference(report({option, name}), expected), QString());
        QCOMPARE(report({}) == expected, is_default);
    }

    void a_web_page_has_whole_images_by_default()
    {
        Write_Project(Page("a", Picture(60, 40)), 1);
        const auto web_page = [this](const QStringList& options) {
            const QStringList command{"export-html", "a.quillet", "--output", "page", "--force"};
            return Run(command + options).status == 0 ? Content("page") : QByteArray();
        };
        const QByteArray whole = web_page({});
        QVERIFY(!whole.isEmpty());
        QCOMPARE(web_page({"--max-width", "60"}), whole);
        QVERIFY(web_page({"--max-width", "59"}) != whole);
    }

    void a_large_page_is_scaled_down_for_the_thumbnail_data()
    {
        QTest::addColumn<QSize>("page");
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QSize>("thumbnail");
        QTest::newRow("wide") << QSize(512, 256) << QStringList() << QSize(128, 64);
        QTest::newRow("high") << QSize(200, 400) << QStringList{"--size", "100"} << QSize(50, 100);
        QTest::newRow("too high only") << QSize(100, 400) << QStringList() << QSize(32, 128);
        QTest::newRow("too wide only") << QSize(400, 100) << QStringList() << QSize(128, 32);
        QTest::newRow("upright line") << QSize(2, 1000) << QStringList() << QSize(1, 128);
        QTest::newRow("line") << QSize(1000, 2) << QStringList() << QSize(128, 1);
        QTest::newRow("one pixel") << QSize(60, 40) << QStringList{"--size", "1"} << QSize(1, 1);
        QTest::newRow("as large") << QSize(128, 128) << QStringList() << QSize(128, 128);
    }
    void a_large_page_is_scaled_down_for_the_thumbnail()
    {
        QFETCH(const QSize, page);
        QFETCH(const QStringList, options);
        QFETCH(const QSize, thumbnail);
        QCOMPARE(Thumbnail_Of(Page("a", Picture(page.width(), page.height())), options).size(),
                 thumbnail);
    }

    void a_small_page_is_not_enlarged()
    {
        const QImage picture = Picture(60, 40);
        QCOMPARE(Support::Difference(Thumbnail_Of(Page("a", picture)), picture), QString());
        QCOMPARE(Thumbnail_Of(Page("b", Picture(60, 40)), {"--size", "8192", "--force"}).size(),
                 QSize(60, 40));
    }

    void the_thumbnail_shows_the_first_page_with_its_labels()
    {
        const QImage picture = Picture(100, 80);
        const QByteArray items = Item_List(Item_Element("5", "7", "", "1", "50.00,40.00"));
        Write_Project(Page("a", picture, items) + Page("b", Picture(20, 10)), 2);
        QCOMPARE(Run({"thumbnail", "a.quillet", "--output", "t.png"}).status, 0);
        // Labels of size 32 have a font of 13 points.
        const TLabelStyle style{32 + LabelPainter::Margin, 32 + LabelPainter::Margin, 13,
                                QColor(QString::fromLatin1(color))};
        QImage expected = picture;
        QPixmap label = LabelPainter::Template(style);
        LabelPainter::Paint(&label, style, "7", Square_Border, false);
        QPainter(&expected).drawPixmap(QPoint(50, 40) - LabelPainter::Centre(style), label);
        QCOMPARE(Support::Difference(QImage(Path("t.png")), expected), QString());
    }

    void the_desktop_does_not_change_what_is_drawn_data()
    {
        QTest::addColumn<QByteArray>("value");
        QTest::newRow("QT_QPA_PLATFORMTHEME") << QByteArray("desktop");
        QTest::newRow("QT_STYLE_OVERRIDE") << QByteArray("desktop");
        QTest::newRow("QT_SCALE_FACTOR") << QByteArray("2");
        QTest::newRow("QT_SCREEN_SCALE_FACTORS") << QByteArray("2");
        QTest::newRow("QT_DEVICE_PIXEL_RATIO") << QByteArray("2");
        QTest::newRow("QT_FONT_DPI") << QByteArray("192");
    }
    void the_desktop_does_not_change_what_is_drawn()
    {
        QFETCH(const QByteArray, value);
        const char* const variable = QTest::currentDataTag();
        Write_Project(Page("a", Picture(100, 80),
                           Item_List(Item_Element("5", "7", "A long text", "1", "50.00,40.00"))),
                      1);
        QCOMPARE(Run({"thumbnail", "a.quillet", "--output", "expected.png"}).status, 0);

        qputenv("QT_PLUGIN_PATH", QUILLET_DESKTOP_PLUGINS);
        qputenv(variable, value);
        const TToolResult result = Run({"thumbnail", "a.quillet", "--output", "t.png"});
        qunsetenv(variable);
        qunsetenv("QT_PLUGIN_PATH");
        // The desktop plugins print a line when they are loaded.
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.status, 0);
        QCOMPARE(Support::Difference(QImage(Path("t.png")), QImage(Path("expected.png"))),
                 QString());
    }

    void thumbnails_are_scaled_smoothly()
    {
        const QImage picture = Picture(512, 256);
        const QImage expected =
            picture.scaled(128, 64, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        QCOMPARE(Support::Difference(Thumbnail_Of(Page("a", picture)), expected), QString());
    }
};

QTEST_MAIN(TestCliExports)
#include "test_cliexports.moc"
