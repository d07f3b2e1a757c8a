// Selecting labels on the page and moving them together, with Ctrl and Shift.

#include "support/pages.h"
#include "support/project.h"
#include "support/support.h"
#include "support/view.h"
#include "support/widgets.h"
#include "support/window.h"

#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/undo/undohistory.h"

#include <QRubberBand>
#include <QTest>

using Support::Label;

class TestPageSelection : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void a_click_with_a_key_toggles_a_label_data();
    void a_click_with_a_key_toggles_a_label();
    void quick_clicks_toggle_the_same_label_again();
    void a_click_with_a_key_beside_the_labels_keeps_the_selection();
    void a_click_with_a_key_does_not_scroll();
    void a_short_move_is_still_a_click();
    void ctrl_drag_moves_all_selected_labels();
    void ctrl_drag_of_another_label_selects_and_moves_it_too();
    void a_ctrl_drag_is_one_step();
    void shift_drag_selects_the_labels_in_the_rectangle_data();
    void shift_drag_selects_the_labels_in_the_rectangle();
    void with_ctrl_the_rectangle_adds_to_the_selection();
    void the_rectangle_is_shown_during_the_drag();
    void the_view_reports_nothing_of_these_clicks();
    void without_keys_one_label_is_selected_and_moved();
    void a_lost_release_ends_the_drag();

private:
    QPoint Place(const QPointF& point) const;
    void Mouse(QEvent::Type type, const QPointF& point, Qt::KeyboardModifiers modifiers) const;
    void Click(const QPointF& point, Qt::KeyboardModifiers modifiers) const;
    void Drag(const QPointF& from, const QPointF& to, Qt::KeyboardModifiers modifiers) const;
    QList<int> Selected() const;
    QString Positions() const;

    std::unique_ptr<TOpenWindow> d_window;
    std::unique_ptr<Support::TSignalLog> d_signals;
};

/// Shows a page with three labels of which the first two are selected.
void TestPageSelection::init()
{
    d_window = Support::New_Window(32, Qt::red);
    QVERIFY(QTest::qWaitForWindowActive(d_window.get()));
    const int page = Support::Add_Page(d_window.get(), Support::Picture(300, 250),
                                       {Label(1, 5, "", 1, {50, 50}), Label(2, 6, "", 2, {130, 50}),
                                        Label(3, 7, "", 8, {50, 130})});
    Support::Show_Page(d_window.get(), page);
    d_window->d_label_widget->Select_Items({1, 2});
    d_window->d_display_widget->centerOn(0, 0);
    d_window->d_history->Clear();
    d_window->d_data_changed = false;
    d_signals = std::make_unique<Support::TSignalLog>(*d_window->d_display_widget);
}

void TestPageSelection::cleanup()
{
    d_signals.reset();
    d_window.reset();
}

/// The view pixel of a scene point.
QPoint TestPageSelection::Place(const QPointF& point) const
{
    return d_window->d_display_widget->mapFromScene(point);
}

/// Sends a mouse event to the view, with the left button held except after a release.
void TestPageSelection::Mouse(QEvent::Type type, const QPointF& point,
                              Qt::KeyboardModifiers modifiers) const
{
    QWidget* const viewport = d_window->d_display_widget->viewport();
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    const Qt::MouseButtons held =
        type == QEvent::MouseButtonRelease ? Qt::MouseButtons() : Qt::MouseButtons(Qt::LeftButton);
    QMouseEvent event(type, Place(point), viewport->mapToGlobal(Place(point)), button, held,
                      modifiers);
    QApplication::sendEvent(viewport, &event);
}

void TestPageSelection::Click(const QPointF& point, Qt::KeyboardModifiers modifiers) const
{
    Mouse(QEvent::MouseButtonPress, point, modifiers);
    Mouse(QEvent::MouseButtonRelease, point, modifiers);
}

void TestPageSelection::Drag(const QPointF& from, const QPointF& to,
                             Qt::KeyboardModifiers modifiers) const
{
    Mouse(QEvent::MouseButtonPress, from, modifiers);
    Mouse(QEvent::MouseMove, (from + to) / 2.0, modifiers);
    Mouse(QEvent::MouseMove, to, modifiers);
    Mouse(QEvent::MouseButtonRelease, to, modifiers);
}

