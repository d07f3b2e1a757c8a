// Project files written and read by the window, byte for byte.

#include "support/project.h"
#include "support/support.h"
#include "support/window.h"

#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/pagewidget.h"
#include "src/reportheaderdialog.h"
#include "src/settingswidget.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QIODevice>
#include <QListWidget>
#include <QModelIndex>
#include <QTemporaryDir>
#include <QTest>

#include <limits>

using Support::Add_Pages;
using Support::Describe;
using Support::Describe_Appearance;
using Support::Field;
using Support::Header;
using Support::Item_Element;
using Support::Item_List;
using Support::Label;
using Support::Magic;
using Support::Number;
using Support::Page_Record;

namespace {

const QByteArray color = "#0a141e";

QString Integer_Bound()
{
    return QStringLiteral("(index + sizeof(int) -1) < static_cast<unsigned int>(array.size())");
}

/// What the model asserts before an operation on a page.
QString No_Active_Page()
{
    return QStringLiteral("!(d_active_page_index < 0)");
}

/// A label document with one label.
QByteArray One_Label(int value)
{
    return Item_List(Item_Element("1", QByteArray::number(value), "", "2", "1.00,2.00"));
}

/// A file with one page, which has a picture of 6 x 4 pixels and a label.
QByteArray One_Page(const QByteArray& name = "only")
{
    return Header(40, color, "", "", 1) +
           Page_Record(name, Support::Png(Support::Picture(6, 4)), One_Label(7));
}

} // namespace

class TestProjectFiles : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir d_folder;

    QString Path(const char* name = "file.quillet") const
    {
        return d_folder.filePath(QString::fromLatin1(name));
    }

    /// Writes bytes to a file and loads it.
    bool Load(TOpenWindow* window, const QByteArray& bytes) const
    {
        Support::Write_File(Path(), bytes);
        return window->Load_Data(Path());
    }

    /// Gives a window a document, to test whether loading replaces it.
    static void Prepare(TOpenWindow* window)
    {
        const QList<int> ids = Add_Pages(
            window, {{QStringLiteral("before"), Support::Picture(9, 9), {Label(5, 3, {}, 1, {})}}});
        window->d_page_widget->Set_Active_Page(ids.first());
        window->d_settings_widget->Set_Label_Size(77);
        window->d_error_text.clear();
    }

    static QStringList Prepared() { return {"page 1 before 9x9", "label 5 3 '' 1 0,0"}; }

    static QByteArray Special_Bytes(const QImage& first, const QImage& second)
    {
        const QByteArray items =
            Item_Element("1804289383", "7", "Pump &lt;&amp;> \xc3\xa4\xe2\x82\xac", "2",
                         "120.50,33.00") +
            Item_Element("-3", "-12", "", "8", "-0.13,1000000.00");
        return Header(48, color, "Head\xe9r", "", 3) +
               Page_Record("caf\xe9 ?", Support::Png(first),
                           Item_List(items, " Page_Name=\"caf\xc3\xa9 \xe2\x82\xac\"")) +
               Page_Record("??", "", Item_List({}, " Page_Name=\"\xf0\x9f\x98\x80\"")) +
               Page_Record("", Support::Png(second), Item_List());
    }

    /// Gives a window a document with unusual characters, numbers and pages.
    static QList<int> Fill_Special(TOpenWindow* window, const QImage& first, const QImage& second)
    {
        window->d_settings_widget->Set_Label_Size(48);
        window->d_settings_widget->Set_Label_Color(QColor(10, 20, 30));
        window->Header_Dialog()->Set_Header1_Text(QString::fromUtf8("Headér"));
        return Add_Pages(window,
                         {{QString::fromUtf8("café €"),
                           first,
                           {Label(1804289383, 7, QString::fromUtf8("Pump <&> ä€"), 2, {120.5, 33}),
                            Label(-3, -12, {}, 8, {-0.126, 1e6})}},
                          {QString::fromUtf8("\xf0\x9f\x98\x80"), QImage(), {}},
                          {QString(), second, {}}});
    }

