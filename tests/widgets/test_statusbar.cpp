// The status bar's messages.

#include "src/widgets/statusbar.h"

#include "support/support.h"
#include "support/widgets.h"

#include <QLabel>
#include <QTest>
#include <QToolTip>

class TestStatusBar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void a_short_message_looks_as_in_any_status_bar();
    void a_long_message_is_elided_in_the_middle();
    void the_tool_tip_shows_an_elided_message_data();
    void the_tool_tip_shows_an_elided_message();

private:
    template <typename TBar>
    std::unique_ptr<TBar> New_Bar(const QString& message) const;

    std::unique_ptr<QWidget> d_window;
};

void TestStatusBar::initTestCase()
{
    Support::Set_Style();
}

void TestStatusBar::init()
{
    d_window = std::make_unique<QWidget>();
}

void TestStatusBar::cleanup()
{
    QToolTip::hideText();
    d_window.reset();
}

/// A status bar of 600 pixels with a permanent widget.
template <typename TBar>
std::unique_ptr<TBar> TestStatusBar::New_Bar(const QString& message) const
{
    auto bar = std::make_unique<TBar>(d_window.get());
    bar->addPermanentWidget(new QLabel(QStringLiteral("permanent")));
    bar->setSizeGripEnabled(false);
    bar->resize(600, bar->sizeHint().height());
    d_window->resize(bar->size());
    d_window->show();
    bar->showMessage(message);
    QCoreApplication::processEvents();
    return bar;
}

void TestStatusBar::a_short_message_looks_as_in_any_status_bar()
{
    for (const QString& message : {QString(), QStringLiteral("Saved a.quillet")}) {
        const QImage expected = New_Bar<QStatusBar>(message)->grab().toImage();
        const QImage actual = New_Bar<TStatusBar>(message)->grab().toImage();
        QCOMPARE(Support::Difference(actual, expected), QString());
    }
}

void TestStatusBar::a_long_message_is_elided_in_the_middle()
{
    const QString begin = QStringLiteral("The replaced file is in ");
    const QString path = QLatin1Char('/') + QString(200, QLatin1Char('x')) + QStringLiteral(".end");
    const auto bar = New_Bar<TStatusBar>(begin + path);
    const QImage image = bar->grab().toImage();
    const QWidget* const permanent = Support::Only<QLabel>(*bar);
    // As a message that just fits, with the dots in the middle.
    constexpr int left = 6;
    const QString elided =
        bar->fontMetrics().elidedText(begin + path, Qt::ElideMiddle, permanent->x() - 2 - left);
    QVERIFY(elided.startsWith(begin) && elided.endsWith(QLatin1String(".end")));
    const QImage expected = New_Bar<QStatusBar>(elided)->grab().toImage();
    QCOMPARE(Support::Difference(image, expected), QString());
    QCOMPARE(bar->currentMessage(), begin + path);
}

void TestStatusBar::the_tool_tip_shows_an_elided_message_data()
{
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("tool_tip");
    QTest::newRow("none") << QString() << QString();
    QTest::newRow("short") << "Saved a.quillet" << QString();
    QTest::newRow("long") << QString(200, 'x') << QString("<qt>%1</qt>").arg(QString(200, 'x'));
    QTest::newRow("like rich text") << QString("<b>") + QString(200, 'x')
                                    << QString("<qt>&lt;b&gt;%1</qt>").arg(QString(200, 'x'));
}

void TestStatusBar::the_tool_tip_shows_an_elided_message()
{
    QFETCH(QString, message);
    const auto bar = New_Bar<TStatusBar>(message);
    QHelpEvent event(QEvent::ToolTip, QPoint(20, 5), bar->mapToGlobal(QPoint(20, 5)));
    QCoreApplication::sendEvent(bar.get(), &event);
    QTEST(QToolTip::text(), "tool_tip");
}

QTEST_MAIN(TestStatusBar)
#include "test_statusbar.moc"
