// Gestures: Ctrl and the wheel zoom, Delete asks, Ctrl and arrows move labels, dropped files become
// pages or are opened, Alt and arrows move rows. Also the progress of long work.

#include "support/inputfiles.h"
#include "support/modal.h"
#include "support/project.h"
#include "support/support.h"
#include "support/widgets.h"
#include "support/window.h"
#include "support/worklogs.h"

#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/messagebox.h"
#include "src/pagewidget.h"
#include "src/safety/safetynet.h"
#include "src/widgets/rowlist.h"
#include "src/widgets/wheelzoom.h"

#include <QAbstractItemModel>
#include <QAbstractScrollArea>
#include <QAction>
#include <QApplication>
#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMap>
#include <QMessageBox>
#include <QMimeData>
#include <QProgressBar>
#include <QScrollBar>
#include <QSet>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>
#include <QWheelEvent>

#include <cmath>
#include <tuple>

using Support::Label;
using Support::Run_Answering;

namespace {

constexpr int notch = 120; // eighths of a degree

/// Records the text of a progress bar each time the bar is painted.
class TBarReader : public QObject
{
public:
    QStringList d_texts;
    bool d_was_busy = true; ///< the cursor was busy whenever a bar was painted
    QSet<QObject*> d_parents;

protected:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        const auto* const bar = qobject_cast<QProgressBar*>(object);
        if (event->type() == QEvent::Paint && bar) {
            d_texts += bar->text();
            d_was_busy = d_was_busy && QApplication::overrideCursor();
            d_parents += bar->parent();
        }
        return false;
    }
};

} // namespace

class TestGestures : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void a_notch_moves_the_zoom_slider_data();
    void a_notch_moves_the_zoom_slider();
    void fractions_of_a_notch_add_up();
    void turning_the_wheel_back_discards_the_fraction();
    void the_wheel_stops_at_the_ends_of_the_slider();
    void the_point_under_the_pointer_stays_there_data();
    void the_point_under_the_pointer_stays_there();
    void many_zooms_keep_the_point_under_the_pointer();
    void zooming_keeps_the_point_under_the_pointer_where_the_view_can_scroll();
    void a_page_smaller_than_the_view_stays_centred();
    void only_ctrl_alone_makes_the_wheel_zoom_data();
    void only_ctrl_alone_makes_the_wheel_zoom();

    void delete_in_the_item_list_asks();
    void delete_in_the_page_list_asks();
    void delete_without_a_selection_does_not_ask();
    void delete_in_the_editors_edits();
    void delete_with_modifiers_or_held_down_does_not_ask();

    void ctrl_and_arrows_move_the_selected_labels_data();
    void ctrl_and_arrows_move_the_selected_labels();
    void a_held_key_keeps_moving_the_label();
    void keys_without_a_selection_move_nothing();
    void arrows_without_ctrl_scroll();
    void ctrl_and_arrows_in_a_list_move_no_label();

    void dropped_images_become_pages_sorted_by_name();
    void a_drop_works_everywhere_data();
    void a_drop_works_everywhere();
    void a_drop_on_a_floating_dock_works();
    void files_other_than_images_are_refused_data();
    void files_other_than_images_are_refused();
    void a_drop_imports_only_the_images_among_its_files();
    void a_dropped_document_is_opened_data();
    void a_dropped_document_is_opened();
    void a_dropped_document_is_opened_only_after_the_question();
    void images_are_inserted_into_the_document_dropped_with_them();
    void a_dropped_pdf_is_recognized_by_its_content();
    void files_are_copied_and_never_moved();
    void a_drop_is_refused_while_a_dialog_is_open();
    void text_can_still_be_dropped_on_editors();

    void alt_and_arrows_move_rows_data();
    void alt_and_arrows_move_rows();
    void moved_pages_keep_their_selection_and_names();

    void a_frame_marks_the_view_with_the_focus();

    void an_import_shows_progress();
    void reading_one_large_image_shows_progress();
    void saving_and_opening_show_progress();
    void recovering_work_shows_progress();
    void exports_show_progress();
    void short_work_shows_no_progress();
    void the_bar_fits_beside_the_zoom_control();

private:
    void Show_Page(const QSize& size = QSize(1000, 1400));
    QWidget* Page() const { return d_window->d_display_widget->viewport(); }
    void Turn(const QPoint& angle, const QPointF& position,
              Qt::KeyboardModifiers modifiers = Qt::ControlModifier) const;
    void Turn(int angle) const { Turn(QPoint(0, angle), Page()->rect().center()); }
    int Zoom() const { return d_window->d_zoom_slider->value(); }
    QPointF Scene_Point(const QPointF& position) const;
    TRowList* List(const QWidget* panel) const { return Support::Only<TRowList>(*panel); }
    void Focus(QWidget* widget) const;
    QStringList Positions() const;
    QString Picture_File(const QString& name, int seed = 1) const;
    bool Drag(QEvent::Type type, QWidget* over, const QMimeData& dragged,
              Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction) const;
    bool Drop_Files(QWidget* over, const QStringList& paths) const;
    QStringList Shown_While(const std::function<void()>& work);

    std::unique_ptr<TOpenWindow> d_window;
    std::unique_ptr<QTemporaryDir> d_folder;
    qint64 d_time = 0; ///< milliseconds, by the window's clock
};

void TestGestures::init()
{
    d_folder = std::make_unique<QTemporaryDir>();
    d_window = std::make_unique<TOpenWindow>();
    d_window->show();
    d_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(d_window.get()));
}

