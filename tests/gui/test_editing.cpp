// Editing commands: they keep model, view and panels consistent, and mark the document as changed
// exactly when they should.

#include "support/modal.h"
#include "support/support.h"
#include "support/view.h"
#include "support/widgets.h"
#include "support/window.h"

#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/messagebox.h"
#include "src/pagewidget.h"
#include "src/safety/safetynet.h"
#include "src/settingswidget.h"

#include <QApplication>
#include <QCheckBox>
#include <QGraphicsPixmapItem>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPixmap>
#include <QPushButton>
#include <QSet>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

#include <cstdlib>
#include <ctime>

class TestEditing : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void adding_a_label_needs_a_page();
    void adding_a_label_needs_a_valid_image();
    void a_label_is_added_to_model_view_and_list();
    void a_label_takes_the_chosen_border();
    void values_count_up();
    void a_typed_value_is_used_first();
    void two_labels_within_one_second_get_different_ids();
    void the_hundredth_attempt_fails_even_if_the_view_accepts_it();
    void a_label_at_a_point_is_moved_there();
    void a_label_at_a_point_stays_at_the_origin_until_the_view_reports();
    void removing_labels_needs_a_selection();
    void removing_labels_asks_first_data();
    void removing_labels_asks_first();
    void removing_many_labels_reports_few_selections();
    void after_removing_labels_the_border_of_the_last_one_is_chosen();
    void changing_a_label_reaches_model_and_view();
    void selecting_in_the_list_selects_in_view_and_model();
    void selecting_in_the_list_scrolls_to_the_label();
    void a_click_in_the_view_selects_in_the_list_without_scrolling();
    void a_click_outside_all_labels_clears_the_selection();
    void a_drag_reaches_the_model();
    void a_drag_without_a_page_does_nothing();
    void adding_a_page_changes_the_document();
    void removing_pages_asks_first_data();
    void removing_pages_asks_first();
    void removing_the_last_page_disables_the_document_actions();
    void removing_one_of_two_pages_keeps_the_document_actions();
    void the_document_actions_are_disabled_while_pages_are_removed();
    void showing_a_page_fills_list_and_view();
    void showing_a_page_is_not_a_change_data();
    void showing_a_page_is_not_a_change();
    void an_unknown_page_shows_the_default_picture();
    void a_page_without_an_image_shows_the_default_picture();
    void a_new_document_asks_first_data();
    void a_new_document_asks_first();
    void a_new_document_does_not_ask_when_nothing_changed();
    void the_font_size_follows_from_the_label_size_data();
    void the_font_size_follows_from_the_label_size();
    void a_color_reaches_the_view_and_is_not_a_change();
    void the_tracking_option_reaches_the_view();
    void a_display_format_rebuilds_the_list();
    void a_display_format_without_a_page_shows_the_default_picture();

private:
    int Add_Page_With(const QImage& image);
    void Show_New_Page();
    QImage Background() const;
    QImage Default_Background() const;
    QListWidget* List() const { return d_window->d_label_widget->findChild<QListWidget*>(); }
    QList<bool> Enabled_Actions() const;

    std::unique_ptr<TOpenWindow> d_window;
};

void TestEditing::init()
{
    d_window = std::make_unique<TOpenWindow>();
    d_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(d_window.get()));
}

void TestEditing::cleanup()
{
    d_window->d_safety_net->Discard();
    d_window.reset();
}

/// Adds a page to model and list, as an import does; returns its id.
int TestEditing::Add_Page_With(const QImage& image)
{
    const int id = d_window->d_data.Add_Page(image);
    d_window->d_page_widget->Add_Page(id);
    d_window->Update_Document_Actions();
    return id;
}

void TestEditing::Show_New_Page()
{
    d_window->d_page_widget->Set_Active_Page(Add_Page_With(Support::Picture(200, 150)));
    QVERIFY(d_window->d_data.Page_Image_Valid());
    QVERIFY(!d_window->d_data_changed);
}

