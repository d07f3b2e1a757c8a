// Options of export-images and export-pdf: choice of pages, several documents, names, footer,
// bookmarks, halo.

#include "support/project.h"
#include "support/support.h"
#include "support/tool.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QProcess>
#include <QRegularExpression>
#include <QRgb>
#include <QTest>

using Support::TToolResult;

namespace {

const QString maker = QStringLiteral("The Quillet Project - www.quillet.example");

QImage Picture(int seed)
{
    return Support::Picture(60 + seed, 40, seed);
}

/// A project with pages of these names. Each page has another picture and a label.
QByteArray Project(const QStringList& names)
{
    QByteArray project = Support::Header(32, "#ff0000", "Header", "", names.size());
    int seed = 0;
    for (const QString& name : names) {
        const QByteArray label =
            Support::Item_Element("1", QByteArray::number(++seed), "", "1", "30,20");
        project += Support::Page_Record(name.toLatin1(), Support::Png(Picture(seed)),
                                        Support::Item_List(label));
    }
    return project;
}

QString Output_Of(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished();
    return QString::fromUtf8(process.readAllStandardOutput());
}

} // namespace

class TestCliExportOptions : public Support::TToolTest
{
    Q_OBJECT

    TToolResult Run(const QString& command, const QStringList& arguments = {}) const
    {
        return TToolTest::Run(command.split(' ') + arguments);
    }

    /// Runs a command that has to succeed, and returns the lines of its output.
    QStringList Do(const QString& command, const QStringList& arguments = {}) const
    {
        const TToolResult result = Run(command, arguments);
        if (result.status != 0 || !result.errors.isEmpty())
            return {QStringLiteral("failed: ") + result.errors};
        return result.output.split('\n', Qt::SkipEmptyParts);
    }

    QImage Image(const QString& name) const { return QImage(Path(name), "PNG"); }

    QStringList Texts(const QString& pdf) const { return Support::Text_Of_Pages(Path(pdf)); }

private slots:
    void init()
    {
        TToolTest::init();
        QVERIFY(QDir(d_folder->path()).mkdir("out"));
        Write("a.quillet", Project({"One", "Two", "Three"}));
        Write("b.quillet", Project({"One"}));
    }

    void chosen_pages_are_exported_in_the_given_order_data()
    {
        QTest::addColumn<QString>("pages");
        QTest::addColumn<QList<int>>("numbers");
        QTest::newRow("one") << "2" << QList<int>{2};
        QTest::newRow("range") << "2-3" << QList<int>{2, 3};
        QTest::newRow("list") << "3,1-2" << QList<int>{3, 1, 2};
        QTest::newRow("blanks") << "3, 1" << QList<int>{3, 1};
    }
    void chosen_pages_are_exported_in_the_given_order()
    {
        QFETCH(const QString, pages);
        QFETCH(const QList<int>, numbers);
        const QStringList names{"One", "Two", "Three"};
        QStringList paths;
        QString titles;
        for (const int number : numbers) {
            paths += QStringLiteral("out/%1.png").arg(number);
            titles += '"' + names.at(number - 1) + "\",";
        }
        QCOMPARE(Do("export-images a.quillet --folder out --name {number} --pages", {pages}),
                 paths);
        for (const int number : numbers)
            QCOMPARE(Image(QStringLiteral("out/%1.png").arg(number)).width(), 60 + number);

        Do("export-pdf a.quillet --output a.pdf --bookmarks --pages", {pages});
        QString bookmarks;
        const QString json = Output_Of("qpdf", {"--json", "--json-key=outlines", Path("a.pdf")});
        const QJsonArray outlines =
            QJsonDocument::fromJson(json.toUtf8()).object()["outlines"].toArray();
        for (const QJsonValue& outline : outlines)
            bookmarks += '"' + outline["title"].toString() + "\",";
        QCOMPARE(bookmarks, titles);
        QCOMPARE(Texts("a.pdf").size(), numbers.size());
    }

