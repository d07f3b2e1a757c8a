#include "src/displaywidget.h"

#include "support/support.h"
#include "support/view.h"

#include <QGraphicsScene>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTest>

#include <functional>
#include <memory>

namespace {

/// Size of the labels' pixmaps: a press hits a label up to 22 pixels to the left of or above its
/// centre, and up to 22 to the right of or below it.
constexpr int label_size = 45;

} // namespace

/// Presses, drags and releases on the page view. Signals are compared as a whole sequence.
///
/// Unless a test says otherwise, the page is enlarged to twice its size and scrolled by (301, 200)
/// view pixels, so that the view pixel (x, y) shows the scene point ((x + 301) / 2, (y + 200) / 2),
/// and label 7 is centred on (200, 150), which is view pixel (99, 100).
class TestPointer : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void a_click_on_a_label_reports_the_press_and_the_unchanged_centre();
    void a_click_on_the_page_reports_no_label_on_the_release();
    void a_click_beside_the_page_reports_no_label();
    void the_whole_square_of_a_label_is_hit_data();
    void the_whole_square_of_a_label_is_hit();
    void the_last_added_label_is_hit_first();
    void a_label_is_hit_where_a_drag_left_it();
    void small_movements_add_up_until_they_pass_the_threshold();
    void a_movement_of_exactly_the_threshold_does_not_move();
    void a_drag_moves_the_label_and_reports_it_on_the_release();
    void a_drag_has_no_limits();
    void a_drag_keeps_the_offset_of_a_label_from_its_centre();
    void a_move_without_the_left_button_does_not_drag_data();
    void a_move_without_the_left_button_does_not_drag();
    void a_right_press_reports_its_scene_point_only();
    void a_press_with_both_buttons_reports_the_label_first();
    void a_right_press_during_a_left_press_clicks_the_label_again();
    void other_buttons_report_nothing();
    void fractional_positions_are_rounded_halves_upward_data();
    void fractional_positions_are_rounded_halves_upward();
    void a_drag_rounds_its_positions_in_the_same_way();
    void the_first_left_press_does_not_pan_and_the_second_does();
    void a_press_of_another_button_resets_panning();
    void a_second_press_on_a_label_drags_instead_of_panning();
    void panning_ends_with_a_click_on_the_page();
    void a_release_resets_the_drag_mode();
    void a_double_click_on_a_label_ends_with_no_label();
    void a_double_click_on_the_page_reports_no_label_twice();
    void a_double_click_after_a_drag_reports_nothing_more();
    void a_double_click_alone_does_nothing();
    void a_removed_pressed_label_is_not_reported_data();
    void a_removed_pressed_label_is_not_reported();
    void a_pressed_label_is_reported_after_the_removal_of_another();
    void a_label_may_be_removed_when_its_press_is_reported();
    void a_label_may_be_removed_when_its_position_is_reported();
    void clicks_among_thousands_of_labels_hit_the_right_one();

private:
    void Send(QEvent::Type type, const QPointF& position, Qt::MouseButton button,
              Qt::MouseButtons buttons);
    void Press(const QPointF& position, Qt::MouseButton button = Qt::LeftButton);
    void Move(const QPointF& position, Qt::MouseButtons buttons = Qt::LeftButton);
    void Release(const QPointF& position, Qt::MouseButton button = Qt::LeftButton);
    void Click(const QPointF& position);
    void Double_Click(const QPointF& position);
    void Show_Page(double scale, int right, int down);
    QPoint Scrolled() const;

    std::unique_ptr<TDisplayWidget> d_view;
    std::unique_ptr<Support::TSignalLog> d_log;
};

void TestPointer::init()
{
    d_view = std::make_unique<TDisplayWidget>(nullptr);
    d_view->setFrameShape(QFrame::NoFrame);
    d_view->resize(400, 300);
    d_view->show();
    d_view->Set_Label_Size(QSize(label_size - 5, label_size - 5), 16);
    d_view->Set_Background_Image(QPixmap::fromImage(Support::Picture(1000, 800)));
    d_view->Add_Item(7, 1, QString(), 0);
    d_view->Move_Item(7, QPointF(200, 150));
    Show_Page(2.0, 301, 200);
    d_log = std::make_unique<Support::TSignalLog>(*d_view);
}

void TestPointer::cleanup()
{
    d_log.reset();
    d_view.reset();
}