void TestGestures::cleanup()
{
    d_window->d_safety_net->Discard();
    d_window.reset();
    d_folder.reset();
    QVERIFY(!QApplication::overrideCursor());
}

/// Shows a page with three labels.
void TestGestures::Show_Page(const QSize& size)
{
    const QList<int> ids = Support::Add_Pages(
        d_window.get(), {{"Plan",
                          Support::Picture(size.width(), size.height()),
                          {Label(11, 1, "", 1, {100, 120}), Label(12, 2, "", 2, {200.5, 120}),
                           Label(13, 3, "", 4, {300, 120})}}});
    d_window->d_page_widget->Set_Active_Page(ids.first());
    d_window->d_data_changed = false;
    QCoreApplication::processEvents();
}

void TestGestures::Turn(const QPoint& angle, const QPointF& position,
                        Qt::KeyboardModifiers modifiers) const
{
    QWheelEvent event(position, Page()->mapToGlobal(position.toPoint()), QPoint(), angle,
                      Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
    QApplication::sendEvent(Page(), &event);
}

/// The scene position of a point of the view, without rounding.
QPointF TestGestures::Scene_Point(const QPointF& position) const
{
    return d_window->d_display_widget->viewportTransform().inverted().map(position);
}

void TestGestures::Focus(QWidget* widget) const
{
    widget->setFocus();
    QVERIFY(widget->hasFocus());
}

/// Labels of the active page: id, position in the model, position in the view.
QStringList TestGestures::Positions() const
{
    QStringList lines;
    for (int i = 0; i < d_window->d_data.Item_Count(); ++i) {
        const TDataItem item = d_window->d_data.Item(i);
        const QPointF shown = d_window->d_display_widget->Item_Position(item.id);
        lines += QString("%1 %2,%3%4")
                     .arg(item.id)
                     .arg(item.position.x())
                     .arg(item.position.y())
                     .arg(shown == item.position ? "" : " elsewhere in the view");
    }
    return lines;
}

QString TestGestures::Picture_File(const QString& name, int seed) const
{
    const QString path = d_folder->filePath(name);
    if (!Support::Picture(60 + seed, 40, seed).save(path, "PNG"))
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

// --- zooming by wheel ----------------------------------------------------------------------------

void TestGestures::a_notch_moves_the_zoom_slider_data()
{
    QTest::addColumn<int>("angle");
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("away") << notch << 5 << "1.11 X";
    QTest::newRow("towards") << -notch << -5 << "0.90 X";
    QTest::newRow("two at once") << 2 * notch << 10 << "1.22 X";
    QTest::newRow("a fifth") << notch / 5 << 1 << "1.02 X";
    QTest::newRow("too little") << notch / 5 - 1 << 0 << "1.00 X";
}

void TestGestures::a_notch_moves_the_zoom_slider()
{
    QFETCH(int, angle);
    QFETCH(int, value);
    QFETCH(QString, text);
    Show_Page();
    Turn(angle);
    QCOMPARE(Zoom(), value);
    QCOMPARE(d_window->d_zoom_label->text(), text);
    const double scale = std::exp(value / 50.0);
    QVERIFY(std::abs(d_window->d_display_widget->transform().m11() - scale) < 1e-9);
    QVERIFY(!d_window->d_data_changed);
}

void TestGestures::fractions_of_a_notch_add_up()
{
    Show_Page();
    for (int part = 0; part < 12; ++part)
        Turn(10);
    QCOMPARE(Zoom(), 5);
    for (int part = 0; part < 24; ++part)
        Turn(-15);
    QCOMPARE(Zoom(), -10);
}

void TestGestures::turning_the_wheel_back_discards_the_fraction()
{
    Show_Page();
    Turn(23);
    Turn(-24);
    QCOMPARE(Zoom(), -1);
}

void TestGestures::the_wheel_stops_at_the_ends_of_the_slider()
{
    Show_Page();
    for (int turn = 0; turn < 30; ++turn)
        Turn(notch);
    QCOMPARE(Zoom(), 100);
    QCOMPARE(d_window->d_zoom_label->text(), QString("7.39 X"));
    Turn(-notch);
    QCOMPARE(Zoom(), 95);
    for (int turn = 0; turn < 50; ++turn)
        Turn(-notch);
    QCOMPARE(Zoom(), -100);
}

void TestGestures::the_point_under_the_pointer_stays_there_data()
{
    QTest::addColumn<QPoint>("position");
    QTest::addColumn<int>("angle");
    for (const int angle : {notch, -notch, 24, 3 * notch}) {
        for (const QPoint position : {QPoint(40, 30), QPoint(200, 150), QPoint(7, 220)})
            QTest::addRow("%d at (%d, %d)", angle, position.x(), position.y()) << position << angle;
    }
}

void TestGestures::the_point_under_the_pointer_stays_there()
{
    QFETCH(QPoint, position);
    QFETCH(int, angle);
    Show_Page();
    d_window->d_display_widget->centerOn(500, 700);
    const QPointF point = Scene_Point(position);
    Turn(QPoint(0, angle), position);
    QVERIFY(Zoom() != 0);
    const QPointF now = d_window->d_display_widget->viewportTransform().map(point);
    QVERIFY2((now - position).manhattanLength() <= 1.0,
             qPrintable(QString("%1, %2").arg(now.x()).arg(now.y())));
}

void TestGestures::many_zooms_keep_the_point_under_the_pointer()
{
    Show_Page();
    d_window->d_display_widget->centerOn(500, 700);
    const QPoint position(61, 47);
    const QPointF point = Scene_Point(position);
    for (int turn = 0; turn < 40; ++turn)
        Turn(QPoint(0, turn % 8 < 4 ? 48 : -72), position);
    const QPointF now = d_window->d_display_widget->viewportTransform().map(point);
    QVERIFY((now - position).manhattanLength() <= 1.0);

    // After scrolling, the zoom centre is the point that is under the pointer now.
    d_window->d_display_widget->centerOn(450, 650);
    const QPointF other = Scene_Point(position);
    Turn(QPoint(0, notch), position);
    const QPointF there = d_window->d_display_widget->viewportTransform().map(other);
    QVERIFY((there - position).manhattanLength() <= 1.0);
}

void TestGestures::zooming_keeps_the_point_under_the_pointer_where_the_view_can_scroll()
{
    // Zooms out until the whole page is visible, then in again. Each turn keeps the point under the
    // pointer wherever the view can still scroll.
    Show_Page();
    d_window->d_zoom_slider->setValue(30);
    const QPoint position = Page()->rect().center() + QPoint(20, -30);
    int kept = 0;
    for (int turn = 0; turn < 60; ++turn) {
        const QPointF point = Scene_Point(position);
        Turn(QPoint(0, turn < 30 ? -notch : notch), position);
        const QPointF now = d_window->d_display_widget->viewportTransform().map(point);
        const std::tuple<const QScrollBar*, double> axes[] = {
            {d_window->d_display_widget->horizontalScrollBar(), now.x() - position.x()},
            {d_window->d_display_widget->verticalScrollBar(), now.y() - position.y()}};
        for (const auto& [bar, distance] : axes) {
            const bool is_at_end = bar->value() == bar->minimum() || bar->value() == bar->maximum();
            QVERIFY2(is_at_end || std::abs(distance) <= 1.0,
                     qPrintable(QString("turn %1: off by %2").arg(turn).arg(distance)));
            kept += is_at_end ? 0 : 1;
        }
        QCoreApplication::processEvents();
    }
    QVERIFY2(kept > 30, qPrintable(QString::number(kept)));
}

void TestGestures::a_page_smaller_than_the_view_stays_centred()
{
    Show_Page(QSize(280, 140));
    d_window->d_data.Set_Active_Page(-1);
    Turn(QPoint(0, -5 * notch), QPointF(5, 5));
    QCOMPARE(Zoom(), -25);
    QVERIFY(!d_window->d_display_widget->horizontalScrollBar()->isVisible());
    const QPointF middle = Scene_Point(Page()->rect().center());
    const QPointF page = d_window->d_display_widget->sceneRect().center();
    QVERIFY((middle - page).manhattanLength() <= 4.0);
}

void TestGestures::only_ctrl_alone_makes_the_wheel_zoom_data()
{
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::newRow("none") << Qt::KeyboardModifiers();
    QTest::newRow("Shift") << Qt::KeyboardModifiers(Qt::ShiftModifier);
    QTest::newRow("Ctrl and Shift")
        << Qt::KeyboardModifiers(Qt::ControlModifier | Qt::ShiftModifier);
}

void TestGestures::only_ctrl_alone_makes_the_wheel_zoom()
{
    QFETCH(Qt::KeyboardModifiers, modifiers);
    Show_Page();
    QScrollBar* const bar = d_window->d_display_widget->verticalScrollBar();
    const int before = bar->value();
    Turn(QPoint(0, -notch), QPointF(50, 50), modifiers);
    QCOMPARE(Zoom(), 0);
    QVERIFY(bar->value() > before);
}

// --- the Delete key ------------------------------------------------------------------------------

void TestGestures::delete_in_the_item_list_asks()
{
    Show_Page();
    TRowList* const list = List(d_window->d_label_widget);
    Focus(list);
    d_window->d_label_widget->Set_Selection(11);
    d_window->d_label_widget->Add_Selection(13);
    QString asked;
    const auto look = [&asked](QMessageBox* box) { asked = box->text() + box->informativeText(); };
    const auto press = [list] { QTest::keyClick(list, Qt::Key_Delete); };
    QCOMPARE(Run_Answering(press, {Support::Look_And_Press(look, QMessageBox::No)}), QString());
    QVERIFY(asked.contains("Remove Labels"));
    QVERIFY(asked.contains("Labels will be deleted.  Are you sure?"));
    QCOMPARE(list->count(), 3);
    QVERIFY(!d_window->d_data_changed);

    QCOMPARE(Run_Answering(press, {Support::Press(QMessageBox::Yes)}), QString());
    QCOMPARE(Positions(), QStringList({"12 200.5,120"}));
    QCOMPARE(list->count(), 1);
    QVERIFY(d_window->d_data_changed);
}

void TestGestures::delete_in_the_page_list_asks()
{
    Show_Page();
    TRowList* const list = List(d_window->d_page_widget);
    Focus(list);
    QString asked;
    const auto look = [&asked](QMessageBox* box) { asked = box->text(); };
    // The key on the number pad does the same.
    const auto press = [list] { QTest::keyClick(list, Qt::Key_Delete, Qt::KeypadModifier); };
    QCOMPARE(Run_Answering(press, {Support::Look_And_Press(look, QMessageBox::Yes)}), QString());
    QVERIFY(asked.contains("Remove Pages"));
    QCOMPARE(d_window->d_data.Page_Count(), 0);
    QCOMPARE(list->count(), 0);
}

void TestGestures::delete_without_a_selection_does_not_ask()
{
    Show_Page();
    for (const QWidget* panel : {static_cast<QWidget*>(d_window->d_label_widget),
                                 static_cast<QWidget*>(d_window->d_page_widget)}) {
        TRowList* const list = List(panel);
        list->clearSelection();
        list->setFocus();
        QCOMPARE(Run_Answering([list] { QTest::keyClick(list, Qt::Key_Delete); }, {}), QString());
    }
    QCOMPARE(d_window->d_data.Page_Count(), 1);
}

void TestGestures::delete_in_the_editors_edits()
{
    Show_Page();
    d_window->d_label_widget->Set_Selection(11);
    for (const QString& tool_tip : {QString("Item Value"), QString("Page Item Name")}) {
        auto* const editor = Support::By_Tool_Tip<QLineEdit>(*d_window, tool_tip);
        Focus(editor);
        editor->setText("7");
        editor->home(false);
        QCOMPARE(Run_Answering([editor] { QTest::keyClick(editor, Qt::Key_Delete); }, {}),
                 QString());
        QCOMPARE(editor->text(), QString());
    }
    QCOMPARE(d_window->d_data.Item_Count(), 3);
}

void TestGestures::delete_with_modifiers_or_held_down_does_not_ask()
{
    Show_Page();
    TRowList* const list = List(d_window->d_page_widget);
    Focus(list);
    const auto press = [list] {
        for (const Qt::KeyboardModifier modifier :
             {Qt::ShiftModifier, Qt::ControlModifier, Qt::AltModifier})
            QTest::keyClick(list, Qt::Key_Delete, modifier);
        QKeyEvent held(QEvent::KeyPress, Qt::Key_Delete, Qt::NoModifier, QString(), true);
        QApplication::sendEvent(list, &held);
    };
    QCOMPARE(Run_Answering(press, {}), QString());
}

// --- moving labels by keys -----------------------------------------------------------------------

void TestGestures::ctrl_and_arrows_move_the_selected_labels_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<QPointF>("distance");
    const struct
    {
        const char* name;
        int key;
        QPointF distance;
    } arrows[] = {{"left", Qt::Key_Left, {-1, 0}},
                  {"right", Qt::Key_Right, {1, 0}},
                  {"up", Qt::Key_Up, {0, -1}},
                  {"down", Qt::Key_Down, {0, 1}}};
    for (const auto& arrow : arrows) {
        QTest::addRow("%s", arrow.name)
            << arrow.key << Qt::KeyboardModifiers(Qt::ControlModifier) << arrow.distance;
        QTest::addRow("far %s", arrow.name)
            << arrow.key << Qt::KeyboardModifiers(Qt::ControlModifier | Qt::ShiftModifier)
            << 10 * arrow.distance;
    }
    QTest::newRow("number pad") << int(Qt::Key_Left)
                                << Qt::KeyboardModifiers(Qt::ControlModifier | Qt::KeypadModifier)
                                << QPointF(-1, 0);
}

void TestGestures::ctrl_and_arrows_move_the_selected_labels()
{
    QFETCH(int, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(QPointF, distance);
    Show_Page();
    Focus(d_window->d_display_widget);
    d_window->d_label_widget->Set_Selection(11);
    d_window->d_label_widget->Add_Selection(12);
    QVERIFY(!d_window->d_data_changed);
    // At every zoom, the distance is one pixel of the page image.
    d_window->d_zoom_slider->setValue(37);
    const int scrolled = d_window->d_display_widget->horizontalScrollBar()->value();
    QTest::keyClick(d_window->d_display_widget, Qt::Key(key), modifiers);
    QCOMPARE(Positions(),
             QStringList({QString("11 %1,%2").arg(100 + distance.x()).arg(120 + distance.y()),
                          QString("12 %1,%2").arg(200.5 + distance.x()).arg(120 + distance.y()),
                          "13 300,120"}));
    QVERIFY(d_window->d_data_changed);
    QCOMPARE(d_window->d_display_widget->horizontalScrollBar()->value(), scrolled);
    QCOMPARE(d_window->d_label_widget->Selected_Items().size(), std::size_t(2));
}

void TestGestures::a_held_key_keeps_moving_the_label()
{
    Show_Page();
    d_window->d_label_widget->Set_Selection(13);
    for (int repeat = 0; repeat < 25; ++repeat) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Down, Qt::ControlModifier, QString(), repeat > 0);
        QApplication::sendEvent(d_window->d_display_widget, &press);
    }
    QCOMPARE(Positions().last(), QString("13 300,145"));
}

