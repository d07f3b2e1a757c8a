// The notice about recovered work.

#include "src/widgets/recoverynotice.h"

#include "support/widgets.h"

#include <QLabel>
#include <QSignalSpy>
#include <QSlider>
#include <QStatusBar>
#include <QTest>
#include <QToolButton>

class TestRecoveryNotice : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void its_buttons_send_its_signals_data();
    void its_buttons_send_its_signals();
    void open_is_hidden_if_nothing_can_be_opened();
    void its_buttons_work_by_keyboard();
    void it_describes_itself_to_screen_readers();
    void a_long_text_is_elided();
    void a_long_text_leaves_the_other_widgets_their_width();
    void its_text_has_the_colour_of_the_theme_data();
    void its_text_has_the_colour_of_the_theme();
};

namespace {

const QString long_text = QString(400, QLatin1Char('W'));

QToolButton* Button(const TRecoveryNotice& notice, const QString& text)
{
    for (QToolButton* const button : notice.findChildren<QToolButton*>()) {
        if (button->text() == text)
            return button;
    }
    return nullptr;
}

} // namespace

void TestRecoveryNotice::initTestCase()
{
    Support::Set_Style();
}

void TestRecoveryNotice::its_buttons_send_its_signals_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<int>("opened");
    QTest::addColumn<int>("dismissed");
    QTest::newRow("Open") << "Open" << 1 << 0;
    QTest::newRow("Dismiss") << "Dismiss" << 0 << 1;
}

void TestRecoveryNotice::its_buttons_send_its_signals()
{
    QFETCH(QString, button);
    TRecoveryNotice notice(nullptr);
    const QSignalSpy opened(&notice, &TRecoveryNotice::Open_Requested);
    const QSignalSpy dismissed(&notice, &TRecoveryNotice::Dismissed);
    QTest::mouseClick(Button(notice, button), Qt::LeftButton);
    QTEST(static_cast<int>(opened.count()), "opened");
    QTEST(static_cast<int>(dismissed.count()), "dismissed");
}

void TestRecoveryNotice::open_is_hidden_if_nothing_can_be_opened()
{
    TRecoveryNotice notice(nullptr);
    notice.show();
    for (const bool is_openable : {false, true}) {
        notice.Set_Openable(is_openable);
        QCOMPARE(Button(notice, QStringLiteral("Open"))->isVisible(), is_openable);
        QVERIFY(Button(notice, QStringLiteral("Dismiss"))->isVisible());
    }
}

void TestRecoveryNotice::its_buttons_work_by_keyboard()
{
    TRecoveryNotice notice(nullptr);
    notice.show();
    QVERIFY(QTest::qWaitForWindowActive(&notice));
    const QSignalSpy opened(&notice, &TRecoveryNotice::Open_Requested);
    const QSignalSpy dismissed(&notice, &TRecoveryNotice::Dismissed);
    Button(notice, QStringLiteral("Open"))->setFocus();
    QTest::keyClick(notice.focusWidget(), Qt::Key_Space);
    QCOMPARE(opened.count(), 1);
    QTest::keyClick(notice.focusWidget(), Qt::Key_Tab);
    QTest::keyClick(notice.focusWidget(), Qt::Key_Space);
    QCOMPARE(dismissed.count(), 1);
}

void TestRecoveryNotice::it_describes_itself_to_screen_readers()
{
    TRecoveryNotice notice(nullptr);
    notice.Set_Text(QStringLiteral("<b>text</b>"), QStringLiteral("details"));
    QCOMPARE(notice.Text(), QStringLiteral("<b>text</b>"));
    const QLabel* const label = Support::Only<QLabel>(notice);
    QCOMPARE(label->textFormat(), Qt::PlainText);
    QCOMPARE(label->toolTip(), QStringLiteral("details"));
    for (const char* const text : {"Open", "Dismiss"}) {
        const QToolButton* const button = Button(notice, QLatin1String(text));
        QCOMPARE(button->accessibleName(), QLatin1String(text));
        QVERIFY(!button->accessibleDescription().isEmpty());
    }
}

void TestRecoveryNotice::a_long_text_is_elided()
{
    TRecoveryNotice notice(nullptr);
    notice.Set_Text(long_text, QString());
    notice.resize(400, notice.sizeHint().height());
    const QImage image = Support::Only<QLabel>(notice)->grab().toImage();
    // Only the dots at the end leave the upper half empty.
    const QRgb background = image.pixel(image.width() - 1, 0);
    const int dots = notice.fontMetrics().horizontalAdvance(QChar(0x2026));
    for (int x = image.width() - dots; x < image.width(); ++x)
        QCOMPARE(image.pixel(x, image.height() / 2), background);
    bool has_text = false;
    for (int x = 0; x < image.width() / 2; ++x)
        has_text = has_text || image.pixel(x, image.height() / 2) != background;
    QVERIFY(has_text);
}

void TestRecoveryNotice::a_long_text_leaves_the_other_widgets_their_width()
{
    QStatusBar bar;
    auto* const slider = new QSlider(Qt::Horizontal, &bar);
    slider->setMinimumWidth(slider->sizeHint().width());
    bar.addPermanentWidget(slider);
    auto* const notice = new TRecoveryNotice(&bar);
    bar.addWidget(notice);
    notice->Set_Text(long_text, QString());
    bar.resize(500, bar.sizeHint().height());
    bar.show();
    QVERIFY(QTest::qWaitForWindowExposed(&bar));
    QCOMPARE(bar.width(), 500);
    QVERIFY(slider->width() >= slider->sizeHint().width());
    for (const QToolButton* const button : notice->findChildren<QToolButton*>())
        QVERIFY(button->width() >= button->sizeHint().width());
}

void TestRecoveryNotice::its_text_has_the_colour_of_the_theme_data()
{
    QTest::addColumn<QColor>("background");
    QTest::addColumn<QColor>("text");
    QTest::newRow("light") << QColor(239, 239, 239) << QColor(Qt::black);
    QTest::newRow("dark") << QColor(45, 45, 48) << QColor(230, 230, 230);
    QTest::newRow("high contrast") << QColor(Qt::black) << QColor(Qt::yellow);
}

void TestRecoveryNotice::its_text_has_the_colour_of_the_theme()
{
    QFETCH(QColor, background);
    QFETCH(QColor, text);
    TRecoveryNotice notice(nullptr);
    QPalette theme;
    theme.setColor(QPalette::Window, background);
    theme.setColor(QPalette::WindowText, text);
    notice.setPalette(theme);
    notice.setFont(QFont(QStringLiteral("Arial"), 24));
    notice.Set_Text(QStringLiteral("IIIIIIII"), QString());
    notice.resize(400, notice.sizeHint().height());
    const QImage image = Support::Only<QLabel>(notice)->grab().toImage();
    QCOMPARE(image.pixelColor(image.width() - 1, 0), background);
    // The stems of large letters are solid.
    bool has_text = false;
    for (int x = 0; x < image.width(); ++x)
        has_text = has_text || image.pixelColor(x, image.height() / 2) == text;
    QVERIFY(has_text);
}

QTEST_MAIN(TestRecoveryNotice)
#include "test_recoverynotice.moc"
