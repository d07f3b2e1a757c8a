#include "support/support.h"

#include "src/model/pixelstore.h"
#include "src/undo/documentstep.h"

#include <QTest>

#include <random>

using TCommand = std::function<void(TData*)>;

class TestDocumentStep : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void every_change_is_undone_and_redone_data();
    void every_change_is_undone_and_redone();
    void a_step_that_changes_nothing_is_a_no_op_data();
    void a_step_that_changes_nothing_is_a_no_op();
    void rows_and_look_are_exchanged();
    void a_changed_row_or_look_is_a_step();
    void the_active_page_stays_unless_it_is_removed();
    void touched_pages_are_listed_once();
    void a_page_that_moves_is_not_touched();
    void a_removed_page_keeps_no_pixels();
    void a_replaced_image_keeps_no_pixels();
    void a_changed_page_shares_its_image();
    void a_label_that_changes_back_is_compared_with_the_others();
    void bytes_count_labels_texts_rows_and_images_of_the_step();
    void a_random_walk_returns_to_its_beginning();

private:
    TDocumentStep Run(const TCommand& command, const TRowsAndLook& rows_and_look = {});

    std::unique_ptr<TData> d_data;
};

Q_DECLARE_METATYPE(TCommand)

namespace {

/// Everything in the model but the selection.
QStringList In_Words(const TData& data)
{
    QStringList lines;
    for (const TPageItem& page : data.Pages()) {
        lines += QString("page %1 %2").arg(page.page_id).arg(page.image.width());
        for (const TDataItem& item : page.data_items) {
            lines += QString("%1 %2 %3 %4 ")
                         .arg(item.id)
                         .arg(item.value)
                         .arg(item.text)
                         .arg(item.border_type) +
                     QString::number(item.position.x(), 'g', 17) + ' ' +
                     QString::number(item.position.y(), 'g', 17);
        }
    }
    return lines;
}

TPageRows Rows(const std::vector<int>& page_ids)
{
    TPageRows rows;
    for (const int page_id : page_ids)
        rows.append({page_id, QString("Page %1").arg(page_id)});
    return rows;
}

} // namespace

/// Two pages: page 1 with the labels 11 to 13 is active, page 2 has none.
void TestDocumentStep::init()
{
    d_data = std::make_unique<TData>();
    d_data->Add_Page(Support::Picture(30, 20));
    d_data->Add_Page(Support::Picture(40, 20));
    d_data->Set_Active_Page(1);
    for (int id = 11; id <= 13; ++id)
        d_data->Add_Item({id, id - 10, "text", 2, QPointF(id, 5), false});
}

/// Records a command as a step.
/// @param rows_and_look  the state before the command.
TDocumentStep TestDocumentStep::Run(const TCommand& command, const TRowsAndLook& rows_and_look)
{
    TDocumentStep step(*d_data, rows_and_look);
    d_data->Set_Recorder([&step](const TPageItem& page) { step.Store_Page(page); });
    command(d_data.get());
    d_data->Set_Recorder(nullptr);
    step.Close(*d_data);
    return step;
}

void TestDocumentStep::every_change_is_undone_and_redone_data()
{
    QTest::addColumn<TCommand>("command");
    const auto add = [](const char* name, const TCommand& command) {
        QTest::newRow(name) << command;
    };
    add("value", [](TData* data) { data->Change_Item_Value(12, 9); });
    add("text", [](TData* data) { data->Change_Item_Text(12, "other"); });
    add("border", [](TData* data) { data->Change_Item_Border(12, 8); });
    add("position", [](TData* data) { data->Change_Item_Position(12, QPointF(1.5, -2)); });
    add("only the other coordinate",
        [](TData* data) { data->Change_Item_Position(12, QPointF(12, 6)); });
    add("a position that differs in the last digits",
        [](TData* data) { data->Change_Item_Position(12, QPointF(12.0000000000001, 5)); });
    add("no number", [](TData* data) { data->Change_Item_Position(12, QPointF(qQNaN(), 5)); });
    add("all values", [](TData* data) {
        int next = 50;
        data->Number_Items(1, false, [&next] { return next++; });
    });
    add("values of selected labels", [](TData* data) {
        data->Change_Item_Selection(13, true);
        data->Number_Items(1, true, [] { return 7; });
    });
    add("a new label", [](TData* data) { data->Add_Item({14, 4, "", 1, QPointF(), false}); });
    add("a label removed", [](TData* data) { data->Remove_Item(11); });
    add("all labels removed", [](TData* data) { data->Remove_Items({12, 11, 13}); });
    add("a label replaced", [](TData* data) {
        data->Remove_Item(12);
        data->Add_Item({12, 2, "text", 2, QPointF(12, 5), false});
    });
    add("a new page", [](TData* data) { data->Add_Page(); });
    add("a new page with a label", [](TData* data) {
        data->Set_Active_Page(data->Add_Page(Support::Picture(9, 9)));
        data->Add_Item({11, 1, "", 2, QPointF(), false});
    });
    add("a page removed", [](TData* data) { data->Remove_Page(2); });
    add("the active page removed", [](TData* data) { data->Remove_Page(1); });
    add("a changed page removed", [](TData* data) {
        data->Change_Item_Value(12, 9);
        data->Remove_Page(1);
    });
    add("a new page removed, another added", [](TData* data) {
        data->Remove_Page(data->Add_Page());
        data->Add_Page();
    });
    add("all pages removed", [](TData* data) {
        data->Remove_Page(1);
        data->Remove_Page(2);
    });
    add("an image", [](TData* data) { data->Set_Page_Image(Support::Picture(50, 20)); });
    add("two pages", [](TData* data) {
        data->Change_Item_Value(12, 9);
        data->Set_Active_Page(2);
        data->Add_Item({11, 1, "", 2, QPointF(), false});
    });
}

