// What the model notes while a step lasts, and that exchanging it goes back and forth.

#include "src/data.h"
#include "src/model/datachange.h"

#include "support/project.h"
#include "support/support.h"

#include <QtTest>

#include <cmath>
#include <functional>
#include <limits>
#include <random>

namespace {

using TCommand = std::function<void(TData*)>;

/// All pages and labels as lines, without the selection; the active page stays.
QStringList In_Words(TData* data)
{
    QStringList lines;
    const int active_page = data->Active_Page();
    for (int place = 0; place < data->Page_Count(); ++place) {
        data->Set_Active_Page(data->Page_Id(place));
        lines += QString("page %1 %2").arg(data->Active_Page()).arg(data->Page_Image().width());
        for (int i = 0; i < data->Item_Count(); ++i) {
            TDataItem label = data->Item(i);
            label.selected = false;
            lines += Support::Describe_Label(label);
        }
    }
    data->Set_Active_Page(active_page);
    return lines;
}

} // namespace

Q_DECLARE_METATYPE(TCommand)

class TestDataChange : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void every_change_goes_back_and_forth_data();
    void every_change_goes_back_and_forth();
    void what_changes_nothing_is_not_noted_data();
    void what_changes_nothing_is_not_noted();
    void without_a_record_nothing_is_noted();
    void a_change_that_is_made_good_is_void();
    void labels_removed_from_a_large_page_come_back_in_order();
    void removals_with_other_changes_between_them_come_back();
    void a_page_comes_back_in_its_place();
    void the_active_page_stays_active();
    void the_selection_is_no_part_of_a_change();
    void a_removed_page_is_kept_without_pixels();
    void touched_pages_are_told_once();
    void notes_about_what_is_not_there_are_passed_over();
    void a_random_walk_goes_back_to_where_it_began();

private:
    void Run(const TCommand& command, TDataChange* change);

    std::unique_ptr<TData> d_data;
};

/// Two pages: page 1 with the labels 11 to 13 is active, page 2 has none.
void TestDataChange::init()
{
    d_data = std::make_unique<TData>();
    d_data->Add_Page(Support::Picture(30, 20));
    d_data->Add_Page(Support::Picture(40, 20));
    d_data->Set_Active_Page(1);
    for (int id = 11; id <= 13; ++id)
        d_data->Add_Item({id, id - 10, "text", 2, QPointF(id, 5), false});
}

void TestDataChange::Run(const TCommand& command, TDataChange* change)
{
    d_data->Set_Record(change);
    command(d_data.get());
    d_data->Set_Record(nullptr);
}

void TestDataChange::every_change_goes_back_and_forth_data()
{
    QTest::addColumn<TCommand>("command");
    const auto add = [](const char* name, const TCommand& command) {
        QTest::newRow(name) << command;
    };
    add("value", [](TData* data) { data->Change_Item_Value(12, 9); });
    add("text", [](TData* data) { data->Change_Item_Text(12, "other"); });
    add("border", [](TData* data) { data->Change_Item_Border(12, 8); });
    add("position", [](TData* data) { data->Change_Item_Position(12, QPointF(1.5, -2)); });
    add("a position that differs by next to nothing",
        [](TData* data) { data->Change_Item_Position(12, QPointF(12.0000000000001, 5)); });
    add("twice the same label", [](TData* data) {
        data->Change_Item_Value(12, 9);
        data->Change_Item_Value(12, 10);
    });
    add("all values", [](TData* data) {
        int next = 50;
        data->Number_Items(data->Active_Page(), false, [&next] { return next++; });
    });
    add("values of selected labels", [](TData* data) {
        data->Change_Item_Selection(13, true);
        data->Number_Items(data->Active_Page(), true, [] { return 7; });
    });
    add("a new label", [](TData* data) { data->Add_Item({14, 4, "", 1, QPointF(), false}); });
    add("a new label that moves", [](TData* data) {
        data->Add_Item({14, 4, "", 1, QPointF(), false});
        data->Change_Item_Position(14, QPointF(3, 4));
    });
    add("the first label removed", [](TData* data) { data->Remove_Item(11); });
    add("the last label removed", [](TData* data) { data->Remove_Item(13); });
    add("all labels removed", [](TData* data) {
        for (const int id : {12, 11, 13})
            data->Remove_Item(id);
    });
    add("a new page", [](TData* data) { data->Add_Page(); });
    add("a new page with an image", [](TData* data) { data->Add_Page(Support::Picture(9, 9)); });
    add("a page removed", [](TData* data) { data->Remove_Page(2); });
    add("the active page removed", [](TData* data) { data->Remove_Page(1); });
    add("all pages removed", [](TData* data) {
        data->Remove_Page(1);
        data->Remove_Page(2);
    });
    add("another image", [](TData* data) { data->Set_Page_Image(Support::Picture(7, 7)); });
    add("two pages changed", [](TData* data) {
        data->Change_Item_Value(11, 8);
        data->Set_Active_Page(2);
        data->Add_Item({11, 1, "", 1, QPointF(), false});
        data->Set_Active_Page(1);
    });
}

