#include "support/project.h"
#include "support/support.h"
#include "support/tool.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QRegularExpression>
#include <QTest>
#include <QVariantList>

#include <sys/stat.h>

using namespace Support;

namespace {

QByteArray Picture(int seed = 0)
{
    return Png(Support::Picture(60, 40, seed));
}

QByteArray One_Label(const QByteArray& value)
{
    return Item_List(Item_Element("5", value, "", "1", "10.00,20.00"));
}

QByteArray Two_Pages()
{
    return Header(48, "#0a141e", "one", "two", 2) + Page_Record("a", Picture(), One_Label("7")) +
           Page_Record("b", QByteArray(), Item_List());
}

} // namespace

/// Tests create, info, check, recover and reindex.
class TestCliDocuments : public TToolTest
{
    Q_OBJECT

    /// Creates a project from a folder with images of these names, and returns its page names.
    QStringList Page_Names_Of(const QStringList& file_names) const
    {
        QDir(d_folder->path()).mkdir("images");
        for (const QString& name : file_names)
            Write("images/" + name, Picture());
        const TToolResult result =
            Run({"create", "images", "--names-from-files", "--output", "out.quillet"});
        return result.status == 0 ? Page_Names("out.quillet") : QStringList{result.errors};
    }

    QJsonObject Information(const QString& name) const
    {
        return QJsonDocument::fromJson(Run({"info", name, "--json"}).output.toUtf8()).object();
    }

    QStringList Page_Names(const QString& name) const
    {
        QStringList names;
        const QVariantList pages = Information(name).value("pages").toVariant().toList();
        for (const QVariant& page : pages)
            names += page.toMap().value("name").toString();
        return names;
    }