void TestGestures::keys_without_a_selection_move_nothing()
{
    Show_Page();
    Focus(d_window->d_display_widget);
    const QStringList before = Positions();
    const int scrolled = d_window->d_display_widget->verticalScrollBar()->value();
    QTest::keyClick(d_window->d_display_widget, Qt::Key_Down, Qt::ControlModifier);
    QCOMPARE(Positions(), before);
    QVERIFY(!d_window->d_data_changed);
    QCOMPARE(d_window->d_display_widget->verticalScrollBar()->value(), scrolled);
}

void TestGestures::arrows_without_ctrl_scroll()
{
    Show_Page();
    Focus(d_window->d_display_widget);
    d_window->d_label_widget->Set_Selection(11);
    const QStringList before = Positions();
    const int scrolled = d_window->d_display_widget->verticalScrollBar()->value();
    QTest::keyClick(d_window->d_display_widget, Qt::Key_Down);
    QVERIFY(d_window->d_display_widget->verticalScrollBar()->value() > scrolled);
    QCOMPARE(Positions(), before);
    QVERIFY(!d_window->d_data_changed);
}

void TestGestures::ctrl_and_arrows_in_a_list_move_no_label()
{
    Show_Page();
    TRowList* const list = List(d_window->d_label_widget);
    Focus(list);
    d_window->d_label_widget->Set_Selection(11);
    const QStringList before = Positions();
    QTest::keyClick(list, Qt::Key_Down, Qt::ControlModifier);
    QCOMPARE(Positions(), before);
}

