// Names of steps, and which of them are continued and mark the document.

#include "src/undo/stepkind.h"

#include <QTest>

class TestStepKind : public QObject
{
    Q_OBJECT

private slots:
    void a_step_is_named_by_its_kind_and_count_data();
    void a_step_is_named_by_its_kind_and_count();
    void typing_and_moving_are_continued();
    void color_and_page_list_do_not_mark_the_document();
};

namespace {

/// All kinds in their order.
std::vector<TStepKind> Kinds()
{
    std::vector<TStepKind> kinds;
    for (int kind = 0; kind <= static_cast<int>(TStepKind::Change_Color); ++kind)
        kinds.push_back(static_cast<TStepKind>(kind));
    return kinds;
}

} // namespace

void TestStepKind::a_step_is_named_by_its_kind_and_count_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("one");
    QTest::addColumn<QString>("three");
    const auto add = [](TStepKind kind, const char* one, const char* three) {
        QTest::newRow(one) << static_cast<int>(kind) << one << three;
    };
    add(TStepKind::Add_Label, "add label", "add label");
    add(TStepKind::Remove_Labels, "remove 1 label", "remove 3 labels");
    add(TStepKind::Change_Value, "change value", "change value");
    add(TStepKind::Change_Text, "change text", "change text");
    add(TStepKind::Change_Border, "change border", "change border");
    add(TStepKind::Move_Label, "move label", "move label");
    add(TStepKind::Nudge_Labels, "move 1 label", "move 3 labels");
    add(TStepKind::Cut_Labels, "cut 1 label", "cut 3 labels");
    add(TStepKind::Paste_Labels, "paste 1 label", "paste 3 labels");
    add(TStepKind::Duplicate_Labels, "duplicate 1 label", "duplicate 3 labels");
    add(TStepKind::Renumber, "renumber labels", "renumber labels");
    add(TStepKind::Add_Page, "add page", "add page");
    add(TStepKind::Remove_Pages, "remove 1 page", "remove 3 pages");
    add(TStepKind::Rename_Page, "rename page", "rename page");
    add(TStepKind::Move_Pages, "move 1 page", "move 3 pages");
    add(TStepKind::Import, "import 1 image", "import 3 images");
    add(TStepKind::Insert_Pages, "insert 1 page", "insert 3 pages");
    add(TStepKind::Rotate_Pages, "rotate 1 page", "rotate 3 pages");
    add(TStepKind::Duplicate_Pages, "duplicate 1 page", "duplicate 3 pages");
    add(TStepKind::Change_Size, "change label size", "change label size");
    add(TStepKind::Change_Color, "change label color", "change label color");
}

void TestStepKind::a_step_is_named_by_its_kind_and_count()
{
    QFETCH(int, kind);
    QTEST(StepKind::Name(static_cast<TStepKind>(kind), 1), "one");
    QTEST(StepKind::Name(static_cast<TStepKind>(kind), 3), "three");
}

void TestStepKind::typing_and_moving_are_continued()
{
    for (const TStepKind kind : Kinds()) {
        const bool is_continued = kind == TStepKind::Change_Value ||
                                  kind == TStepKind::Change_Border ||
                                  kind == TStepKind::Nudge_Labels ||
                                  kind == TStepKind::Rename_Page || kind == TStepKind::Change_Size;
        QCOMPARE(StepKind::May_Continue(kind), is_continued);
    }
}

void TestStepKind::color_and_page_list_do_not_mark_the_document()
{
    for (const TStepKind kind : Kinds()) {
        const bool is_unmarked = kind == TStepKind::Change_Color ||
                                 kind == TStepKind::Rename_Page || kind == TStepKind::Move_Pages;
        QCOMPARE(StepKind::Marks_Document(kind), !is_unmarked);
    }
}

QTEST_APPLESS_MAIN(TestStepKind)
#include "test_stepkind.moc"