QImage TestEditing::Background() const
{
    return d_window->d_display_widget->Background_Pixmap().toImage();
}

QImage TestEditing::Default_Background() const
{
    return QPixmap(":/images/background_default.png").toImage();
}

QList<bool> TestEditing::Enabled_Actions() const
{
    return {d_window->d_action_export_pdf->isEnabled(),
            d_window->d_action_export_images->isEnabled(), d_window->d_action_reindex->isEnabled(),
            d_window->d_action_save->isEnabled()};
}

void TestEditing::adding_a_label_needs_a_page()
{
    d_window->Add_Item();
    d_window->Add_Item(QPointF(10, 10));
    QVERIFY(Support::Labels(*d_window->d_display_widget).isEmpty());
    QVERIFY(!d_window->d_data_changed);
    QCOMPARE(d_window->d_label_widget->Take_Label_Index(), 1);
}

void TestEditing::adding_a_label_needs_a_valid_image()
{
    d_window->d_page_widget->Set_Active_Page(Add_Page_With(QImage()));
    d_window->Add_Item();
    QCOMPARE(d_window->d_data.Item_Count(), 0);
    QVERIFY(!d_window->d_data_changed);
    QCOMPARE(d_window->d_label_widget->Take_Label_Index(), 1);
}

void TestEditing::a_label_is_added_to_model_view_and_list()
{
    Show_New_Page();
    QTest::mouseClick(Support::By_Tool_Tip<QToolButton>(*d_window, "Add Item"), Qt::LeftButton);
    QCOMPARE(d_window->d_data.Item_Count(), 1);
    const TDataItem item = d_window->d_data.Item(0);
    QCOMPARE(item.value, 1);
    QCOMPARE(item.text, QString());
    QVERIFY(!item.selected);
    QCOMPARE(item.position, d_window->d_display_widget->Item_Position(item.id));
    QCOMPARE(List()->count(), 1);
    QCOMPARE(List()->item(0)->data(Qt::UserRole).toInt(), item.id);
    QVERIFY(d_window->d_data_changed);
}

void TestEditing::a_label_takes_the_chosen_border()
{
    Show_New_Page();
    d_window->d_label_widget->Set_Border_Type(8);
    d_window->Add_Item();
    QCOMPARE(d_window->d_data.Item(0).border_type, 8);
    QCOMPARE(
        Support::Label(*d_window->d_display_widget, d_window->d_data.Item(0).id)->data(16).toInt(),
        8);
}

void TestEditing::values_count_up()
{
    Show_New_Page();
    for (int value = 1; value <= 3; ++value) {
        d_window->Add_Item();
        QCOMPARE(d_window->d_data.Item(value - 1).value, value);
        QCOMPARE(Support::By_Tool_Tip<QLineEdit>(*d_window, "Item Value")->text(),
                 QString::number(value + 1));
    }
}

void TestEditing::a_typed_value_is_used_first()
{
    Show_New_Page();
    auto* editor = Support::By_Tool_Tip<QLineEdit>(*d_window, "Item Value");
    editor->selectAll();
    QTest::keyClicks(editor, "7");
    d_window->Add_Item();
    d_window->Add_Item();
    QCOMPARE(d_window->d_data.Item(0).value, 7);
    QCOMPARE(d_window->d_data.Item(1).value, 8);
}

void TestEditing::two_labels_within_one_second_get_different_ids()
{
    Show_New_Page();
    d_window->Add_Item();
    d_window->Add_Item();
    d_window->Add_Item(QPointF(50, 50));
    QCOMPARE(d_window->d_data.Item_Count(), 3);
    QCOMPARE(List()->count(), 3);
    QVERIFY(d_window->d_data.Item(0).id != d_window->d_data.Item(1).id);
    QVERIFY(d_window->d_data.Item(1).id != d_window->d_data.Item(2).id);
}

