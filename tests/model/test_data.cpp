// The model of the document: pages, labels, and what happens without an active page.

#include "src/data.h"
#include "support/support.h"

#include <QTest>

#include <algorithm>
#include <functional>

namespace {

TDataItem Make_Item(int id, int value = 0)
{
    TDataItem item;
    item.id = id;
    item.value = value;
    return item;
}

/// A number of labels that is large enough for the index to be rebuilt late after a removal.
constexpr int large_page = 1000;

QVector<int> Numbers(int first, int last)
{
    QVector<int> numbers;
    for (int number = first; number <= last; ++number)
        numbers.append(number);
    return numbers;
}

QVector<int> Item_Ids(const TData& data)
{
    QVector<int> ids;
    for (int index = 0; index < data.Item_Count(); ++index)
        ids.append(data.Item(index).id);
    return ids;
}

/// Adds a page with labels of these ids to an empty document, and makes it active.
void Fill(TData* data, const QVector<int>& ids)
{
    data->Set_Active_Page(data->Add_Page());
    for (const int id : ids)
        data->Add_Item(Make_Item(id));
}

using TOperation = std::function<void(TData*)>;

struct TNamedOperation
{
    const char* name;
    TOperation operation;
};

/// The operations that need an active page.
const QVector<TNamedOperation>& Guarded_Operations()
{
    static const QVector<TNamedOperation> operations{
        {"Item_Count", [](TData* data) { data->Item_Count(); }},
        {"Item_Max_Value", [](TData* data) { data->Item_Max_Value(); }},
        {"Item_Exists", [](TData* data) { data->Item_Exists(1); }},
        {"Item", [](TData* data) { data->Item(0); }},
        {"Page_Image", [](TData* data) { data->Page_Image(); }},
        {"Page_Content", [](TData* data) { data->Page_Content(); }},
        {"Set_Page_Image", [](TData* data) { data->Set_Page_Image(QImage()); }},
        {"Set_Page_Image", [](TData* data) { data->Set_Page_Image(TPageImage()); }},
        {"Add_Item", [](TData* data) { data->Add_Item(Make_Item(1)); }},
        {"Remove_Item", [](TData* data) { data->Remove_Item(1); }},
        {"Clear_Selection", [](TData* data) { data->Clear_Selection(); }},
        {"Change_Item_Value", [](TData* data) { data->Change_Item_Value(1, 2); }},
        {"Remove_Items", [](TData* data) { data->Remove_Items({1}); }},
        {"Change_Item_Text", [](TData* data) { data->Change_Item_Text(1, QString()); }},
        {"Change_Item_Border", [](TData* data) { data->Change_Item_Border(1, 2); }},
        {"Change_Item_Position", [](TData* data) { data->Change_Item_Position(1, QPointF()); }},
        {"Change_Item_Selection", [](TData* data) { data->Change_Item_Selection(1, true); }},
    };
    return operations;
}

} // namespace

Q_DECLARE_METATYPE(TOperation)

class TestData : public QObject
{
    Q_OBJECT

private slots:
    void fields_of_a_label_are_in_their_order()
    {
        const TDataItem item{1, 2, QStringLiteral("text"), 4, QPointF(5, 6), true};
        QCOMPARE(item.id, 1);
        QCOMPARE(item.value, 2);
        QCOMPARE(item.text, QStringLiteral("text"));
        QCOMPARE(item.border_type, 4);
        QCOMPARE(item.position, QPointF(5, 6));
        QCOMPARE(item.selected, true);
    }

    void fields_of_a_page_are_in_their_order_and_take_a_plain_image()
    {
        const QImage picture = Support::Picture(6, 4);
        TPageItem page{7, picture, {Make_Item(1)}};
        QCOMPARE(page.page_id, 7);
        QCOMPARE(page.image.size(), QSize(6, 4));
        QCOMPARE(static_cast<int>(page.data_items.size()), 1);
        page.image = QImage();
        QVERIFY(page.image.isNull());
    }

    void a_fresh_document_is_empty()
    {
        const TData data;
        QCOMPARE(data.Active_Page(), -1);
        QCOMPARE(data.Page_Count(), 0);
        QVERIFY(!data.Page_Image_Valid());
        QVERIFY(!data.Page_Has_Data());
        QCOMPARE(data.Page_Index(1), -1);
    }

