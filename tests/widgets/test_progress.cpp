// Progress of long operations: when the bar and the cursor appear and disappear, and what the bar
// shows.

#include "src/widgets/progress.h"

#include <QLabel>
#include <QProgressBar>
#include <QStatusBar>
#include <QTest>

#include <stdexcept>

namespace {

const QRect area(3, 2, 200, 18);
const QString pattern("Doing %1 of %2");

/// Counts how often any progress bar is painted.
class TPaintCounter : public QObject
{
public:
    int d_count = 0;

protected:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && qobject_cast<QProgressBar*>(object))
            ++d_count;
        return false;
    }
};

} // namespace

class TestProgress : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void a_quick_operation_is_not_shown();
    void an_operation_is_shown_after_half_a_second();
    void the_delay_starts_with_the_operation_and_not_with_the_first_step();
    void an_update_within_a_step_shows_the_operation_too();
    void a_block_of_an_image_shows_the_operation_too();
    void nothing_is_shown_before_the_first_step();
    void the_bar_shows_the_current_step_and_the_finished_ones();
    void the_bar_is_painted_at_once_but_not_too_often();
    void no_event_is_handled_during_the_operation();
    void the_cursor_is_busy_while_the_bar_is_shown();
    void an_exception_ends_the_operation_too();
    void the_bar_does_not_change_the_layout();
    void each_operation_has_its_own_delay();
    void the_machine_time_advances();

private:
    QProgressBar* Bar() const { return d_status_bar->findChild<QProgressBar*>(); }
    std::unique_ptr<TProgress> Begin()
    {
        return std::make_unique<TProgress>(d_status_bar.get(), area, pattern,
                                           [this] { return d_time; });
    }

    std::unique_ptr<QStatusBar> d_status_bar;
    qint64 d_time = 0;
};

void TestProgress::init()
{
    d_time = 123456;
    d_status_bar = std::make_unique<QStatusBar>();
    d_status_bar->resize(400, 24);
    d_status_bar->show();
    QVERIFY(QTest::qWaitForWindowExposed(d_status_bar.get()));
}

void TestProgress::cleanup()
{
    d_status_bar.reset();
    QVERIFY(!QApplication::overrideCursor());
}

void TestProgress::a_quick_operation_is_not_shown()
{
    const auto progress = Begin();
    for (int part = 1; part <= 10; ++part) {
        progress->Begin_Part(part, 10);
        QVERIFY(!Bar());
        QVERIFY(!QApplication::overrideCursor());
        d_time += 55;
    }
}

void TestProgress::an_operation_is_shown_after_half_a_second()
{
    const auto progress = Begin();
    progress->Begin_Part(1, 3);
    d_time += 499;
    progress->Begin_Part(2, 3);
    QVERIFY(!Bar());
    d_time += 1;
    progress->Begin_Part(3, 3);
    QVERIFY(Bar());
    QVERIFY(Bar()->isVisible());
    QCOMPARE(Bar()->geometry(), area);
}

void TestProgress::the_delay_starts_with_the_operation_and_not_with_the_first_step()
{
    const auto progress = Begin();
    d_time += 500;
    progress->Begin_Part(1, 3);
    QVERIFY(Bar());
}

void TestProgress::an_update_within_a_step_shows_the_operation_too()
{
    const auto progress = Begin();
    progress->Begin_Part(1, 1);
    d_time += 500;
    progress->Update();
    QVERIFY(Bar());
    QCOMPARE(Bar()->text(), QString("Doing 1 of 1"));
    QCOMPARE(Bar()->value(), 0);
}

void TestProgress::a_block_of_an_image_shows_the_operation_too()
{
    auto progress = Begin();
    progress->Begin_Part(1, 1);
    d_time += 500;
    TWorkWatch::Notify();
    QVERIFY(Bar());
    progress.reset();
    TWorkWatch::Notify();
    QVERIFY(!Bar());
}

void TestProgress::nothing_is_shown_before_the_first_step()
{
    const auto progress = Begin();
    d_time += 5000;
    progress->Update();
    QVERIFY(!Bar());
}