void TestEditing::the_hundredth_attempt_fails_even_if_the_view_accepts_it()
{
    Show_New_Page();
    // The view already has the first 99 ids that would be drawn in any of these seconds.
    const time_t now = time(nullptr);
    QSet<int> taken;
    for (time_t second = now; second < now + 5; ++second) {
        srand(static_cast<unsigned int>(second));
        for (int i = 0; i < 99; ++i)
            taken.insert(rand());
    }
    for (const int id : std::as_const(taken))
        d_window->d_display_widget->Add_Item(id, 0, QString(), 0);
    d_window->Add_Item();
    QCOMPARE(d_window->d_data.Item_Count(), 0);
    QCOMPARE(List()->count(), 0);
    QCOMPARE(Support::Labels(*d_window->d_display_widget).size(), taken.size() + 1);
    QVERIFY(d_window->d_data_changed);
    // The value counts as used.
    QCOMPARE(d_window->d_label_widget->Take_Label_Index(), 2);
}

void TestEditing::a_label_at_a_point_is_moved_there()
{
    Show_New_Page();
    QTest::mouseClick(d_window->d_display_widget->viewport(), Qt::RightButton,
                      Qt::KeyboardModifiers(),
                      d_window->d_display_widget->mapFromScene(QPointF(120, 90)));
    QCOMPARE(d_window->d_data.Item_Count(), 1);
    QCOMPARE(d_window->d_data.Item(0).position, QPointF(120, 90));
    QCOMPARE(d_window->d_display_widget->Item_Position(d_window->d_data.Item(0).id),
             QPointF(120, 90));
    QVERIFY(d_window->d_data_changed);
}

void TestEditing::a_label_at_a_point_stays_at_the_origin_until_the_view_reports()
{
    Show_New_Page();
    QObject::disconnect(d_window->d_display_widget, SIGNAL(Update_Item_Position(int, QPointF)),
                        nullptr, nullptr);
    d_window->Add_Item(QPointF(120, 90));
    QCOMPARE(d_window->d_data.Item(0).position, QPointF(0, 0));
    QCOMPARE(d_window->d_display_widget->Item_Position(d_window->d_data.Item(0).id),
             QPointF(120, 90));
}

void TestEditing::removing_labels_needs_a_selection()
{
    Show_New_Page();
    d_window->Add_Item();
    d_window->d_data_changed = false;
    QCOMPARE(Support::Run_Answering([this] { d_window->Remove_Item(); }, {}), QString());
    QCOMPARE(d_window->d_data.Item_Count(), 1);
    QVERIFY(!d_window->d_data_changed);
}

void TestEditing::removing_labels_asks_first_data()
{
    QTest::addColumn<bool>("yes");
    QTest::newRow("No") << false;
    QTest::newRow("Yes") << true;
}

/// Checks the texts, buttons and icon of a question.
static void Look_At_Question(QMessageBox* box, const QString& text, const QString& question)
{
    QVERIFY(box->text().contains(QStringLiteral(">%1</span>").arg(text)));
    QVERIFY(box->informativeText().contains(QStringLiteral(">%1</span>").arg(question)));
    QCOMPARE(box->detailedText(), QString());
    QCOMPARE(box->icon(), QMessageBox::Question);
    QCOMPARE(box->standardButtons(), QMessageBox::Yes | QMessageBox::No);
    QCOMPARE(box->defaultButton(), box->button(QMessageBox::No));
}