    void page_ids_count_from_1_with_and_without_an_image()
    {
        TData data;
        QCOMPARE(data.Add_Page(), 1);
        QCOMPARE(data.Add_Page(Support::Picture(4, 4)), 2);
        QCOMPARE(data.Add_Page(TPageImage()), 3);
        QCOMPARE(data.Page_Count(), 3);
        QCOMPARE(data.Active_Page(), -1);
    }

    void replaced_content_is_that_of_the_page_and_is_recorded()
    {
        TData data;
        data.Set_Active_Page(data.Add_Page(Support::Picture(6, 4)));
        data.Add_Page();
        data.Add_Item(Make_Item(5));
        QVERIFY(data.Item_Exists(5));
        QList<int> recorded;
        data.Set_Recorder([&](const TPageItem& page) {
            recorded += page.page_id;
            recorded += static_cast<int>(page.data_items.size());
        });
        const quint64 revision = data.Page(1).revision;
        data.Replace_Content(1, Support::Picture(8, 5), {Make_Item(7)});
        data.Replace_Content(2, Support::Picture(3, 2), {Make_Item(8), Make_Item(9)});
        data.Replace_Content(3, Support::Picture(3, 2), {});
        QCOMPARE(recorded, QList<int>({1, 1, 2, 0}));
        QVERIFY(data.Page(1).revision != revision);
        QCOMPARE(data.Page_Content().size(), QSize(8, 5));
        QVERIFY(!data.Item_Exists(5));
        QVERIFY(data.Item_Exists(7));
        QCOMPARE(data.Page(2).image.size(), QSize(3, 2));
        QCOMPARE(static_cast<int>(data.Page(2).data_items.size()), 2);
        QCOMPARE(data.Page_Count(), 2);
    }

    void the_id_of_a_removed_page_is_not_reused_before_clear()
    {
        TData data;
        data.Add_Page();
        data.Add_Page();
        data.Add_Page();
        data.Remove_Page(2);
        QCOMPARE(data.Add_Page(), 4);
        data.Clear();
        QCOMPARE(data.Page_Count(), 0);
        QCOMPARE(data.Add_Page(), 1);
    }

    void constructing_a_document_restarts_the_ids_of_all()
    {
        TData first;
        first.Add_Page();
        TData second;
        QCOMPARE(first.Add_Page(), 1);
        QCOMPARE(second.Add_Page(), 2);
    }

    void adding_a_page_keeps_the_active_page()
    {
        TData data;
        data.Set_Active_Page(data.Add_Page());
        data.Add_Page();
        QCOMPARE(data.Active_Page(), 1);
    }

    void the_active_page_stays_until_it_is_removed_itself()
    {
        TData data;
        for (int count = 0; count < 4; ++count)
            data.Add_Page();
        data.Set_Active_Page(3);
        data.Add_Item(Make_Item(30));
        data.Remove_Page(1);
        QCOMPARE(data.Active_Page(), 3);
        QCOMPARE(data.Page_Index(3), 1);
        QCOMPARE(Item_Ids(data), QVector<int>{30});
        data.Remove_Page(4);
        QCOMPARE(data.Active_Page(), 3);
        data.Remove_Page(3);
        QCOMPARE(data.Active_Page(), -1);
        QCOMPARE(data.Page_Count(), 1);
        QCOMPARE(data.Page_Id(0), 2);
    }

    void a_page_is_found_by_its_id_and_must_exist()
    {
        TData data;
        data.Add_Page();
        const int page_id = data.Add_Page();
        QCOMPARE(data.Page(page_id).page_id, page_id);
        const QString difference =
            Support::Assertion_Failure([&data] { data.Page(99); }, QStringLiteral("src/data"),
                                       QStringLiteral("!(d_active_page_index < 0)"));
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
    }

    void removing_an_unknown_page_changes_nothing()
    {
        TData data;
        data.Set_Active_Page(data.Add_Page());
        data.Remove_Page(99);
        QCOMPARE(data.Page_Count(), 1);
        QCOMPARE(data.Active_Page(), 1);
    }

    void an_unknown_active_page_leaves_none()
    {
        TData data;
        QVERIFY(data.Set_Active_Page(data.Add_Page()));
        QVERIFY(!data.Set_Active_Page(99));
        QCOMPARE(data.Active_Page(), -1);
        QVERIFY(!data.Page_Image_Valid());
        QVERIFY(!data.Page_Has_Data());
    }

