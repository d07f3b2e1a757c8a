#include "support/modal.h"
#include "support/project.h"
#include "support/support.h"
#include "support/tool.h"
#include "support/widgets.h"

#include "src/pagewidget.h"
#include "src/reportheaderdialog.h"
#include "src/settingswidget.h"

#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QProcess>
#include <QRegularExpression>
#include <QSettings>
#include <QTest>

using Support::Label;
using Support::TToolResult;

namespace {

const QSize page_size(240, 160);

QImage Picture(int seed)
{
    return Support::Picture(page_size.width(), page_size.height(), seed);
}

/// A label of each border type, with values and texts. Two of them extend beyond the image's edge.
std::vector<TDataItem> Labels()
{
    return {Label(11, 1, "", 0, QPointF(20, 20)), Label(12, 22, "", 1, QPointF(60.25, 40.5)),
            Label(13, 333, "", 2, QPointF(120, 80)), Label(14, 4, "A%1", 4, QPointF(-7, 100)),
            Label(15, -5, "Pumpe", 8, QPointF(125, 175))};
}

/// Renders a report's pages with poppler.
QList<QImage> Report_Pages(const QString& file, const QString& folder)
{
    const QString prefix = QDir(folder).filePath("rendered");
    if (QProcess::execute("pdftoppm", {"-r", "30", "-png", file, prefix}) != 0)
        return {};
    QList<QImage> pages;
    const QStringList names = QDir(folder).entryList({"rendered*"}, QDir::Files, QDir::Name);
    for (const QString& name : names) {
        pages += QImage(QDir(folder).filePath(name));
        QFile::remove(QDir(folder).filePath(name));
    }
    return pages;
}

} // namespace

/// The tool and the window write the same files. Each test has a document of four pages that was
/// saved by a window. One of the pages has no image.
class TestCliEquality : public Support::TToolTest
{
    Q_OBJECT

    std::unique_ptr<TOpenWindow> d_window;

    /// A window at its first start.
    static std::unique_ptr<TOpenWindow> New_Window()
    {
        QDir(QDir::home().filePath(".quillet")).removeRecursively();
        auto window = std::make_unique<TOpenWindow>();
        window->show();
        return window;
    }

    /// Runs the tool; fails when the tool fails.
    void Run(const QStringList& arguments) const
    {
        const TToolResult result = TToolTest::Run(arguments);
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.status, 0);
    }

    /// Opens a document in another window, as the user does.
    void Open(const QString& name)
    {
        d_window = New_Window();
        d_window->Open_File(Path(name));
    }

    void Save(const QString& name) { QVERIFY(d_window->Save_Data(Path(name))); }

    void Compare_Saved(const QString& by_tool, const QString& by_window) const
    {
        QVERIFY(!Content(by_window).isEmpty());
        QCOMPARE(Support::Byte_Difference(Content(by_tool), Content(by_window)), QString());
    }

    void Write_Legacy(int version) const
    {
        Support::Write_File(Path("old.qli"), Support::Png(Picture(3)));
        Support::Write_File(
            Path("old.qld"),
            "<Quillet_Data File_Version=\"" + QByteArray::number(version) +
                "\"><Item_Size><Width>200</Width></Item_Size><Colors><Foreground>blue</Foreground>"
                "</Colors><Item><ID>7</ID><ID_Text>Pump</ID_Text><Border_Type>3</Border_Type>"
                "<Position>50.5,60</Position></Item></Quillet_Data>");
    }

    /// Compares the images that the window and the tool export from the same document.
    void Compare_Images(const QString& document)
    {
        QVERIFY(QDir(d_folder->path()).mkdir("window"));
        QVERIFY(QDir(d_folder->path()).mkdir("tool"));
        QVERIFY(d_window->Export_Images(Path("window"), d_window->d_page_widget->Page_Ids()));
        Run({"export-images", document, "--folder", "tool"});
        // File names contain the time.
        const QRegularExpression stamp("-\\d{14}(\\d+)\\.png$");
        QStringList by_window = Support::Entries(Path("window"));
        QStringList by_tool = Support::Entries(Path("tool"));
        QCOMPARE(by_tool.size(), d_window->d_data.Page_Count());
        for (int index = 0; index < by_tool.size(); ++index) {
            const QByteArray picture = Content("window/" + by_window.at(index));
            QCOMPARE(Support::Difference(QImage::fromData(Content("tool/" + by_tool.at(index))),
                                         QImage::fromData(picture)),
                     QString());
            QCOMPARE(Content("tool/" + by_tool.at(index)), picture);
        }
        by_window.replaceInStrings(stamp, " \\1");
        by_tool.replaceInStrings(stamp, " \\1");
        QCOMPARE(by_tool, by_window);
    }

    /// Compares the pages of the reports by the window and the tool.
    void Compare_Reports() const
    {
        const QList<QImage> by_window = Report_Pages(Path("window.pdf"), d_folder->path());
        const QList<QImage> by_tool = Report_Pages(Path("tool.pdf"), d_folder->path());
        QCOMPARE(by_window.size(), 4);
        QCOMPARE(by_tool.size(), 4);
        for (int page = 0; page < by_tool.size(); ++page)
            QCOMPARE(Support::Difference(by_tool.at(page), by_window.at(page)), QString());
    }