void TestPointer::Send(QEvent::Type type, const QPointF& position, Qt::MouseButton button,
                       Qt::MouseButtons buttons)
{
    QWidget* viewport = d_view->viewport();
    QMouseEvent event(type, position, viewport->mapToGlobal(QPoint(0, 0)) + position, button,
                      buttons, Qt::NoModifier);
    QApplication::sendEvent(viewport, &event);
}

void TestPointer::Press(const QPointF& position, Qt::MouseButton button)
{
    Send(QEvent::MouseButtonPress, position, button, button);
}

void TestPointer::Move(const QPointF& position, Qt::MouseButtons buttons)
{
    Send(QEvent::MouseMove, position, Qt::NoButton, buttons);
}

void TestPointer::Release(const QPointF& position, Qt::MouseButton button)
{
    Send(QEvent::MouseButtonRelease, position, button, Qt::NoButton);
}

void TestPointer::Click(const QPointF& position)
{
    Press(position);
    Release(position);
}

/// The events that Qt sends for a double click.
void TestPointer::Double_Click(const QPointF& position)
{
    Click(position);
    Send(QEvent::MouseButtonDblClick, position, Qt::LeftButton, Qt::LeftButton);
    Release(position);
}

void TestPointer::Show_Page(double scale, int right, int down)
{
    d_view->Change_Scale(scale);
    d_view->horizontalScrollBar()->setValue(right);
    d_view->verticalScrollBar()->setValue(down);
    QCOMPARE(Scrolled(), QPoint(right, down));
}

QPoint TestPointer::Scrolled() const
{
    return QPoint(d_view->horizontalScrollBar()->value(), d_view->verticalScrollBar()->value());
}

void TestPointer::a_click_on_a_label_reports_the_press_and_the_unchanged_centre()
{
    Press(QPointF(90, 110));
    QCOMPARE(d_log->Take(), QStringList{QStringLiteral("clicked 7")});
    Release(QPointF(90, 110));
    QCOMPARE(d_log->Take(), QStringList{QStringLiteral("7 is at 200,150")});
    QTest::mouseClick(d_view->viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(99, 100));
    const QStringList expected{QStringLiteral("clicked 7"), QStringLiteral("7 is at 200,150")};
    QCOMPARE(d_log->Take(), expected);
    QCOMPARE(Support::Label(*d_view, 7)->pos(), QPointF(178, 128));
}

void TestPointer::a_click_on_the_page_reports_no_label_on_the_release()
{
    Press(QPointF(300, 50));
    QCOMPARE(d_log->Take(), QStringList());
    Release(QPointF(300, 50));
    QCOMPARE(d_log->Take(), QStringList{QStringLiteral("clicked -1")});
}

void TestPointer::a_click_beside_the_page_reports_no_label()
{
    // Smaller than the view, the page is in its middle: from 100 to 300 and from 70 to 230.
    Show_Page(0.2, 0, 0);
    Click(QPointF(20, 20));
    QCOMPARE(d_log->Take(), QStringList{QStringLiteral("clicked -1")});
    Press(QPointF(90, 60), Qt::RightButton);
    QCOMPARE(d_log->Take(), QStringList{QStringLiteral("right click at -50,-50")});
}

void TestPointer::the_whole_square_of_a_label_is_hit_data()
{
    // The label covers 178 to 223 and 128 to 173, which is 55 to 145 and 56 to 146 in the view.
    QTest::addColumn<QPointF>("position");
    QTest::addColumn<bool>("hit");
    QTest::newRow("top left") << QPointF(55, 56) << true;
    QTest::newRow("top right") << QPointF(144, 56) << true;
    QTest::newRow("bottom left") << QPointF(55, 145) << true;
    QTest::newRow("bottom right") << QPointF(144, 145) << true;
    QTest::newRow("between text and corner") << QPointF(70, 70) << true;
    QTest::newRow("left of it") << QPointF(54, 100) << false;
    QTest::newRow("right of it") << QPointF(145, 100) << false;
    QTest::newRow("above it") << QPointF(100, 55) << false;
    QTest::newRow("below it") << QPointF(100, 146) << false;
}

void TestPointer::the_whole_square_of_a_label_is_hit()
{
    QFETCH(QPointF, position);
    QFETCH(bool, hit);
    for (const int border_type : {0, 1, 2, 4, 8}) {
        d_view->Change_Item_Border(7, border_type);
        Click(position);
        const QStringList on_label{QStringLiteral("clicked 7"), QStringLiteral("7 is at 200,150")};
        const QStringList on_page{QStringLiteral("clicked -1")};
        QCOMPARE(d_log->Take(), hit ? on_label : on_page);
    }
}