    void pages_are_found_by_id_and_by_index()
    {
        TData data;
        data.Add_Page();
        data.Add_Page();
        data.Add_Page();
        data.Remove_Page(1);
        QCOMPARE(data.Page_Index(2), 0);
        QCOMPARE(data.Page_Index(3), 1);
        QCOMPARE(data.Page_Index(1), -1);
        QCOMPARE(data.Page_Id(0), 2);
        QCOMPARE(data.Page_Id(1), 3);
    }

    void the_image_of_the_active_page_can_be_read_and_replaced()
    {
        const QImage first = Support::Picture(20, 10, 1);
        const QImage second = Support::Picture(15, 12, 2);
        TData data;
        data.Set_Active_Page(data.Add_Page(first));
        const int other_page = data.Add_Page();
        QVERIFY(data.Page_Image_Valid());
        QCOMPARE(data.Page_Image(), first);
        data.Set_Page_Image(second);
        QCOMPARE(data.Page_Image(), second);
        QCOMPARE(data.Page_Content().size(), second.size());
        data.Set_Page_Image(TPageImage::From_Bytes(Support::Png(first)));
        QCOMPARE(data.Page_Image(), first);
        data.Set_Active_Page(other_page);
        QVERIFY(!data.Page_Image_Valid());
        QVERIFY(data.Page_Image().isNull());
    }

    void bytes_that_are_not_an_image_make_a_page_without_a_valid_image()
    {
        TData data;
        data.Set_Active_Page(data.Add_Page(TPageImage::From_Bytes("no image")));
        QVERIFY(!data.Page_Image_Valid());
        QVERIFY(data.Page_Image().isNull());
    }

    void a_page_with_an_image_only_has_no_data()
    {
        TData data;
        data.Set_Active_Page(data.Add_Page(Support::Picture(4, 4)));
        QVERIFY(!data.Page_Has_Data());
        data.Add_Item(Make_Item(1));
        QVERIFY(data.Page_Has_Data());
        data.Remove_Item(1);
        QVERIFY(!data.Page_Has_Data());
    }

    void clear_leaves_no_pages()
    {
        TData data;
        Fill(&data, {1, 2});
        data.Remove_Item(1);
        data.Clear();
        QCOMPARE(data.Page_Count(), 0);
        QCOMPARE(data.Active_Page(), -1);
        Fill(&data, {});
        QVERIFY(!data.Page_Has_Data());
        QVERIFY(!data.Item_Exists(2));
    }

    void labels_are_copied_completely_and_keep_their_order()
    {
        TData data;
        Fill(&data, {});
        QVERIFY(data.Add_Item({5, 10, QStringLiteral("five"), 4, QPointF(1.5, -2.25), true}));
        QVERIFY(data.Add_Item({-3, 10, QString(), 0, QPointF(), false}));
        QCOMPARE(data.Item_Count(), 2);
        const TDataItem item = data.Item(0);
        QCOMPARE(item.id, 5);
        QCOMPARE(item.value, 10);
        QCOMPARE(item.text, QStringLiteral("five"));
        QCOMPARE(item.border_type, 4);
        QCOMPARE(item.position, QPointF(1.5, -2.25));
        QVERIFY(item.selected);
        QCOMPARE(data.Item(1).id, -3);
        QVERIFY(data.Item_Exists(-3));
        QVERIFY(!data.Item_Exists(10));
    }

    void an_id_is_unique_on_its_page()
    {
        TData data;
        Fill(&data, {1});
        QVERIFY(!data.Add_Item(Make_Item(1, 44)));
        QCOMPARE(data.Item_Count(), 1);
        QCOMPARE(data.Item(0).value, 0);
        data.Set_Active_Page(data.Add_Page());
        QVERIFY(data.Add_Item(Make_Item(1, 55)));
        QCOMPARE(data.Item(0).value, 55);
        data.Set_Active_Page(1);
        QCOMPARE(data.Item(0).value, 0);
    }

    void largest_value_starts_at_0_data()
    {
        QTest::addColumn<QVector<int>>("values");
        QTest::addColumn<int>("largest");
        QTest::newRow("no labels") << QVector<int>{} << 0;
        QTest::newRow("negative values") << QVector<int>{-5, -2} << 0;
        QTest::newRow("largest in between") << QVector<int>{3, 12, 7} << 12;
        QTest::newRow("one negative") << QVector<int>{-9, 4} << 4;
        QTest::newRow("largest integer") << QVector<int>{0, 2147483647} << 2147483647;
    }