void TestProgress::the_bar_shows_the_current_step_and_the_finished_ones()
{
    const auto progress = Begin();
    d_time += 700;
    progress->Begin_Part(3, 8);
    QCOMPARE(Bar()->text(), QString("Doing 3 of 8"));
    QVERIFY(Bar()->isTextVisible());
    QCOMPARE(Bar()->minimum(), 0);
    QCOMPARE(Bar()->value(), 2);
    QCOMPARE(Bar()->maximum(), 8);
    QCOMPARE(Bar()->accessibleName(), QString("Progress"));
    d_time += 100;
    progress->Begin_Part(8, 8);
    QCOMPARE(Bar()->text(), QString("Doing 8 of 8"));
    QCOMPARE(Bar()->value(), 7);
}

void TestProgress::the_bar_is_painted_at_once_but_not_too_often()
{
    TPaintCounter counter;
    QCoreApplication::instance()->installEventFilter(&counter);
    const auto progress = Begin();
    d_time += 500;
    progress->Begin_Part(1, 20);
    QVERIFY(counter.d_count > 0);
    counter.d_count = 0;

    d_time += 99;
    progress->Begin_Part(2, 20);
    QCOMPARE(counter.d_count, 0);
    QCOMPARE(Bar()->text(), QString("Doing 1 of 20"));
    d_time += 1;
    progress->Begin_Part(3, 20);
    QVERIFY(counter.d_count > 0);
    QCOMPARE(Bar()->text(), QString("Doing 3 of 20"));
}

void TestProgress::no_event_is_handled_during_the_operation()
{
    bool handled = false;
    QMetaObject::invokeMethod(
        d_status_bar.get(), [&handled] { handled = true; }, Qt::QueuedConnection);
    const auto progress = Begin();
    for (int part = 1; part <= 5; ++part) {
        d_time += 500;
        progress->Begin_Part(part, 5);
    }
    QVERIFY(Bar());
    QVERIFY(!handled);
    QCoreApplication::processEvents();
    QVERIFY(handled);
}

void TestProgress::the_cursor_is_busy_while_the_bar_is_shown()
{
    auto progress = Begin();
    progress->Begin_Part(1, 2);
    QVERIFY(!QApplication::overrideCursor());
    d_time += 500;
    progress->Begin_Part(2, 2);
    QVERIFY(QApplication::overrideCursor());
    QCOMPARE(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
    progress.reset();
    QVERIFY(!QApplication::overrideCursor());
    QVERIFY(!Bar());
}

void TestProgress::an_exception_ends_the_operation_too()
{
    bool shown = false;
    try {
        const auto progress = Begin();
        d_time += 500;
        progress->Begin_Part(1, 2);
        shown = Bar() && QApplication::overrideCursor();
        throw std::runtime_error("the disk is full");
    } catch (const std::runtime_error&) {
        QVERIFY(shown);
    }
    QVERIFY(!Bar());
    QVERIFY(!QApplication::overrideCursor());
}

void TestProgress::the_bar_does_not_change_the_layout()
{
    auto* const notice = new QLabel("A notice that stays", d_status_bar.get());
    d_status_bar->addWidget(notice, 1);
    QCoreApplication::processEvents();
    const QRect geometry = notice->geometry();
    const QSize minimum_size = d_status_bar->minimumSizeHint();
    auto progress = Begin();
    d_time += 500;
    progress->Begin_Part(1, 2);
    QCOMPARE(d_status_bar->childAt(area.center()), Bar());
    QVERIFY(notice->isVisible());
    QCOMPARE(notice->geometry(), geometry);
    QCOMPARE(d_status_bar->minimumSizeHint(), minimum_size);
    progress.reset();
    QCOMPARE(d_status_bar->childAt(geometry.center()), notice);
}

void TestProgress::each_operation_has_its_own_delay()
{
    auto progress = Begin();
    d_time += 600;
    progress->Begin_Part(1, 2);
    progress = nullptr;
    progress = Begin();
    d_time += 400;
    progress->Begin_Part(1, 2);
    QVERIFY(!Bar());
}

void TestProgress::the_machine_time_advances()
{
    const qint64 first = TProgress::Machine_Time();
    QTRY_VERIFY(TProgress::Machine_Time() > first);
}

QTEST_MAIN(TestProgress)
#include "test_progress.moc"