// --- dropping files ------------------------------------------------------------------------------

/// Drags data over a widget; returns whether the widget or an ancestor accepted it.
bool TestGestures::Drag(QEvent::Type type, QWidget* over, const QMimeData& dragged,
                        Qt::DropActions actions) const
{
    const QPoint position = over->rect().center();
    std::unique_ptr<QDropEvent> event;
    if (type == QEvent::DragEnter)
        event = std::make_unique<QDragEnterEvent>(position, actions, &dragged, Qt::LeftButton,
                                                  Qt::NoModifier);
    else if (type == QEvent::DragMove)
        event = std::make_unique<QDragMoveEvent>(position, actions, &dragged, Qt::LeftButton,
                                                 Qt::NoModifier);
    else
        event = std::make_unique<QDropEvent>(position, actions, &dragged, Qt::LeftButton,
                                             Qt::NoModifier);
    // Qt sends the drop to the widget that accepted the drag.
    QWidget* target = over;
    while (type == QEvent::Drop && !target->acceptDrops())
        target = target->parentWidget();
    QApplication::sendEvent(target, event.get());
    if (event->isAccepted() && event->dropAction() == Qt::MoveAction)
        qFatal("the files would be moved");
    return event->isAccepted();
}

/// Drags files over a widget and drops them if it accepts them; returns whether it did.
bool TestGestures::Drop_Files(QWidget* over, const QStringList& paths) const
{
    QMimeData dragged;
    QList<QUrl> urls;
    for (const QString& path : paths)
        urls += QUrl::fromLocalFile(path);
    dragged.setUrls(urls);
    // File managers also provide the names as text.
    dragged.setText(paths.join('\n'));
    return Drag(QEvent::DragEnter, over, dragged) && Drag(QEvent::DragMove, over, dragged) &&
           Drag(QEvent::Drop, over, dragged);
}

