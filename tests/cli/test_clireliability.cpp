// The table of hostile input in docs/reliability.md, from real runs.

#include "support/inputfiles.h"
#include "support/project.h"
#include "support/support.h"
#include "support/tool.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QTest>

#include <cstdio>
#include <unistd.h>

using Support::TToolResult;

namespace {

/// A PNG image without compression, so that its middle is always in the same row.
QByteArray Plain_Png()
{
    constexpr int no_compression = 100;
    QByteArray bytes;
    QBuffer buffer(&bytes);
    Support::Picture(300, 200).save(&buffer, "PNG", no_compression);
    return bytes;
}

QByteArray Project(const QByteArray& image, const QByteArray& position = "30.00,20.00",
                   const QByteArray& border = "1", quint32 label_size = 32)
{
    const QByteArray label = Support::Item_Element("5", "7", "", border, position);
    return Support::Header(label_size, "#0a141e", "", "", 1) +
           Support::Page_Record("Page 1", image, Support::Item_List(label));
}

QByteArray Two_Labels()
{
    return Support::Header(32, "#0a141e", "", "", 1) +
           Support::Page_Record(
               "a", QByteArray(),
               Support::Item_List(Support::Item_Element("1", "1", "", "1", "1.00,1.00") +
                                  Support::Item_Element("2", "2", "", "1", "2.00,2.00")));
}

/// The item list of an old document with two labels of the same number.
QByteArray Old_List()
{
    const QByteArray label =
        "<Item><ID>1</ID><Border_Type>1</Border_Type><Position>3,4</Position></Item>";
    return "<Quillet_Data File_Version=\"1\"><Item_Size><Width>20</Width></Item_Size>"
           "<Colors><Foreground>red</Foreground></Colors>" +
           label + label + "</Quillet_Data>";
}

} // namespace

/// Tests that docs/reliability.md says what hostile input leads to. If QUILLET_HOSTILE_TABLE is
/// set, appends the rows of the table to that file.
class TestCliReliability : public Support::TToolTest
{
    Q_OBJECT

    /// The names and contents of all files except "out".
    QList<QPair<QString, QByteArray>> Inputs() const
    {
        QList<QPair<QString, QByteArray>> inputs;
        for (const QString& name : QDir(d_folder->path()).entryList(QDir::Files, QDir::Name)) {
            if (name != "out")
                inputs += {name, Content(name)};
        }
        return inputs;
    }

    /// The errors of a run or, without any, its last line.
    static QString Message(const TToolResult& result)
    {
        if (result.errors.isEmpty())
            return result.output.trimmed().section('\n', -1);
        return result.errors.section('\n', 0, 0)
            .remove("quillet-cli: ")
            .replace(QChar(0xfffd), "?");
    }

    static QStringList Documented_Lines()
    {
        const QByteArray page = Support::Read_File(QUILLET_TEST_DATA "/../../docs/reliability.md");
        return QString::fromUtf8(page).split('\n');
    }

    static void Add_To_Table(const QString& line)
    {
        QFile table(qEnvironmentVariable("QUILLET_HOSTILE_TABLE"));
        if (!table.fileName().isEmpty() && table.open(QIODevice::Append))
            table.write(line.toUtf8() + '\n');
    }

private slots:
    void init()
    {
        TToolTest::init();
        const QByteArray picture = Plain_Png();
        const QByteArray cut = picture.left(picture.size() / 2);
        Write("page.png", picture);
        Write("cut.png", cut);
        Write("a.quillet", Project(picture));
        Write("b.quillet", Project(picture));
        QCOMPARE(link(QFile::encodeName(Path("a.quillet")).constData(),
                      QFile::encodeName(Path("link.csv")).constData()),
                 0);
        Write("damaged.quillet", Project(cut));
        Write("stray.quillet", Project(picture, "-500.00,20.00"));
        Write("two.quillet", Two_Labels());
        Write("-photo.png", picture);
        Write("-oa.png", picture);
        Write("jpeg.tif", Support::Read_File(QUILLET_TEST_DATA "/jpeg_data_changed.tif"));
        const QImage page = Support::Picture(60, 40);
        Write("pages.tif", Support::Tiff({page, page}).left(Support::Tiff({page}).size() + 20));
        Write("large.quillet", Project(picture, "30.00,20.00", "1", 500));
        Write("odd.quillet", Project(picture, "30.00,20.00", "3"));
        Write("more.quillet", Project(picture) + "more bytes");
        Write("short.quillet", Project(picture).chopped(100));
        Write("old.qli", picture);
        Write("old.qld", "<Quillet_Data File_Version=\"3\"/>");
        Write("lost.qli", picture);
        Write("lost.qld", Old_List());
        Write("control.csv", "page,value,x,y,text\r\n1,8,10,20,\x07\r\n");
        Write("same.csv", "page,value,border,x,y,id\r\n1,7,square,30,20,5\r\n");
        Write("far.csv", "page,value,x,y\r\n1,8,1000000,20\r\n");
        QDir(d_folder->path()).mkdir("names");
        Write("names/a.png", picture);
        QCOMPARE(rename(QFile::encodeName(Path("names/a.png")).constData(),
                        (QFile::encodeName(Path("names/")) + "\xff.png").constData()),
                 0);
        Write(QString::fromUtf8("Ω\x01.png"), picture);
    }

