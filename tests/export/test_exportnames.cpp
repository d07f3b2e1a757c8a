#include "src/export/exportnames.h"

#include "support/support.h"

#include <QLocale>
#include <QTest>

#include <cstdlib>

namespace {

const QDateTime november(QDate(2026, 11, 16), QTime(7, 5, 9));

QString Path_Of_Page(const QString& page_name)
{
    return ExportNames::Image_Path(QStringLiteral("/tmp/out"), page_name, 3, november, 1);
}

} // namespace

/// Names of exported page images.
class TestExportNames : public QObject
{
    Q_OBJECT

private slots:
    void the_path_is_folder_name_time_and_counter()
    {
        QCOMPARE(Path_Of_Page("Cover"), QString("/tmp/out/Cover-161120260705091.png"));
    }

    void the_counter_makes_the_names_of_an_export_unique()
    {
        const QDateTime may(QDate(2026, 5, 4), QTime(1, 2, 3));
        QCOMPARE(ExportNames::Image_Path("/tmp/out", "Page 1", 1, may, 1),
                 QString("/tmp/out/Page 1-040520260102031.png"));
        QCOMPARE(ExportNames::Image_Path("/tmp/out", "Page 2", 2, may, 2),
                 QString("/tmp/out/Page 2-040520260102032.png"));
        QCOMPARE(ExportNames::Image_Path("/tmp/out", "Page 2", 2, may, 100),
                 QString("/tmp/out/Page 2-04052026010203100.png"));
    }

    void a_folder_gets_a_slash_unless_it_has_one_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("beginning");

        QTest::newRow("none") << "/tmp/out"
                              << "/tmp/out/Cover-";
        QTest::newRow("slash") << "/tmp/out/"
                               << "/tmp/out/Cover-";
        QTest::newRow("backslash") << "C:\\out\\"
                                   << "C:\\out\\Cover-";
        QTest::newRow("root") << "/"
                              << "/Cover-";
        QTest::newRow("other separators stay") << "/a:b/c<d>"
                                               << "/a:b/c<d>/Cover-";
        QTest::newRow("empty") << ""
                               << "/Cover-";
        QTest::newRow("placeholder") << "/tmp/%1"
                                     << "/tmp/%1/Cover-";
    }
    void a_folder_gets_a_slash_unless_it_has_one()
    {
        QFETCH(QString, folder);
        QFETCH(QString, beginning);
        QCOMPARE(ExportNames::Image_Path(folder, "Cover", 3, november, 1),
                 beginning + "161120260705091.png");
    }

    void characters_that_file_systems_reject_are_replaced_data()
    {
        QTest::addColumn<QString>("page_name");
        QTest::addColumn<QString>("file_name");

        QTest::newRow("slash and colon") << "a/b:c"
                                         << "a_b_c";
        QTest::newRow("backslash") << "a\\b"
                                   << "a_b";
        QTest::newRow("angle brackets") << "<a>"
                                        << "_a_";
        QTest::newRow("each one by itself") << "a//b::"
                                            << "a__b__";
        QTest::newRow("nothing else") << "/\\:><"
                                      << "_____";
        QTest::newRow("blanks stay") << " a  b "
                                     << " a  b ";
        QTest::newRow("one blank is a name") << " "
                                             << " ";
        QTest::newRow("others stay") << "a*b?c|d\"e.f'g-h"
                                     << "a*b?c|d\"e.f'g-h";
        QTest::newRow("letters of other scripts stay")
            << QString::fromUtf8("Übersicht 図") << QString::fromUtf8("Übersicht 図");
        QTest::newRow("placeholders stay") << "%1 of %2%%"
                                           << "%1 of %2%%";
        QTest::newRow("dots stay") << ".."
                                   << "..";
    }
    void characters_that_file_systems_reject_are_replaced()
    {
        QFETCH(QString, page_name);
        QFETCH(QString, file_name);
        QCOMPARE(Path_Of_Page(page_name), "/tmp/out/" + file_name + "-161120260705091.png");
    }

    void a_page_without_a_name_is_named_after_its_id()
    {
        QCOMPARE(Path_Of_Page(""), QString("/tmp/out/Image_3-161120260705091.png"));
        QCOMPARE(ExportNames::Image_Path("/tmp/out", QString(), 1234, november, 2),
                 QString("/tmp/out/Image_1234-161120260705092.png"));
    }

    void hours_have_24_hour_format()
    {
        const QDateTime evening(QDate(2026, 11, 16), QTime(23, 59, 0));
        QVERIFY(ExportNames::Image_Path("/o", "a", 1, evening, 1).endsWith("-161120262359001.png"));
        const QDateTime midnight(QDate(2026, 1, 1), QTime(0, 0, 0));
        QVERIFY(
            ExportNames::Image_Path("/o", "a", 1, midnight, 1).endsWith("-010120260000001.png"));
    }

    void digits_are_ascii_in_every_locale()
    {
        // A process reads the system's locale only once.
        const Support::TChildResult result = Support::Run_In_Child([] {
            setenv("LC_ALL", "ar_EG.UTF-8", 1);
            QLocale::setDefault(QLocale(QStringLiteral("ar_EG")));
            return Path_Of_Page("a") == QLatin1String("/tmp/out/a-161120260705091.png") ? 0 : 1;
        });
        QVERIFY(result.exited);
        QCOMPARE(result.exit_code, 0);
    }

    void a_pattern_has_only_known_placeholders_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("is_pattern");
        const auto row = [](const char* text, bool is_pattern) {
            QTest::newRow(text) << QString(text) << is_pattern;
        };
        row("plain", true);
        row("{document}-{page}-{number}-{time}", true);
        row("{number}{number}.png", true);
        row("", false);
        row("{Number}", false);
        row("{}", false);
        row("{page", false);
        row("page}", false);
        row("}page{", false);
        row("{{page}}", false);
        row("a/{page}", false);
    }
    void a_pattern_has_only_known_placeholders()
    {
        QFETCH(const QString, text);
        QTEST(ExportNames::Is_Pattern(text), "is_pattern");
    }

    void placeholders_are_replaced_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("path");
        const auto row = [](const char* pattern, const char* path) {
            QTest::newRow(pattern) << QString(pattern) << QString(path);
        };
        row("{document}", "/out/site.v2.png");
        row("{page}", "/out/a_b {number}.png");
        row("{number}", "/out/007.png");
        row("{time}", "/out/16112026070509.png");
        row("x{number}y{number}z", "/out/x007y007z.png");
        row("{number}.png", "/out/007.png");
        row("{number}.PNG", "/out/007.PNG");
    }
    void placeholders_are_replaced()
    {
        QFETCH(const QString, pattern);
        const TImagePage page{"site.v2", "a/b {number}", 3, 7, 100};
        QTEST(ExportNames::Pattern_Path("/out", pattern, page, november), "path");
    }

    void the_number_has_the_digits_of_the_page_count()
    {
        const auto path = [](int number, int count) {
            return ExportNames::Pattern_Path("/", "{number}", {"", "", 1, number, count}, november);
        };
        QCOMPARE(path(1, 9), QString("/1.png"));
        QCOMPARE(path(1, 10), QString("/01.png"));
        QCOMPARE(path(10, 10), QString("/10.png"));
    }

    void a_page_without_a_name_is_called_by_its_id_in_a_pattern()
    {
        QCOMPARE(ExportNames::Pattern_Path("/", "{page}", {"", "", 12, 1, 1}, november),
                 QString("/Image_12.png"));
    }
};

QTEST_MAIN(TestExportNames)
#include "test_exportnames.moc"