    void largest_value_starts_at_0()
    {
        QFETCH(const QVector<int>, values);
        QFETCH(const int, largest);
        TData data;
        Fill(&data, {});
        for (int index = 0; index < values.size(); ++index)
            data.Add_Item(Make_Item(index, values[index]));
        QCOMPARE(data.Item_Max_Value(), largest);
    }

    void the_value_of_a_removed_label_no_longer_counts()
    {
        TData data;
        Fill(&data, {});
        data.Add_Item(Make_Item(1, 5));
        data.Add_Item(Make_Item(2, 9));
        data.Add_Item(Make_Item(3, 4));
        data.Remove_Item(2);
        QCOMPARE(data.Item_Max_Value(), 5);
    }

    void removing_keeps_the_order_of_the_others()
    {
        TData data;
        Fill(&data, {10, 20, 30});
        QVERIFY(data.Remove_Item(20));
        QCOMPARE(data.Item_Count(), 2);
        QCOMPARE(Item_Ids(data), (QVector<int>{10, 30}));
        QVERIFY(!data.Remove_Item(20));
        QVERIFY(!data.Item_Exists(20));
        QCOMPARE(data.Item_Count(), 2);
    }

    void a_label_added_again_goes_to_the_end()
    {
        TData data;
        Fill(&data, {1, 2, 3, 4, 5});
        data.Remove_Item(2);
        QVERIFY(data.Add_Item(Make_Item(2, 77)));
        QVERIFY(data.Change_Item_Border(2, 8));
        QVERIFY(data.Change_Item_Border(3, 4));
        QCOMPARE(data.Item_Count(), 5);
        QCOMPARE(Item_Ids(data), (QVector<int>{1, 3, 4, 5, 2}));
        QCOMPARE(data.Item(4).value, 77);
        QCOMPARE(data.Item(4).border_type, 8);
        QCOMPARE(data.Item(1).border_type, 4);
    }

    void changes_reach_the_label_with_the_id_only()
    {
        TData data;
        Fill(&data, {1, 2});
        QVERIFY(data.Change_Item_Value(2, -8));
        QVERIFY(data.Change_Item_Text(2, QStringLiteral("two")));
        QVERIFY(data.Change_Item_Border(2, 12345));
        QVERIFY(data.Change_Item_Position(2, QPointF(-100.5, 1e9)));
        QVERIFY(data.Change_Item_Selection(2, true));
        const TDataItem changed = data.Item(1);
        QCOMPARE(changed.id, 2);
        QCOMPARE(changed.value, -8);
        QCOMPARE(changed.text, QStringLiteral("two"));
        QCOMPARE(changed.border_type, 12345);
        QCOMPARE(changed.position, QPointF(-100.5, 1e9));
        QVERIFY(changed.selected);
        const TDataItem other = data.Item(0);
        QCOMPARE(other.value, 0);
        QVERIFY(other.text.isEmpty());
        QCOMPARE(other.border_type, 0);
        QCOMPARE(other.position, QPointF());
        QVERIFY(!other.selected);
        QVERIFY(data.Change_Item_Selection(2, false));
        QVERIFY(!data.Item(1).selected);
    }

    void labels_are_numbered_in_their_order()
    {
        TData data;
        Fill(&data, {5, 3, 9, 1});
        QVERIFY(data.Remove_Item(3));
        int value = 10;
        data.Number_Items(1, false, [&value] { return value++; });
        QCOMPARE(data.Item_Count(), 3);
        for (int index = 0; index < 3; ++index)
            QCOMPARE(data.Item(index).value, 10 + index);

        QVERIFY(data.Change_Item_Selection(1, true));
        data.Number_Items(1, true, [] { return -4; });
        QCOMPARE(data.Item(0).value, 10);
        QCOMPARE(data.Item(1).value, 11);
        QCOMPARE(data.Item(2).value, -4);
    }