void TestPointer::the_last_added_label_is_hit_first()
{
    d_view->Add_Item(3, 1, QString(), 0);
    d_view->Move_Item(3, QPointF(210, 150));
    d_log->Take();
    Press(QPointF(99, 100));
    QCOMPARE(d_log->Take(), QStringList{QStringLiteral("clicked 3")});
    Release(QPointF(99, 100));
    Press(QPointF(60, 100));
    QCOMPARE(d_log->Take().last(), QStringLiteral("clicked 7"));
}

void TestPointer::a_label_is_hit_where_a_drag_left_it()
{
    Press(QPointF(99, 100));
    Move(QPointF(299, 100));
    Release(QPointF(299, 100));
    d_log->Take();
    Click(QPointF(99, 100));
    Click(QPointF(299, 100));
    const QStringList expected{QStringLiteral("clicked -1"), QStringLiteral("clicked 7"),
                               QStringLiteral("7 is at 300,150")};
    QCOMPARE(d_log->Take(), expected);
}

void TestPointer::small_movements_add_up_until_they_pass_the_threshold()
{
    // At ten times the size, a view pixel is a tenth of a scene unit.
    Show_Page(10.0, 1900, 1400);
    const QGraphicsPixmapItem* label = Support::Label(*d_view, 7);
    Press(QPointF(100, 100));
    Move(QPointF(106, 103));
    QCOMPARE(label->pos(), QPointF(178, 128));
    QCOMPARE(d_view->Item_Position(7), QPointF(200, 150));
    Move(QPointF(108, 103));
    QCOMPARE(label->pos(), QPointF(178.8, 128.3));
    QCOMPARE(d_view->Item_Position(7), QPointF(200.8, 150.3));
    // The distance is measured from there.
    Move(QPointF(112, 97));
    QCOMPARE(d_view->Item_Position(7), QPointF(200.8, 150.3));
    Move(QPointF(112, 96));
    QCOMPARE(d_view->Item_Position(7), QPointF(201.2, 149.6));
    Release(QPointF(112, 96));
    const QStringList expected{QStringLiteral("clicked 7"), QStringLiteral("7 is at 201.2,149.6")};
    QCOMPARE(d_log->Take(), expected);
}

void TestPointer::a_movement_of_exactly_the_threshold_does_not_move()
{
    Press(QPointF(99, 100));
    Move(QPointF(100, 101));
    QCOMPARE(d_view->Item_Position(7), QPointF(200, 150));
    Move(QPointF(97, 100));
    QCOMPARE(d_view->Item_Position(7), QPointF(200, 150));
    Move(QPointF(97, 99));
    QCOMPARE(d_view->Item_Position(7), QPointF(199, 149.5));
}

void TestPointer::a_drag_moves_the_label_and_reports_it_on_the_release()
{
    Press(QPointF(99, 100));
    Move(QPointF(120, 90));
    QCOMPARE(d_view->Item_Position(7), QPointF(210.5, 145));
    Move(QPointF(160, 130));
    QCOMPARE(d_view->Item_Position(7), QPointF(230.5, 165));
    QCOMPARE(Support::Label(*d_view, 7)->pos(), QPointF(208.5, 143));
    QCOMPARE(d_log->Take(), QStringList{QStringLiteral("clicked 7")});
    // Only mouse moves count, not the position where the button is released.
    Release(QPointF(170, 150));
    QCOMPARE(d_log->Take(), QStringList{QStringLiteral("7 is at 230.5,165")});
    QCOMPARE(Scrolled(), QPoint(301, 200));
}

void TestPointer::a_drag_has_no_limits()
{
    const QRectF scene_rect = d_view->scene()->sceneRect();
    Press(QPointF(99, 100));
    Move(QPointF(-901, -1100));
    Release(QPointF(-901, -1100));
    const QStringList expected{QStringLiteral("clicked 7"), QStringLiteral("7 is at -300,-450")};
    QCOMPARE(d_log->Take(), expected);
    QCOMPARE(d_view->scene()->sceneRect(), scene_rect);
}

void TestPointer::a_drag_keeps_the_offset_of_a_label_from_its_centre()
{
    // The movement is added to both; the corner is not calculated from the centre.
    Support::Label(*d_view, 7)->setPos(180, 130);
    Press(QPointF(99, 100));
    Move(QPointF(119, 100));
    QCOMPARE(Support::Label(*d_view, 7)->pos(), QPointF(190, 130));
    QCOMPARE(d_view->Item_Position(7), QPointF(210, 150));
}