void TestDataChange::every_change_goes_back_and_forth()
{
    QFETCH(TCommand, command);
    const QStringList before = In_Words(d_data.get());
    TDataChange change;
    Run(command, &change);
    const QStringList after = In_Words(d_data.get());
    QVERIFY(!change.Is_Empty());
    QVERIFY(!change.Is_Void(*d_data));
    for (int round = 0; round < 3; ++round) {
        d_data->Swap(&change);
        QCOMPARE(In_Words(d_data.get()), before);
        d_data->Swap(&change);
        QCOMPARE(In_Words(d_data.get()), after);
    }
}

void TestDataChange::what_changes_nothing_is_not_noted_data()
{
    QTest::addColumn<TCommand>("command");
    const auto add = [](const char* name, const TCommand& command) {
        QTest::newRow(name) << command;
    };
    add("nothing", [](TData*) {});
    add("the same value", [](TData* data) { data->Change_Item_Value(12, 2); });
    add("the same text", [](TData* data) { data->Change_Item_Text(12, "text"); });
    add("the same position", [](TData* data) { data->Change_Item_Position(12, QPointF(12, 5)); });
    add("the same numbers", [](TData* data) {
        int next = 1;
        data->Number_Items(data->Active_Page(), false, [&next] { return next++; });
    });
    add("the same image", [](TData* data) { data->Set_Page_Image(data->Page_Content()); });
    add("an unknown label", [](TData* data) { data->Remove_Item(99); });
    add("an unknown page", [](TData* data) { data->Remove_Page(99); });
    add("an id that is taken", [](TData* data) { data->Add_Item({12, 9, "", 1, {}, false}); });
    add("a selection", [](TData* data) { data->Change_Item_Selection(12, true); });
    add("another active page", [](TData* data) { data->Set_Active_Page(2); });
}

void TestDataChange::what_changes_nothing_is_not_noted()
{
    QFETCH(TCommand, command);
    TDataChange change;
    Run(command, &change);
    QVERIFY(change.Is_Empty());
    QVERIFY(change.Is_Void(*d_data));
}

void TestDataChange::without_a_record_nothing_is_noted()
{
    TDataChange change;
    Run([](TData*) {}, &change);
    d_data->Change_Item_Value(12, 99);
    d_data->Remove_Page(2);
    QVERIFY(change.Is_Empty());
}

void TestDataChange::a_change_that_is_made_good_is_void()
{
    TDataChange change;
    Run([](TData* data) { data->Change_Item_Value(12, 9); }, &change);
    QVERIFY(!change.Is_Void(*d_data));
    Run([](TData* data) { data->Change_Item_Value(12, 2); }, &change);
    QVERIFY(change.Is_Void(*d_data));
    // A coordinate that is no number equals itself here.
    const QPointF nowhere(std::numeric_limits<double>::quiet_NaN(), 0);
    d_data->Change_Item_Position(13, nowhere);
    TDataChange none;
    Run([nowhere](TData* data) { data->Change_Item_Position(13, nowhere); }, &none);
    QVERIFY(none.Is_Empty());
}