void TestGestures::dropped_images_become_pages_sorted_by_name()
{
    QDir(d_folder->path()).mkdir("scans");
    const QStringList paths = {Picture_File("scans/c.png", 1), Picture_File("scans/a.PNG", 2),
                               Picture_File("b.png", 3)};
    QVERIFY(Drop_Files(Page(), paths));
    QCOMPARE(Support::Describe(d_window.get()),
             QStringList({"page 1 Page 1 62x40", "page 2 Page 2 63x40", "page 3 Page 3 61x40"}));
    QVERIFY(d_window->d_data_changed);
    QCOMPARE(d_window->d_working_dir.absolutePath(), d_folder->filePath("scans"));
    for (const QAction* action : {d_window->d_action_export_images, d_window->d_action_export_pdf,
                                  d_window->d_action_reindex, d_window->d_action_save})
        QVERIFY(action->isEnabled());
}

void TestGestures::a_drop_works_everywhere_data()
{
    QTest::addColumn<QString>("target");
    for (const char* target : {"window", "page", "view", "item list", "page list", "editor",
                               "format", "menu bar", "status bar", "slider", "dock"})
        QTest::newRow(target) << target;
}

void TestGestures::a_drop_works_everywhere()
{
    QFETCH(QString, target);
    Show_Page();
    const QMap<QString, QWidget*> widgets = {
        {"window", d_window.get()},
        {"page", Page()},
        {"view", d_window->d_display_widget},
        {"item list", List(d_window->d_label_widget)->viewport()},
        {"page list", List(d_window->d_page_widget)->viewport()},
        {"editor", Support::By_Tool_Tip<QLineEdit>(*d_window, "Page Item Name")},
        {"format", Support::By_Caption<QLineEdit>(*d_window, "Item Display Format:")},
        {"menu bar", d_window->menuBar()},
        {"status bar", d_window->statusBar()},
        {"slider", d_window->d_zoom_slider},
        {"dock", d_window->d_settings_dock},
    };
    QVERIFY(widgets.value(target));
    QVERIFY(Drop_Files(widgets.value(target), {Picture_File("a.png")}));
    QCOMPARE(d_window->d_data.Page_Count(), 2);
    QCOMPARE(d_window->d_page_widget->Page_Name(1), QString("Plan"));
}

void TestGestures::a_drop_on_a_floating_dock_works()
{
    d_window->d_page_dock->setFloating(true);
    QVERIFY(Drop_Files(List(d_window->d_page_widget)->viewport(), {Picture_File("a.png")}));
    QVERIFY(Drop_Files(d_window->d_page_dock, {Picture_File("b.png")}));
    QCOMPARE(d_window->d_data.Page_Count(), 2);
    d_window->d_page_dock->setFloating(false);
}

void TestGestures::files_other_than_images_are_refused_data()
{
    QTest::addColumn<QStringList>("urls");
    QTest::newRow("nothing") << QStringList();
    QTest::newRow("text") << QStringList({"file://%1/notes.txt"});
    QTest::newRow("missing") << QStringList({"file://%1/missing.png"});
    QTest::newRow("folder") << QStringList({"file://%1/folder.png"});
    QTest::newRow("elsewhere") << QStringList({"https://quillet.example/a.png"});
}