void TestPointer::a_move_without_the_left_button_does_not_drag_data()
{
    QTest::addColumn<int>("buttons");
    QTest::newRow("no button") << static_cast<int>(Qt::NoButton);
    QTest::newRow("right button") << static_cast<int>(Qt::RightButton);
}

void TestPointer::a_move_without_the_left_button_does_not_drag()
{
    QFETCH(int, buttons);
    Move(QPointF(150, 100), static_cast<Qt::MouseButton>(buttons));
    Press(QPointF(99, 100));
    Move(QPointF(150, 100), static_cast<Qt::MouseButton>(buttons));
    QCOMPARE(d_view->Item_Position(7), QPointF(200, 150));
    // The last point stayed where it was.
    Move(QPointF(101, 102));
    QCOMPARE(d_view->Item_Position(7), QPointF(201, 151));
    QCOMPARE(d_log->Take(), QStringList{QStringLiteral("clicked 7")});
}

void TestPointer::a_right_press_reports_its_scene_point_only()
{
    Press(QPointF(99, 100), Qt::RightButton);
    Release(QPointF(99, 100), Qt::RightButton);
    Press(QPointF(300, 51), Qt::RightButton);
    Move(QPointF(310, 60), Qt::RightButton);
    Release(QPointF(310, 60), Qt::RightButton);
    const QStringList expected{QStringLiteral("right click at 200,150"),
                               QStringLiteral("right click at 300.5,125.5")};
    QCOMPARE(d_log->Take(), expected);
    QCOMPARE(d_view->Item_Position(7), QPointF(200, 150));
}

void TestPointer::a_press_with_both_buttons_reports_the_label_first()
{
    Send(QEvent::MouseButtonPress, QPointF(101, 100), Qt::RightButton,
         Qt::LeftButton | Qt::RightButton);
    const QStringList expected{QStringLiteral("clicked 7"),
                               QStringLiteral("right click at 201,150")};
    QCOMPARE(d_log->Take(), expected);
}

void TestPointer::a_right_press_during_a_left_press_clicks_the_label_again()
{
    Press(QPointF(99, 100));
    Send(QEvent::MouseButtonPress, QPointF(99, 100), Qt::RightButton,
         Qt::LeftButton | Qt::RightButton);
    Send(QEvent::MouseButtonRelease, QPointF(99, 100), Qt::RightButton, Qt::LeftButton);
    Release(QPointF(99, 100));
    // The release of any button ends the press.
    const QStringList expected{QStringLiteral("clicked 7"), QStringLiteral("clicked 7"),
                               QStringLiteral("right click at 200,150"),
                               QStringLiteral("7 is at 200,150"), QStringLiteral("clicked -1")};
    QCOMPARE(d_log->Take(), expected);
}

void TestPointer::other_buttons_report_nothing()
{
    Press(QPointF(99, 100), Qt::MiddleButton);
    Move(QPointF(150, 100), Qt::MiddleButton);
    Release(QPointF(150, 100), Qt::MiddleButton);
    QCOMPARE(d_log->Take(), QStringList());
    QCOMPARE(d_view->Item_Position(7), QPointF(200, 150));
}

void TestPointer::fractional_positions_are_rounded_halves_upward_data()
{
    QTest::addColumn<QPointF>("position");
    QTest::addColumn<QString>("point");
    QTest::newRow("down") << QPointF(2.4, 3.49) << "102,153";
    QTest::newRow("half") << QPointF(2.5, 3.5) << "103,154";
    QTest::newRow("up") << QPointF(2.6, 3.9) << "103,154";
    QTest::newRow("negative half") << QPointF(-2.5, -0.5) << "98,150";
    QTest::newRow("negative down") << QPointF(-2.6, -3.51) << "97,146";
    QTest::newRow("negative up") << QPointF(-2.4, -0.1) << "98,150";
}

void TestPointer::fractional_positions_are_rounded_halves_upward()
{
    QFETCH(QPointF, position);
    QFETCH(QString, point);
    Show_Page(1.0, 100, 150);
    Press(position, Qt::RightButton);
    QCOMPARE(d_log->Take(), QStringList{QStringLiteral("right click at ") + point});
}

