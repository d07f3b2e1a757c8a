// Keys that work anywhere in the window: zoom, previous and next page, and entering a label's text.

#include "support/pages.h"
#include "support/project.h"
#include "support/support.h"
#include "support/widgets.h"
#include "support/window.h"

#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/pagewidget.h"
#include "src/undo/undohistory.h"

#include <QDockWidget>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSlider>
#include <QStatusBar>
#include <QTest>
#include <QToolTip>

using Support::Label;

namespace {

const QPointF on_page(60, 40); ///< a point without a label, in page-image pixels

} // namespace

class TestWindowKeys : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void ctrl_plus_and_minus_move_the_zoom_slider_by_a_notch_data();
    void ctrl_plus_and_minus_move_the_zoom_slider_by_a_notch();
    void ctrl_1_shows_the_original_size();
    void ctrl_0_fits_the_page_data();
    void ctrl_0_fits_the_page();
    void ctrl_0_shows_a_page_of_the_size_of_the_view_at_its_original_size();
    void the_zoom_keys_change_nothing_in_an_editor_or_the_document();

    void ctrl_page_keys_show_the_previous_and_the_next_page();
    void ctrl_page_keys_follow_the_order_of_the_rows();
    void without_a_selected_page_they_show_the_first_or_the_last();
    void with_several_selected_pages_they_show_one();
    void without_pages_they_do_nothing();
    void they_commit_a_typed_text();
    void the_tool_tip_of_a_page_shows_its_picture();

    void f2_edits_the_text_of_the_selected_label_data();
    void f2_edits_the_text_of_the_selected_label();
    void without_a_selected_label_f2_edits_the_newest();
    void with_several_selected_labels_f2_edits_the_last_of_them();
    void f2_edits_the_label_that_was_just_added();
    void f2_edits_a_label_that_was_selected_after_another_was_added();
    void f2_on_a_page_without_labels_shows_a_message();
    void f2_commits_a_text_typed_for_another_label();
    void f2_shows_the_item_list_if_it_is_hidden();
    void return_on_the_page_edits_and_return_in_the_editor_goes_back();
    void return_in_the_editor_reports_the_text_once();
    void labels_and_their_texts_can_be_entered_without_the_item_list();

private:
    int Zoom() const { return d_window->d_zoom_slider->value(); }
    int Show(const std::vector<TDataItem>& labels = {}, const QSize& size = QSize(600, 800));
    QList<int> Add_Three_Pages();
    void Press(int key, Qt::KeyboardModifiers modifiers = {}) const;
    void Right_Click(const QPointF& point) const;
    QListWidget* Pages() const { return Support::Only<QListWidget>(*d_window->d_page_widget); }
    QLineEdit* Editor(const QString& tip) const
    {
        return Support::By_Tool_Tip<QLineEdit>(*d_window, tip);
    }

    std::unique_ptr<TOpenWindow> d_window;
};

void TestWindowKeys::init()
{
    d_window = Support::New_Window(32, Qt::red);
    d_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(d_window.get()));
    d_window->d_display_widget->setFocus();
}

void TestWindowKeys::cleanup()
{
    d_window.reset();
}

/// Adds a page and shows it; returns its id.
int TestWindowKeys::Show(const std::vector<TDataItem>& labels, const QSize& size)
{
    const int page =
        Support::Add_Page(d_window.get(), Support::Picture(size.width(), size.height()), labels);
    Support::Show_Page(d_window.get(), page);
    d_window->d_history->Clear();
    return page;
}

QList<int> TestWindowKeys::Add_Three_Pages()
{
    QList<int> pages;
    for (int number = 1; number <= 3; ++number)
        pages += Support::Add_Page(d_window.get(), Support::Picture(60, 40, number));
    return pages;
}

/// Presses a key where the focus is.
void TestWindowKeys::Press(int key, Qt::KeyboardModifiers modifiers) const
{
    QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(key), modifiers);
    QCoreApplication::processEvents();
}

void TestWindowKeys::Right_Click(const QPointF& point) const
{
    QTest::mouseClick(d_window->d_display_widget->viewport(), Qt::RightButton, {},
                      d_window->d_display_widget->mapFromScene(point));
}

// --- zoom ----------------------------------------------------------------------------------------

void TestWindowKeys::ctrl_plus_and_minus_move_the_zoom_slider_by_a_notch_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<int>("value");
    QTest::newRow("plus") << int{Qt::Key_Plus} << Qt::KeyboardModifiers() << 12;
    QTest::newRow("equal") << int{Qt::Key_Equal} << Qt::KeyboardModifiers() << 12;
    QTest::newRow("minus") << int{Qt::Key_Minus} << Qt::KeyboardModifiers() << 2;
    QTest::newRow("plus on the number pad")
        << int{Qt::Key_Plus} << Qt::KeyboardModifiers(Qt::KeypadModifier) << 12;
}