void TestDataChange::labels_removed_from_a_large_page_come_back_in_order()
{
    for (int id = 100; id < 1500; ++id)
        d_data->Add_Item({id, id, "", 1, QPointF(id, id), false});
    std::vector<int> ids;
    for (int id = 100; id < 1500; id += id % 3 + 1)
        ids.push_back(id);
    std::shuffle(ids.begin(), ids.end(), std::mt19937(1));
    const QStringList before = In_Words(d_data.get());
    TDataChange change;
    Run(
        [&ids](TData* data) {
            for (const int id : ids)
                data->Remove_Item(id);
        },
        &change);
    const QStringList after = In_Words(d_data.get());
    QCOMPARE(before.size() - after.size(), static_cast<int>(ids.size()));
    d_data->Swap(&change);
    QCOMPARE(In_Words(d_data.get()), before);
    d_data->Swap(&change);
    QCOMPARE(In_Words(d_data.get()), after);
}

void TestDataChange::removals_with_other_changes_between_them_come_back()
{
    for (int id = 100; id < 500; ++id)
        d_data->Add_Item({id, id, "", 1, QPointF(id, id), false});
    const QStringList before = In_Words(d_data.get());
    TDataChange change;
    Run(
        [](TData* data) {
            for (int id = 100; id < 500; id += 3) {
                data->Remove_Item(id);
                data->Change_Item_Value(id + 1, 0);
                if (id % 2 == 0)
                    data->Add_Item({id + 1000, 1, "", 1, QPointF(), false});
                if (id % 10 == 0)
                    data->Remove_Item(data->Item(data->Item_Count() - 1).id);
            }
            data->Add_Item({100, 5, "again", 1, QPointF(), false});
        },
        &change);
    const QStringList after = In_Words(d_data.get());
    d_data->Swap(&change);
    QCOMPARE(In_Words(d_data.get()), before);
    d_data->Swap(&change);
    QCOMPARE(In_Words(d_data.get()), after);
}

void TestDataChange::a_page_comes_back_in_its_place()
{
    d_data->Add_Page();
    TDataChange change;
    Run([](TData* data) { data->Remove_Page(2); }, &change);
    QCOMPARE(d_data->Page_Index(3), 1);
    d_data->Swap(&change);
    QCOMPARE(d_data->Page_Index(2), 1);
    QCOMPARE(d_data->Page_Index(3), 2);
    // An id is given once, whatever is taken back.
    QCOMPARE(d_data->Add_Page(), 4);
}

void TestDataChange::the_active_page_stays_active()
{
    TDataChange change;
    d_data->Set_Active_Page(2);
    Run([](TData* data) { data->Remove_Page(1); }, &change);
    QCOMPARE(d_data->Active_Page(), 2);
    d_data->Swap(&change);
    QCOMPARE(d_data->Active_Page(), 2);
    QCOMPARE(d_data->Page_Index(2), 1);
    d_data->Set_Active_Page(1);
    d_data->Swap(&change);
    QCOMPARE(d_data->Active_Page(), -1);
}

void TestDataChange::the_selection_is_no_part_of_a_change()
{
    TDataChange change;
    Run([](TData* data) { data->Change_Item_Value(12, 9); }, &change);
    d_data->Change_Item_Selection(12, true);
    d_data->Swap(&change);
    QVERIFY(d_data->Item(1).selected);
    QCOMPARE(d_data->Item(1).value, 2);
}