void TestDocumentStep::every_change_is_undone_and_redone()
{
    QFETCH(const TCommand, command);
    const QStringList before = In_Words(*d_data);
    TDocumentStep step = Run(command);
    const QStringList after = In_Words(*d_data);
    QVERIFY(before != after);
    QVERIFY(!step.Is_No_Op(*d_data, {}));
    TRowsAndLook rows_and_look;
    for (int round = 0; round < 2; ++round) {
        step.Swap(d_data.get(), &rows_and_look);
        QCOMPARE(In_Words(*d_data), before);
        step.Swap(d_data.get(), &rows_and_look);
        QCOMPARE(In_Words(*d_data), after);
    }
}

void TestDocumentStep::a_step_that_changes_nothing_is_a_no_op_data()
{
    QTest::addColumn<TCommand>("command");
    const auto add = [](const char* name, const TCommand& command) {
        QTest::newRow(name) << command;
    };
    add("nothing", [](TData*) {});
    add("the same value", [](TData* data) { data->Change_Item_Value(12, 2); });
    add("there and back", [](TData* data) {
        data->Change_Item_Text(12, "other");
        data->Change_Item_Text(12, "text");
    });
    add("a selection", [](TData* data) {
        data->Change_Item_Selection(12, true);
        data->Change_Item_Value(12, 9);
        data->Change_Item_Value(12, 2);
        data->Change_Item_Selection(13, true);
    });
    add("the same numbers", [](TData* data) {
        int next = 1;
        data->Number_Items(1, false, [&next] { return next++; });
    });
    add("a label added and removed", [](TData* data) {
        data->Add_Item({14, 4, "", 1, QPointF(), false});
        data->Remove_Item(14);
    });
    add("a page added and removed", [](TData* data) { data->Remove_Page(data->Add_Page()); });
    add("the same image",
        [](TData* data) { data->Set_Page_Image(TPageImage(data->Pages()[0].image)); });
    add("an equal image", [](TData* data) { data->Set_Page_Image(Support::Picture(30, 20)); });
    add("an unknown label", [](TData* data) { data->Remove_Item(99); });
    add("another active page", [](TData* data) { data->Set_Active_Page(2); });
}

void TestDocumentStep::a_step_that_changes_nothing_is_a_no_op()
{
    QFETCH(const TCommand, command);
    const QStringList before = In_Words(*d_data);
    const TDocumentStep step = Run(command);
    QCOMPARE(In_Words(*d_data), before);
    QVERIFY(step.Is_No_Op(*d_data, {}));
    QCOMPARE(step.Touched_Pages({}), std::vector<int>());
}

void TestDocumentStep::rows_and_look_are_exchanged()
{
    const TRowsAndLook before{Rows({1, 2}), {32, Qt::red}};
    TDocumentStep step = Run([](TData* data) { data->Add_Page(); }, before);
    TRowsAndLook rows_and_look{Rows({2, 1, 3}), {40, Qt::blue}};
    step.Swap(d_data.get(), &rows_and_look);
    QCOMPARE(rows_and_look.rows, Rows({1, 2}));
    QCOMPARE(rows_and_look.look.size, 32);
    QCOMPARE(rows_and_look.look.color, QColor(Qt::red));
    step.Swap(d_data.get(), &rows_and_look);
    QCOMPARE(rows_and_look.rows, Rows({2, 1, 3}));
    QCOMPARE(rows_and_look.look.size, 40);
    QCOMPARE(rows_and_look.look.color, QColor(Qt::blue));
}