    void an_unknown_id_is_not_an_error()
    {
        TData data;
        Fill(&data, {1});
        QVERIFY(!data.Item_Exists(2));
        QVERIFY(!data.Remove_Item(2));
        QVERIFY(!data.Change_Item_Value(2, 1));
        QVERIFY(!data.Change_Item_Text(2, QStringLiteral("x")));
        QVERIFY(!data.Change_Item_Border(2, 1));
        QVERIFY(!data.Change_Item_Position(2, QPointF(1, 1)));
        QVERIFY(!data.Change_Item_Selection(2, true));
        QCOMPARE(data.Item_Count(), 1);
        QCOMPARE(data.Item(0).value, 0);
    }

    void the_selection_is_cleared_on_the_active_page_only()
    {
        TData data;
        Fill(&data, {1, 2});
        data.Change_Item_Selection(1, true);
        data.Change_Item_Selection(2, true);
        data.Set_Active_Page(data.Add_Page());
        data.Add_Item({1, 1, QString(), 0, QPointF(), true});
        data.Clear_Selection();
        QVERIFY(!data.Item(0).selected);
        data.Set_Active_Page(1);
        QVERIFY(data.Item(0).selected);
        data.Clear_Selection();
        QVERIFY(!data.Item(0).selected);
        QVERIFY(!data.Item(1).selected);
    }

    void removed_labels_stay_removed_when_pages_change_data()
    {
        QTest::addColumn<TOperation>("change");
        QTest::newRow("another page and back") << TOperation([](TData* data) {
            data->Set_Active_Page(1);
            QCOMPARE(Item_Ids(*data), (QVector<int>{2, 3}));
            data->Set_Active_Page(2);
        });
        QTest::newRow("no page and back") << TOperation([](TData* data) {
            data->Set_Active_Page(99);
            data->Set_Active_Page(2);
        });
        QTest::newRow("page before removed")
            << TOperation([](TData* data) { data->Remove_Page(1); });
        QTest::newRow("page after the removed one")
            << TOperation([](TData* data) { data->Remove_Page(3); });
        QTest::newRow("page added") << TOperation([](TData* data) { data->Add_Page(); });
        QTest::newRow("same page again")
            << TOperation([](TData* data) { data->Set_Active_Page(2); });
        QTest::newRow("document copied") << TOperation([](TData* data) {
            const TData copy = *data;
            *data = copy;
        });
    }

    void removed_labels_stay_removed_when_pages_change()
    {
        QFETCH(const TOperation, change);
        for (const int count : {6, large_page}) {
            TData data;
            Fill(&data, {2, 3});
            Fill(&data, Numbers(1, count));
            data.Add_Page();
            data.Remove_Item(2);
            data.Remove_Item(5);
            change(&data);
            QCOMPARE(data.Active_Page(), 2);
            QCOMPARE(data.Item_Count(), count - 2);
            QVERIFY(!data.Item_Exists(2));
            QVERIFY(data.Change_Item_Value(6, 66));
            QCOMPARE(Item_Ids(data), (QVector<int>{1, 3, 4}) + Numbers(6, count));
            QCOMPARE(data.Item(3).value, 66);
        }
    }

    void the_active_page_can_be_removed_right_after_some_of_its_labels()
    {
        for (const int count : {4, large_page}) {
            TData data;
            Fill(&data, Numbers(1, count));
            data.Add_Page();
            data.Remove_Item(1);
            data.Remove_Page(1);
            QCOMPARE(data.Active_Page(), -1);
            data.Set_Active_Page(2);
            QCOMPARE(data.Item_Count(), 0);
            QVERIFY(!data.Item_Exists(2));
        }
    }

    void random_operations_give_the_same_labels_as_on_a_plain_list_data()
    {
        QTest::addColumn<int>("id_count");
        QTest::newRow("small page") << 97;
        QTest::newRow("large page") << 2 * large_page;
    }

