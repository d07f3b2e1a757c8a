// Accessibility: names and descriptions for screen readers, and keyboard navigation.

#include "support/project.h"
#include "support/support.h"
#include "support/window.h"

#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/pagewidget.h"
#include "src/reindexdialog.h"
#include "src/reportheaderdialog.h"
#include "src/safety/safetynet.h"
#include "src/settingswidget.h"
#include "src/widgets/accessibility.h"
#include "src/widgets/findbar.h"

#include <QAccessible>
#include <QAccessibleInterface>
#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QSet>
#include <QTest>
#include <QToolBar>
#include <QToolButton>

class TestAccessibility : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void every_focusable_widget_has_a_name_and_a_description_data();
    void every_focusable_widget_has_a_name_and_a_description();
    void a_caption_belongs_to_its_editor_data();
    void a_caption_belongs_to_its_editor();
    void a_name_is_the_caption_without_its_colon_data();
    void a_name_is_the_caption_without_its_colon();
    void the_tab_key_visits_all_widgets_in_order();
    void the_tab_key_visits_the_find_bar_before_the_zoom();
    void every_command_is_in_a_menu();
    void tool_bar_buttons_say_what_they_do();

private:
    static void Add_Windows();
    QWidget* Named_Window(const QString& name);

    std::unique_ptr<TOpenWindow> d_window;
};

void TestAccessibility::init()
{
    d_window = std::make_unique<TOpenWindow>();
    d_window->show();
    d_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(d_window.get()));
    Support::Add_Pages(
        d_window.get(),
        {{"Plan", Support::Picture(300, 200), {Support::Label(1, 1, "", 1, {50, 50})}}});
    d_window->d_page_widget->Set_Active_Page(1);
    d_window->d_label_widget->Set_Selection(1);
}

void TestAccessibility::cleanup()
{
    d_window->d_safety_net->Discard();
    d_window.reset();
}

void TestAccessibility::Add_Windows()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("controls");
    QTest::addColumn<QStringList>("captions");
    // The page view counts twice: the view and its viewport.
    QTest::newRow("main window")
        << "main window" << 23
        << QStringList({"Item Value:", "Item Text:", "Border Type:", "Item Display Format:",
                        "Item Color:", "Item Size:", "PDF Orientation", "PDF Resolution", "Zoom:"});
    QTest::newRow("renumbering") << "renumbering" << 7
                                 << QStringList({"First Item Value:", "Increment Over Page:"});
    QTest::newRow("header lines") << "header lines" << 4
                                  << QStringList({"Header 1 Text:", "Header 2 Text:"});
}

QWidget* TestAccessibility::Named_Window(const QString& name)
{
    if (name == "renumbering")
        return new TReindexDialog(d_window.get(), Qt::WindowFlags());
    if (name == "header lines")
        return new TReportHeaderDialog(d_window.get(), Qt::WindowFlags());
    return d_window.get();
}

void TestAccessibility::every_focusable_widget_has_a_name_and_a_description_data()
{
    Add_Windows();
}

void TestAccessibility::every_focusable_widget_has_a_name_and_a_description()
{
    QFETCH(QString, name);
    QFETCH(int, controls);
    QWidget* const window = Named_Window(name);
    int found = 0;
    for (QWidget* widget : window->findChildren<QWidget*>()) {
        // Pop-ups and parts of widgets have the name of their owner.
        if (!(widget->focusPolicy() & Qt::TabFocus) || widget->window() != window)
            continue;
        ++found;
        const QAccessibleInterface* told = QAccessible::queryAccessibleInterface(widget);
        const QString what =
            QString("%1 %2").arg(widget->metaObject()->className(), told->text(QAccessible::Name));
        QVERIFY2(!told->text(QAccessible::Name).isEmpty(), qPrintable(what));
        QVERIFY2(!widget->accessibleDescription().isEmpty(), qPrintable(what));
    }
    QCOMPARE(found, controls);
}

void TestAccessibility::a_caption_belongs_to_its_editor_data()
{
    Add_Windows();
}

void TestAccessibility::a_caption_belongs_to_its_editor()
{
    QFETCH(QString, name);
    QFETCH(QStringList, captions);
    for (const QLabel* label : Named_Window(name)->findChildren<QLabel*>()) {
        if (label->buddy()) {
            QVERIFY2(captions.removeOne(label->text()), qPrintable(label->text()));
            QVERIFY(label->text().startsWith(label->buddy()->accessibleName()) ||
                    label->text() == "Zoom:");
        }
    }
    QCOMPARE(captions, QStringList());
}

void TestAccessibility::a_name_is_the_caption_without_its_colon_data()
{
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QString>("name");
    QTest::newRow("colon") << "Item Value:"
                           << "Item Value";
    QTest::newRow("none") << "PDF Resolution"
                          << "PDF Resolution";
    QTest::newRow("inside") << "1:2"
                            << "1:2";
    QTest::newRow("empty") << ""
                           << "";
}

void TestAccessibility::a_name_is_the_caption_without_its_colon()
{
    QFETCH(QString, caption);
    QFETCH(QString, name);
    QCOMPARE(Accessibility::Name_Of_Caption(caption), name);
}

void TestAccessibility::the_tab_key_visits_all_widgets_in_order()
{
    const QStringList expected = {"Page",
                                  "Item List",
                                  "Add Item",
                                  "Remove Item",
                                  "Item Value",
                                  "Item Text",
                                  "Border Type",
                                  "Page List",
                                  "Page Item Name",
                                  "Add Page",
                                  "Remove Page",
                                  "Item Display Format",
                                  "Item Color",
                                  "Item Size",
                                  "PDF Orientation",
                                  "PDF Resolution",
                                  "Track Selected Item",
                                  "Image Magnification",
                                  "Page"};
    d_window->d_display_widget->setFocus();
    QStringList visited;
    for (int round = 0; round < expected.size(); ++round) {
        visited += QApplication::focusWidget()->accessibleName();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    QCOMPARE(visited, expected);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    QCOMPARE(QApplication::focusWidget()->accessibleName(), QString("Page"));
}

void TestAccessibility::the_tab_key_visits_the_find_bar_before_the_zoom()
{
    d_window->findChild<TFindBar*>()->Open();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    QStringList visited;
    for (int round = 0; round < 6; ++round) {
        visited += QApplication::focusWidget()->accessibleName();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    QCOMPARE(visited, QStringList({"Track Selected Item", "Find", "Find Previous", "Find Next",
                                   "Close Find Bar", "Image Magnification"}));
}

void TestAccessibility::every_command_is_in_a_menu()
{
    QSet<QAction*> offered;
    for (const QAction* title : d_window->menuBar()->actions()) {
        for (QAction* action : title->menu()->actions())
            offered += action;
    }
    for (QAction* action :
         {d_window->d_action_new, d_window->d_action_open, d_window->d_action_save,
          d_window->d_action_save_as, d_window->d_action_import, d_window->d_action_export_images,
          d_window->d_action_export_pdf, d_window->d_action_quit, d_window->d_action_reindex,
          d_window->d_action_about})
        QVERIFY2(offered.contains(action), qPrintable(action->text()));
}

void TestAccessibility::tool_bar_buttons_say_what_they_do()
{
    const auto* const bar = d_window->findChild<QToolBar*>();
    int buttons = 0;
    for (const QToolButton* button : bar->findChildren<QToolButton*>()) {
        ++buttons;
        QVERIFY(!button->accessibleDescription().isEmpty());
    }
    // Six commands and the extension button.
    QCOMPARE(buttons, 7);
}

QTEST_MAIN(TestAccessibility)
#include "test_accessibility.moc"