void TestDocumentStep::a_changed_row_or_look_is_a_step()
{
    const TDocumentStep step(*d_data, {Rows({1, 2}), {32, Qt::red}});
    QVERIFY(step.Is_No_Op(*d_data, {Rows({1, 2}), {32, Qt::red}}));
    QVERIFY(!step.Is_No_Op(*d_data, {Rows({2, 1}), {32, Qt::red}}));
    QVERIFY(!step.Is_No_Op(*d_data, {Rows({1, 2}), {33, Qt::red}}));
    QVERIFY(!step.Is_No_Op(*d_data, {Rows({1, 2}), {32, Qt::blue}}));
}

void TestDocumentStep::the_active_page_stays_unless_it_is_removed()
{
    TRowsAndLook rows_and_look;
    TDocumentStep removed = Run([](TData* data) { data->Remove_Page(1); });
    d_data->Set_Active_Page(2);
    removed.Swap(d_data.get(), &rows_and_look);
    QCOMPARE(d_data->Active_Page(), 2);
    d_data->Set_Active_Page(1);
    QCOMPARE(d_data->Item_Count(), 3);
    QVERIFY(d_data->Item_Exists(12));
    removed.Swap(d_data.get(), &rows_and_look);
    QCOMPARE(d_data->Active_Page(), -1);

    removed.Swap(d_data.get(), &rows_and_look);
    d_data->Set_Active_Page(1);
    TDocumentStep changed = Run([](TData* data) { data->Remove_Item(11); });
    QVERIFY(d_data->Item_Exists(12));
    changed.Swap(d_data.get(), &rows_and_look);
    QCOMPARE(d_data->Active_Page(), 1);
    QVERIFY(d_data->Change_Item_Value(12, 22));
    QCOMPARE(d_data->Item(1).value, 22);
}

void TestDocumentStep::touched_pages_are_listed_once()
{
    TPageRows renamed = Rows({1, 2});
    renamed[1].name = "Roof";
    TDocumentStep step =
        Run([](TData* data) { data->Change_Item_Value(12, 9); }, {Rows({1, 2}), {}});
    QCOMPARE(step.Touched_Pages(Rows({1, 2})), std::vector<int>{1});
    QCOMPARE(step.Touched_Pages(renamed), (std::vector<int>{1, 2}));
    QCOMPARE(step.Touched_Pages(Rows({1, 2, 3})), (std::vector<int>{1, 3}));
    QCOMPARE(step.Touched_Pages(Rows({1})), (std::vector<int>{1, 2}));
}

void TestDocumentStep::a_page_that_moves_is_not_touched()
{
    const TDocumentStep step(*d_data, {Rows({1, 2, 3}), {}});
    QCOMPARE(step.Touched_Pages(Rows({3, 1, 2})), std::vector<int>());
}

void TestDocumentStep::a_removed_page_keeps_no_pixels()
{
    d_data->Add_Page(TPageImage::From_Bytes(d_data->Pages()[1].image.Png()));
    QCOMPARE(d_data->Pages()[2].image.width(), 40);
    QVERIFY(TPixelStore::Shared().Bytes() > 0);
    TDocumentStep step = Run([](TData* data) { data->Remove_Page(3); });
    QCOMPARE(TPixelStore::Shared().Bytes(), qint64(0));
    TRowsAndLook rows_and_look;
    step.Swap(d_data.get(), &rows_and_look);
    QCOMPARE(Support::Difference(d_data->Pages()[2].image, Support::Picture(40, 20)), QString());
    step.Swap(d_data.get(), &rows_and_look);
    QCOMPARE(TPixelStore::Shared().Bytes(), qint64(0));
}

void TestDocumentStep::a_replaced_image_keeps_no_pixels()
{
    d_data->Set_Active_Page(1);
    d_data->Set_Page_Image(TPageImage::From_Bytes(d_data->Pages()[1].image.Png()));
    QCOMPARE(d_data->Pages()[0].image.width(), 40);
    QVERIFY(TPixelStore::Shared().Bytes() > 0);
    const TDocumentStep step =
        Run([](TData* data) { data->Set_Page_Image(Support::Picture(10, 10)); });
    QCOMPARE(TPixelStore::Shared().Bytes(), qint64(0));
}

void TestDocumentStep::a_changed_page_shares_its_image()
{
    const TPageImage image = d_data->Pages()[0].image;
    TDocumentStep step = Run([](TData* data) { data->Change_Item_Value(12, 9); });
    TRowsAndLook rows_and_look;
    step.Swap(d_data.get(), &rows_and_look);
    QVERIFY(d_data->Pages()[0].image.Is_Copy_Of(image));
    step.Swap(d_data.get(), &rows_and_look);
    QVERIFY(d_data->Pages()[0].image.Is_Copy_Of(image));
}

