#include "support/project.h"
#include "support/support.h"

#include "src/format/document.h"
#include "src/format/projectfile.h"
#include "src/model/numbering.h"

#include <QBuffer>
#include <QtTest>

using Support::Header;
using Support::Item_Element;
using Support::Item_List;
using Support::Label;
using Support::Page_Record;

namespace {

using TPurpose = WholeDocument::TPurpose;

QByteArray Content(const TProjectWriter& writer)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    writer.Write_To(&buffer);
    return buffer.data();
}

/// A text with a character that XML does not know.
QString Bad_Text()
{
    return QStringLiteral("a") + QChar(1) + QStringLiteral("b");
}

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

/// A picture as a file that is not PNG.
QByteArray Bmp(const QImage& image)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "BMP");
    return buffer.data();
}

} // namespace

/// Documents as a whole: written and numbered.
class TestDocument : public QObject
{
    Q_OBJECT

private slots:
    void a_new_document_looks_as_the_window_does_at_its_first_start()
    {
        const TDocument document;
        QCOMPARE(document.appearance.label_size, 32);
        QCOMPARE(document.appearance.color_name, QStringLiteral("#f79741"));
        QCOMPARE(document.appearance.header_1, QString());
        QCOMPARE(document.appearance.header_2, QString());
        QVERIFY(document.pages.empty());
        QCOMPARE(document.data.Active_Page(), -1);
    }