void TestGestures::files_other_than_images_are_refused()
{
    QFETCH(QStringList, urls);
    Support::Write_File(d_folder->filePath("notes.txt"), "some text");
    QDir(d_folder->path()).mkdir("folder.png");
    QMimeData dragged;
    QList<QUrl> dragged_urls;
    for (const QString& url : urls)
        dragged_urls += QUrl(url.contains("%1") ? url.arg(d_folder->path()) : url);
    if (!urls.isEmpty())
        dragged.setUrls(dragged_urls);
    for (QWidget* over : {static_cast<QWidget*>(d_window.get()), Page(),
                          List(d_window->d_page_widget)->viewport()}) {
        QVERIFY(!Drag(QEvent::DragEnter, over, dragged));
        QVERIFY(!Drag(QEvent::DragMove, over, dragged));
        Drag(QEvent::Drop, over, dragged);
    }
    QCOMPARE(d_window->d_data.Page_Count(), 0);
    QVERIFY(!d_window->d_data_changed);
}

void TestGestures::a_drop_imports_only_the_images_among_its_files()
{
    Support::Write_File(d_folder->filePath("notes.txt"), "some text");
    QVERIFY(Drop_Files(Page(), {d_folder->filePath("notes.txt"), Picture_File("a.png")}));
    QCOMPARE(Support::Describe(d_window.get()), QStringList({"page 1 Page 1 61x40"}));
}

void TestGestures::a_dropped_document_is_opened_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("lower case") << "site plan.quillet";
    QTest::newRow("upper case") << "A.QUILLET";
}

void TestGestures::a_dropped_document_is_opened()
{
    QFETCH(QString, name);
    Show_Page();
    const QString path = d_folder->filePath(name);
    QVERIFY(d_window->Save_Data(path));
    d_window->File_New();
    QVERIFY(Drop_Files(Page(), {path}));
    // Not while the drag still runs.
    QCOMPARE(d_window->d_data.Page_Count(), 0);
    QTRY_COMPARE(d_window->d_file_name, path);
    QCOMPARE(d_window->d_data.Page_Count(), 1);
    QVERIFY(!d_window->d_data_changed);
    QVERIFY(d_window->d_action_save->isEnabled());
}

void TestGestures::a_dropped_document_is_opened_only_after_the_question()
{
    Show_Page();
    const QString path = d_folder->filePath("a.quillet");
    QVERIFY(d_window->Save_Data(path));
    d_window->Add_Item(QPointF(10, 10));
    const auto drop = [&] {
        Drop_Files(Page(), {path, Picture_File("a.png")});
        QTRY_VERIFY(!QApplication::activeModalWidget());
        QTest::qWait(20);
    };
    QString text;
    const auto look = [&text](QMessageBox* box) { text = box->informativeText(); };
    QCOMPARE(Run_Answering(drop, {Support::Look_And_Press(look, QMessageBox::No)}), QString());
    QVERIFY2(text.contains("Current data will be lost.  Do you want to continue?"),
             qPrintable(text));
    QCOMPARE(d_window->d_file_name, QString());
    QCOMPARE(d_window->d_data.Item_Count(), 4);
    QCOMPARE(d_window->d_data.Page_Count(), 1);
    QCOMPARE(Run_Answering(drop, {Support::Press(QMessageBox::Yes)}), QString());
    QCOMPARE(d_window->d_file_name, path);
    QCOMPARE(d_window->d_data.Page_Count(), 2);
}

void TestGestures::images_are_inserted_into_the_document_dropped_with_them()
{
    Show_Page();
    const QString path = d_folder->filePath("b.quillet");
    QVERIFY(d_window->Save_Data(path));
    d_window->File_New();
    QVERIFY(Drop_Files(Page(), {Picture_File("a.png"), path}));
    QTRY_COMPARE(d_window->d_data.Page_Count(), 2);
    QCOMPARE(d_window->d_file_name, path);
    QCOMPARE(d_window->d_page_widget->Page_Name(1), QString("Plan"));
    QVERIFY(d_window->d_data_changed);
}

void TestGestures::a_dropped_pdf_is_recognized_by_its_content()
{
    const QString path = d_folder->filePath("report");
    Support::Write_File(path, Support::Pdf({"0 0 72 36"}));
    QVERIFY(Drop_Files(Page(), {path}));
    QCOMPARE(d_window->d_data.Page_Count(), 1);
}

void TestGestures::files_are_copied_and_never_moved()
{
    QMimeData dragged;
    dragged.setUrls({QUrl::fromLocalFile(Picture_File("a.png"))});
    for (const QEvent::Type type : {QEvent::DragEnter, QEvent::DragMove, QEvent::Drop})
        QVERIFY(!Drag(type, Page(), dragged, Qt::MoveAction));
    QCOMPARE(d_window->d_data.Page_Count(), 0);
}

void TestGestures::a_drop_is_refused_while_a_dialog_is_open()
{
    const QString path = Picture_File("a.png");
    bool taken = true;
    QCOMPARE(Run_Answering([this] { d_window->Help_About(); }, {[&](QWidget* box) {
                               taken = Drop_Files(Page(), {path});
                               Support::Press(QMessageBox::Ok)(box);
                           }}),
             QString());
    QVERIFY(!taken);
    QCOMPARE(d_window->d_data.Page_Count(), 0);
}

void TestGestures::text_can_still_be_dropped_on_editors()
{
    auto* const editor = Support::By_Caption<QLineEdit>(*d_window, "Item Display Format:");
    editor->clear();
    QMimeData dragged;
    dragged.setText("No. %1");
    QVERIFY(Drag(QEvent::DragEnter, editor, dragged, Qt::CopyAction));
    QVERIFY(Drag(QEvent::Drop, editor, dragged, Qt::CopyAction));
    QCOMPARE(editor->text(), QString("No. %1"));
}

