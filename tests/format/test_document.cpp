#include "support/project.h"
#include "support/support.h"

#include "src/format/document.h"
#include "src/model/numbering.h"

#include <QTest>

#include <limits>

using Support::Label;

namespace {

void Add_Items(TDocument* document, int page_id, const std::vector<TDataItem>& items)
{
    document->data.Set_Active_Page(page_id);
    for (const TDataItem& item : items)
        document->data.Add_Item(item);
}

QList<int> Values(TData* data, int page_id)
{
    data->Set_Active_Page(page_id);
    QList<int> values;
    for (int index = 0; index < data->Item_Count(); ++index)
        values += data->Item(index).value;
    return values;
}

} // namespace

/// Documents as a whole.
class TestDocument : public QObject
{
    Q_OBJECT

private slots:
    void a_new_document_has_the_appearance_of_a_new_window()
    {
        const TDocument document;
        QCOMPARE(document.appearance.label_size, 32);
        QCOMPARE(document.appearance.color_name, QStringLiteral("#f79741"));
        QCOMPARE(document.appearance.header_1, QString());
        QCOMPARE(document.appearance.header_2, QString());
        QVERIFY(document.pages.empty());
        QCOMPARE(document.data.Active_Page(), -1);
    }

    void the_font_size_is_four_tenths_of_the_label_size_rounded_half_up_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<int>("font_size");
        QTest::newRow("16: 6.4") << 16 << 6;
        QTest::newRow("24: 9.6") << 24 << 10;
        QTest::newRow("32: 12.8") << 32 << 13;
        QTest::newRow("40: 16.0") << 40 << 16;
        QTest::newRow("128: 51.2") << 128 << 51;
    }
    void the_font_size_is_four_tenths_of_the_label_size_rounded_half_up()
    {
        QFETCH(const int, size);
        QFETCH(const int, font_size);
        QCOMPARE(TAppearance::Font_Size(size), font_size);
    }

    void a_colour_may_have_any_name_that_qt_accepts()
    {
        QCOMPARE(TAppearance::Color("#0a141e"), QColor(10, 20, 30));
        QCOMPARE(TAppearance::Color("blue"), QColor(Qt::blue));
        QVERIFY(!TAppearance::Color("bluish").isValid());
        QVERIFY(!TAppearance::Color(QString()).isValid());
    }

    void the_default_name_of_a_page_is_its_number()
    {
        QCOMPARE(TNamedPage::Default_Name(7), QStringLiteral("Page 7"));
    }

    void a_document_is_made_from_the_content_of_a_file()
    {
        const QImage picture = Support::Picture(12, 10);
        TFileContent content;
        content.label_size = 48;
        content.color_name = QStringLiteral("red");
        content.header_1 = QStringLiteral("one");
        content.header_2 = QStringLiteral("two");
        content.pages = {{"a", picture, {}}, {"b", {}, {Label(5, 7, "Pump", 2, {1, 2})}}};
        const TDocument document(content);
        QCOMPARE(document.appearance.label_size, 48);
        QCOMPARE(document.appearance.color_name, QStringLiteral("#ff0000"));
        QCOMPARE(document.appearance.header_1, QStringLiteral("one"));
        QCOMPARE(document.appearance.header_2, QStringLiteral("two"));
        QCOMPARE(document.data.Active_Page(), -1);
        QCOMPARE(document.Page_Ids(), QList<int>({1, 2}));
        QCOMPARE(document.pages[1].name, QStringLiteral("b"));
        QCOMPARE(Support::Difference(document.Content(document.pages[0]).image, picture),
                 QString());
        QVERIFY(document.Content(document.pages[0]).data_items.empty());
        QCOMPARE(document.Content(document.pages[1]).data_items.size(), std::size_t{1});
        QCOMPARE(document.Content(document.pages[1]).data_items[0].text, QStringLiteral("Pump"));
    }

    void content_without_settings_gives_the_default_appearance()
    {
        const TDocument document{TFileContent()};
        QCOMPARE(document.appearance.label_size, 32);
        QCOMPARE(document.appearance.color_name, QStringLiteral("#f79741"));
        QVERIFY(document.pages.empty());
    }

    void a_label_size_out_of_range_is_clamped_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<int>("shown");
        QTest::newRow("too small") << 15 << 16;
        QTest::newRow("smallest") << 16 << 16;
        QTest::newRow("largest") << 128 << 128;
        QTest::newRow("too large") << 129 << 128;
    }
    void a_label_size_out_of_range_is_clamped()
    {
        QFETCH(const int, size);
        TFileContent content;
        content.label_size = size;
        QTEST(TDocument(content).appearance.label_size, "shown");
    }

    void an_invalid_colour_becomes_black()
    {
        TFileContent content;
        content.color_name = QStringLiteral("bluish");
        QCOMPARE(TDocument(content).appearance.color_name, QStringLiteral("#000000"));
    }

    void the_active_page_stays()
    {
        TDocument document;
        document.Add_Page("a", TPageImage());
        document.data.Set_Active_Page(1);
        document.Add_Page({"b", {}, {Label(5, 7, "", 2, {1, 2})}});
        QCOMPARE(document.data.Active_Page(), 1);
        Number_Pages(document.Page_Ids(), 1, TNumbering::Next_1X, &document.data);
        QCOMPARE(document.data.Active_Page(), 1);
        document.data.Set_Active_Page(-1);
        Number_Pages(document.Page_Ids(), 1, TNumbering::Next_1X, &document.data);
        QCOMPARE(document.data.Active_Page(), -1);
    }

    void pages_are_numbered_in_the_given_order_data()
    {
        QTest::addColumn<int>("method");
        QTest::addColumn<QList<int>>("first_page");
        QTest::addColumn<QList<int>>("second_page");
        QTest::addColumn<int>("next");
        // The second page comes first, with three labels; then one without labels; then two labels.
        using TList = QList<int>;
        QTest::newRow("1") << int{TNumbering::Next_1X} << TList{4, 5} << TList{1, 2, 3} << 6;
        QTest::newRow("10") << int{TNumbering::Next_10X} << TList{20, 21} << TList{1, 2, 3} << 30;
        QTest::newRow("100") << int{TNumbering::Next_100X} << TList{200, 201} << TList{1, 2, 3}
                             << 300;
        QTest::newRow("1000") << int{TNumbering::Next_1000X} << TList{2000, 2001} << TList{1, 2, 3}
                              << 3000;
    }
    void pages_are_numbered_in_the_given_order()
    {
        QFETCH(const int, method);
        QFETCH(const QList<int>, first_page);
        QFETCH(const QList<int>, second_page);
        QFETCH(const int, next);
        TDocument document;
        for (const char* name : {"a", "b", "c"})
            document.Add_Page(name, TPageImage());
        Add_Items(&document, 1, {Label(1, 0, "", 0, {}), Label(2, 0, "", 0, {})});
        Add_Items(&document, 2,
                  {Label(1, 9, "", 0, {}), Label(3, 9, "", 0, {}), Label(2, 9, "", 0, {})});
        QCOMPARE(Number_Pages({2, 3, 1}, 1, method, &document.data), next);
        QCOMPARE(Values(&document.data, 1), first_page);
        QCOMPARE(Values(&document.data, 2), second_page);
    }

    void kept_pages_have_the_given_order()
    {
        TDocument document;
        for (const char* const name : {"a", "b", "c"})
            document.Add_Page(name, TPageImage());
        document.Keep_Pages({3, 1});
        QCOMPARE(document.Page_Names(), QStringList({"c", "a"}));
        QCOMPARE(document.Page_Ids(), QList<int>({3, 1}));
        QCOMPARE(document.data.Page_Count(), 2);
        QCOMPARE(document.data.Page_Id(0), 3);
    }

    void numbers_beyond_the_largest_value_are_refused()
    {
        TDocument document;
        for (const char* const name : {"a", "b"})
            document.Add_Page(name, TPageImage());
        Add_Items(&document, 1, {Label(1, 0, "", 0, {}), Label(2, 0, "", 0, {})});
        const int largest = std::numeric_limits<int>::max();
        const int method = TNumbering::Next_1X;
        QVERIFY(Can_Number_Pages({1}, largest - 1, method, document.data));
        QVERIFY(!Can_Number_Pages({1}, largest, method, document.data));
        QVERIFY(Can_Number_Pages({2}, largest, method, document.data));
    }

    void a_page_is_turned_by_right_angles_data()
    {
        QTest::addColumn<int>("right_angles");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QPoint>("corner");
        QTest::newRow("right") << 1 << QSize(20, 40) << QPoint(19, 0);
        QTest::newRow("upside down") << 2 << QSize(40, 20) << QPoint(39, 19);
        QTest::newRow("left") << 3 << QSize(20, 40) << QPoint(0, 39);
    }
    void a_page_is_turned_by_right_angles()
    {
        QFETCH(const int, right_angles);
        QImage image(40, 20, QImage::Format_RGB32);
        image.fill(Qt::white);
        image.setPixelColor(0, 0, Qt::black);
        TDocument document;
        document.Add_Page("without an image", TPageImage());
        document.Add_Page("turned", image);
        document.Add_Page("other", image);
        Add_Items(&document, 2, {Label(1, 1, "", 0, {0, 0})});
        QVERIFY(!document.Turn_Page(1, right_angles));
        QVERIFY(document.Turn_Page(2, right_angles));
        const TPageItem& page = document.Content(document.pages[1]);
        QTEST(page.image.size(), "size");
        QFETCH(const QPoint, corner);
        QCOMPARE(QImage(page.image).pixelColor(corner), QColor(Qt::black));
        const QPointF label = page.data_items.at(0).position;
        QVERIFY((label - corner).manhattanLength() <= 2);
        QCOMPARE(document.Content(document.pages[2]).image.size(), QSize(40, 20));
    }
};

QTEST_MAIN(TestDocument)
#include "test_document.moc"