void TestDocumentStep::a_label_that_changes_back_is_compared_with_the_others()
{
    TDocumentStep step(*d_data, {});
    d_data->Set_Recorder([&step](const TPageItem& page) { step.Store_Page(page); });
    const auto is_void_after = [&](int id, int value) {
        d_data->Change_Item_Value(id, value);
        step.Close(*d_data);
        return step.Is_No_Op(*d_data, {});
    };
    QVERIFY(!is_void_after(13, 9));
    QVERIFY(!is_void_after(11, 9));
    QVERIFY(!is_void_after(13, 3));
    QVERIFY(is_void_after(11, 1));
    // Removing the last label leaves no label to compare with it.
    QVERIFY(!is_void_after(13, 9));
    d_data->Remove_Item(13);
    QVERIFY(!is_void_after(12, 2));
}

void TestDocumentStep::bytes_count_labels_texts_rows_and_images_of_the_step()
{
    const qint64 nothing = Run([](TData*) {}).Bytes();
    QCOMPARE(nothing, static_cast<qint64>(sizeof(TDocumentStep) + 2 * sizeof(int)));
    // Three labels with the text "text", and two rows with names such as "Page 1".
    const auto labels = static_cast<qint64>(3 * (sizeof(TDataItem) + 4 * sizeof(QChar)));
    const auto rows = static_cast<qint64>(2 * (sizeof(TNamedPage) + 6 * sizeof(QChar)));
    QCOMPARE(Run([](TData*) {}, {Rows({1, 2}), {}}).Bytes(), nothing + rows);
    // A page that did not change after all does not count.
    const auto change_back = [](TData* data) {
        data->Change_Item_Value(12, 9);
        data->Change_Item_Value(12, 2);
    };
    QCOMPARE(Run(change_back).Bytes(), nothing);
    const auto page = static_cast<qint64>(sizeof(TPageItem));
    QCOMPARE(Run([](TData* data) { data->Change_Item_Value(12, 9); }).Bytes(),
             nothing + page + labels);
    const qint64 image = d_data->Pages()[0].image.Png().size();
    TDocumentStep removed = Run([](TData* data) { data->Remove_Page(1); });
    QCOMPARE(removed.Bytes(), nothing + page + labels + image);
    TRowsAndLook rows_and_look;
    removed.Swap(d_data.get(), &rows_and_look);
    QVERIFY(removed.Bytes() < nothing);
    removed.Swap(d_data.get(), &rows_and_look);
    QCOMPARE(removed.Bytes(), nothing + page + labels + image);
}

void TestDocumentStep::a_random_walk_returns_to_its_beginning()
{
    std::mt19937 random(7);
    const auto below = [&random](int limit) {
        return static_cast<int>(random() % unsigned(limit));
    };
    int next_id = 100;
    const auto change = [&](TData* data) {
        for (int part = below(3); part >= 0; --part) {
            data->Set_Active_Page(data->Page_Count() > 0 ? data->Page_Id(below(data->Page_Count()))
                                                         : data->Add_Page());
            const int count = data->Item_Count();
            const int id = count > 0 ? data->Item(below(count)).id : 0;
            switch (below(7)) {
            case 0:
            case 1:
                data->Add_Item({++next_id, below(9), "", 1, QPointF(below(9), 1), false});
                break;
            case 2:
                data->Change_Item_Value(id, below(9));
                break;
            case 3:
                data->Remove_Items({id, id + 1});
                break;
            case 4:
                data->Set_Page_Image(Support::Picture(10 + below(3), 4));
                break;
            case 5:
                data->Add_Page();
                break;
            default:
                if (below(3) == 0)
                    data->Remove_Page(data->Active_Page());
            }
        }
    };
    std::vector<TDocumentStep> steps;
    std::vector<QStringList> states = {In_Words(*d_data)};
    TRowsAndLook rows_and_look;
    for (int round = 0; round < 300; ++round) {
        steps.push_back(Run(change));
        states.push_back(In_Words(*d_data));
        QCOMPARE(steps.back().Is_No_Op(*d_data, {}), states[states.size() - 2] == states.back());
    }
    for (int way = 0; way < 2; ++way) {
        for (std::size_t index = steps.size(); index > 0; --index) {
            steps[index - 1].Swap(d_data.get(), &rows_and_look);
            QCOMPARE(In_Words(*d_data), states[index - 1]);
        }
        for (std::size_t index = 0; index < steps.size(); ++index) {
            steps[index].Swap(d_data.get(), &rows_and_look);
            QCOMPARE(In_Words(*d_data), states[index + 1]);
        }
    }
}

QTEST_MAIN(TestDocumentStep)
#include "test_documentstep.moc"