// --- rows by keyboard ----------------------------------------------------------------------------

void TestGestures::alt_and_arrows_move_rows_data()
{
    QTest::addColumn<QList<int>>("selected");
    QTest::addColumn<int>("key");
    QTest::addColumn<QList<int>>("order");
    QTest::newRow("up") << QList<int>({3}) << int(Qt::Key_Up) << QList<int>({1, 3, 2, 4});
    QTest::newRow("down") << QList<int>({2}) << int(Qt::Key_Down) << QList<int>({1, 3, 2, 4});
    QTest::newRow("up at the top")
        << QList<int>({1}) << int(Qt::Key_Up) << QList<int>({1, 2, 3, 4});
    QTest::newRow("down at the end")
        << QList<int>({4}) << int(Qt::Key_Down) << QList<int>({1, 2, 3, 4});
    QTest::newRow("two up") << QList<int>({2, 3}) << int(Qt::Key_Up) << QList<int>({2, 3, 1, 4});
    QTest::newRow("two down") << QList<int>({2, 3}) << int(Qt::Key_Down)
                              << QList<int>({1, 4, 2, 3});
    QTest::newRow("apart, up") << QList<int>({2, 4}) << int(Qt::Key_Up) << QList<int>({2, 1, 4, 3});
    QTest::newRow("one of two at the end")
        << QList<int>({2, 4}) << int(Qt::Key_Down) << QList<int>({1, 2, 3, 4});
    QTest::newRow("none") << QList<int>() << int(Qt::Key_Up) << QList<int>({1, 2, 3, 4});
}

void TestGestures::alt_and_arrows_move_rows()
{
    QFETCH(QList<int>, selected);
    QFETCH(int, key);
    QFETCH(QList<int>, order);
    Support::Add_Pages(d_window.get(),
                       {{"A", {}, {}}, {"B", {}, {}}, {"C", {}, {}}, {"D", {}, {}}});
    TRowList* const list = List(d_window->d_page_widget);
    Focus(list);
    list->clearSelection();
    for (const int id : selected)
        list->Row(id)->setSelected(true);
    QTest::keyClick(list, Qt::Key(key), Qt::AltModifier);
    QCOMPARE(d_window->d_page_widget->Page_Ids(), order);
    for (int id = 1; id <= 4; ++id)
        QCOMPARE(list->Row(id)->isSelected(), selected.contains(id));
}