void TestEditing::removing_labels_asks_first()
{
    QFETCH(bool, yes);
    Show_New_Page();
    for (int i = 0; i < 3; ++i)
        d_window->Add_Item();
    d_window->d_data_changed = false;
    List()->item(0)->setSelected(true);
    List()->item(2)->setSelected(true);
    const int kept = d_window->d_data.Item(1).id;
    const QString fault = Support::Run_Answering(
        [this] { d_window->Remove_Item(); },
        {Support::Look_And_Press(
            [](QMessageBox* box) {
                Look_At_Question(box, "Remove Labels", "Labels will be deleted.  Are you sure?");
            },
            yes ? QMessageBox::Yes : QMessageBox::No)});
    QCOMPARE(fault, QString());
    QCOMPARE(d_window->d_data.Item_Count(), yes ? 1 : 3);
    QCOMPARE(List()->count(), yes ? 1 : 3);
    QCOMPARE(Support::Labels(*d_window->d_display_widget).size(), yes ? 1 : 3);
    QVERIFY(d_window->d_data.Item_Exists(kept));
    QCOMPARE(d_window->d_data_changed, yes);
}

// Each report of a change costs a pass over the whole selection. With a report for each removed
// label, removing thousands of labels would take minutes.
void TestEditing::removing_many_labels_reports_few_selections()
{
    Show_New_Page();
    for (int i = 0; i < 50; ++i)
        d_window->Add_Item();
    List()->selectAll();
    const QSignalSpy reports(d_window->d_label_widget, SIGNAL(Selection_Changed()));
    QCOMPARE(Support::Run_Answering([this] { d_window->Remove_Item(); },
                                    {Support::Press(QMessageBox::Yes)}),
             QString());
    QCOMPARE(d_window->d_data.Item_Count(), 0);
    QCOMPARE(List()->count(), 0);
    QVERIFY(d_window->d_label_widget->Selected_Items().empty());
    QVERIFY2(reports.count() <= 3, qPrintable(QString::number(reports.count())));
}

// The last label is selected alone before it is removed, so the combo box still shows its border.
void TestEditing::after_removing_labels_the_border_of_the_last_one_is_chosen()
{
    Show_New_Page();
    for (const int border : {1, 4, 8}) {
        d_window->d_label_widget->Set_Border_Type(border);
        d_window->Add_Item();
    }
    d_window->d_label_widget->Set_Border_Type(2);
    List()->item(0)->setSelected(true);
    List()->item(1)->setSelected(true);
    QCOMPARE(Support::Run_Answering([this] { d_window->Remove_Item(); },
                                    {Support::Press(QMessageBox::Yes)}),
             QString());
    QCOMPARE(d_window->d_data.Item_Count(), 1);
    QCOMPARE(d_window->d_label_widget->Border_Type(), 4);
}

void TestEditing::changing_a_label_reaches_model_and_view()
{
    Show_New_Page();
    d_window->Add_Item();
    const int id = d_window->d_data.Item(0).id;
    const QGraphicsPixmapItem* label = Support::Label(*d_window->d_display_widget, id);

    d_window->d_data_changed = false;
    d_window->Change_Item_Value(id, 42);
    QCOMPARE(d_window->d_data.Item(0).value, 42);
    QCOMPARE(label->data(2).toInt(), 42);
    QVERIFY(d_window->d_data_changed);

    d_window->d_data_changed = false;
    d_window->Change_Item_Text(id, "Pump");
    QCOMPARE(d_window->d_data.Item(0).text, QStringLiteral("Pump"));
    QCOMPARE(label->data(4).toString(), QStringLiteral("Pump"));
    QVERIFY(d_window->d_data_changed);

    d_window->d_data_changed = false;
    d_window->Change_Item_Border(id, 4);
    QCOMPARE(d_window->d_data.Item(0).border_type, 4);
    QCOMPARE(label->data(16).toInt(), 4);
    QVERIFY(d_window->d_data_changed);
}

void TestEditing::selecting_in_the_list_selects_in_view_and_model()
{
    Show_New_Page();
    for (int i = 0; i < 3; ++i)
        d_window->Add_Item();
    d_window->d_data_changed = false;
    List()->item(0)->setSelected(true);
    List()->item(2)->setSelected(true);
    QCOMPARE(d_window->d_data.Item(0).selected, true);
    QCOMPARE(d_window->d_data.Item(1).selected, false);
    QCOMPARE(d_window->d_data.Item(2).selected, true);
    const QList<QGraphicsPixmapItem*> labels = Support::Labels(*d_window->d_display_widget);
    QCOMPARE(labels[0]->data(17).toInt(), 1);
    QCOMPARE(labels[1]->data(17).toInt(), 0);
    QCOMPARE(labels[2]->data(17).toInt(), 1);
    List()->item(0)->setSelected(false);
    QCOMPARE(d_window->d_data.Item(0).selected, false);
    QVERIFY(!d_window->d_data_changed);
}

