// Files of the two earlier generations, opened in the window.

#include "support/project.h"
#include "support/support.h"
#include "support/window.h"

#include "core/xmlfile.h"
#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/pagewidget.h"
#include "src/settingswidget.h"

#include <QBuffer>
#include <QFile>
#include <QListWidget>
#include <QTemporaryDir>
#include <QTest>

#include <limits>

using Support::Describe;
using Support::Describe_Appearance;

namespace {

const QByteArray look = "<Item_Size><Width>48</Width></Item_Size>"
                        "<Colors><Foreground>blue</Foreground></Colors>";

QByteArray Document(int version, const QByteArray& content)
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<Quillet_Data File_Version=\"" +
           QByteArray::number(version) + "\">\n    " + content + "\n</Quillet_Data>\n";
}

QByteArray Item(const QByteArray& id, const QByteArray& text, const QByteArray& border,
                const QByteArray& position)
{
    const QByteArray text_element = text.isEmpty() ? text : "<ID_Text>" + text + "</ID_Text>";
    return "<Item><ID>" + id + "</ID>" + text_element + "<Border_Type>" + border +
           "</Border_Type><Position>" + position + "</Position></Item>\n";
}

} // namespace

class TestLegacyFiles : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir d_folder;

    QString Base() const { return d_folder.filePath(QStringLiteral("old.document")); }

    void Write_Pair(const QByteArray& document, const QByteArray& image) const
    {
        Support::Write_File(Base() + QStringLiteral(".qld"), document);
        Support::Write_File(Base() + QStringLiteral(".qli"), image);
    }

    /// Writes a pair and loads it.
    bool Load(TOpenWindow* window, const QByteArray& document,
              const QByteArray& image = Support::Png(Support::Picture(12, 10))) const
    {
        Write_Pair(document, image);
        return window->Load_Legacy_Data(Base());
    }

    static void Prepare(TOpenWindow* window)
    {
        Support::Add_Pages(
            window,
            {{QStringLiteral("a"), Support::Picture(9, 9), {}},
             {QStringLiteral("b"), Support::Picture(9, 9), {Support::Label(5, 3, {}, 1, {})}}});
        window->d_data.Set_Active_Page(2);
        window->d_settings_widget->Set_Label_Size(77);
        window->d_label_widget->Set_Label_Index(55);
    }

    static QStringList Prepared() { return {"page 1 a 9x9", "page 2 b 9x9", "label 5 3 '' 1 0,0"}; }