private slots:
    void init()
    {
        TToolTest::init();
        d_window = New_Window();
        Support::Add_Pages(d_window.get(), {{"Front", Picture(0), Labels()},
                                            {"a/b:c", QImage(), {}},
                                            {"", Picture(1), {}},
                                            {QString::fromUtf8("Größe"), Picture(2), Labels()}});
        d_window->d_settings_widget->Set_Label_Size(40);
        d_window->Set_Label_Color("#0a3cc8");
        d_window->Header_Dialog()->Set_Header1_Text("First line");
        d_window->d_header_dialog->Set_Header2_Text(QString::fromUtf8("Zweite Zeile ä"));
        Save("document.quillet");
        Open("document.quillet");
    }

    void imported_pages_are_saved_alike_data()
    {
        QTest::addColumn<bool>("names_from_files");
        QTest::newRow("named by number") << false;
        QTest::newRow("named after the files") << true;
    }
    void imported_pages_are_saved_alike()
    {
        QFETCH(const bool, names_from_files);
        QVERIFY(QDir(d_folder->path()).mkdir("images"));
        // In natural order, in which the tool adds the pages.
        const QStringList names{"page 1.bmp", "page 2.png", "page 10.ppm", "page 11.jpg",
                                "Seite.xpm"};
        d_window = New_Window();
        int seed = 0;
        for (const QString& name : names) {
            QVERIFY(Picture(++seed).save(Path("images/" + name)));
            d_window->Load_Image(Path("images/" + name));
            if (names_from_files)
                d_window->d_page_widget->Set_Page_Name(seed, name.section('.', 0, 0));
        }
        Save("window.quillet");
        QStringList arguments{"create", "images", "--output", "tool.quillet"};
        if (names_from_files)
            arguments += "--names-from-files";
        Run(arguments);
        Compare_Saved("tool.quillet", "window.quillet");
    }

    void an_unchanged_document_is_saved_unchanged()
    {
        Save("window.quillet");
        Compare_Saved("window.quillet", "document.quillet");
        Support::Write_File(Path("empty.csv"), "page,value,text,border,x,y\r\n");
        Run({"import-items", "document.quillet", "--csv", "empty.csv", "--output", "tool.quillet"});
        Compare_Saved("tool.quillet", "document.quillet");
        Run({"recover", "document.quillet", "--output", "recovered.quillet"});
        Compare_Saved("recovered.quillet", "document.quillet");
    }

    void a_colour_with_a_name_is_saved_alike()
    {
        const QByteArray bytes =
            Support::Header(40, "blue", "", "", 1) +
            Support::Page_Record("a", Support::Png(Picture(0)), Support::Item_List());
        Support::Write_File(Path("odd.quillet"), bytes);
        Open("odd.quillet");
        Save("window.quillet");
        Run({"reindex", "odd.quillet", "--first", "1", "--over-page", "1", "--output",
             "tool.quillet"});
        Compare_Saved("tool.quillet", "window.quillet");
    }

    void labels_are_renumbered_alike_data()
    {
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("multiple");
        QTest::addColumn<QString>("entry");
        QTest::newRow("1") << "1"
                           << "1"
                           << "Next 1X";
        QTest::newRow("10") << "-3"
                            << "10"
                            << "Next 10X";
        QTest::newRow("100") << "100"
                             << "100"
                             << "Next 100X";
        QTest::newRow("1000") << "2147479000"
                              << "1000"
                              << "Next 1000X";
    }
    void labels_are_renumbered_alike()
    {
        QFETCH(const QString, first);
        QFETCH(const QString, multiple);
        QFETCH(const QString, entry);
        const auto fill_in = [&](QWidget* dialog) {
            Support::Only<QLineEdit>(*dialog)->setText(first);
            Support::Only<QComboBox>(*dialog)->setCurrentText(entry);
        };
        QCOMPARE(Support::Run_Answering([this] { d_window->Edit_Reindex(); },
                                        {Support::Click("Apply", fill_in)}),
                 QString());
        Save("window.quillet");
        Run({"reindex", "document.quillet", "--first", first, "--over-page", multiple, "--output",
             "tool.quillet"});
        Compare_Saved("tool.quillet", "window.quillet");
        QVERIFY(Content("window.quillet") != Content("document.quillet"));
    }

    void pages_are_exported_alike() { Compare_Images("document.quillet"); }

    void labels_of_any_look_are_exported_alike_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<QByteArray>("color");
        QTest::newRow("smallest") << 16 << QByteArray("#000000");
        QTest::newRow("odd") << 33 << QByteArray("#ffff00");
        QTest::newRow("largest") << 128 << QByteArray("#ffffff");
    }
    void labels_of_any_look_are_exported_alike()
    {
        QFETCH(const int, size);
        QFETCH(const QByteArray, color);
        // This test opens no second window, since Qt draws large letters a little differently in
        // it. It replaces the magic number, the label size, and the colour with its length.
        constexpr int look_size = 19;
        const auto look = [](int label_size, const QByteArray& name) {
            return Support::Header(static_cast<quint32>(label_size), name, "", "", 0)
                .left(look_size);
        };
        const QByteArray before = look(40, "#0a3cc8");
        QByteArray document = Content("document.quillet");
        QVERIFY(document.startsWith(before));
        Support::Write_File(Path("look.quillet"),
                            document.replace(0, before.size(), look(size, color)));
        Open("look.quillet");
        Compare_Images("look.quillet");
    }

    void pages_in_another_order_are_exported_alike()
    {
        // Puts the page without an image first and one with an image last.
        QListWidget* const list = Support::Only<QListWidget>(*d_window->d_page_widget);
        list->insertItem(0, list->takeItem(1));
        list->insertItem(1, list->takeItem(3));
        Save("order.quillet");
        Open("order.quillet");
        Compare_Images("order.quillet");
    }

    void the_tool_ignores_the_settings_of_the_window()
    {
        const QStringList arguments{"export-pdf", "document.quillet", "--output"};
        Run(arguments + QStringList{"plain.pdf"});
        d_window->d_settings_widget->Set_Label_Size(77);
        d_window->Set_Label_Color("#ff0000");
        d_window->d_settings_widget->Set_PDF_Orientation(1);
        d_window->d_settings_widget->Set_PDF_Resolution(4);
        d_window->Write_Settings();
        d_window->d_settings->sync();
        const QString settings = QDir::home().filePath(".quillet/Settings.ini");
        const QByteArray before = Support::Read_File(settings);
        QVERIFY(before.contains("77"));
        const TToolResult result =
            Support::Run_Tool(arguments + QStringList{"settled.pdf"},
                              {QDir::homePath(), d_folder->path(), QString(), QString()});
        QCOMPARE(result.errors, QString());
        QCOMPARE(Support::Byte_Difference(Support::Timeless_Pdf(Path("settled.pdf")),
                                          Support::Timeless_Pdf(Path("plain.pdf"))),
                 QString());
        QCOMPARE(Support::Read_File(settings), before);
    }

    void pages_of_a_legacy_document_are_exported_alike_data()
    {
        QTest::addColumn<int>("version");
        QTest::newRow("version 1") << 1;
        QTest::newRow("version 2") << 2;
    }
    void pages_of_a_legacy_document_are_exported_alike()
    {
        QFETCH(const int, version);
        Write_Legacy(version);
        Open("old.qld");
        Compare_Images("old.qld");
        Save("window.quillet");
        Run({"reindex", "old.qld", "--first", "7", "--over-page", "1", "--output", "tool.quillet"});
        Compare_Saved("tool.quillet", "window.quillet");
    }

    void reports_are_alike_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<int>("orientation");
        QTest::addColumn<int>("resolution");
        QTest::newRow("as at the first start") << QStringList() << 0 << 2;
        QTest::newRow("96") << QStringList{"--resolution", "96", "--orientation", "portrait"} << 0
                            << 1;
        QTest::newRow("276 DPI") << QStringList{"--orientation", "landscape", "--resolution",
                                                "276 DPI"}
                                 << 1 << 3;
        QTest::newRow("4") << QStringList{"--resolution", "4", "--orientation", "Landscape"} << 1
                           << 4;
    }
    void reports_are_alike()
    {
        QFETCH(const QStringList, options);
        QFETCH(const int, orientation);
        QFETCH(const int, resolution);
        const TQuillet::TReportSettings settings{orientation, resolution,
                                                 d_window->d_header_dialog->Header1_Text(),
                                                 d_window->d_header_dialog->Header2_Text()};
        QVERIFY(d_window->Export_PDF(Path("window.pdf"), d_window->d_page_widget->Page_Ids(),
                                     settings));
        Run(QStringList{"export-pdf", "document.quillet", "--output", "tool.pdf"} + options);
        Compare_Reports();
        QCOMPARE(Support::Byte_Difference(Support::Timeless_Pdf(Path("tool.pdf")),
                                          Support::Timeless_Pdf(Path("window.pdf"))),
                 QString());
    }

    void given_header_lines_replace_those_of_the_document_data()
    {
        QTest::addColumn<QString>("header_1");
        QTest::addColumn<QString>("header_2");
        QTest::newRow("one") << "Given"
                             << "";
        QTest::newRow("other scripts")
            << QString::fromUtf8("Ωμέγα – Привет") << QString::fromUtf8("図面 😀 \"%1\"");
    }
    void given_header_lines_replace_those_of_the_document()
    {
        QFETCH(const QString, header_1);
        QFETCH(const QString, header_2);
        QVERIFY(d_window->Export_PDF(Path("window.pdf"), d_window->d_page_widget->Page_Ids(),
                                     {0, 1, header_1, header_2}));
        Run({"export-pdf", "document.quillet", "--output", "tool.pdf", "--resolution", "1",
             "--header-1", header_1, "--header-2", header_2});
        // The order of several fonts in a file is random, so the bytes may differ.
        Compare_Reports();
    }

    void the_window_opens_what_the_tool_writes()
    {
        Support::Write_File(Path("items.csv"),
                            "page,value,text,border,x,y\r\n1,9,\"a, \"\"b\"\"\",diamond,1.5,2\r\n");
        Run({"import-items", "document.quillet", "--csv", "items.csv", "--output", "tool.quillet"});
        const QStringList before = Support::Describe(d_window.get());
        const QString look = Support::Describe_Appearance(*d_window);
        Open("tool.quillet");
        QStringList after = Support::Describe(d_window.get());
        QCOMPARE(Support::Describe_Appearance(*d_window), look);
        // The lines before are the page and its five labels.
        constexpr int index = 6;
        QCOMPARE(after.takeAt(index), QStringLiteral("label 1 9 'a, \"b\"' 8 1.5,2"));
        QCOMPARE(after, before);
    }
};

QTEST_MAIN(TestCliEquality)
#include "test_cliequality.moc"