void TestEditing::selecting_in_the_list_scrolls_to_the_label()
{
    const int id = Add_Page_With(Support::Picture(3000, 3000));
    d_window->d_page_widget->Set_Active_Page(id);
    d_window->Add_Item(QPointF(2800, 2800));
    TDisplayWidget* view = d_window->d_display_widget;
    view->centerOn(0, 0);
    view->d_track_item = true;
    List()->item(0)->setSelected(true);
    QVERIFY(view->viewport()->rect().contains(view->mapFromScene(2800, 2800)));
}

void TestEditing::a_click_in_the_view_selects_in_the_list_without_scrolling()
{
    const int page = Add_Page_With(Support::Picture(3000, 3000));
    d_window->d_page_widget->Set_Active_Page(page);
    d_window->Add_Item(QPointF(60, 60));
    TDisplayWidget* view = d_window->d_display_widget;
    view->d_track_item = true;
    view->centerOn(0, 0);
    d_window->d_data_changed = false;
    const QPoint before = view->mapFromScene(0, 0);
    QTest::mousePress(view->viewport(), Qt::LeftButton, Qt::KeyboardModifiers(),
                      view->mapFromScene(60, 60));
    QCOMPARE(view->mapFromScene(0, 0), before);
    QCOMPARE(List()->selectedItems().size(), 1);
    QVERIFY(d_window->d_data.Item(0).selected);
    QVERIFY(!d_window->d_display_click);
    QVERIFY(!d_window->d_data_changed);
    QTest::mouseRelease(view->viewport(), Qt::LeftButton, Qt::KeyboardModifiers(),
                        view->mapFromScene(60, 60));
}

void TestEditing::a_click_outside_all_labels_clears_the_selection()
{
    Show_New_Page();
    d_window->Add_Item(QPointF(60, 60));
    List()->item(0)->setSelected(true);
    TDisplayWidget* view = d_window->d_display_widget;
    QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::KeyboardModifiers(),
                      view->mapFromScene(150, 130));
    QVERIFY(List()->selectedItems().isEmpty());
    QVERIFY(!d_window->d_data.Item(0).selected);
}