private slots:
    void init()
    {
        QVERIFY(d_folder.isValid());
        QFile::remove(Path());
    }

    void a_saved_document_equals_one_assembled_by_hand()
    {
        const QImage first = Support::Picture(31, 17, 1);
        const QImage second = Support::Picture(8, 5, 2).convertToFormat(QImage::Format_Grayscale8);
        TOpenWindow window;
        Fill_Special(&window, first, second);
        QVERIFY(window.Save_Data(Path()));
        QCOMPARE(Support::Byte_Difference(Support::Read_File(Path()), Special_Bytes(first, second)),
                 QString());
        QVERIFY(window.d_error_text.isEmpty());
    }

    void pages_are_written_in_the_order_of_the_page_list()
    {
        TOpenWindow window;
        const QImage image = Support::Picture(4, 4);
        Add_Pages(&window, {{QStringLiteral("a"), image, {}},
                            {QStringLiteral("b"), image, {}},
                            {QStringLiteral("c"), image, {}}});
        auto* list = window.d_page_widget->findChild<QListWidget*>();
        QVERIFY(list->model()->moveRow(QModelIndex(), 2, QModelIndex(), 0));
        QVERIFY(window.Save_Data(Path()));
        QVERIFY(window.Load_Data(Path()));
        QCOMPARE(Describe(&window), (QStringList{"page 1 c 4x4", "page 2 a 4x4", "page 3 b 4x4"}));
    }

    void names_header_lines_and_texts_keep_every_character()
    {
        const QString name = QString::fromUtf8("Ω \xf0\x9f\x98\x80 = ?");
        const QString text = QStringLiteral(" two\n\nlines  ");
        TOpenWindow window;
        Add_Pages(&window, {{name, QImage(), {Support::Label(5, 7, text, 2, {1, 2})}},
                            {name + "2", QImage(), {}}});
        window.Header_Dialog()->Set_Header1_Text(name + "3");
        QVERIFY(window.Save_Data(Path()));
        QVERIFY(window.statusBar()->currentMessage().isEmpty());

        TOpenWindow copy;
        QVERIFY(copy.Load_Data(Path()));
        const QList<int> ids = copy.d_page_widget->Page_Ids();
        QCOMPARE(copy.d_page_widget->Page_Name(ids[0]), name);
        QCOMPARE(copy.d_page_widget->Page_Name(ids[1]), name + "2");
        QCOMPARE(copy.d_header_dialog->Header1_Text(), name + "3");
        QCOMPARE(copy.d_header_dialog->Header2_Text(), QString());
        copy.d_data.Set_Active_Page(ids[0]);
        QCOMPARE(copy.d_data.Item(0).text, text);
        const QByteArray saved = Support::Read_File(Path());
        QVERIFY(copy.Save_Data(Path()));
        QCOMPARE(Support::Byte_Difference(Support::Read_File(Path()), saved), QString());
    }

    void a_document_without_pages_warns_of_header_lines_beyond_latin_1()
    {
        TOpenWindow window;
        window.Header_Dialog()->Set_Header2_Text(QString::fromUtf8("café"));
        QVERIFY(window.Save_Data(Path()));
        QCOMPARE(window.statusBar()->currentMessage(), QString());
        window.Header_Dialog()->Set_Header2_Text(QString::fromUtf8("Ω"));
        QVERIFY(window.Save_Data(Path()));
        QCOMPARE(window.statusBar()->currentMessage(),
                 QStringLiteral("Without pages, a document cannot store all characters of its "
                                "header lines."));
    }

    void a_round_trip_keeps_everything_but_ids_selection_and_further_decimals()
    {
        const QImage first = Support::Picture(31, 17, 1);
        const QImage second = Support::Picture(8, 5, 2);
        {
            TOpenWindow window;
            const QList<int> ids = Fill_Special(&window, first, second);
            window.d_data.Set_Active_Page(ids.first());
            window.d_data.Change_Item_Selection(-3, true);
            window.d_data.Change_Item_Position(-3, {0.126, -99.994});
            QVERIFY(window.Save_Data(Path()));
        }
        TOpenWindow window;
        Prepare(&window);
        QVERIFY(window.Load_Data(Path()));
        QCOMPARE(Describe(&window),
                 (QStringList{QString::fromUtf8("page 1 café € 31x17"),
                              QString::fromUtf8("label 1804289383 7 'Pump <&> ä€' 2 120.5,33"),
                              "label -3 -12 '' 8 0.13,-99.99",
                              QString::fromUtf8("page 2 \xf0\x9f\x98\x80 0x0"), "page 3  8x5"}));
        QCOMPARE(Describe_Appearance(window), QString::fromUtf8("48 #0a141e headers 'Headér' ''"));
        QCOMPARE(window.d_data.Active_Page(), 3);
        QCOMPARE(Support::Difference(window.d_data.Page_Image(), second), QString());
        window.d_data.Set_Active_Page(1);
        QCOMPARE(Support::Difference(window.d_data.Page_Image(), first), QString());
    }

    void saving_what_was_loaded_gives_the_same_bytes()
    {
        const QByteArray bytes =
            Special_Bytes(Support::Picture(31, 17, 1), Support::Picture(8, 5, 2));
        TOpenWindow window;
        QVERIFY(Load(&window, bytes));
        QVERIFY(window.Save_Data(Path()));
        QCOMPARE(Support::Byte_Difference(Support::Read_File(Path()), bytes), QString());
    }

    void loaded_images_of_another_format_are_saved_as_png()
    {
        const QImage image = Support::Picture(6, 4);
        QByteArray bitmap;
        QBuffer buffer(&bitmap);
        buffer.open(QIODevice::WriteOnly);
        QVERIFY(image.save(&buffer, "BMP"));
        TOpenWindow window;
        QVERIFY(
            Load(&window, Header(40, color, "", "", 1) + Page_Record("p", bitmap, Item_List())));
        QVERIFY(window.d_data.Page_Image_Valid());
        const QImage loaded = window.d_data.Page_Image();
        QCOMPARE(Support::Difference(loaded, image), QString());
        QVERIFY(window.Save_Data(Path()));
        QCOMPARE(Support::Read_File(Path()),
                 Header(40, color, "", "", 1) +
                     Page_Record("p", Support::Png(loaded), Item_List()));
    }

    void a_page_whose_image_cannot_be_decoded_has_no_image()
    {
        TOpenWindow window;
        QVERIFY(Load(&window,
                     Header(40, color, "", "", 1) + Page_Record("p", "no picture", One_Label(3))));
        QVERIFY(!window.d_data.Page_Image_Valid());
        QVERIFY(window.d_data.Page_Image().isNull());
        QCOMPARE(Describe(&window), (QStringList{"page 1 p 0x0", "label 1 3 '' 2 1,2"}));
        QVERIFY(!window.d_label_widget->isEnabled());
    }

    void a_document_without_pages_is_its_header()
    {
        TOpenWindow window;
        QVERIFY(window.Save_Data(Path()));
        QCOMPARE(Support::Read_File(Path()), Header(32, "#f79741", "", "", 0));
        QCOMPARE(window.d_data.Active_Page(), -1);

        Prepare(&window);
        QVERIFY(window.Load_Data(Path()));
        QCOMPARE(Describe(&window), QStringList());
        QCOMPARE(window.d_data.Active_Page(), -1);
        QVERIFY(window.d_page_widget->Page_Ids().isEmpty());
        QCOMPARE(window.d_label_widget->Take_Label_Index(), 1);
    }

    void a_page_count_below_1_loads_no_pages_data()
    {
        QTest::addColumn<quint32>("count");
        QTest::newRow("0") << 0u;
        QTest::newRow("-1") << 0xffffffffu;
        QTest::newRow("lowest") << 0x80000000u;
    }

    void a_page_count_below_1_loads_no_pages()
    {
        QFETCH(const quint32, count);
        TOpenWindow window;
        Prepare(&window);
        QVERIFY(Load(&window, Header(40, color, "", "", count) + "rest"));
        QCOMPARE(Describe(&window), QStringList());
        QCOMPARE(Describe_Appearance(window), QStringLiteral("40 #0a141e no headers"));
    }

    void bytes_after_the_last_page_are_ignored()
    {
        TOpenWindow window;
        QVERIFY(Load(&window, One_Page() + "rest"));
        QCOMPARE(Describe(&window), (QStringList{"page 1 only 6x4", "label 1 7 '' 2 1,2"}));
    }

    void saving_keeps_the_active_page_data()
    {
        QTest::addColumn<int>("page_id");
        for (const int page_id : {1, 2, -1})
            QTest::newRow(qPrintable(QString::number(page_id))) << page_id;
    }

    void saving_keeps_the_active_page()
    {
        QFETCH(const int, page_id);
        TOpenWindow window;
        Add_Pages(&window, {{QStringLiteral("a"), Support::Picture(4, 4), {}},
                            {QStringLiteral("b"), Support::Picture(4, 4), {}},
                            {QStringLiteral("c"), Support::Picture(4, 4), {}}});
        window.d_data.Set_Active_Page(page_id);
        QVERIFY(window.Save_Data(Path()));
        QCOMPARE(window.d_data.Active_Page(), page_id);
    }

    void the_last_page_is_shown_after_loading()
    {
        TOpenWindow window;
        QVERIFY(Load(&window,
                     Header(40, color, "", "", 2) +
                         Page_Record("a", Support::Png(Support::Picture(6, 4)), One_Label(1)) +
                         Page_Record("b", Support::Png(Support::Picture(5, 3)), One_Label(2))));
        QCOMPARE(window.d_data.Active_Page(), 2);
        QCOMPARE(window.d_page_widget->findChild<QListWidget*>()->currentRow(), 1);
        QCOMPARE(window.d_display_widget->Background_Pixmap().size(), QSize(5, 3));
        QVERIFY(window.d_display_widget->Item_Exists(1));
        QCOMPARE(window.d_display_widget->Item_Position(1), QPointF(1, 2));
        QVERIFY(window.d_label_widget->isEnabled());
    }

    void writing_items_without_an_active_page_fails_an_assertion()
    {
        const TOpenWindow window;
        const QString difference = Support::Assertion_Failure(
            [&window] { window.Write_Items(); }, QStringLiteral("src/data"), No_Active_Page());
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
    }

    void saving_a_listed_page_that_the_model_does_not_have_fails_an_assertion()
    {
        TOpenWindow window;
        window.d_page_widget->Add_Page(99);
        const QString difference =
            Support::Assertion_Failure([this, &window] { window.Save_Data(Path()); },
                                       QStringLiteral("src/data"), No_Active_Page());
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
    }

    void reading_items_ignores_ids_that_the_page_already_has()
    {
        TOpenWindow window;
        Prepare(&window);
        window.Read_Items(Item_List(Item_Element("5", "1", "repeated", "2", "1,2") +
                                    Item_Element("6", "7", "new", "2", "1,2") +
                                    Item_Element("6", "8", "repeated", "2", "1,2")));
        QCOMPARE(Describe(&window), Prepared() + QStringList{"label 6 7 'new' 2 1,2"});
    }

    void label_size_and_colour_reach_panel_and_view()
    {
        TOpenWindow window;
        QVERIFY(Load(&window, One_Page()));
        QCOMPARE(Describe_Appearance(window), QStringLiteral("40 #0a141e no headers"));
        QCOMPARE(window.d_display_widget->Label_Size(), QSize(40, 40));
        QCOMPARE(Support::View_Difference(window, 40, QColor(10, 20, 30)), QString());
    }

    void an_unknown_colour_name_gives_an_invalid_colour_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("unknown") << QByteArray("no colour");
        QTest::newRow("cut at a zero byte") << QByteArray("#0a\0000", 5);
    }

    void an_unknown_colour_name_gives_an_invalid_colour()
    {
        QFETCH(const QByteArray, name);
        TOpenWindow window;
        QVERIFY(Load(&window, Header(40, name, "", "", 0)));
        QCOMPARE(Describe_Appearance(window), QStringLiteral("40 invalid no headers"));
        QCOMPARE(Support::View_Difference(window, 40, QColor()), QString());
    }

    void a_colour_may_have_a_name()
    {
        TOpenWindow window;
        QVERIFY(Load(&window, Header(40, "red", "", "", 0)));
        QCOMPARE(window.d_settings_widget->Label_Color(), QColor(255, 0, 0));
    }

    void header_lines_are_set_only_when_one_of_them_is_not_empty_data()
    {
        QTest::addColumn<QByteArray>("header_1");
        QTest::addColumn<QByteArray>("header_2");
        QTest::addColumn<QString>("without_dialog");
        QTest::addColumn<QString>("with_dialog");
        const QByteArray none;
        QTest::newRow("both empty") << none << none << "40 #0a141e no headers"
                                    << "40 #0a141e headers 'old 1' 'old 2'";
        QTest::newRow("first") << QByteArray("new") << none << "40 #0a141e headers 'new' ''"
                               << "40 #0a141e headers 'new' ''";
        QTest::newRow("second") << none << QByteArray("new") << "40 #0a141e headers '' 'new'"
                                << "40 #0a141e headers '' 'new'";
        QTest::newRow("empty up to a zero byte")
            << QByteArray("\0x", 2) << none << "40 #0a141e no headers"
            << "40 #0a141e headers 'old 1' 'old 2'";
    }

    void header_lines_are_set_only_when_one_of_them_is_not_empty()
    {
        QFETCH(const QByteArray, header_1);
        QFETCH(const QByteArray, header_2);
        QFETCH(const QString, without_dialog);
        QFETCH(const QString, with_dialog);
        const QByteArray bytes = Header(40, color, header_1, header_2, 0);
        TOpenWindow window;
        QVERIFY(Load(&window, bytes));
        QCOMPARE(Describe_Appearance(window), without_dialog);
        window.Header_Dialog()->Set_Header1_Text(QStringLiteral("old 1"));
        window.d_header_dialog->Set_Header2_Text(QStringLiteral("old 2"));
        QVERIFY(Load(&window, bytes));
        QCOMPARE(Describe_Appearance(window), with_dialog);
    }

    void a_name_is_cut_at_its_first_zero_byte()
    {
        TOpenWindow window;
        QVERIFY(Load(&window, One_Page(QByteArray("on\0ly", 5))));
        QCOMPARE(Describe(&window), (QStringList{"page 1 on 6x4", "label 1 7 '' 2 1,2"}));
    }

    void the_next_label_is_one_above_the_largest_of_all_pages_data()
    {
        QTest::addColumn<int>("first");
        QTest::addColumn<int>("second");
        QTest::addColumn<int>("next");
        QTest::newRow("first page") << 70 << 3 << 71;
        QTest::newRow("last page") << 1 << 9 << 10;
        QTest::newRow("negative") << -5 << -2 << 1;
        QTest::newRow("largest integer")
            << 1 << std::numeric_limits<int>::max() << std::numeric_limits<int>::min();
    }

    void the_next_label_is_one_above_the_largest_of_all_pages()
    {
        QFETCH(const int, first);
        QFETCH(const int, second);
        TOpenWindow window;
        QVERIFY(Load(&window, Header(40, color, "", "", 2) +
                                  Page_Record("a", "", One_Label(first)) +
                                  Page_Record("b", "", One_Label(second))));
        QTEST(window.d_label_widget->Take_Label_Index(), "next");
    }

    void a_length_past_the_end_is_clipped()
    {
        TOpenWindow window;
        const QByteArray items = One_Label(7);
        QVERIFY(Load(&window, Header(40, color, "", "", 1) +
                                  Page_Record("p", "", QByteArray()).chopped(4) +
                                  Number(0x7fffffff) + items));
        QCOMPARE(Describe(&window), (QStringList{"page 1 p 0x0", "label 1 7 '' 2 1,2"}));
    }

    void a_file_that_ends_within_an_integer_fails_an_assertion_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        const QByteArray whole = One_Page();
        QTest::newRow("magic and label size") << whole.left(8);
        QTest::newRow("colour length") << whole.left(11);
        QTest::newRow("colour") << whole.left(15);
        QTest::newRow("page count") << whole.left(30);
        QTest::newRow("no page record") << whole.left(31);
        QTest::newRow("image length") << whole.left(31 + 8 + 2);
    }

    void a_file_that_ends_within_an_integer_fails_an_assertion()
    {
        QFETCH(const QByteArray, bytes);
        TOpenWindow window;
        const QString difference = Support::Assertion_Failure(
            [this, &window, &bytes] { Load(&window, bytes); }, QStringLiteral("core/conversion"),
            Integer_Bound(),
            QStringLiteral("static int Conversion::Integer(unsigned int, const QByteArray&)"));
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
    }

    void a_file_that_is_not_a_project_changes_nothing_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("7 bytes") << Header(40, color, "", "", 0).left(7);
        QTest::newRow("other magic") << Number(90211) + Header(40, color, "", "", 0).mid(4);
        QTest::newRow("magic in big-endian order") << QByteArray::fromHex("0001606220000000");
    }

    void a_file_that_is_not_a_project_changes_nothing()
    {
        QFETCH(const QByteArray, bytes);
        TOpenWindow window;
        Prepare(&window);
        const QString appearance = Describe_Appearance(window);
        QVERIFY(!Load(&window, bytes));
        QCOMPARE(window.d_error_text, QStringLiteral("Invalid file."));
        QCOMPARE(Describe(&window), Prepared());
        QCOMPARE(Describe_Appearance(window), appearance);
        QCOMPARE(window.d_data.Active_Page(), 1);
    }

    void a_file_that_cannot_be_opened_changes_nothing_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("missing") << QStringLiteral("missing.quillet");
        QTest::newRow("missing folder") << QStringLiteral("missing/file.quillet");
        QTest::newRow("folder") << QStringLiteral("folder");
        QTest::newRow("below a file") << QStringLiteral("plain/file.quillet");
    }

    void a_file_that_cannot_be_opened_changes_nothing()
    {
        QFETCH(const QString, path);
        QVERIFY(QDir(d_folder.path()).mkpath(QStringLiteral("folder")));
        Support::Write_File(Path("plain"), "plain");
        TOpenWindow window;
        Prepare(&window);
        const QString appearance = Describe_Appearance(window);
        QVERIFY(!window.Load_Data(d_folder.filePath(path)));
        QCOMPARE(window.d_error_text, QStringLiteral("Cannot open file for reading"));
        QCOMPARE(Describe(&window), Prepared());
        QCOMPARE(Describe_Appearance(window), appearance);
    }

    void a_file_that_cannot_be_written_changes_nothing_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("missing folder") << QStringLiteral("missing/file.quillet");
        QTest::newRow("folder") << QStringLiteral("folder");
        QTest::newRow("below a file") << QStringLiteral("plain/file.quillet");
    }

    void a_file_that_cannot_be_written_changes_nothing()
    {
        QFETCH(const QString, path);
        QVERIFY(QDir(d_folder.path()).mkpath(QStringLiteral("folder")));
        Support::Write_File(Path("plain"), "plain");
        TOpenWindow window;
        Prepare(&window);
        QVERIFY(!window.Save_Data(d_folder.filePath(path)));
        QCOMPARE(window.d_error_text, QStringLiteral("Cannot open file for writing"));
        QCOMPARE(Describe(&window), Prepared());
        QCOMPARE(window.d_data.Active_Page(), 1);
        QCOMPARE(Support::Read_File(Path("plain")), QByteArray("plain"));
    }

    void a_failed_write_is_not_reported()
    {
        TOpenWindow window;
        Prepare(&window);
        QVERIFY(window.Save_Data(QStringLiteral("/dev/full")));
    }

    void a_label_that_cannot_be_written_leaves_the_file_empty()
    {
        Support::Write_File(Path(), "the version before");
        TOpenWindow window;
        const QList<int> ids =
            Add_Pages(&window, {{QStringLiteral("a"), Support::Picture(4, 4), {}},
                                {QStringLiteral("b"),
                                 Support::Picture(4, 4),
                                 {Label(1, 1, QStringLiteral("bell\u0001"), 0, {})}},
                                {QStringLiteral("c"), Support::Picture(4, 4), {}}});
        window.d_data.Set_Active_Page(ids.first());
        const QStringList before = Describe(&window);
        QVERIFY(!window.Save_Data(Path()));
        QCOMPARE(window.d_error_text,
                 QStringLiteral("ERR:  Cannot write node 'Text' with data 'bell\u0001'"));
        QVERIFY(QFileInfo::exists(Path()));
        QCOMPARE(QFileInfo(Path()).size(), 0);
        QCOMPARE(Describe(&window), before);
        QCOMPARE(window.d_data.Active_Page(), ids.first());
    }

    void a_file_that_cannot_be_opened_is_reported_before_a_label_that_cannot_be_written()
    {
        TOpenWindow window;
        Add_Pages(&window, {{QStringLiteral("a"),
                             Support::Picture(4, 4),
                             {Label(1, 1, QStringLiteral("\u0001"), 0, {})}}});
        QVERIFY(!window.Save_Data(Path("missing/file.quillet")));
        QCOMPARE(window.d_error_text, QStringLiteral("Cannot open file for writing"));
    }

    void what_was_read_before_a_damaged_label_document_stays_data()
    {
        QTest::addColumn<QByteArray>("items");
        QTest::addColumn<QString>("reason");
        QTest::addColumn<QStringList>("labels");
        const QByteArray good = Item_Element("4", "5", "t", "1", "2.00,3.00");
        const QStringList kept{QStringLiteral("label 4 5 't' 1 2,3")};
        QTest::newRow("nothing") << QByteArray()
                                 << "ERR: Reference data XML parse error at line unexpected end of "
                                    "file column 1: 1"
                                 << QStringList();
        QTest::newRow("other version")
            << Item_List(good).replace("File_Version=\"1\"", "File_Version=\"2\"")
            << "XML Version not recognized" << QStringList();
        QTest::newRow("other root")
            << QByteArray("<Data File_Version=\"1\"/>")
            << "ERR:  Identification 'Quillet_Data' does not match 'Data'" << QStringList();
        QTest::newRow("no version")
            << QByteArray("<Quillet_Data/>") << "ERR: The 'File_Version' attribute is missing."
            << QStringList();
        QTest::newRow("position") << Item_List(good + Item_Element("5", "6", "", "1", "2.00"))
                                  << "XML Item position invalid" << kept;
        QTest::newRow("missing element")
            << Item_List(good + "<Item><Id>1</Id><Value>2</Value></Item>")
            << "ERR: Node 'Border_Type' is missing from node 'Item' and not optional." << kept;
    }

    void what_was_read_before_a_damaged_label_document_stays()
    {
        QFETCH(const QByteArray, items);
        QFETCH(const QStringList, labels);
        TOpenWindow window;
        Prepare(&window);
        window.d_label_widget->Set_Label_Index(55);
        QVERIFY(!Load(&window,
                      Header(40, color, "one", "", 3) +
                          Page_Record("a", Support::Png(Support::Picture(6, 4)), One_Label(70)) +
                          Page_Record("b", "", items) + Page_Record("c", "", One_Label(80))));
        QTEST(window.d_error_text, "reason");
        QCOMPARE(Describe(&window),
                 (QStringList{"page 1 a 6x4", "label 1 70 '' 2 1,2", "page 2 b 0x0"}) + labels);
        QCOMPARE(Describe_Appearance(window), QStringLiteral("40 #0a141e headers 'one' ''"));
        QCOMPARE(window.d_data.Active_Page(), 2);
        QCOMPARE(window.d_page_widget->Page_Ids(), (QList<int>{1, 2}));
        QVERIFY(window.d_page_widget->findChild<QListWidget*>()->selectedItems().isEmpty());
        QCOMPARE(window.d_label_widget->Take_Label_Index(), 55);
    }

    void a_negative_length_ends_the_reading_data()
    {
        QTest::addColumn<int>("field");
        QTest::addColumn<QString>("appearance");
        QTest::addColumn<QStringList>("document");
        const QString no_headers = QStringLiteral("40 #0a141e no headers");
        const QString new_look = QStringLiteral("40 #0a141e headers 'one' ''");
        const QStringList first{"page 1 a 0x0", "label 1 70 '' 2 1,2"};
        QTest::newRow("colour") << 0 << "40 #f79741 no headers" << Prepared();
        QTest::newRow("header 1") << 1 << no_headers << Prepared();
        QTest::newRow("header 2") << 2 << no_headers << Prepared();
        QTest::newRow("name") << 3 << new_look << QStringList();
        QTest::newRow("image") << 4 << new_look << QStringList();
        QTest::newRow("labels") << 5 << new_look << QStringList();
        QTest::newRow("second name") << 6 << new_look << first;
        QTest::newRow("second image") << 7 << new_look << first;
        QTest::newRow("second labels") << 8 << new_look << first;
    }

    void a_negative_length_ends_the_reading()
    {
        QFETCH(const int, field);
        QByteArray bytes = Magic() + Number(40);
        const QList<QByteArray> fields{color,         "one", "", "a",          "",
                                       One_Label(70), "b",   "", One_Label(80)};
        for (int i = 0; i < fields.size(); ++i) {
            constexpr int first_page_field = 3;
            if (i == first_page_field)
                bytes += Number(2);
            bytes += i == field ? Number(0xffffffff) + fields.at(i) : Field(fields.at(i));
        }
        TOpenWindow window;
        Prepare(&window);
        QVERIFY(!Load(&window, bytes));
        QCOMPARE(window.d_error_text, QStringLiteral("Invalid file."));
        QTEST(Describe_Appearance(window), "appearance");
        QTEST(Describe(&window), "document");
    }
};

QTEST_MAIN(TestProjectFiles)
#include "test_projectfiles.moc"