    void Write_Others() const
    {
        QDir(d_folder->path()).mkpath("images/below.png");
        Write("images/notes.txt", "notes");
        Write("images/.hidden.png", Picture());
        Write("images/no-suffix", Picture());
        QCOMPARE(mkfifo(QFile::encodeName(Path("images/pipe.png")).constData(), S_IRUSR), 0);
    }

private slots:
    void images_become_pages_in_the_given_order()
    {
        Write("z.png", Picture(1));
        Write("a.png", Picture(2));
        const TToolResult result = Run({"create", "z.png", "a.png", "--output", "out.quillet"});
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.output, QString());
        QCOMPARE(result.status, 0);
        const QByteArray expected = Header(32, "#f79741", "", "", 2) +
                                    Page_Record("Page 1", Picture(1), Item_List()) +
                                    Page_Record("Page 2", Picture(2), Item_List());
        QCOMPARE(Byte_Difference(Content("out.quillet"), expected), QString());
    }

    void images_of_a_folder_are_in_natural_order()
    {
        QCOMPARE(Page_Names_Of({"page 10.png", "page 2.png", "Page 1.png", "page 9.PNG"}),
                 QStringList({"Page 1", "page 2", "page 9", "page 10"}));
    }

    void other_and_hidden_files_of_a_folder_are_ignored()
    {
        Write_Others();
        QCOMPARE(Page_Names_Of({"b.jpeg.png"}), QStringList({"b.jpeg"}));
    }

    void folders_and_images_can_be_mixed()
    {
        QVERIFY(QDir(d_folder->path()).mkdir("images"));
        Write("images/2.png", Picture());
        Write("images/1.png", Picture());
        Write("z.png", Picture());
        Write("a.png", Picture());
        QCOMPARE(
            Run({"create", "z.png", "images", "a.png", "--names-from-files", "--output", "out"})
                .status,
            0);
        QCOMPARE(Page_Names("out"), QStringList({"z", "1", "2", "a"}));
    }

    void an_unreadable_image_is_reported_and_nothing_is_written_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("defect");
        const QString formats =
            "bmp, gif, jpeg, jpg, pbm, pdf, pgm, png, ppm, tif, tiff, webp, xbm, xpm";
        QTest::newRow("text") << "notes.txt"
                              << "is not a readable image; accepted formats: " + formats;
        QTest::newRow("missing") << "missing.png"
                                 << "cannot be read: No such file or directory";
        QTest::newRow("folder without images")
            << "empty"
            << "contains no images or PDFs; accepted formats: " + formats;
        QTest::newRow("damaged, in a folder")
            << "damaged"
            << "damaged/a.png: is not a readable image; accepted formats: " + formats;
        QTest::newRow("missing, in a folder")
            << "linked"
            << "linked/b.png: cannot be read: No such file or directory";
    }
    void an_unreadable_image_is_reported_and_nothing_is_written()
    {
        QFETCH(const QString, name);
        QFETCH(const QString, defect);
        Write("good.png", Picture());
        Write("notes.txt", "notes");
        QVERIFY(QDir(d_folder->path()).mkdir("empty"));
        QVERIFY(QDir(d_folder->path()).mkdir("damaged"));
        QVERIFY(QDir(d_folder->path()).mkdir("linked"));
        QVERIFY(QFile::link("nowhere.png", Path("linked/b.png")));
        Write("damaged/a.png", Picture().left(20));
        const TToolResult result = Run({"create", "good.png", name, "--output", "out"});
        QCOMPARE(result.status, 1);
        const QString complaint =
            "quillet-cli: " + (defect.contains(".png: ") ? QString() : name + ": ") + defect + '\n';
        // libpng may print its own message first.
        QVERIFY2(result.errors.endsWith(complaint), qPrintable(result.errors));
        QVERIFY(!QFile::exists(Path("out")));
    }

    void info_prints_text()
    {
        Write("a.quillet", Two_Pages());
        const TToolResult result = Run({"info", "a.quillet"});
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.status, 0);
        QCOMPARE(result.output, QStringLiteral("File: a.quillet\n"
                                               "Label size: 48\n"
                                               "Label color: #0a141e\n"
                                               "Header 1: one\n"
                                               "Header 2: two\n"
                                               "Pages: 2\n"
                                               "1: 60 x 40, labels: 1, a\n"
                                               "2: no image, labels: 0, b\n"));
    }

    void info_prints_json()
    {
        Write("a.quillet", Two_Pages());
        const QJsonObject expected{
            {"file", "a.quillet"},
            {"label_size", 48},
            {"label_color", "#0a141e"},
            {"header_1", "one"},
            {"header_2", "two"},
            {"page_count", 2},
            {"label_count", 1},
            {"pages",
             QJsonArray{
                 QJsonObject{
                     {"number", 1}, {"name", "a"}, {"width", 60}, {"height", 40}, {"labels", 1}},
                 QJsonObject{
                     {"number", 2}, {"name", "b"}, {"width", 0}, {"height", 0}, {"labels", 0}}}}};
        QCOMPARE(Information("a.quillet"), expected);
    }

    void info_prints_texts_with_placeholders_unchanged()
    {
        Write("%1.quillet",
              Header(48, "#0a141e", "%2", "", 1) + Page_Record("%1 %3", QByteArray(), Item_List()));
        const QString output = Run({"info", "%1.quillet"}).output;
        QVERIFY(output.contains("File: %1.quillet\n"));
        QVERIFY(output.contains("Header 1: %2\n"));
        QVERIFY(output.endsWith("1: no image, labels: 0, %1 %3\n"));
    }

    void a_document_without_pages_is_valid()
    {
        Write("a.quillet", Empty_Project());
        QVERIFY(Run({"info", "a.quillet"}).output.endsWith("Pages: 0\n"));
        QCOMPARE(Run({"check", "a.quillet"}).status, 0);
    }

    void check_accepts_sound_files()
    {
        Write("a.quillet", Two_Pages());
        Write("b.quillet", Empty_Project());
        const TToolResult result = Run({"check", "a.quillet", "b.quillet"});
        QCOMPARE(result.status, 0);
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.output, QStringLiteral("a.quillet: no defects\nb.quillet: no defects\n"));
    }

    void check_reports_each_defect_with_its_offset()
    {
        Write("a.quillet", Two_Pages());
        Write("b.quillet", Two_Pages().left(10));
        const TToolResult result = Run({"check", "b.quillet", "a.quillet", "missing"});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.output, QStringLiteral("a.quillet: no defects\n"));
        const QStringList lines = result.errors.split('\n', Qt::SkipEmptyParts);
        QVERIFY(lines.size() >= 2);
        const QRegularExpression pattern("^quillet-cli: b.quillet: byte \\d+: .");
        for (const QString& line : lines.mid(0, lines.size() - 1))
            QVERIFY2(pattern.match(line).hasMatch(), qPrintable(line));
        QCOMPARE(lines.last(),
                 QStringLiteral("quillet-cli: missing: cannot be read: No such file or directory"));
    }

    void check_fails_if_only_the_first_file_is_damaged()
    {
        Write("a.quillet", Two_Pages());
        Write("b.quillet", Two_Pages().left(10));
        const TToolResult result = Run({"check", "b.quillet", "a.quillet"});
        QCOMPARE(result.status, 1);
        QVERIFY2(result.errors.startsWith("quillet-cli: b.quillet: "), qPrintable(result.errors));
        QCOMPARE(result.output, QStringLiteral("a.quillet: no defects\n"));
    }

    void only_check_reports_an_image_that_cannot_be_decoded()
    {
        Write("a.quillet",
              Header(48, "#0a141e", "", "", 1) + Page_Record("a", Picture().left(30), Item_List()));
        QCOMPARE(Run({"check", "a.quillet"}).status, 1);
        // The window opens such a file, so other commands do, too.
        QCOMPARE(Run({"info", "a.quillet"}).status, 0);
    }

    void every_broken_file_is_refused_without_a_crash_data()
    {
        QTest::addColumn<QString>("path");
        const QDir folder(QStringLiteral(QUILLET_TEST_DATA "/broken"));
        for (const QString& name : folder.entryList({"*.quillet", "*.qld"}, QDir::Files))
            QTest::newRow(qPrintable(name)) << folder.filePath(name);
    }
    void every_broken_file_is_refused_without_a_crash()
    {
        QFETCH(const QString, path);
        const TToolResult check = Run({"check", path});
        QVERIFY2(check.status == 0 || check.status == 1, qPrintable(check.errors));
        QCOMPARE(check.status == 0, check.errors.isEmpty());
        const TToolResult info = Run({"info", path});
        QVERIFY2(info.status == 0 || info.status == 1, qPrintable(info.errors));
        QVERIFY(check.status == 1 || info.status == 0);
    }

    void check_accepts_legacy_documents()
    {
        Write("a.qli", Picture());
        Write("a.qld", "<Quillet_Data");
        const TToolResult result = Run({"check", "a.qld"});
        QCOMPARE(result.status, 1);
        QVERIFY2(result.errors.startsWith("quillet-cli: a.qld: "), qPrintable(result.errors));
        Write("a.qld", "<Quillet_Data File_Version=\"3\"/>");
        QCOMPARE(Run({"check", "a.qld"}).status, 0);
    }

    void xml_errors_name_line_and_column_data()
    {
        QTest::addColumn<QByteArray>("list");
        QTest::addColumn<QString>("defect");
        QTest::newRow("not well-formed")
            << QByteArray("<Quillet_Data File_Version=\"2\">\n  <Item></Iten>\n</Quillet_Data>")
            << "line 2, column 15: tag mismatch";
        QTest::newRow("element missing")
            << QByteArray("<Quillet_Data File_Version=\"2\">\n <Item_Size/>\n</Quillet_Data>")
            << "line 2, column 12: Node 'Width' is missing from node 'Item_Size' and not optional.";
    }
    void xml_errors_name_line_and_column()
    {
        QFETCH(const QByteArray, list);
        QFETCH(const QString, defect);
        Write("a.qli", Picture());
        Write("a.qld", list);
        for (const char* const command : {"check", "info"})
            QCOMPARE(Run({command, "a.qld"}).errors, "quillet-cli: a.qld: " + defect + '\n');
    }

    void recover_saves_whole_pages_and_reports_the_rest()
    {
        const QByteArray sound = Header(48, "#0a141e", "one", "two", 2) +
                                 Page_Record("a", Picture(), One_Label("7")) +
                                 Page_Record("b", Picture(1), One_Label("8"));
        Write("a.quillet", sound.left(sound.size() - 300));
        const TToolResult result = Run({"recover", "a.quillet", "--output", "out"});
        QVERIFY2(!result.errors.contains("quillet-cli"), qPrintable(result.errors));
        QCOMPARE(result.status, 0);
        QVERIFY2(QRegularExpression("^a\\.quillet: damaged, byte \\d+: .")
                     .match(result.output)
                     .hasMatch(),
                 qPrintable(result.output));
        QVERIFY2(
            result.output.contains("\nout: pages: 2, undamaged pages: 1, labels: 1, defects: "),
            qPrintable(result.output));
        QCOMPARE(Run({"check", "out"}).status, 0);
        const QJsonObject information = Information("out");
        QCOMPARE(information.value("label_size").toInt(), 48);
        QCOMPARE(information.value("header_2").toString(), QStringLiteral("two"));
        QCOMPARE(information.value("label_count").toInt(), 1);
        QCOMPARE(Page_Names("out").first(), QStringLiteral("a"));
    }

    void recover_refuses_a_legacy_document()
    {
        Write("a.qli", Picture());
        Write("a.qld", "<Quillet_Data File_Version=\"2\"><Item><ID>1</ID></Item></Quillet_Data>");
        const TToolResult result = Run({"recover", "a.qld", "--output", "out"});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors,
                 QStringLiteral("quillet-cli: a.qld: is a file of an earlier generation; "
                                "only projects can be recovered\n"));
        QVERIFY(!QFile::exists(Path("out")));
    }

    void recover_refuses_a_file_without_pages_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("text") << QByteArray("This is a letter.");
        QTest::newRow("header alone") << Two_Pages().left(20);
    }
    void recover_refuses_a_file_without_pages()
    {
        QFETCH(const QByteArray, content);
        Write("a.quillet", content);
        const TToolResult result = Run({"recover", "a.quillet", "--output", "out"});
        QCOMPARE(result.status, 1);
        QVERIFY2(result.errors.startsWith("quillet-cli: a.quillet: byte "),
                 qPrintable(result.errors));
        QVERIFY(!QFile::exists(Path("out")));
    }

    void names_beyond_latin_1_survive_every_command()
    {
        const QString name = QString::fromUtf8("Ω = \xf0\x9f\x98\x80");
        QCOMPARE(Page_Names_Of({name + ".png"}), QStringList{name});
        QCOMPARE(Run({"check", "out.quillet"}).status, 0);
        QCOMPARE(Run({"reindex", "out.quillet", "--first", "1", "--over-page", "1", "--output",
                      "reindexed.quillet"})
                     .status,
                 0);
        QCOMPARE(Page_Names("reindexed.quillet"), QStringList{name});
        Write("damaged.quillet", Content("out.quillet") + "x");
        QCOMPARE(Run({"recover", "damaged.quillet", "--output", "recovered.quillet"}).status, 0);
        QCOMPARE(Page_Names("recovered.quillet"), QStringList{name});
        QDir(d_folder->path()).mkdir("exported");
        QCOMPARE(Run({"export-images", "out.quillet", "--folder", "exported"}).errors, QString());
        const QStringList exported = QDir(Path("exported")).entryList(QDir::Files);
        QCOMPARE(exported.size(), 1);
        QVERIFY2(exported.first().startsWith(name + "-"), qPrintable(exported.first()));
    }

    void header_lines_beyond_latin_1_survive_renumbering()
    {
        const QByteArray list = Item_List({}, " Header_2=\"\xce\xa9\"");
        const QByteArray document =
            Header(32, "#f79741", "one", "?", 1) + Page_Record("a", QByteArray(), list);
        Write("a.quillet", document);
        QCOMPARE(Information("a.quillet").value("header_2"), QJsonValue(QString::fromUtf8("Ω")));
        QCOMPARE(Run({"reindex", "a.quillet", "--first", "1", "--over-page", "1", "--output",
                      "out.quillet"})
                     .errors,
                 QString());
        QCOMPARE(Byte_Difference(Content("out.quillet"), document), QString());
    }

    void line_breaks_and_blanks_survive_renumbering()
    {
        const QByteArray text = "two&#10;&#10;lines  ";
        Write("a.quillet",
              Header(32, "#f79741", "", "", 1) +
                  Page_Record("a", QByteArray(),
                              Item_List(Item_Element("5", "7", text, "1", "1.00,2.00"))));
        QCOMPARE(Run({"reindex", "a.quillet", "--first", "1", "--over-page", "1", "--output",
                      "out.quillet"})
                     .errors,
                 QString());
        QVERIFY(Content("out.quillet").contains("<Text>" + text + "</Text>"));
    }

    void a_legacy_text_keeps_its_line_breaks()
    {
        Write("a.qli", Picture());
        Write("a.qld", "<Quillet_Data File_Version=\"2\" Page_Name=\"\xce\xa9\">"
                       "<Item_Size><Width>32</Width></Item_Size>"
                       "<Colors><Foreground>#ff0000</Foreground></Colors>"
                       "<Item><ID>1</ID><ID_Text>two\n  lines</ID_Text>"
                       "<Border_Type>1</Border_Type><Position>1,2</Position></Item>"
                       "</Quillet_Data>");
        QCOMPARE(
            Run({"reindex", "a.qld", "--first", "1", "--over-page", "1", "--output", "out.quillet"})
                .errors,
            QString());
        QVERIFY(Content("out.quillet").contains("<Text>two&#10;  lines</Text>"));
        QCOMPARE(Page_Names("out.quillet"), QStringList{"Page 1"});
    }

    void a_document_can_be_renumbered_in_place()
    {
        Write("a.quillet", Two_Pages());
        QCOMPARE(Run({"reindex", "a.quillet", "--first", "-4", "--over-page", "1", "--output",
                      "a.quillet", "--force"})
                     .status,
                 0);
        const QByteArray expected = Header(48, "#0a141e", "one", "two", 2) +
                                    Page_Record("a", Picture(), One_Label("-4")) +
                                    Page_Record("b", QByteArray(), Item_List());
        QCOMPARE(Byte_Difference(Content("a.quillet"), expected), QString());
    }
};

QTEST_MAIN(TestCliDocuments)
#include "test_clidocuments.moc"