void TestEditing::a_drag_reaches_the_model()
{
    Show_New_Page();
    d_window->Add_Item(QPointF(60, 60));
    d_window->d_data_changed = false;
    QWidget* viewport = d_window->d_display_widget->viewport();
    const QPoint from = d_window->d_display_widget->mapFromScene(60, 60);
    QTest::mousePress(viewport, Qt::LeftButton, Qt::KeyboardModifiers(), from);
    const QPoint to = from + QPoint(30, 20);
    QMouseEvent move(QEvent::MouseMove, to, viewport->mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QApplication::sendEvent(viewport, &move);
    QCOMPARE(d_window->d_data.Item(0).position, QPointF(60, 60));
    QTest::mouseRelease(viewport, Qt::LeftButton, Qt::KeyboardModifiers(), to);
    QCOMPARE(d_window->d_data.Item(0).position, QPointF(90, 80));
    QVERIFY(d_window->d_data_changed);
}

void TestEditing::a_drag_without_a_page_does_nothing()
{
    d_window->Update_Item_Position(5, QPointF(1, 1));
    QVERIFY(!d_window->d_data_changed);
}

void TestEditing::adding_a_page_changes_the_document()
{
    QTest::mouseClick(Support::By_Tool_Tip<QToolButton>(*d_window, "Add Page"), Qt::LeftButton);
    QCOMPARE(d_window->d_data.Page_Count(), 1);
    QCOMPARE(d_window->d_page_widget->Page_Ids(), QList<int>({1}));
    QCOMPARE(d_window->d_page_widget->Page_Name(1), QStringLiteral("Page 1"));
    QVERIFY(d_window->d_data_changed);
    // Only removing, importing and opening update the actions.
    QCOMPARE(Enabled_Actions(), QList<bool>({false, false, false, false}));
}

void TestEditing::removing_pages_asks_first_data()
{
    removing_labels_asks_first_data();
}

void TestEditing::removing_pages_asks_first()
{
    QFETCH(bool, yes);
    Show_New_Page();
    d_window->Add_Item();
    d_window->d_data_changed = false;
    const QString fault = Support::Run_Answering(
        [this] {
            QTest::mouseClick(Support::By_Tool_Tip<QToolButton>(*d_window, "Remove Page"),
                              Qt::LeftButton);
        },
        {Support::Look_And_Press(
            [](QMessageBox* box) {
                Look_At_Question(box, "Remove Pages",
                                 "All page associated labels will be deleted.  Are you sure?");
            },
            yes ? QMessageBox::Yes : QMessageBox::No)});
    QCOMPARE(fault, QString());
    QCOMPARE(d_window->d_data.Page_Count(), yes ? 0 : 1);
    QCOMPARE(d_window->d_page_widget->Page_Ids().size(), yes ? 0 : 1);
    QCOMPARE(List()->count(), yes ? 0 : 1);
    QCOMPARE(
        Support::Difference(Background(), yes ? Default_Background() : Support::Picture(200, 150)),
        QString());
    // Even if the user declines.
    QVERIFY(d_window->d_data_changed);
}

void TestEditing::removing_the_last_page_disables_the_document_actions()
{
    Show_New_Page();
    QCOMPARE(Enabled_Actions(), QList<bool>({true, true, true, true}));
    QCOMPARE(Support::Run_Answering([this] { d_window->Remove_Pages({1}); },
                                    {Support::Press(QMessageBox::Yes)}),
             QString());
    QCOMPARE(Enabled_Actions(), QList<bool>({false, false, false, false}));
    QVERIFY(!d_window->d_label_widget->isEnabled());
}

void TestEditing::removing_one_of_two_pages_keeps_the_document_actions()
{
    Show_New_Page();
    Add_Page_With(Support::Picture(20, 20));
    QCOMPARE(Support::Run_Answering([this] { d_window->Remove_Pages({1}); },
                                    {Support::Press(QMessageBox::Yes)}),
             QString());
    QCOMPARE(Enabled_Actions(), QList<bool>({true, true, true, true}));
    QCOMPARE(d_window->d_page_widget->Page_Ids(), QList<int>({2}));
}

void TestEditing::the_document_actions_are_disabled_while_pages_are_removed()
{
    Show_New_Page();
    Add_Page_With(Support::Picture(20, 20));
    QList<bool> enabled_meanwhile;
    connect(d_window->d_page_widget, &TPageWidget::Selection_Changed, this,
            [&] { enabled_meanwhile = Enabled_Actions(); });
    QCOMPARE(Support::Run_Answering([this] { d_window->Remove_Pages({1}); },
                                    {Support::Press(QMessageBox::Yes)}),
             QString());
    QCOMPARE(enabled_meanwhile, QList<bool>({false, false, false, false}));
    QCOMPARE(Enabled_Actions(), QList<bool>({true, true, true, true}));
}

void TestEditing::showing_a_page_fills_list_and_view()
{
    const int first = Add_Page_With(Support::Picture(200, 150));
    const int second = Add_Page_With(Support::Picture(100, 120, 1));
    d_window->d_data.Set_Active_Page(second);
    d_window->d_data.Add_Item({11, 5, "Valve", 1, QPointF(40, 50), false});
    d_window->d_data.Add_Item({12, 6, QString(), 2, QPointF(70.5, 80.25), true});
    d_window->d_page_widget->Set_Active_Page(first);
    d_window->d_page_widget->Set_Active_Page(second);

    QCOMPARE(d_window->d_data.Active_Page(), second);
    QVERIFY(d_window->d_label_widget->isEnabled());
    QVERIFY(d_window->d_display_widget->updatesEnabled());
    QCOMPARE(Support::Difference(Background(), Support::Picture(100, 120, 1)), QString());
    QCOMPARE(List()->count(), 2);
    QCOMPARE(List()->item(0)->text(), QStringLiteral("Item [5] Valve"));
    const QList<QGraphicsPixmapItem*> labels = Support::Labels(*d_window->d_display_widget);
    QCOMPARE(labels.size(), 2);
    QCOMPARE(labels[0]->data(1).toInt(), 11);
    QCOMPARE(labels[0]->data(8).toPointF(), QPointF(40, 50));
    QCOMPARE(labels[1]->data(8).toPointF(), QPointF(70.5, 80.25));
    QCOMPARE(labels[1]->data(17).toInt(), 0);
}

void TestEditing::showing_a_page_is_not_a_change_data()
{
    QTest::addColumn<bool>("changed");
    QTest::newRow("unchanged stays unchanged") << false;
    QTest::newRow("changed stays changed") << true;
}

void TestEditing::showing_a_page_is_not_a_change()
{
    QFETCH(bool, changed);
    Show_New_Page();
    d_window->Add_Item();
    d_window->d_data_changed = changed;
    d_window->Page_Selection_Changed(1);
    QCOMPARE(d_window->d_data_changed, changed);
    d_window->Page_Selection_Changed(99);
    QCOMPARE(d_window->d_data_changed, changed);
}

void TestEditing::an_unknown_page_shows_the_default_picture()
{
    Show_New_Page();
    d_window->Add_Item();
    d_window->Page_Selection_Changed(99);
    QCOMPARE(Support::Difference(Background(), Default_Background()), QString());
    QVERIFY(!d_window->d_label_widget->isEnabled());
    QCOMPARE(List()->count(), 0);
    QVERIFY(Support::Labels(*d_window->d_display_widget).isEmpty());
    QCOMPARE(d_window->d_data.Active_Page(), -1);
}

void TestEditing::a_page_without_an_image_shows_the_default_picture()
{
    Show_New_Page();
    const int empty = Add_Page_With(QImage());
    d_window->d_page_widget->Set_Active_Page(empty);
    QCOMPARE(d_window->d_data.Active_Page(), empty);
    QCOMPARE(Support::Difference(Background(), Default_Background()), QString());
    QVERIFY(!d_window->d_label_widget->isEnabled());
}

void TestEditing::a_new_document_asks_first_data()
{
    removing_labels_asks_first_data();
}

void TestEditing::a_new_document_asks_first()
{
    QFETCH(bool, yes);
    Show_New_Page();
    d_window->Add_Item();
    d_window->d_file_name = "/somewhere/a.quillet";
    const QString fault = Support::Run_Answering(
        [this] { d_window->d_action_new->trigger(); },
        {Support::Look_And_Press(
            [](QMessageBox* box) {
                Look_At_Question(box, "Data Not Saved",
                                 "Current data will be lost.  Do you want to continue?");
            },
            yes ? QMessageBox::Yes : QMessageBox::No)});
    QCOMPARE(fault, QString());
    QCOMPARE(d_window->d_data.Page_Count(), yes ? 0 : 1);
    QCOMPARE(d_window->d_page_widget->Page_Ids().size(), yes ? 0 : 1);
    QCOMPARE(List()->count(), yes ? 0 : 1);
    QCOMPARE(Support::Labels(*d_window->d_display_widget).size(), yes ? 0 : 1);
    QCOMPARE(d_window->d_file_name.isEmpty(), yes);
    QCOMPARE(d_window->d_data_changed, !yes);
    QCOMPARE(Enabled_Actions(), QList<bool>({!yes, !yes, !yes, !yes}));
    QCOMPARE(
        Support::Difference(Background(), yes ? Default_Background() : Support::Picture(200, 150)),
        QString());
}

void TestEditing::a_new_document_does_not_ask_when_nothing_changed()
{
    Show_New_Page();
    QCOMPARE(Support::Run_Answering([this] { d_window->File_New(); }, {}), QString());
    QCOMPARE(d_window->d_data.Page_Count(), 0);
    QCOMPARE(d_window->d_data.Add_Page(), 1);
}

void TestEditing::the_font_size_follows_from_the_label_size_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("font_size");
    QTest::newRow("32") << 32 << 13;
    QTest::newRow("10") << 10 << 4;
    QTest::newRow("16") << 16 << 6;
    QTest::newRow("40") << 40 << 16;
    QTest::newRow("128") << 128 << 51;
}