void TestWindowKeys::ctrl_plus_and_minus_move_the_zoom_slider_by_a_notch()
{
    QFETCH(int, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(int, value);
    Show();
    d_window->d_zoom_slider->setValue(7);
    Press(key, modifiers | Qt::ControlModifier);
    QCOMPARE(Zoom(), value);
}

void TestWindowKeys::ctrl_1_shows_the_original_size()
{
    Show();
    d_window->d_zoom_slider->setValue(-30);
    Press(Qt::Key_1, Qt::ControlModifier);
    QCOMPARE(Zoom(), 0);
    QCOMPARE(d_window->d_zoom_label->text(), QString("1.00 X"));
    QCOMPARE(d_window->d_display_widget->transform().m11(), 1.0);
}

void TestWindowKeys::ctrl_0_fits_the_page_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("tall") << QSize(900, 1500);
    QTest::newRow("wide") << QSize(1500, 300);
    QTest::newRow("small") << QSize(90, 60);
}

void TestWindowKeys::ctrl_0_fits_the_page()
{
    QFETCH(QSize, size);
    Show({}, size);
    Press(Qt::Key_0, Qt::ControlModifier);
    const TDisplayWidget& view = *d_window->d_display_widget;
    QVERIFY(!view.horizontalScrollBar()->isVisible());
    QVERIFY(!view.verticalScrollBar()->isVisible());
    QVERIFY(QRectF(view.viewport()->rect())
                .contains(view.viewportTransform()
                              .mapRect(QRectF(QPointF(), QSizeF(size)))
                              .adjusted(1, 1, -1, -1)));

    // One more step of the slider is too large.
    d_window->d_zoom_slider->setValue(Zoom() + 1);
    QCoreApplication::processEvents();
    QVERIFY(view.horizontalScrollBar()->isVisible() || view.verticalScrollBar()->isVisible());
}

void TestWindowKeys::ctrl_0_shows_a_page_of_the_size_of_the_view_at_its_original_size()
{
    Show({}, d_window->d_display_widget->maximumViewportSize());
    d_window->d_zoom_slider->setValue(60);
    Press(Qt::Key_0, Qt::ControlModifier);
    QCOMPARE(Zoom(), 0);
}

void TestWindowKeys::the_zoom_keys_change_nothing_in_an_editor_or_the_document()
{
    Show({Label(1, 5, "Pump", 1, {50, 50})});
    d_window->d_label_widget->Set_Selection(1);
    d_window->d_data_changed = false;
    Editor("Item Text")->setFocus();
    for (const int key : {Qt::Key_Plus, Qt::Key_Minus, Qt::Key_0, Qt::Key_1})
        Press(key, Qt::ControlModifier);
    QCOMPARE(Zoom(), 0);
    QCOMPARE(Editor("Item Text")->text(), QString("Pump"));
    QVERIFY(Editor("Item Text")->hasFocus());
    QVERIFY(!d_window->d_data_changed);
    QVERIFY(!d_window->d_history->Can_Undo());
}

// --- pages ---------------------------------------------------------------------------------------

void TestWindowKeys::ctrl_page_keys_show_the_previous_and_the_next_page()
{
    const QList<int> pages = Add_Three_Pages();
    Support::Show_Page(d_window.get(), pages[0]);
    QList<int> shown;
    for (const int key : {Qt::Key_PageDown, Qt::Key_PageDown, Qt::Key_PageDown, Qt::Key_PageUp,
                          Qt::Key_PageUp, Qt::Key_PageUp}) {
        Press(key, Qt::ControlModifier);
        shown += d_window->d_data.Active_Page();
        QCOMPARE(d_window->d_page_widget->Selected_Pages(), std::vector<int>{shown.last()});
    }
    QCOMPARE(shown, QList<int>({pages[1], pages[2], pages[2], pages[1], pages[0], pages[0]}));
    QVERIFY(d_window->d_display_widget->hasFocus());

    // They work from a list, which would otherwise move its current row.
    Pages()->setFocus();
    Press(Qt::Key_PageDown, Qt::ControlModifier);
    QCOMPARE(d_window->d_data.Active_Page(), pages[1]);
}

void TestWindowKeys::ctrl_page_keys_follow_the_order_of_the_rows()
{
    const QList<int> pages = Add_Three_Pages();
    Support::Show_Page(d_window.get(), pages[2]);
    Pages()->setFocus();
    QTest::keyClick(Pages(), Qt::Key_Up, Qt::AltModifier);
    Press(Qt::Key_PageDown, Qt::ControlModifier);
    QCOMPARE(d_window->d_data.Active_Page(), pages[1]);
}