void TestDataChange::a_removed_page_is_kept_without_pixels()
{
    d_data->Add_Page(TPageImage::From_Bytes(Support::Png(Support::Picture(50, 50))));
    d_data->Set_Active_Page(3);
    QCOMPARE(d_data->Page_Image().width(), 50);
    const qint64 stored = TPageImage::Stored_Bytes();
    QVERIFY(stored >= 50 * 50 * 4);
    TDataChange change;
    Run([](TData* data) { data->Remove_Page(3); }, &change);
    QCOMPARE(TPageImage::Stored_Bytes(), stored - 50 * 50 * 4);
    d_data->Swap(&change);
    d_data->Set_Active_Page(3);
    QCOMPARE(Support::Difference(d_data->Page_Image(), Support::Picture(50, 50)), QString());
    // The same when it is an added page that goes.
    TDataChange addition;
    Run([](TData* data) { data->Add_Page(Support::Picture(60, 10)); }, &addition);
    d_data->Swap(&addition);
    d_data->Swap(&addition);
    d_data->Set_Active_Page(4);
    QCOMPARE(Support::Difference(d_data->Page_Image(), Support::Picture(60, 10)), QString());
}

void TestDataChange::touched_pages_are_told_once()
{
    TDataChange change;
    Run(
        [](TData* data) {
            data->Change_Item_Value(11, 8);
            data->Change_Item_Value(12, 8);
            data->Remove_Page(2);
            data->Add_Page();
            data->Remove_Item(13);
        },
        &change);
    QCOMPARE(change.Touched_Pages(), (std::vector<int>{1, 2, 3}));
}

void TestDataChange::notes_about_what_is_not_there_are_passed_over()
{
    TDataChange change;
    Run(
        [](TData* data) {
            data->Change_Item_Value(11, 8);
            data->Remove_Item(12);
            int next = 70;
            data->Number_Items(data->Active_Page(), false, [&next] { return next++; });
            data->Set_Page_Image(Support::Picture(3, 3));
            data->Add_Page();
            data->Remove_Page(2);
        },
        &change);
    d_data->Clear();
    d_data->Swap(&change);
    QCOMPARE(In_Words(d_data.get()), QStringList("page 2 40"));
    d_data->Swap(&change);
    QCOMPARE(In_Words(d_data.get()), QStringList());
}

/// Steps of several changes each, on pages small and large, all taken back and done again.
void TestDataChange::a_random_walk_goes_back_to_where_it_began()
{
    std::mt19937 random(7);
    const auto below = [&random](int limit) {
        return static_cast<int>(random() % unsigned(limit));
    };
    for (int id = 100; id < 700; ++id)
        d_data->Add_Item({id, id, "", 1, QPointF(id, id), false});
    const auto change_something = [&below](TData* data) {
        if (data->Active_Page() < 0 && data->Page_Count() > 0)
            data->Set_Active_Page(data->Page_Id(below(data->Page_Count())));
        const int choice = data->Active_Page() < 0 ? 8 : below(10);
        const int id = below(800);
        int next = below(1000);
        if (choice < 3)
            data->Remove_Item(id);
        else if (choice < 5)
            data->Add_Item({id, id, "new", 1, QPointF(id, 0), false});
        else if (choice == 5)
            data->Change_Item_Value(id, below(100));
        else if (choice == 6)
            data->Number_Items(data->Active_Page(), below(2) == 0, [&next] { return next++; });
        else if (choice == 7)
            data->Set_Active_Page(data->Page_Id(below(data->Page_Count())));
        else if (choice == 8)
            data->Add_Page(Support::Picture(2 + below(9), 3));
        else if (data->Page_Count() > 3)
            data->Remove_Page(data->Page_Id(below(data->Page_Count())));
    };
    QVector<QStringList> states{In_Words(d_data.get())};
    std::vector<TDataChange> changes(300);
    for (TDataChange& change : changes) {
        Run(
            [&](TData* data) {
                for (int i = below(40); i >= 0; --i)
                    change_something(data);
            },
            &change);
        states += In_Words(d_data.get());
    }
    for (int step = static_cast<int>(changes.size()) - 1; step >= 0; --step) {
        d_data->Swap(&changes[step]);
        QCOMPARE(In_Words(d_data.get()), states[step]);
    }
    for (int step = 0; step < static_cast<int>(changes.size()); ++step) {
        d_data->Swap(&changes[step]);
        QCOMPARE(In_Words(d_data.get()), states[step + 1]);
    }
}

QTEST_GUILESS_MAIN(TestDataChange)
#include "test_datachange.moc"