/// The selected labels in ascending order, as list, view and document agree on them.
QList<int> TestPageSelection::Selected() const
{
    const std::vector<int> ids = d_window->d_label_widget->Selected_Items();
    const QSet<int> selected(ids.cbegin(), ids.cend());
    for (const TDataItem& item : d_window->d_data.Active_Page_Item()->data_items) {
        const QGraphicsPixmapItem* const shown =
            Support::Label(*d_window->d_display_widget, item.id);
        const bool is_shown = shown->data(TDisplayWidget::Selected_Key).toInt() != 0;
        if (item.selected != selected.contains(item.id) || item.selected != is_shown)
            return {-1, item.id};
    }
    QList<int> sorted = selected.values();
    std::sort(sorted.begin(), sorted.end());
    return sorted;
}

/// Positions of the labels, as view and document agree on them.
QString TestPageSelection::Positions() const
{
    QStringList positions;
    for (const TDataItem& item : d_window->d_data.Active_Page_Item()->data_items) {
        positions += Support::Text(item.position);
        if (d_window->d_display_widget->Item_Position(item.id) != item.position)
            positions += "elsewhere in the view";
    }
    return positions.join(' ');
}

void TestPageSelection::a_click_with_a_key_toggles_a_label_data()
{
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::newRow("Ctrl") << Qt::KeyboardModifiers(Qt::ControlModifier);
    QTest::newRow("Shift") << Qt::KeyboardModifiers(Qt::ShiftModifier);
}

void TestPageSelection::a_click_with_a_key_toggles_a_label()
{
    QFETCH(Qt::KeyboardModifiers, modifiers);
    Click({50, 130}, modifiers);
    QCOMPARE(Selected(), QList<int>({1, 2, 3}));
    Click({55, 45}, modifiers);
    QCOMPARE(Selected(), QList<int>({2, 3}));
    QVERIFY(!d_window->d_data_changed);
    QVERIFY(!d_window->d_history->Can_Undo());
}

void TestPageSelection::quick_clicks_toggle_the_same_label_again()
{
    Click({50, 50}, Qt::ControlModifier);
    QCOMPARE(Selected(), QList<int>{2});
    // Qt reports the second press of a double click in this way.
    Mouse(QEvent::MouseButtonDblClick, {50, 50}, Qt::ControlModifier);
    Mouse(QEvent::MouseButtonRelease, {50, 50}, Qt::ControlModifier);
    QCOMPARE(Selected(), QList<int>({1, 2}));
}

void TestPageSelection::a_click_with_a_key_beside_the_labels_keeps_the_selection()
{
    Click({200, 200}, Qt::ControlModifier);
    Click({200, 200}, Qt::ShiftModifier);
    Drag({200, 200}, {240, 220}, Qt::ControlModifier);
    QCOMPARE(Selected(), QList<int>({1, 2}));
    QVERIFY(!d_window->d_data_changed);
}

void TestPageSelection::a_click_with_a_key_does_not_scroll()
{
    d_window->d_display_widget->d_track_item = true;
    d_window->d_zoom_slider->setValue(80);
    d_window->d_display_widget->centerOn(80, 100);
    const QRectF before = d_window->d_display_widget->mapToScene(QRect(0, 0, 9, 9)).boundingRect();
    Click({50, 130}, Qt::ControlModifier);
    QCOMPARE(Selected(), QList<int>({1, 2, 3}));
    QCOMPARE(d_window->d_display_widget->mapToScene(QRect(0, 0, 9, 9)).boundingRect(), before);
}

void TestPageSelection::a_short_move_is_still_a_click()
{
    Drag({50, 130}, {52, 131}, Qt::ControlModifier);
    QCOMPARE(Selected(), QList<int>({1, 2, 3}));
    QCOMPARE(Positions(), QString("50,50 130,50 50,130"));
}

void TestPageSelection::ctrl_drag_moves_all_selected_labels()
{
    Drag({50, 50}, {90, 71}, Qt::ControlModifier);
    QCOMPARE(Positions(), QString("90,71 170,71 50,130"));
    QCOMPARE(Selected(), QList<int>({1, 2}));
    QVERIFY(d_window->d_data_changed);
}

void TestPageSelection::ctrl_drag_of_another_label_selects_and_moves_it_too()
{
    d_window->d_label_widget->Set_Selection(1);
    Drag({50, 130}, {60, 150}, Qt::ControlModifier);
    QCOMPARE(Positions(), QString("60,70 130,50 60,150"));
    QCOMPARE(Selected(), QList<int>({1, 3}));
}