void TestPointer::a_drag_rounds_its_positions_in_the_same_way()
{
    Show_Page(1.0, 100, 100);
    Press(QPointF(100.5, 50.4));
    Move(QPointF(-2.5, 60.5));
    Release(QPointF(-2.5, 60.5));
    // From (101, 50) to (-2, 61).
    const QStringList expected{QStringLiteral("clicked 7"), QStringLiteral("7 is at 97,161")};
    QCOMPARE(d_log->Take(), expected);
}

void TestPointer::the_first_left_press_does_not_pan_and_the_second_does()
{
    Press(QPointF(300, 50));
    QCOMPARE(d_view->dragMode(), QGraphicsView::NoDrag);
    Move(QPointF(280, 40));
    QCOMPARE(Scrolled(), QPoint(301, 200));
    Release(QPointF(280, 40));

    Press(QPointF(300, 50));
    QCOMPARE(d_view->dragMode(), QGraphicsView::ScrollHandDrag);
    Move(QPointF(280, 40));
    QCOMPARE(Scrolled(), QPoint(321, 210));
    Release(QPointF(280, 40));
    QCOMPARE(d_view->dragMode(), QGraphicsView::NoDrag);
    const QStringList expected{QStringLiteral("clicked -1"), QStringLiteral("clicked -1")};
    QCOMPARE(d_log->Take(), expected);
}

void TestPointer::a_press_of_another_button_resets_panning()
{
    Click(QPointF(300, 50));
    Press(QPointF(300, 50), Qt::RightButton);
    // The buttons of the previous press decide.
    QCOMPARE(d_view->dragMode(), QGraphicsView::ScrollHandDrag);
    Release(QPointF(300, 50), Qt::RightButton);
    QCOMPARE(d_view->dragMode(), QGraphicsView::NoDrag);
    Press(QPointF(300, 50));
    QCOMPARE(d_view->dragMode(), QGraphicsView::NoDrag);
    Move(QPointF(280, 40));
    Release(QPointF(280, 40));
    QCOMPARE(Scrolled(), QPoint(301, 200));
}

void TestPointer::a_second_press_on_a_label_drags_instead_of_panning()
{
    Click(QPointF(300, 50));
    Press(QPointF(99, 100));
    Move(QPointF(119, 120));
    Release(QPointF(119, 120));
    QCOMPARE(Scrolled(), QPoint(301, 200));
    const QStringList expected{QStringLiteral("clicked -1"), QStringLiteral("clicked 7"),
                               QStringLiteral("7 is at 210,160")};
    QCOMPARE(d_log->Take(), expected);
}

void TestPointer::panning_ends_with_a_click_on_the_page()
{
    Click(QPointF(99, 100));
    d_log->Take();
    Press(QPointF(300, 50));
    Move(QPointF(250, 50));
    Release(QPointF(250, 50));
    QCOMPARE(Scrolled(), QPoint(351, 200));
    QCOMPARE(d_log->Take(), QStringList{QStringLiteral("clicked -1")});
    QCOMPARE(d_view->Item_Position(7), QPointF(200, 150));
}

void TestPointer::a_release_resets_the_drag_mode()
{
    for (int i = 0; i < 3; ++i) {
        Click(QPointF(300, 50));
        QCOMPARE(d_view->dragMode(), QGraphicsView::NoDrag);
    }
    d_view->setDragMode(QGraphicsView::RubberBandDrag);
    Release(QPointF(300, 50), Qt::RightButton);
    QCOMPARE(d_view->dragMode(), QGraphicsView::NoDrag);
}

void TestPointer::a_double_click_on_a_label_ends_with_no_label()
{
    Double_Click(QPointF(99, 100));
    const QStringList expected{QStringLiteral("clicked 7"), QStringLiteral("7 is at 200,150"),
                               QStringLiteral("clicked -1")};
    QCOMPARE(d_log->Take(), expected);
}

void TestPointer::a_double_click_on_the_page_reports_no_label_twice()
{
    Double_Click(QPointF(300, 50));
    const QStringList expected{QStringLiteral("clicked -1"), QStringLiteral("clicked -1")};
    QCOMPARE(d_log->Take(), expected);
}

void TestPointer::a_double_click_after_a_drag_reports_nothing_more()
{
    Press(QPointF(99, 100));
    Move(QPointF(103, 100));
    Release(QPointF(103, 100));
    Send(QEvent::MouseButtonDblClick, QPointF(103, 100), Qt::LeftButton, Qt::LeftButton);
    Move(QPointF(150, 150));
    Release(QPointF(150, 150));
    const QStringList expected{QStringLiteral("clicked 7"), QStringLiteral("7 is at 202,150")};
    QCOMPARE(d_log->Take(), expected);
}