void TestWindowKeys::without_a_selected_page_they_show_the_first_or_the_last()
{
    const QList<int> pages = Add_Three_Pages();
    Press(Qt::Key_PageDown, Qt::ControlModifier);
    QCOMPARE(d_window->d_data.Active_Page(), pages.first());
    Pages()->clearSelection();
    Press(Qt::Key_PageUp, Qt::ControlModifier);
    QCOMPARE(d_window->d_data.Active_Page(), pages.last());
}

void TestWindowKeys::with_several_selected_pages_they_show_one()
{
    const QList<int> pages = Add_Three_Pages();
    Support::Click_Row(Pages(), 0);
    Support::Click_Row(Pages(), 1, Qt::ControlModifier);
    Press(Qt::Key_PageDown, Qt::ControlModifier);
    QCOMPARE(d_window->d_data.Active_Page(), pages.last());
}

void TestWindowKeys::without_pages_they_do_nothing()
{
    const QSignalSpy changes(d_window->d_page_widget, SIGNAL(Selection_Changed(int)));
    Press(Qt::Key_PageDown, Qt::ControlModifier);
    Press(Qt::Key_PageUp, Qt::ControlModifier);
    QCOMPARE(changes.count(), 0);
    QCOMPARE(d_window->d_data.Active_Page(), -1);
}

void TestWindowKeys::they_commit_a_typed_text()
{
    const int other = Show();
    Show({Label(1, 5, "", 1, {50, 50})});
    d_window->d_label_widget->Set_Selection(1);
    Editor("Item Text")->setFocus();
    QTest::keyClicks(Editor("Item Text"), "Pump");
    Press(Qt::Key_PageUp, Qt::ControlModifier);
    QCOMPARE(d_window->d_data.Active_Page(), other);
    Press(Qt::Key_PageDown, Qt::ControlModifier);
    QCOMPARE(d_window->d_data.Item(0).text, QString("Pump"));
}

void TestWindowKeys::the_tool_tip_of_a_page_shows_its_picture()
{
    const QImage picture = Support::Picture(60, 40, 2);
    Add_Three_Pages();
    const QPoint place = Pages()->visualItemRect(Pages()->item(1)).center();
    QHelpEvent event(QEvent::ToolTip, place, Pages()->viewport()->mapToGlobal(place));
    QApplication::sendEvent(Pages()->viewport(), &event);
    const QString tip = QToolTip::text();
    QVERIFY2(tip.contains("Page 2"), qPrintable(tip.left(100)));
    const QString mark("base64,");
    const int start = tip.indexOf(mark) + mark.size();
    const QByteArray png =
        QByteArray::fromBase64(tip.mid(start, tip.indexOf('"', start) - start).toLatin1());
    QCOMPARE(Support::Difference(QImage::fromData(png), picture), QString());
    QToolTip::hideText();
}

// --- entering texts ------------------------------------------------------------------------------

void TestWindowKeys::f2_edits_the_text_of_the_selected_label_data()
{
    QTest::addColumn<QString>("focus");
    QTest::newRow("on the page") << "Page";
    QTest::newRow("in the item list") << "Item List";
    QTest::newRow("in the page list") << "Page List";
    QTest::newRow("in an editor") << "Item Value";
}

void TestWindowKeys::f2_edits_the_text_of_the_selected_label()
{
    QFETCH(QString, focus);
    Show({Label(1, 5, "Pump", 1, {50, 50}), Label(2, 6, "", 1, {90, 50})});
    d_window->d_label_widget->Set_Selection(1);
    for (QWidget* const widget : d_window->findChildren<QWidget*>()) {
        if (widget->accessibleName() == focus && widget->focusPolicy() & Qt::TabFocus)
            widget->setFocus();
    }
    QCOMPARE(QApplication::focusWidget()->accessibleName(), focus);
    Press(Qt::Key_F2);
    QVERIFY(Editor("Item Text")->hasFocus());
    QCOMPARE(Editor("Item Text")->selectedText(), QString("Pump"));
    QCOMPARE(d_window->d_label_widget->Selected_Items(), std::vector<int>{1});
}

void TestWindowKeys::without_a_selected_label_f2_edits_the_newest()
{
    Show({Label(1, 5, "", 1, {50, 50}), Label(2, 6, "", 1, {90, 50}), Label(3, 4, "", 1, {9, 9})});
    Press(Qt::Key_F2);
    QCOMPARE(d_window->d_label_widget->Selected_Items(), std::vector<int>{3});
    QVERIFY(Editor("Item Text")->hasFocus());
}