    void cleanup()
    {
        // Qt does not find this file to remove it.
        QCOMPARE(std::remove((QFile::encodeName(Path("names/")) + "\xff.png").constData()), 0);
    }

    void hostile_input_leads_to_the_documented_result_data()
    {
        QTest::addColumn<QString>("arguments");
        const auto row = [](const char* tried, const QString& arguments) {
            QTest::newRow(tried) << arguments;
        };
        row("overwrite a picture whose suffix is left out",
            "create page --output page.png --force");
        row("overwrite the document by its hard link",
            "export-items a.quillet --csv link.csv --force");
        row("overwrite the image of an old document",
            "export-pdf old.qld --output old.qli --force");
        row("write a project under an old suffix",
            "reindex a.quillet --first 1 --over-page 1 --output new.qld");
        row("import half a picture", "create cut.png --output out");
        row("import a TIFF with damaged JPEG data", "create jpeg.tif --output out");
        row("import a TIFF that ends in its second page", "create pages.tif --output out");
        row("export half a picture", "export-pdf damaged.quillet --output out");
        row("draw a thumbnail of half a picture", "thumbnail damaged.quillet --output out");
        row("check half a picture", "check damaged.quillet");
        row("recover half a picture", "recover damaged.quillet --output out");
        row("recover a document in its place",
            "recover damaged.quillet --output damaged.quillet --force");
        row("a label outside its page", "check stray.quillet");
        row("import a label far outside its page",
            "import-items a.quillet --csv far.csv --output out");
        row("import a control character", "import-items a.quillet --csv control.csv --output out");
        row("import the same table again", "import-items a.quillet --csv same.csv --dry-run");
        row("two documents with the same names of images",
            "export-images a.quillet b.quillet --folder . --name {page} --force");
        row("a file name that is not UTF-8", "create names --output out");
        row("a page name that no project can store",
            QString::fromUtf8("create Ω\x01.png --names-from-files --output out"));
        row("numbers that overflow",
            "reindex two.quillet --first 2147483647 --over-page 1 --output out");
        row("a file name like an option", "create -photo.png --output out");
        row("a file name like two options", "create -oa.png page.png --output out");
        row("an existing file without --force", "thumbnail a.quillet --output page.png");
        row("bytes after the last page", "info more.quillet");
        row("a label size out of range", "info large.quillet");
        row("an unknown border", "info odd.quillet");
        row("labels with the same number in an old document", "check lost.qld");
        row("the end of a document is missing", "info short.quillet");
    }
    void hostile_input_leads_to_the_documented_result()
    {
        QFETCH(const QString, arguments);
        const auto before = Inputs();
        const TToolResult result = Run(arguments.split(' '));
        QCOMPARE(Inputs(), before);
        QVERIFY(result.status >= 0);
        QCOMPARE(QFile::exists(Path("out")), result.status == 0 && arguments.endsWith(" out"));
        const QString line = QString("| %1 | %2 | %3 |")
                                 .arg(QTest::currentDataTag())
                                 .arg(result.status)
                                 .arg(Message(result));
        Add_To_Table(line);
        QVERIFY2(Documented_Lines().contains(line), qPrintable(line));
    }
};

QTEST_MAIN(TestCliReliability)
#include "test_clireliability.moc"