void TestPointer::a_double_click_alone_does_nothing()
{
    Send(QEvent::MouseButtonDblClick, QPointF(99, 100), Qt::LeftButton, Qt::LeftButton);
    Send(QEvent::MouseButtonDblClick, QPointF(99, 100), Qt::RightButton, Qt::RightButton);
    Release(QPointF(99, 100));
    QCOMPARE(d_log->Take(), QStringList());
    QCOMPARE(d_view->dragMode(), QGraphicsView::NoDrag);
}

using TRemoval = std::function<void(TDisplayWidget*)>;
Q_DECLARE_METATYPE(TRemoval)

void TestPointer::a_removed_pressed_label_is_not_reported_data()
{
    QTest::addColumn<TRemoval>("remove");
    QTest::newRow("Clear") << TRemoval([](TDisplayWidget* view) { view->Clear(); });
    QTest::newRow("Remove_Items") << TRemoval([](TDisplayWidget* view) { view->Remove_Items(); });
    QTest::newRow("Remove_Item") << TRemoval([](TDisplayWidget* view) { view->Remove_Item(7); });
}

void TestPointer::a_removed_pressed_label_is_not_reported()
{
    QFETCH(TRemoval, remove);
    Press(QPointF(99, 100));
    QCOMPARE(d_log->Take(), QStringList{QStringLiteral("clicked 7")});
    remove(d_view.get());
    Move(QPointF(150, 120));
    Release(QPointF(150, 120));
    Send(QEvent::MouseButtonDblClick, QPointF(99, 100), Qt::LeftButton, Qt::LeftButton);
    Release(QPointF(150, 120));
    QCOMPARE(d_log->Take(), QStringList());
    // The next press works as usual.
    Click(QPointF(99, 100));
    QCOMPARE(d_log->Take(), QStringList{QStringLiteral("clicked -1")});
}

void TestPointer::a_pressed_label_is_reported_after_the_removal_of_another()
{
    d_view->Add_Item(8, 1, QString(), 0);
    Press(QPointF(99, 100));
    d_view->Remove_Item(8);
    Move(QPointF(119, 120));
    Release(QPointF(119, 120));
    const QStringList expected{QStringLiteral("clicked 7"), QStringLiteral("7 is at 210,160")};
    QCOMPARE(d_log->Take(), expected);
}

void TestPointer::a_label_may_be_removed_when_its_press_is_reported()
{
    connect(d_view.get(), &TDisplayWidget::Item_Clicked, this,
            [this](int id) { d_view->Remove_Item(id); });
    Send(QEvent::MouseButtonPress, QPointF(99, 100), Qt::LeftButton,
         Qt::LeftButton | Qt::RightButton);
    Move(QPointF(150, 120));
    Release(QPointF(150, 120));
    const QStringList expected{QStringLiteral("clicked 7"),
                               QStringLiteral("right click at 200,150")};
    QCOMPARE(d_log->Take(), expected);
}

void TestPointer::a_label_may_be_removed_when_its_position_is_reported()
{
    connect(d_view.get(), &TDisplayWidget::Update_Item_Position, this,
            [this](int id) { d_view->Remove_Item(id); });
    Click(QPointF(99, 100));
    const QStringList expected{QStringLiteral("clicked 7"), QStringLiteral("7 is at 200,150")};
    QCOMPARE(d_log->Take(), expected);
    QVERIFY(!d_view->Item_Exists(7));
}

void TestPointer::clicks_among_thousands_of_labels_hit_the_right_one()
{
    // A grid of labels side by side on a page of its own, 100 in a row.
    d_view->Clear();
    const int count = 5000;
    const QPixmap page(100 * label_size, count / 100 * label_size);
    d_view->Set_Background_Image(page);
    for (int id = 0; id < count; ++id) {
        d_view->Add_Item(id, id, QString(), 0);
        d_view->Move_Item(id, QPointF(id % 100 * label_size + 22, id / 100 * label_size + 22));
    }
    d_view->Change_Scale(1.0);
    d_log->Take();
    for (const int id : {0, 99, 2345, 4900, 4999}) {
        d_view->centerOn(d_view->Item_Position(id));
        const QPoint position = d_view->Item_Position(id).toPoint() - Scrolled();
        Press(position);
        QCOMPARE(d_log->Take(), QStringList{QStringLiteral("clicked %1").arg(id)});
        Release(position);
        d_log->Take();
    }
}

QTEST_MAIN(TestPointer)
#include "test_pointer.moc"
