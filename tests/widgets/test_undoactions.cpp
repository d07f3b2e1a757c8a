// Undo and Redo in context menus, on a bare widget.

#include "src/widgets/undoactions.h"

#include "support/menu.h"

#include <QAction>
#include <QTest>
#include <QWidget>

class TestUndoActions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void they_are_the_first_entries_of_each_menu();
    void they_name_the_steps();
    void without_a_step_they_are_disabled();
    void choosing_one_runs_its_command();
};

namespace {

/// A widget with a context menu of one entry.
class TListWithMenu : public QWidget
{
public:
    TListWithMenu()
    {
        addAction(new QAction("Other", this));
        setContextMenuPolicy(Qt::ActionsContextMenu);
        show();
    }
};

} // namespace

void TestUndoActions::they_are_the_first_entries_of_each_menu()
{
    TListWithMenu list;
    QWidget bare;
    bare.setContextMenuPolicy(Qt::ActionsContextMenu);
    bare.show();
    TUndoActions actions(
        &list, [] {}, [] {});
    actions.Add_To(&list);
    actions.Add_To(&bare);
    QCOMPARE(Support::Menu_Entries(&list), QStringList({"(Undo)", "(Redo)", "", "Other"}));
    QCOMPARE(Support::Menu_Entries(&bare).mid(0, 2), QStringList({"(Undo)", "(Redo)"}));
}

void TestUndoActions::they_name_the_steps()
{
    TListWithMenu list;
    TUndoActions actions(
        &list, [] {}, [] {});
    actions.Add_To(&list);
    actions.Set_Names("add label", "move %1 labels");
    QCOMPARE(Support::Menu_Entries(&list),
             QStringList({"Undo add label", "Redo move %1 labels", "", "Other"}));
}

void TestUndoActions::without_a_step_they_are_disabled()
{
    TListWithMenu list;
    TUndoActions actions(
        &list, [] {}, [] {});
    actions.Add_To(&list);
    actions.Set_Names("add label", QString());
    QCOMPARE(Support::Menu_Entries(&list), QStringList({"Undo add label", "(Redo)", "", "Other"}));
    actions.Set_Names(QString(), "add label");
    QCOMPARE(Support::Menu_Entries(&list), QStringList({"(Undo)", "Redo add label", "", "Other"}));
}

void TestUndoActions::choosing_one_runs_its_command()
{
    TListWithMenu list;
    QStringList commands;
    TUndoActions actions(
        &list, [&] { commands += "undo"; }, [&] { commands += "redo"; });
    actions.Add_To(&list);
    actions.Set_Names("a", "b");
    QCOMPARE(Support::Choose_From_Menu(&list, "Redo b"), QString());
    QCOMPARE(Support::Choose_From_Menu(&list, "Undo a"), QString());
    QCOMPARE(commands, QStringList({"redo", "undo"}));
}

QTEST_MAIN(TestUndoActions)
#include "test_undoactions.moc"