    // The same random operations on a plain list of ids and values give the same labels.
    void random_operations_give_the_same_labels_as_on_a_plain_list()
    {
        QFETCH(const int, id_count);
        TData data;
        Fill(&data, {});
        QVector<TDataItem> expected;
        quint32 random = 12345;
        for (int round = 0; round < 20000; ++round) {
            random = random * 1664525u + 1013904223u;
            const int id = static_cast<int>(random >> 8) % id_count;
            const auto found = std::find_if(expected.begin(), expected.end(),
                                            [id](const TDataItem& item) { return item.id == id; });
            const bool exists = found != expected.end();
            switch ((random >> 28) % 4) {
            case 0:
                QCOMPARE(data.Add_Item(Make_Item(id, round)), !exists);
                if (!exists)
                    expected.append(Make_Item(id, round));
                break;
            case 1:
                QCOMPARE(data.Remove_Item(id), exists);
                if (exists)
                    expected.erase(found);
                break;
            case 2:
                QCOMPARE(data.Change_Item_Value(id, round), exists);
                if (exists)
                    found->value = round;
                break;
            default:
                QCOMPARE(data.Item_Exists(id), exists);
                if (!expected.isEmpty() && id % 4 == 0) {
                    const int index = id % expected.size();
                    QCOMPARE(data.Item(index).id, expected[index].id);
                    QCOMPARE(data.Item(index).value, expected[index].value);
                }
            }
            QCOMPARE(data.Item_Count(), expected.size());
        }
        for (int index = 0; index < expected.size(); ++index)
            QCOMPARE(data.Item(index).id, expected[index].id);
    }

    void labels_of_any_page_are_numbered()
    {
        TData data;
        Fill(&data, {5, 3});
        Fill(&data, {8});
        int value = 10;
        data.Number_Items(1, false, [&value] { return value++; });
        QCOMPARE(data.Active_Page(), 2);
        QCOMPARE(data.Item(0).value, 0);
        QCOMPARE(data.Pages()[0].data_items[0].value, 10);
        QCOMPARE(data.Pages()[0].data_items[1].value, 11);
        data.Set_Active_Page(-1);
        data.Number_Items(2, false, [] { return -4; });
        QCOMPARE(data.Pages()[1].data_items[0].value, -4);
        data.Number_Items(99, false, [&value] { return value++; });
        QCOMPARE(value, 12);
    }

    void several_labels_are_removed_at_once()
    {
        TData data;
        Fill(&data, {5, 3, 9, 1});
        QCOMPARE(data.Remove_Items({1, 7, 3, 1}), 2);
        QCOMPARE(Item_Ids(data), (QVector<int>{5, 9}));
        QVERIFY(!data.Item_Exists(3));
        QVERIFY(data.Change_Item_Value(9, 90));
        QCOMPARE(data.Item(1).value, 90);
        QCOMPARE(data.Remove_Items({}), 0);
        QCOMPARE(data.Remove_Items({3}), 0);
        QCOMPARE(Item_Ids(data), (QVector<int>{5, 9}));
    }

    void swapping_pages_keeps_the_selection()
    {
        TData data;
        Fill(&data, {5, 3});
        std::vector<TPageItem> previous = {data.Pages()[0]};
        data.Change_Item_Value(5, 50);
        data.Change_Item_Selection(5, true);
        std::vector<int> order = {1};
        data.Swap_Pages(&order, &previous);
        QCOMPARE(data.Pages()[0].data_items[0].value, 0);
        QVERIFY(data.Pages()[0].data_items[0].selected);
        QVERIFY(!data.Pages()[0].data_items[1].selected);
    }

    void every_change_of_a_page_gives_it_a_new_revision_data()
    {
        QTest::addColumn<TOperation>("change");
        QTest::addColumn<bool>("is_new");
        const auto row = [](const char* name, const TOperation& change, bool is_new) {
            QTest::newRow(name) << change << is_new;
        };
        row(
            "add a label", [](TData* data) { data->Add_Item(Make_Item(9)); }, true);
        row(
            "add a label again", [](TData* data) { data->Add_Item(Make_Item(5)); }, false);
        row(
            "remove a label", [](TData* data) { data->Remove_Item(5); }, true);
        row(
            "remove no label", [](TData* data) { data->Remove_Item(6); }, false);
        row(
            "value", [](TData* data) { data->Change_Item_Value(5, 7); }, true);
        row(
            "same value", [](TData* data) { data->Change_Item_Value(5, 0); }, false);
        row(
            "text", [](TData* data) { data->Change_Item_Text(5, "text"); }, true);
        row(
            "border", [](TData* data) { data->Change_Item_Border(5, Ellipse_Border); }, true);
        row(
            "position",
            [](TData* data) {
                data->Change_Item_Position(5, {7, 7});
            },
            true);
        row(
            "numbers", [](TData* data) { data->Number_Items(1, false, [] { return 7; }); }, true);
        row(
            "image", [](TData* data) { data->Set_Page_Image(QImage()); }, true);
        row(
            "selection", [](TData* data) { data->Change_Item_Selection(5, true); }, false);
        row(
            "no selection", [](TData* data) { data->Clear_Selection(); }, false);
        row(
            "other page", [](TData* data) { data->Add_Page(); }, false);
    }