void TestEditing::the_font_size_follows_from_the_label_size()
{
    QFETCH(int, size);
    QFETCH(int, font_size);
    Show_New_Page();
    d_window->Add_Item(QPointF(60, 60));
    d_window->d_data_changed = false;
    d_window->Label_Size_Changed(size);
    QVERIFY(d_window->d_data_changed);
    QCOMPARE(d_window->d_display_widget->Label_Size(), QSize(size, size));

    TDisplayWidget reference(nullptr);
    reference.Set_Label_Color(d_window->d_settings_widget->Label_Color());
    reference.Set_Label_Size(QSize(size, size), font_size);
    QCOMPARE(
        Support::Difference(Support::Labels(*d_window->d_display_widget)[0]->pixmap().toImage(),
                            reference.Render_Pixmap(1, 2, false).toImage()),
        QString());
}

void TestEditing::a_color_reaches_the_view_and_is_not_a_change()
{
    Show_New_Page();
    d_window->Add_Item(QPointF(60, 60));
    d_window->d_data_changed = false;
    const QImage before = Support::Labels(*d_window->d_display_widget)[0]->pixmap().toImage();
    d_window->Color_Changed(QColor(0, 128, 0));
    const QImage after = Support::Labels(*d_window->d_display_widget)[0]->pixmap().toImage();
    QVERIFY(!Support::Difference(after, before).isEmpty());
    QVERIFY(!d_window->d_data_changed);
}