void TestPageSelection::a_ctrl_drag_is_one_step()
{
    // Moves with the keys are steps of their own.
    d_window->d_display_widget->setFocus();
    QStringList states{Positions()};
    QTest::keyClick(d_window->d_display_widget, Qt::Key_Down, Qt::ControlModifier);
    states += Positions();
    Drag({50, 51}, {90, 71}, Qt::ControlModifier);
    states += Positions();
    QTest::keyClick(d_window->d_display_widget, Qt::Key_Down, Qt::ControlModifier);
    QCOMPARE(states << Positions(), QStringList({"50,50 130,50 50,130", "50,51 130,51 50,130",
                                                 "90,71 170,71 50,130", "90,72 170,72 50,130"}));
    for (int step = 2; step >= 0; --step) {
        QTest::keyClick(d_window->d_display_widget, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(d_window->statusBar()->currentMessage(), QString("Undone: move 2 labels"));
        QCOMPARE(Positions(), states.at(step));
    }
    QVERIFY(!d_window->d_history->Can_Undo());
}

void TestPageSelection::shift_drag_selects_the_labels_in_the_rectangle_data()
{
    QTest::addColumn<QPointF>("from");
    QTest::addColumn<QPointF>("to");
    QTest::addColumn<QList<int>>("selected");
    QTest::newRow("one") << QPointF(20, 90) << QPointF(90, 170) << QList<int>{3};
    QTest::newRow("upwards from a label")
        << QPointF(60, 140) << QPointF(20, 20) << QList<int>({1, 3});
    QTest::newRow("all") << QPointF(5, 5) << QPointF(220, 220) << QList<int>({1, 2, 3});
    QTest::newRow("none") << QPointF(200, 90) << QPointF(240, 200) << QList<int>();
    QTest::newRow("only the edge of a label")
        << QPointF(55, 110) << QPointF(100, 200) << QList<int>();
}

void TestPageSelection::shift_drag_selects_the_labels_in_the_rectangle()
{
    QFETCH(QPointF, from);
    QFETCH(QPointF, to);
    QFETCH(QList<int>, selected);
    Drag(from, to, Qt::ShiftModifier);
    QCOMPARE(Selected(), selected);
    QCOMPARE(Positions(), QString("50,50 130,50 50,130"));
    QVERIFY(!d_window->d_data_changed);
}

void TestPageSelection::with_ctrl_the_rectangle_adds_to_the_selection()
{
    d_window->d_label_widget->Set_Selection(1);
    Drag({20, 90}, {90, 170}, Qt::ShiftModifier | Qt::ControlModifier);
    QCOMPARE(Selected(), QList<int>({1, 3}));
}

void TestPageSelection::the_rectangle_is_shown_during_the_drag()
{
    Mouse(QEvent::MouseButtonPress, {20, 170}, Qt::ShiftModifier);
    Mouse(QEvent::MouseMove, {90, 90}, Qt::ShiftModifier);
    const auto* const band = d_window->d_display_widget->findChild<QRubberBand*>();
    QVERIFY(band && band->isVisible());
    QCOMPARE(band->geometry(), QRect(Place({20, 170}), Place({90, 90})).normalized());
    Mouse(QEvent::MouseButtonRelease, {90, 90}, Qt::ShiftModifier);
    QVERIFY(!band->isVisible());
}

void TestPageSelection::the_view_reports_nothing_of_these_clicks()
{
    Click({50, 50}, Qt::ControlModifier);
    Click({200, 200}, Qt::ControlModifier);
    Drag({20, 90}, {90, 170}, Qt::ShiftModifier);
    QCOMPARE(d_signals->Take(), QStringList());
    // A move of several labels is reported as with the arrow keys.
    Drag({50, 130}, {90, 150}, Qt::ControlModifier);
    for (const QString& line : d_signals->Take())
        QVERIFY2(line.contains(" is at "), qPrintable(line));
}

void TestPageSelection::without_keys_one_label_is_selected_and_moved()
{
    Drag({50, 130}, {90, 150}, {});
    QCOMPARE(Selected(), QList<int>{3});
    QCOMPARE(Positions(), QString("50,50 130,50 90,150"));
    QCOMPARE(d_signals->Take().size(), 2);
}

void TestPageSelection::a_lost_release_ends_the_drag()
{
    Mouse(QEvent::MouseButtonPress, {50, 50}, Qt::ControlModifier);
    Mouse(QEvent::MouseMove, {90, 71}, Qt::ControlModifier);
    QWidget* const viewport = d_window->d_display_widget->viewport();
    const QPoint point = Place({200, 200});
    QMouseEvent hover(QEvent::MouseMove, point, viewport->mapToGlobal(point), Qt::NoButton,
                      Qt::NoButton, Qt::ControlModifier);
    QApplication::sendEvent(viewport, &hover);
    QCOMPARE(Positions(), QString("90,71 170,71 50,130"));
    Click({50, 130}, {});
    QCOMPARE(Selected(), QList<int>{3});
}

QTEST_MAIN(TestPageSelection)
#include "test_pageselection.moc"