    void a_page_that_the_document_does_not_have_is_refused_data()
    {
        QTest::addColumn<QString>("pages");
        QTest::addColumn<int>("page");
        QTest::newRow("alone") << "7" << 7;
        QTest::newRow("end of a range") << "1-4" << 4;
        QTest::newRow("huge range") << "1-2000000000" << 2000000000;
    }
    void a_page_that_the_document_does_not_have_is_refused()
    {
        QFETCH(const QString, pages);
        QFETCH(const int, page);
        for (const QString& command :
             {QStringLiteral("export-images a.quillet --folder out --pages"),
              QStringLiteral("export-pdf a.quillet --output out/a.pdf --pages")}) {
            const TToolResult result = Run(command, {pages});
            QCOMPARE(result.status, 1);
            QCOMPARE(result.errors,
                     QStringLiteral("quillet-cli: a.quillet: there is no page %1\n").arg(page));
            QCOMPARE(Support::Entries(Path("out")), QStringList());
        }
    }

    void invalid_options_are_wrong_usage_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("complaint");
        const auto row = [](const QString& command, const QString& complaint) {
            QTest::newRow(qPrintable(command)) << command << complaint;
        };
        const QString pages_hint = ": expected page numbers and ranges such as 1-3,7.";
        const QString name_hint = ": expected a file name without \"/\", in which braces contain "
                                  "document, page, number or time.";
        for (const char* const pages :
             {"0", "3-1", "1-", "-2", "1,,2", "one", "1-2-3", "+1", "99999999999"})
            row(QStringLiteral("export-images a.quillet --folder out --pages=%1").arg(pages),
                QStringLiteral("Invalid value '%1' for option 'pages'").arg(pages) + pages_hint);
        row("export-pdf a.quillet --output out/a.pdf --pages=",
            "Invalid value '' for option 'pages'" + pages_hint);
        row("export-images a.quillet --folder out --name {title}",
            "Invalid value '{title}' for option 'name'" + name_hint);
        row("export-images a.quillet --folder out --name a/{page}",
            "Invalid value 'a/{page}' for option 'name'" + name_hint);
        row("export-images a.quillet --folder out --name=",
            "Invalid value '' for option 'name'" + name_hint);
        row("export-pdf a.quillet --output out/a.pdf --folder out",
            "Options 'output' and 'folder' exclude each other.");
        row("export-pdf a.quillet --output out/a.pdf --footer x --no-footer",
            "Options 'footer' and 'no-footer' exclude each other.");
        row("export-pdf a.quillet --output out/a.pdf --page-count --no-footer",
            "Options 'page-count' and 'no-footer' exclude each other.");
        row("export-pdf a.quillet b.quillet --output out/a.pdf",
            "Several documents need option 'folder'.");
        row("export-pdf a.quillet b.quillet --folder out --list --findings t.csv",
            "Option 'findings' is for one document.");
    }
    void invalid_options_are_wrong_usage()
    {
        QFETCH(const QString, command);
        QFETCH(const QString, complaint);
        const TToolResult result = Run(command);
        QCOMPARE(result.status, 2);
        QCOMPARE(result.output, QString());
        QCOMPARE(result.errors.section('\n', 0, 0), "quillet-cli: " + complaint);
        QCOMPARE(Support::Entries(Path("out")), QStringList());
    }

    void images_are_named_by_the_pattern()
    {
        QCOMPARE(Do("export-images a.quillet --folder out --name {document}-{number}-{page}"),
                 QStringList({"out/a-1-One.png", "out/a-2-Two.png", "out/a-3-Three.png"}));
        QCOMPARE(Support::Entries(Path("out")),
                 QStringList({"a-1-One.png", "a-2-Two.png", "a-3-Three.png"}));
    }

    void two_images_of_the_same_name_are_refused()
    {
        const TToolResult result = Run("export-images a.quillet --folder out --name {document}");
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors, QStringLiteral("quillet-cli: out/a.png: would be written twice\n"));
        QCOMPARE(Support::Entries(Path("out")), QStringList());
    }

    void each_document_becomes_a_report_named_after_it()
    {
        QCOMPARE(Do("export-pdf a.quillet b.quillet --folder out"),
                 QStringList({"out/a.pdf", "out/b.pdf"}));
        QCOMPARE(Texts("out/a.pdf").size(), 3);
        QCOMPARE(Texts("out/b.pdf").size(), 1);
    }

    void documents_of_the_same_name_are_refused()
    {
        QVERIFY(QDir(d_folder->path()).mkdir("sub"));
        Write("sub/a.quillet", Project({"One"}));
        const TToolResult result = Run("export-pdf a.quillet sub/a.quillet --folder out");
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors, QStringLiteral("quillet-cli: out/a.pdf: would be written twice\n"));
        QCOMPARE(Support::Entries(Path("out")), QStringList());
    }

    void images_of_several_documents_are_counted_on()
    {
        const QStringList paths = Do("export-images a.quillet b.quillet --folder out");
        QCOMPARE(paths.size(), 4);
        QVERIFY(QRegularExpression("^out/One-\\d{14}1\\.png$").match(paths.first()).hasMatch());
        QVERIFY(QRegularExpression("^out/One-\\d{14}4\\.png$").match(paths.last()).hasMatch());
        QCOMPARE(Support::Entries(Path("out")).size(), 4);
    }

    void a_damaged_document_leaves_no_file_of_the_others_data()
    {
        QTest::addColumn<QString>("command");
        QTest::newRow("images") << "export-images";
        QTest::newRow("reports") << "export-pdf";
    }
    void a_damaged_document_leaves_no_file_of_the_others()
    {
        QFETCH(const QString, command);
        Write("c.quillet", Project({"One"}).chopped(9));
        const TToolResult result = Run(command + " a.quillet c.quillet --folder out");
        QCOMPARE(result.status, 1);
        QCOMPARE(result.output, QString());
        QVERIFY2(result.errors.startsWith("quillet-cli: c.quillet: byte "),
                 qPrintable(result.errors));
        QCOMPARE(Support::Entries(Path("out")), QStringList());
    }

    void no_document_is_overwritten_by_a_report()
    {
        QVERIFY(QFile::rename(Path("b.quillet"), Path("out/b.pdf")));
        QVERIFY(QFile::copy(Path("a.quillet"), Path("b.quillet")));
        const QByteArray before = Content("out/b.pdf");
        const TToolResult result = Run("export-pdf b.quillet out/b.pdf --folder out --force");
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors, QStringLiteral("quillet-cli: out/b.pdf: is an input and cannot be "
                                               "overwritten\n"));
        QCOMPARE(Content("out/b.pdf"), before);
    }

    void written_files_are_listed_as_json()
    {
        const auto list = [this](const QString& command) {
            return QJsonDocument::fromJson(Do(command).join(' ').toUtf8()).array();
        };
        const QJsonArray images =
            list("export-images a.quillet --folder out --name {number} --pages 2 --json");
        QCOMPARE(
            images,
            QJsonArray({QJsonObject{
                {"document", "a.quillet"}, {"name", "Two"}, {"page", 2}, {"path", "out/2.png"}}}));
        const QJsonArray reports = list("export-pdf a.quillet b.quillet --folder out --json");
        QCOMPARE(
            reports,
            QJsonArray(
                {QJsonObject{{"document", "a.quillet"}, {"pages", 3}, {"path", "out/a.pdf"}},
                 QJsonObject{{"document", "b.quillet"}, {"pages", 1}, {"path", "out/b.pdf"}}}));
    }

    void fast_images_have_the_same_pixels()
    {
        Do("export-images a.quillet --folder . --name {number}");
        Do("export-images a.quillet --folder out --name {number} --fast");
        for (const QString& name : QStringList{"1.png", "2.png", "3.png"}) {
            QVERIFY(!Image(name).isNull());
            QCOMPARE(Support::Difference(Image("out/" + name), Image(name)), QString());
            QVERIFY(Support::Read_File(Path("out/" + name)) != Content(name));
        }
    }

    void the_number_of_jobs_does_not_change_the_images()
    {
        Do("export-images a.quillet --folder . --name {number} --jobs 1");
        Do("export-images a.quillet --folder out --name {number} --jobs 3");
        for (const QString& name : QStringList{"1.png", "2.png", "3.png"}) {
            QVERIFY(!Image(name).isNull());
            QCOMPARE(Support::Read_File(Path("out/" + name)), Content(name));
        }
    }

    void a_given_text_replaces_that_of_the_footer()
    {
        Do("export-pdf a.quillet --output a.pdf --footer", {"Office of\nM. Adler"});
        for (const QString& text : Texts("a.pdf")) {
            QVERIFY2(text.contains("Office of M. Adler"), qPrintable(text));
            QVERIFY(!text.contains(maker));
        }
        QVERIFY(Texts("a.pdf").last().contains("Page 3\n"));
        Do("export-pdf a.quillet --output b.pdf --footer", {""});
        QVERIFY(!Texts("b.pdf").first().contains(maker));
        QVERIFY(Texts("b.pdf").first().contains("Page 1\n"));
    }

    void a_long_footer_ends_before_the_page_number()
    {
        Do("export-pdf a.quillet --output a.pdf --page-count --footer",
           {QStringLiteral("long text ").repeated(50)});
        const QRegularExpression footer(QString::fromUtf8("long text long .*…\\s+Page 1 of 3\n"));
        QVERIFY2(footer.match(Texts("a.pdf").first()).hasMatch(),
                 qPrintable(Texts("a.pdf").first()));
    }

    void without_a_footer_there_is_neither_text_nor_page_number()
    {
        Do("export-pdf a.quillet --output a.pdf --no-footer");
        QCOMPARE(Texts("a.pdf").size(), 3);
        for (const QString& text : Texts("a.pdf"))
            QCOMPARE(text.simplified(), QStringLiteral("Header"));
    }

    void the_footer_shows_the_number_of_pages_with_those_of_the_list()
    {
        Do("export-pdf a.quillet --output a.pdf --page-count --list");
        const QStringList texts = Texts("a.pdf");
        QCOMPARE(texts.size(), 4);
        QVERIFY(texts.first().contains("Page 1 of 4\n"));
        QVERIFY(texts.last().contains("Page 4 of 4\n"));
    }

    void the_list_has_the_labels_of_the_chosen_pages()
    {
        Write("t.csv", "page,value,Note\n1,1,first\n2,2,second\n3,3,third\n");
        Do("export-pdf a.quillet --output a.pdf --list --findings t.csv --strict --pages 3,1");
        const QString list = Texts("a.pdf").last().simplified();
        QVERIFY2(list.contains("Three 3 third One 1 first"), qPrintable(list));
        QVERIFY(!list.contains("second"));
    }

    void pages_that_are_not_exported_are_not_compared_with_the_table()
    {
        const QString command = "export-pdf a.quillet --output a.pdf --force --list "
                                "--findings t.csv --strict --pages ";
        // Page 1 has no row, and page 3 has no label 9.
        Write("t.csv", "page,value,Note\n2,2,second\n3,3,third\n3,9,x\n");
        QCOMPARE(Do(command + "2,2"), QStringList("a.pdf"));
        QCOMPARE(Run(command + "2,1").errors,
                 QStringLiteral("quillet-cli: t.csv: page 1: label 1 has no row\n"));
        QCOMPARE(Run(command + "2-3").errors,
                 QStringLiteral("quillet-cli: t.csv: line 4: page 3 has no label 9\n"));
        Write("t.csv", "page,value,Note\n2,2,second\n4,1,x\n");
        QCOMPARE(Run(command + "2").errors,
                 QStringLiteral("quillet-cli: t.csv: line 3: there is no page 4\n"));
    }

    void the_title_is_a_property_of_the_report()
    {
        Do("export-pdf a.quillet --output a.pdf --title", {QString::fromUtf8("Prüfung 漏水")});
        QVERIFY(Output_Of("pdfinfo", {Path("a.pdf")})
                    .contains(QRegularExpression(QString::fromUtf8("Title: +Prüfung 漏水\n"))));
    }

    void the_list_has_a_bookmark()
    {
        Do("export-pdf b.quillet --output a.pdf --bookmarks --list");
        const QString json = Output_Of("qpdf", {"--json", "--json-key=outlines", Path("a.pdf")});
        const QJsonArray outlines =
            QJsonDocument::fromJson(json.toUtf8()).object()["outlines"].toArray();
        QCOMPARE(outlines.size(), 2);
        QCOMPARE(outlines[1]["title"].toString(), QStringLiteral("Findings"));
        QCOMPARE(outlines[1]["destpageposfrom1"].toInt(), 2);
    }

    void a_page_without_a_name_has_its_number_as_bookmark()
    {
        Write("a.quillet", Project({"One", ""}));
        Do("export-pdf a.quillet --output a.pdf --bookmarks --pages 2");
        const QString json = Output_Of("qpdf", {"--json", "--json-key=outlines", Path("a.pdf")});
        QVERIFY2(json.contains("\"title\": \"Page 2\""), qPrintable(json));
    }

    void a_halo_surrounds_border_and_text()
    {
        QImage dark(100, 80, QImage::Format_RGB32);
        dark.fill(QColor(20, 20, 20));
        const QByteArray label = Support::Item_Element("1", "8", "", "1", "50,40");
        Write("a.quillet",
              Support::Header(32, "#ff0000", "", "", 1) +
                  Support::Page_Record("p", Support::Png(dark), Support::Item_List(label)));
        Do("export-images a.quillet --folder out --name plain");
        Do("export-images a.quillet --folder out --name halo --halo");
        const QImage plain = Image("out/plain.png");
        const QImage halo = Image("out/halo.png");
        const auto is_light = [](QRgb pixel) { return qBlue(pixel) > 180; };
        int light = 0;
        for (int y = 0; y < dark.height(); ++y) {
            for (int x = 0; x < dark.width(); ++x) {
                QVERIFY(!is_light(plain.pixel(x, y)));
                light += is_light(halo.pixel(x, y)) ? 1 : 0;
                // Nothing changes beyond the label.
                if (qAbs(x - 50) > 18 || qAbs(y - 40) > 18)
                    QCOMPARE(halo.pixel(x, y), dark.pixel(x, y));
            }
        }
        // The square of 31 pixels has a line of one pixel on either side.
        QVERIFY2(light > 8 * 30, qPrintable(QString::number(light)));
        // Beside the square's left line.
        QVERIFY(is_light(halo.pixel(50 - 16 - 2, 40)) || is_light(halo.pixel(50 - 16 + 1, 40)));
    }

    void a_report_shows_the_halo_too()
    {
        Do("export-pdf a.quillet --output plain.pdf");
        Do("export-pdf a.quillet --output halo.pdf --halo");
        for (const QString& name : QStringList{"plain", "halo"})
            Output_Of("pdftoppm", {"-png", "-singlefile", Path(name + ".pdf"), Path(name)});
        QVERIFY(!Image("plain.png").isNull());
        QVERIFY(Support::Difference(Image("halo.png"), Image("plain.png")) != QString());
    }
};

QTEST_MAIN(TestCliExportOptions)
#include "test_cliexportoptions.moc"