private slots:
    void init()
    {
        QVERIFY(d_folder.isValid());
        QFile::remove(Base() + QStringLiteral(".qld"));
        QFile::remove(Base() + QStringLiteral(".qli"));
    }

    void both_versions_become_a_document_of_one_page_data()
    {
        QTest::addColumn<QByteArray>("document");
        QTest::addColumn<QStringList>("labels");
        QTest::newRow("version 1")
            << Document(1, look + Item("3", "", "3", "1.5,2") + Item("9", "", "4", "-1,20"))
            << QStringList{"label 3 3 '' 4 1.5,2", "label 9 9 '' 0 -1,20"};
        QTest::newRow("version 2")
            << Document(2, look + Item("3", "A", "1", "1.5,2") + Item("9", "12", "2", "-1,20"))
            << QStringList{"label 3 3 'A' 1 1.5,2", "label 9 9 '' 2 -1,20"};
    }

    void both_versions_become_a_document_of_one_page()
    {
        QFETCH(const QByteArray, document);
        QFETCH(const QStringList, labels);
        TOpenWindow window;
        Prepare(&window);
        QVERIFY(Load(&window, document));
        QCOMPARE(Describe(&window), QStringList{"page 1 Page 1 12x10"} + labels);
        QCOMPARE(Describe_Appearance(window), QStringLiteral("48 #0000ff no headers"));
        QCOMPARE(Support::View_Difference(window, 48, QColor(0, 0, 255)), QString());
        QCOMPARE(window.d_data.Active_Page(), 1);
        QCOMPARE(Support::Difference(window.d_data.Page_Image(), Support::Picture(12, 10)),
                 QString());
        QCOMPARE(window.d_page_widget->Page_Ids(), QList<int>{1});
        QCOMPARE(window.d_page_widget->findChild<QListWidget*>()->currentRow(), 0);
        QCOMPARE(window.d_display_widget->Background_Pixmap().size(), QSize(12, 10));
        QCOMPARE(window.d_display_widget->Item_Position(9), QPointF(-1, 20));
        QCOMPARE(window.d_label_widget->Take_Label_Index(), 10);
    }

    void another_version_loads_the_image_only_data()
    {
        QTest::addColumn<int>("version");
        for (const int version : {3, 0, -1})
            QTest::newRow(qPrintable(QString::number(version))) << version;
    }

    void another_version_loads_the_image_only()
    {
        QFETCH(const int, version);
        TOpenWindow window;
        Prepare(&window);
        const QString appearance = Describe_Appearance(window);
        QVERIFY(Load(&window, Document(version, look + Item("3", "A", "1", "1,2"))));
        QCOMPARE(Describe(&window), QStringList{"page 1 Page 1 12x10"});
        QCOMPARE(Describe_Appearance(window), appearance);
        QCOMPARE(window.d_label_widget->Take_Label_Index(), 1);
    }

    void the_next_label_is_one_above_the_largest_data()
    {
        QTest::addColumn<QByteArray>("first");
        QTest::addColumn<QByteArray>("second");
        QTest::addColumn<int>("next");
        QTest::newRow("first") << QByteArray("40") << QByteArray("3") << 41;
        QTest::newRow("negative") << QByteArray("-4") << QByteArray("-3") << 1;
        QTest::newRow("repeated") << QByteArray("4") << QByteArray("4") << 5;
        QTest::newRow("largest integer")
            << QByteArray("2147483647") << QByteArray("1") << std::numeric_limits<int>::min();
    }

    void the_next_label_is_one_above_the_largest()
    {
        QFETCH(const QByteArray, first);
        QFETCH(const QByteArray, second);
        TOpenWindow window;
        QVERIFY(Load(&window, Document(1, look + Item(first, "", "1", "1,1") +
                                              Item(second, "", "1", "2,2"))));
        QTEST(window.d_label_widget->Take_Label_Index(), "next");
    }

    void only_the_first_of_several_labels_with_the_same_id_is_added()
    {
        TOpenWindow window;
        QVERIFY(Load(&window,
                     Document(1, look + Item("4", "", "1", "1,1") + Item("4", "", "2", "2,2"))));
        QCOMPARE(Describe(&window), (QStringList{"page 1 Page 1 12x10", "label 4 4 '' 1 1,1"}));
    }

    void an_unknown_colour_name_gives_an_invalid_colour()
    {
        TOpenWindow window;
        QVERIFY(Load(&window, Document(1, QByteArray(look).replace("blue", "no colour"))));
        QCOMPARE(Describe_Appearance(window), QStringLiteral("48 invalid no headers"));
        QCOMPARE(Support::View_Difference(window, 48, QColor()), QString());
    }

    void without_the_image_nothing_is_read_data()
    {
        QTest::addColumn<QByteArray>("image");
        QTest::addColumn<bool>("is_there");
        QTest::newRow("missing") << QByteArray() << false;
        QTest::newRow("empty") << QByteArray() << true;
        QTest::newRow("no picture") << QByteArray("no picture") << true;
        QTest::newRow("beginning of a picture")
            << Support::Png(Support::Picture(12, 10)).left(20) << true;
    }

    void without_the_image_nothing_is_read()
    {
        QFETCH(const QByteArray, image);
        QFETCH(const bool, is_there);
        TOpenWindow window;
        Prepare(&window);
        const QString appearance = Describe_Appearance(window);
        Write_Pair(Document(1, look), image);
        if (!is_there)
            QVERIFY(QFile::remove(Base() + QStringLiteral(".qli")));
        QVERIFY(!window.Load_Legacy_Data(Base()));
        QCOMPARE(window.d_error_text, QStringLiteral("Background image not found"));
        QCOMPARE(Describe(&window), Prepared());
        QCOMPARE(Describe_Appearance(window), appearance);
    }

    void the_message_about_a_missing_list_contains_its_path()
    {
        TOpenWindow window;
        Prepare(&window);
        Write_Pair(QByteArray(), Support::Png(Support::Picture(12, 10)));
        QVERIFY(QFile::remove(Base() + QStringLiteral(".qld")));
        QVERIFY(!window.Load_Legacy_Data(Base()));
        QCOMPARE(window.d_error_text,
                 QStringLiteral("ERR:  Cannot open file '%1.qld' for reading.").arg(Base()));
        QCOMPARE(Describe(&window), Prepared());
    }

    void after_a_fault_the_document_stays_but_label_settings_may_change_data()
    {
        QTest::addColumn<QByteArray>("document");
        QTest::addColumn<QString>("reason");
        QTest::addColumn<QString>("appearance");
        const QString old_look = QStringLiteral("77 #f79741 no headers");
        const QString new_size = QStringLiteral("48 #f79741 no headers");
        const QString new_look = QStringLiteral("48 #0000ff no headers");
        const QString missing =
            QStringLiteral("ERR: Node '%1' is missing from node '%2' and not optional.");
        const QByteArray size = look.left(look.indexOf("<Colors"));
        QTest::newRow("empty")
            << QByteArray()
            << "ERR: Reference file XML parse error at line unexpected end of file column 1: 1"
            << old_look;
        QTest::newRow("other root") << QByteArray("<quillet_data File_Version=\"1\"/>")
                                    << "ERR:  Identification 'Quillet_Data' does not match "
                                       "'quillet_data'"
                                    << old_look;
        QTest::newRow("no version") << QByteArray("<Quillet_Data/>")
                                    << "ERR: The 'File_Version' attribute is missing." << old_look;
        QTest::newRow("no size") << Document(1, "") << missing.arg("Item_Size", "Quillet_Data")
                                 << old_look;
        QTest::newRow("no colours")
            << Document(1, size) << missing.arg("Colors", "Quillet_Data") << new_size;
        QTest::newRow("no foreground")
            << Document(2, size + "<Colors/>") << missing.arg("Foreground", "Colors") << new_size;
        QTest::newRow("no border")
            << Document(1, look + Item("1", "", "1", "1,1") + "<Item><ID>2</ID></Item>")
            << missing.arg("Border_Type", "Item") << new_look;
        QTest::newRow("no text in version 2") << Document(2, look + Item("1", "", "1", "1,1"))
                                              << missing.arg("ID_Text", "Item") << new_look;
        QTest::newRow("empty position")
            << Document(1, look + Item("1", "", "1", ""))
            << "ERR: Node Text for 'Position' is not optional." << new_look;
    }

    void after_a_fault_the_document_stays_but_label_settings_may_change()
    {
        QFETCH(const QByteArray, document);
        TOpenWindow window;
        Prepare(&window);
        QVERIFY(!Load(&window, document));
        QTEST(window.d_error_text, "reason");
        QTEST(Describe_Appearance(window), "appearance");
        QCOMPARE(Describe(&window), Prepared());
        QCOMPARE(window.d_data.Active_Page(), 2);
        QCOMPARE(window.d_label_widget->Take_Label_Index(), 55);
    }

    void a_malformed_position_drops_only_its_label()
    {
        TOpenWindow window;
        QVERIFY(
            Load(&window, Document(2, look + Item("1", "A", "1", "1,1,1") +
                                          Item("2", "B", "1", "5") + Item("3", "C", "1", ",7"))));
        QCOMPARE(Describe(&window), (QStringList{"page 1 Page 1 12x10", "label 3 3 'C' 1 0,7"}));
        QCOMPARE(window.d_label_widget->Take_Label_Index(), 4);
    }

    void a_null_document_fails_an_assertion_data()
    {
        QTest::addColumn<int>("version");
        QTest::newRow("version 1") << 1;
        QTest::newRow("version 2") << 2;
    }

    void a_null_document_fails_an_assertion()
    {
        QFETCH(const int, version);
        TOpenWindow window;
        std::vector<TDataItem> items;
        const QString difference = Support::Assertion_Failure(
            [&] {
                if (version == 1)
                    window.Load_Legacy_V1(nullptr, &items);
                else
                    window.Load_Legacy_V2(nullptr, &items);
            },
            QStringLiteral("src/quillet"), QStringLiteral("xml_file"));
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
    }

    void labels_of_an_opened_document_are_collected()
    {
        Write_Pair(Document(2, look + Item("3", "A", "3", "1.5,2")), QByteArray());
        TXmlFile xml_file;
        xml_file.d_file_path = Base() + QStringLiteral(".qld");
        xml_file.Open(QStringLiteral("Quillet_Data"), nullptr, true);
        TOpenWindow window;
        std::vector<TDataItem> items;
        window.Load_Legacy_V1(&xml_file, &items);
        window.Load_Legacy_V2(&xml_file, &items);
        QCOMPARE(static_cast<int>(items.size()), 2);
        QCOMPARE(items.front().text, QString());
        QCOMPARE(items.back().text, QStringLiteral("A"));
        QCOMPARE(items.back().border_type, 4);
        QCOMPARE(Describe_Appearance(window), QStringLiteral("48 #0000ff no headers"));
        QCOMPARE(window.d_data.Page_Count(), 0);
    }

    void the_pair_is_never_written()
    {
        const QByteArray document = Document(1, look + Item("4", "", "1", "1,1"));
        const QByteArray image = Support::Png(Support::Picture(12, 10));
        TOpenWindow window;
        QVERIFY(Load(&window, document));
        QCOMPARE(Support::Read_File(Base() + QStringLiteral(".qld")), document);
        QCOMPARE(Support::Read_File(Base() + QStringLiteral(".qli")), image);
    }
};

QTEST_MAIN(TestLegacyFiles)
#include "test_legacyfiles.moc"