void TestGestures::moved_pages_keep_their_selection_and_names()
{
    const QImage picture = Support::Picture(30, 20);
    Support::Add_Pages(d_window.get(), {{"A", picture, {}}, {"B", picture, {}}, {"C", {}, {}}});
    TRowList* const list = List(d_window->d_page_widget);
    Focus(list);
    list->setCurrentRow(1);
    QSignalSpy selections(d_window->d_page_widget, SIGNAL(Selection_Changed(int)));
    QSignalSpy moves(list->model(), &QAbstractItemModel::rowsMoved);
    QTest::keyClick(list, Qt::Key_Down, Qt::AltModifier);
    QTest::keyClick(list, Qt::Key_Up, Qt::AltModifier);
    QTest::keyClick(list, Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(moves.size(), 3);
    QCOMPARE(selections.size(), 0);
    QCOMPARE(d_window->d_page_widget->Page_Ids(), QList<int>({2, 1, 3}));
    QCOMPARE(d_window->d_page_widget->Page_Name(2), QString("B"));
    QCOMPARE(list->currentRow(), 0);
    QCOMPARE(d_window->d_data.Active_Page(), 2);
}

// --- the focus frame -----------------------------------------------------------------------------

void TestGestures::a_frame_marks_the_view_with_the_focus()
{
    Show_Page();
    const QList<QAbstractScrollArea*> views = {
        d_window->d_display_widget, List(d_window->d_label_widget), List(d_window->d_page_widget)};
    const auto frames = [&views] {
        QStringList words;
        for (QAbstractScrollArea* view : views) {
            const QImage picture = view->grab().toImage();
            const QPoint last = picture.rect().bottomRight();
            const bool has_frame = picture.pixelColor(0, last.y() / 2).saturation() > 100 &&
                                   picture.pixelColor(last.x(), last.y() / 2).saturation() > 100 &&
                                   picture.pixelColor(last.x() / 2, 0).saturation() > 100 &&
                                   picture.pixelColor(last.x() / 2, last.y()).saturation() > 100;
            words += has_frame ? "blue" : "grey";
        }
        return words.join(' ');
    };
    const QStringList expected = {"blue grey grey", "grey blue grey", "grey grey blue"};
    for (int index = 0; index < views.size(); ++index) {
        Focus(views[index]);
        QCOMPARE(frames(), expected[index]);
    }
    Focus(Support::By_Caption<QLineEdit>(*d_window, "Item Display Format:"));
    QCOMPARE(frames(), QString("grey grey grey"));
}

// --- long work -----------------------------------------------------------------------------------

/// The texts of the progress bar during work in which every query of the clock advances it by
/// 300 ms.
QStringList TestGestures::Shown_While(const std::function<void()>& work)
{
    d_window->d_progress_clock = [this] { return d_time += 300; };
    TBarReader reader;
    QCoreApplication::instance()->installEventFilter(&reader);
    work();
    QCoreApplication::instance()->removeEventFilter(&reader);
    if (!reader.d_was_busy || QApplication::overrideCursor())
        reader.d_texts += "the cursor is wrong";
    if (reader.d_parents.size() > 1 || d_window->findChild<QProgressBar*>())
        reader.d_texts += "the bar stays";
    reader.d_texts.removeDuplicates();
    return reader.d_texts;
}

void TestGestures::an_import_shows_progress()
{
    const QStringList paths = {Picture_File("a.png"), Picture_File("b.png"), Picture_File("c.png")};
    const auto import = [&] {
        QCOMPARE(Run_Answering([this] { d_window->File_Import(); }, {Support::Choose(paths)}),
                 QString());
    };
    QCOMPARE(Shown_While(import), QStringList({"Importing image 1 of 3", "Importing image 2 of 3",
                                               "Importing image 3 of 3"}));
    QCOMPARE(d_window->d_data.Page_Count(), 3);
}

void TestGestures::reading_one_large_image_shows_progress()
{
    const QString path = d_folder->filePath("large.png");
    QVERIFY(Support::Picture(900, 700).save(path));
    QCOMPARE(Shown_While([&] { d_window->Import_Files({path}); }),
             QStringList({"Importing image 1 of 1"}));
    QCOMPARE(d_window->d_data.Page_Count(), 1);
    QCOMPARE(Shown_While([&] { QVERIFY(d_window->Save_Data(d_folder->filePath("a.quillet"))); }),
             QStringList({"Saving page 1 of 1"}));
    QCOMPARE(Shown_While([&] { QVERIFY(d_window->Load_Data(d_folder->filePath("a.quillet"))); }),
             QStringList({"Opening page 1 of 1"}));
}

void TestGestures::saving_and_opening_show_progress()
{
    const QImage picture = Support::Picture(30, 20);
    Support::Add_Pages(d_window.get(), {{"A", picture, {}}, {"B", picture, {}}, {"C", {}, {}}});
    const QString path = d_folder->filePath("a.quillet");
    QCOMPARE(Shown_While([&] { QVERIFY(d_window->Save_Data(path)); }),
             QStringList({"Saving page 1 of 3", "Saving page 2 of 3", "Saving page 3 of 3"}));
    QCOMPARE(Shown_While([&] { QVERIFY(d_window->Load_Data(path)); }),
             QStringList({"Opening page 1 of 3", "Opening page 2 of 3", "Opening page 3 of 3"}));
    QCOMPARE(d_window->d_data.Page_Count(), 3);

    // A failure half-way removes the bar too.
    QByteArray bytes = Support::Read_File(path);
    bytes.truncate(bytes.size() - 8);
    Support::Write_File(path, bytes);
    Shown_While([&] { QVERIFY(!d_window->Load_Data(path)); });
    QVERIFY(!d_window->findChild<QProgressBar*>());
}

void TestGestures::recovering_work_shows_progress()
{
    {
        TDocument document;
        for (const char* const name : {"A", "B", "C"})
            Support::Add_Page(&document, name, Support::Picture(30, 20), 1);
        TWorkLog log(QDir::homePath() + "/.quillet/recovery");
        TBaseFile no_base;
        QVERIFY(log.Update(Support::State_Of(document), &no_base, {"/a.quillet"}));
    }
    QCOMPARE(Shown_While([&] { d_window->Recover_Work(); }),
             QStringList({"Recovering page 2 of 3", "Recovering page 3 of 3"}));
    QCOMPARE(d_window->d_safety_net->Abandoned().size(), size_t(1));
}

void TestGestures::exports_show_progress()
{
    const QImage picture = Support::Picture(30, 20);
    const QList<int> ids =
        Support::Add_Pages(d_window.get(), {{"A", picture, {}}, {"B", picture, {}}});
    // Each page reports progress twice: before it is drawn and before it is written.
    const QStringList expected = {"Exporting page 1 of 2", "Exporting page 2 of 2"};
    QCOMPARE(Shown_While([&] { QVERIFY(d_window->Export_Images(d_folder->path(), ids)); }),
             expected);
    const TQuillet::TReportSettings settings{0, 1, QString(), QString()};
    const QString path = d_folder->filePath("a.pdf");
    QCOMPARE(Shown_While([&] { QVERIFY(d_window->Export_PDF(path, ids, settings)); }), expected);
}

void TestGestures::short_work_shows_no_progress()
{
    d_window->d_progress_clock = [this] { return ++d_time; };
    TBarReader reader;
    QCoreApplication::instance()->installEventFilter(&reader);
    d_window->Import_Files({Picture_File("a.png"), Picture_File("b.png")});
    QCoreApplication::instance()->removeEventFilter(&reader);
    QCOMPARE(reader.d_texts, QStringList());
}

void TestGestures::the_bar_fits_beside_the_zoom_control()
{
    d_window->resize(d_window->minimumSizeHint());
    QCoreApplication::processEvents();
    const QSize size = d_window->size();
    {
        d_time = 0;
        d_window->d_progress_clock = [this] { return d_time += 600; };
        TProgress progress = d_window->New_Progress("%1 of %2");
        progress.Begin_Part(1, 2);
        const auto* const bar = d_window->findChild<QProgressBar*>();
        QVERIFY(bar);
        QVERIFY(d_window->statusBar()->rect().contains(bar->geometry()));
        QVERIFY(bar->width() > 100);
        const QWidget* const zoom = d_window->d_zoom_slider->parentWidget();
        QVERIFY(!zoom->geometry().intersects(bar->geometry()));
        QCoreApplication::processEvents();
        QCOMPARE(d_window->size(), size);
    }
    QVERIFY(!d_window->findChild<QProgressBar*>());
}

QTEST_MAIN(TestGestures)
#include "test_gestures.moc"
