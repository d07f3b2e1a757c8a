// Zooming a view by its wheel, without a window around it.

#include "src/widgets/wheelzoom.h"

#include "support/widgets.h"

#include <QGraphicsView>
#include <QScrollBar>
#include <QSlider>
#include <QTest>
#include <QWheelEvent>

#include <cmath>

class TestWheelZoom : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void a_notch_is_several_steps_of_the_slider();
    void fractions_of_a_notch_add_up_in_one_direction();
    void the_wheel_zooms_only_with_ctrl_alone_data();
    void the_wheel_zooms_only_with_ctrl_alone();
    void the_point_under_the_pointer_stays_there();

private:
    bool Turn(const QPoint& angle, Qt::KeyboardModifiers modifiers = Qt::ControlModifier);

    QPoint d_position{60, 90}; ///< of the pointer
    std::unique_ptr<QGraphicsView> d_view;
    std::unique_ptr<QSlider> d_slider;
};

void TestWheelZoom::initTestCase()
{
    Support::Set_Style();
}

/// A large scene with a slider that doubles the scale every 50 steps.
void TestWheelZoom::init()
{
    d_slider = std::make_unique<QSlider>();
    d_slider->setRange(-100, 100);
    d_view = std::make_unique<QGraphicsView>();
    d_view->setScene(new QGraphicsScene(0, 0, 3000, 3000, d_view.get()));
    d_view->resize(300, 300);
    connect(d_slider.get(), &QSlider::valueChanged, d_view.get(), [this](int value) {
        const double scale = std::exp2(value / 50.0);
        d_view->setTransform(QTransform::fromScale(scale, scale));
    });
    new TWheelZoom(d_view.get(), d_slider.get());
    d_view->show();
    QVERIFY(QTest::qWaitForWindowExposed(d_view.get()));
}

void TestWheelZoom::cleanup()
{
    d_view.reset();
    d_slider.reset();
}

/// Turns the wheel; returns whether the view accepted the event.
bool TestWheelZoom::Turn(const QPoint& angle, Qt::KeyboardModifiers modifiers)
{
    QWidget* const viewport = d_view->viewport();
    QWheelEvent event(d_position, viewport->mapToGlobal(d_position), QPoint(), angle, Qt::NoButton,
                      modifiers, Qt::NoScrollPhase, false);
    QApplication::sendEvent(viewport, &event);
    return event.isAccepted();
}

void TestWheelZoom::a_notch_is_several_steps_of_the_slider()
{
    QVERIFY(Turn({0, QWheelEvent::DefaultDeltasPerStep}));
    QCOMPARE(d_slider->value(), int{TWheelZoom::Steps_Per_Notch});
    QVERIFY(Turn({0, -2 * QWheelEvent::DefaultDeltasPerStep}));
    QCOMPARE(d_slider->value(), -int{TWheelZoom::Steps_Per_Notch});
}

void TestWheelZoom::fractions_of_a_notch_add_up_in_one_direction()
{
    const int step = QWheelEvent::DefaultDeltasPerStep / TWheelZoom::Steps_Per_Notch;
    Turn({0, step - 1});
    QCOMPARE(d_slider->value(), 0);
    Turn({0, 1});
    QCOMPARE(d_slider->value(), 1);
    Turn({0, step - 1});
    Turn({0, -step});
    QCOMPARE(d_slider->value(), 0);
}

void TestWheelZoom::the_wheel_zooms_only_with_ctrl_alone_data()
{
    QTest::addColumn<QPoint>("angle");
    QTest::addColumn<int>("modifiers");
    const QPoint away(0, QWheelEvent::DefaultDeltasPerStep);
    QTest::newRow("none") << away << int{Qt::NoModifier};
    QTest::newRow("Shift") << away << int{Qt::ShiftModifier};
    QTest::newRow("Ctrl and Shift") << away << int{Qt::ControlModifier | Qt::ShiftModifier};
    QTest::newRow("sideways") << away.transposed() << int{Qt::ControlModifier};
}

void TestWheelZoom::the_wheel_zooms_only_with_ctrl_alone()
{
    QFETCH(QPoint, angle);
    QFETCH(int, modifiers);
    Turn(angle, static_cast<Qt::KeyboardModifiers>(modifiers));
    QCOMPARE(d_slider->value(), 0);
}

void TestWheelZoom::the_point_under_the_pointer_stays_there()
{
    d_view->centerOn(1500, 1500);
    const QPointF point = d_view->mapToScene(d_position);
    for (int notch = 0; notch < 8; ++notch)
        Turn({0, QWheelEvent::DefaultDeltasPerStep});
    QVERIFY((d_view->mapFromScene(point) - d_position).manhattanLength() <= 2);
    for (int notch = 0; notch < 12; ++notch)
        Turn({0, -QWheelEvent::DefaultDeltasPerStep});
    QVERIFY((d_view->mapFromScene(point) - d_position).manhattanLength() <= 2);
}

QTEST_MAIN(TestWheelZoom)
#include "test_wheelzoom.moc"