    void every_change_of_a_page_gives_it_a_new_revision()
    {
        QFETCH(const TOperation, change);
        QFETCH(const bool, is_new);
        TData data;
        Fill(&data, {5, 3});
        const quint64 before = data.Pages()[0].revision;
        change(&data);
        QCOMPARE(data.Pages()[0].revision != before, is_new);
        TData other;
        Fill(&other, {});
        QVERIFY(other.Pages()[0].revision > data.Pages()[0].revision);
    }

    void a_restored_page_has_its_previous_revision()
    {
        TData data;
        Fill(&data, {5, 3});
        std::vector<TPageItem> previous;
        data.Set_Recorder([&previous](const TPageItem& page) { previous.push_back(page); });
        const quint64 before = data.Pages()[0].revision;
        data.Change_Item_Value(5, 50);
        std::vector<int> order = {1};
        data.Swap_Pages(&order, &previous);
        QCOMPARE(data.Pages()[0].revision, before);
    }

    void thousands_of_labels_are_found_and_removed()
    {
        constexpr int Count = 20000;
        TData data;
        Fill(&data, {});
        for (int id = 0; id < Count; ++id)
            QVERIFY(data.Add_Item(Make_Item(id * 7, id)));
        for (int id = 0; id < Count; ++id)
            QVERIFY(data.Change_Item_Position(id * 7, QPointF(id, 1)));
        std::vector<int> even;
        for (int id = 0; id < Count; id += 2)
            even.push_back(id * 7);
        QCOMPARE(data.Remove_Items(even), Count / 2);
        QCOMPARE(data.Item_Count(), Count / 2);
        for (int index = 0; index < Count / 2; ++index)
            QCOMPARE(data.Item(index).value, index * 2 + 1);
    }

    void operations_without_an_active_page_fail_an_assertion_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<TOperation>("operation");
        for (const TNamedOperation& entry : Guarded_Operations())
            QTest::addRow("%s", entry.name) << QString::fromLatin1(entry.name) << entry.operation;
    }

    void operations_without_an_active_page_fail_an_assertion()
    {
        QFETCH(const QString, name);
        QFETCH(const TOperation, operation);
        const QString difference = Support::Assertion_Failure(
            [&operation] {
                TData data;
                data.Add_Page();
                operation(&data);
            },
            QStringLiteral("src/data"), QStringLiteral("!(d_active_page_index < 0)"),
            QStringLiteral("TData::") + name + QLatin1Char('('));
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
    }

    void a_page_index_out_of_range_fails_an_assertion_data()
    {
        QTest::addColumn<int>("index");
        QTest::newRow("before the first") << -1;
        QTest::newRow("after the last") << 1;
    }

    void a_page_index_out_of_range_fails_an_assertion()
    {
        QFETCH(const int, index);
        const QString difference = Support::Assertion_Failure(
            [index] {
                TData data;
                data.Add_Page();
                data.Page_Id(index);
            },
            QStringLiteral("src/data"),
            QStringLiteral("static_cast<unsigned int>(index) < d_page_items.size()"),
            QStringLiteral("int TData::Page_Id(int) const"));
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
    }

    void a_label_index_out_of_range_fails_an_assertion_data()
    {
        QTest::addColumn<int>("index");
        QTest::newRow("before the first") << -1;
        QTest::newRow("the one just removed") << 2;
        QTest::newRow("after the last") << 3;
    }

    void a_label_index_out_of_range_fails_an_assertion()
    {
        QFETCH(const int, index);
        const QString difference = Support::Assertion_Failure(
            [index] {
                TData data;
                Fill(&data, {1, 2, 3});
                data.Remove_Item(1);
                data.Item(index);
            },
            QStringLiteral("src/data"),
            QStringLiteral("static_cast<unsigned int>(index) < "
                           "d_page_items[d_active_page_index].data_items.size()"),
            QStringLiteral("TDataItem TData::Item(int) const"));
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
    }
};

QTEST_MAIN(TestData)
#include "test_data.moc"