void TestWindowKeys::with_several_selected_labels_f2_edits_the_last_of_them()
{
    Show({Label(1, 5, "", 1, {50, 50}), Label(2, 6, "Pump", 1, {90, 50}),
          Label(3, 4, "", 1, {9, 9})});
    d_window->d_label_widget->Select_Items({1, 2});
    Press(Qt::Key_F2);
    QCOMPARE(d_window->d_label_widget->Selected_Items(), std::vector<int>{2});
    QCOMPARE(Editor("Item Text")->selectedText(), QString("Pump"));
}

void TestWindowKeys::f2_edits_the_label_that_was_just_added()
{
    Show({Label(1, 5, "", 1, {50, 50})});
    d_window->d_label_widget->Set_Selection(1);
    Right_Click({120, 90});
    const int added = d_window->d_data.Item(1).id;
    QCOMPARE(d_window->d_label_widget->Selected_Items(), std::vector<int>{1});
    Press(Qt::Key_F2);
    QCOMPARE(d_window->d_label_widget->Selected_Items(), std::vector<int>{added});
}

void TestWindowKeys::f2_edits_a_label_that_was_selected_after_another_was_added()
{
    Show({Label(1, 5, "", 1, {50, 50})});
    Right_Click({120, 90});
    d_window->d_label_widget->Set_Selection(1);
    Press(Qt::Key_F2);
    QCOMPARE(d_window->d_label_widget->Selected_Items(), std::vector<int>{1});
}

void TestWindowKeys::f2_on_a_page_without_labels_shows_a_message()
{
    Show();
    Press(Qt::Key_F2);
    QVERIFY(d_window->d_display_widget->hasFocus());
    QCOMPARE(d_window->statusBar()->currentMessage(), QString("There is no label on the page"));
}

void TestWindowKeys::f2_commits_a_text_typed_for_another_label()
{
    Show({Label(1, 5, "", 1, {50, 50})});
    d_window->d_label_widget->Set_Selection(1);
    Editor("Item Text")->setFocus();
    QTest::keyClicks(Editor("Item Text"), "Pump");
    d_window->Add_Item(QPointF(120, 90));
    Press(Qt::Key_F2);
    QCOMPARE(d_window->d_data.Item(0).text, QString("Pump"));
    QCOMPARE(Editor("Item Text")->text(), QString());
}

void TestWindowKeys::f2_shows_the_item_list_if_it_is_hidden()
{
    Show({Label(1, 5, "", 1, {50, 50})});
    d_window->d_label_dock->hide();
    Press(Qt::Key_F2);
    QVERIFY(Editor("Item Text")->isVisible());
    QVERIFY(Editor("Item Text")->hasFocus());
}

void TestWindowKeys::return_on_the_page_edits_and_return_in_the_editor_goes_back()
{
    Show({Label(1, 5, "", 1, {50, 50})});
    for (const int key : {Qt::Key_Return, Qt::Key_Enter}) {
        Press(key);
        QVERIFY(Editor("Item Text")->hasFocus());
        Press(key);
        QVERIFY(d_window->d_display_widget->hasFocus());
    }
}

void TestWindowKeys::return_in_the_editor_reports_the_text_once()
{
    Show({Label(1, 5, "", 1, {50, 50})});
    const QSignalSpy changes(d_window->d_label_widget, SIGNAL(Change_Item_Text(int, QString)));
    Press(Qt::Key_F2);
    QTest::keyClicks(Editor("Item Text"), "Pump");
    Press(Qt::Key_Return);
    QVERIFY(d_window->d_display_widget->hasFocus());
    QCOMPARE(changes.count(), 1);
    QCOMPARE(d_window->d_data.Item(0).text, QString("Pump"));
}

void TestWindowKeys::labels_and_their_texts_can_be_entered_without_the_item_list()
{
    Show();
    const QStringList texts{"Pump", "Valve", "Tank"};
    for (const QString& text : texts) {
        Right_Click(on_page + QPointF(0, 60.0 * d_window->d_data.Item_Count()));
        Press(Qt::Key_Return);
        QTest::keyClicks(QApplication::focusWidget(), text);
        Press(Qt::Key_Return);
    }
    QStringList entered;
    for (const TDataItem& item : d_window->d_data.Active_Page_Item()->data_items)
        entered += item.text;
    QCOMPARE(entered, texts);
    Press(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(d_window->d_data.Item(2).text, QString());
    QCOMPARE(d_window->d_data.Item_Count(), 3);
}

QTEST_MAIN(TestWindowKeys)
#include "test_windowkeys.moc"