    void the_font_is_four_tenths_of_the_label_rounded_half_up_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<int>("font_size");
        QTest::newRow("16: 6.4") << 16 << 6;
        QTest::newRow("24: 9.6") << 24 << 10;
        QTest::newRow("32: 12.8") << 32 << 13;
        QTest::newRow("40: 16.0") << 40 << 16;
        QTest::newRow("128: 51.2") << 128 << 51;
    }
    void the_font_is_four_tenths_of_the_label_rounded_half_up()
    {
        QFETCH(const int, size);
        QFETCH(const int, font_size);
        QCOMPARE(TAppearance::Font_Size(size), font_size);
    }

    void a_colour_s_name_is_what_the_toolkit_takes()
    {
        QCOMPARE(TAppearance::Color("#0a141e"), QColor(10, 20, 30));
        QCOMPARE(TAppearance::Color("blue"), QColor(Qt::blue));
        QVERIFY(!TAppearance::Color("bluish").isValid());
        QVERIFY(!TAppearance::Color(QString()).isValid());
    }

    void a_page_is_called_by_its_number()
    {
        QCOMPARE(WholeDocument::Page_Name(7), QStringLiteral("Page 7"));
    }

    void a_document_is_written_field_by_field()
    {
        TDocument document;
        document.appearance = {40, "#0a141e", "one", "two"};
        const QImage picture = Support::Picture(6, 4);
        const int page = document.Add_Page("first", picture);
        document.Add_Page("second", TPageImage());
        Add_Items(&document, page, {Label(5, 7, "Pump", 2, QPointF(1, 2.5))});
        TProjectWriter writer;
        QCOMPARE(WholeDocument::Write(document.appearance, document.pages, TPurpose::Save,
                                      &document.data, nullptr, &writer),
                 QString());
        const QByteArray expected =
            Header(40, "#0a141e", "one", "two", 2) +
            Page_Record("first", Support::Png(picture),
                        Item_List(Item_Element("5", "7", "Pump", "2", "1.00,2.50"))) +
            Page_Record("second", QByteArray(), Item_List());
        QCOMPARE(Support::Byte_Difference(Content(writer), expected), QString());
    }

    void pages_are_written_in_the_order_of_the_list()
    {
        TDocument document;
        document.Add_Page("a", TPageImage());
        document.Add_Page("b", TPageImage());
        std::swap(document.pages[0], document.pages[1]);
        QCOMPARE(document.Page_Ids(), QList<int>({2, 1}));
        TProjectWriter writer;
        WholeDocument::Write({}, document.pages, TPurpose::Save, &document.data, nullptr, &writer);
        const QByteArray expected = Header(32, "#f79741", "", "", 2) +
                                    Page_Record("b", QByteArray(), Item_List()) +
                                    Page_Record("a", QByteArray(), Item_List());
        QCOMPARE(Support::Byte_Difference(Content(writer), expected), QString());
    }

    void the_active_page_stays_data()
    {
        QTest::addColumn<int>("page");
        QTest::newRow("none") << -1;
        QTest::newRow("the first") << 1;
    }
    void the_active_page_stays()
    {
        QFETCH(const int, page);
        TDocument document;
        document.Add_Page("a", TPageImage());
        document.Add_Page("b", TPageImage());
        document.data.Set_Active_Page(page);
        TProjectWriter writer;
        WholeDocument::Write({}, document.pages, TPurpose::Save, &document.data, nullptr, &writer);
        QCOMPARE(document.data.Active_Page(), page);
        WholeDocument::Number_Pages(document.Page_Ids(), 1, TNumbering::Next_1X, &document.data);
        QCOMPARE(document.data.Active_Page(), page);
    }

    void progress_is_told_before_each_page()
    {
        TDocument document;
        document.Add_Page("a", TPageImage());
        document.Add_Page("b", TPageImage());
        QStringList steps;
        TProjectWriter writer;
        const auto note = [&steps](int number, int total) {
            steps += QStringLiteral("%1 of %2").arg(number).arg(total);
        };
        WholeDocument::Write({}, document.pages, TPurpose::Save, &document.data, note, &writer);
        QCOMPARE(steps, QStringList({"1 of 2", "2 of 2"}));
    }

    void a_text_that_cannot_be_written_is_a_fault_of_a_save_alone()
    {
        TDocument document;
        const int page = document.Add_Page("a", TPageImage());
        Add_Items(&document, page, {Label(5, 7, Bad_Text(), 2, QPointF(1, 2))});
        document.data.Set_Active_Page(-1);
        TProjectWriter refused;
        QVERIFY(!WholeDocument::Write({}, document.pages, TPurpose::Save, &document.data, nullptr,
                                      &refused)
                     .isEmpty());
        QCOMPARE(document.data.Active_Page(), -1);
        TProjectWriter writer;
        QCOMPARE(WholeDocument::Write({}, document.pages, TPurpose::Recovery_Copy, &document.data,
                                      nullptr, &writer),
                 QString());
        const QByteArray expected =
            Header(32, "#f79741", "", "", 1) +
            Page_Record("a", QByteArray(),
                        Item_List(Item_Element("5", "7", "ab", "2", "1.00,2.00")));
        QCOMPARE(Support::Byte_Difference(Content(writer), expected), QString());
    }

    void only_a_recovery_copy_takes_images_as_they_came()
    {
        const QImage picture = Support::Picture(6, 4);
        TDocument document;
        document.Add_Page("a", TPageImage::From_Bytes(Bmp(picture)));
        TProjectWriter saved;
        WholeDocument::Write({}, document.pages, TPurpose::Save, &document.data, nullptr, &saved);
        QCOMPARE(Content(saved), Header(32, "#f79741", "", "", 1) +
                                     Page_Record("a", Support::Png(picture), Item_List()));
        TProjectWriter copied;
        WholeDocument::Write({}, document.pages, TPurpose::Recovery_Copy, &document.data, nullptr,
                             &copied);
        QCOMPARE(Content(copied),
                 Header(32, "#f79741", "", "", 1) + Page_Record("a", Bmp(picture), Item_List()));
    }

    void a_recovery_copy_leaves_out_pages_that_only_the_list_has()
    {
        TDocument document;
        document.Add_Page("a", TPageImage());
        document.pages.push_back({99, "unknown"});
        TProjectWriter writer;
        WholeDocument::Write({}, document.pages, TPurpose::Recovery_Copy, &document.data, nullptr,
                             &writer);
        QCOMPARE(Content(writer),
                 Header(32, "#f79741", "", "", 1) + Page_Record("a", QByteArray(), Item_List()));
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
        QCOMPARE(WholeDocument::Number_Pages({2, 3, 1}, 1, method, &document.data), next);
        QCOMPARE(Values(&document.data, 1), first_page);
        QCOMPARE(Values(&document.data, 2), second_page);
    }
};

QTEST_MAIN(TestDocument)
#include "test_document.moc"