void TestEditing::the_tracking_option_reaches_the_view()
{
    auto* check_box = Support::Only<QCheckBox>(*d_window);
    check_box->setChecked(false);
    QVERIFY(!d_window->d_display_widget->d_track_item);
    check_box->setChecked(true);
    QVERIFY(d_window->d_display_widget->d_track_item);
    QVERIFY(!d_window->d_data_changed);
}

void TestEditing::a_display_format_rebuilds_the_list()
{
    Show_New_Page();
    d_window->Add_Item();
    d_window->d_data_changed = false;
    d_window->Item_Display_Format_Changed("No.%1");
    QCOMPARE(d_window->d_label_widget->d_display_format, QStringLiteral("No.%1"));
    QCOMPARE(List()->item(0)->text(), QStringLiteral("No.1 "));
    QCOMPARE(Support::Labels(*d_window->d_display_widget).size(), 1);
    QVERIFY(!d_window->d_data_changed);
}

void TestEditing::a_display_format_without_a_page_shows_the_default_picture()
{
    Show_New_Page();
    d_window->Add_Item();
    d_window->d_data.Set_Active_Page(-1);
    d_window->Item_Display_Format_Changed("No.%1");
    QCOMPARE(List()->count(), 0);
    QVERIFY(Support::Labels(*d_window->d_display_widget).isEmpty());
    QCOMPARE(Support::Difference(Background(), Default_Background()), QString());
}

QTEST_MAIN(TestEditing)
#include "test_editing.moc"
