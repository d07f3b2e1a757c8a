// The message box: its texts, buttons and answers.

#include "src/messagebox.h"

#include <QAbstractButton>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QStyleFactory>
#include <QTest>
#include <QTimer>

namespace {

const int Width = 500;

QString Bold(const QString& text)
{
    return QStringLiteral("<span style=\"font-size:10pt; font-weight:600; color:#000000;\" >") +
           text + QStringLiteral("</span>");
}

QString Normal(const QString& text)
{
    return QStringLiteral("<span style=\"font-size:10pt; font-weight:400; color:#000000;\" >") +
           text + QStringLiteral("</span>");
}

/// A derived class that overrides the functions for texts and for running the box.
class TOtherBox : public TMessageBox
{
public:
    TOtherBox()
        : TMessageBox(nullptr)
    {
    }
    int exec() override { return 42; }
    void setText(const QString& text) override { d_texts += text; }
    void setInformativeText(const QString& text) override { d_texts += text; }

    QString d_texts;
};

} // namespace

class TestMessageBox : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void the_parent_is_the_given_widget();
    void the_look_is_set_by_the_constructor();
    void texts_are_wrapped_data();
    void texts_are_wrapped();
    void a_text_may_contain_markup();
    void texts_and_run_are_virtual();
    void every_message_is_as_wide_as_the_others();
    void a_resize_does_not_change_the_width();
    void new_contents_do_not_change_the_width();
    void the_pressed_button_is_the_result_data();
    void the_pressed_button_is_the_result();
    void one_box_serves_many_messages();
    void escape_returns_the_rejecting_button();
    void buttons_have_no_icons();
    void buttons_have_a_fixed_order();
    void texts_are_readable_in_every_theme_data();
    void texts_are_readable_in_every_theme();
};

void TestMessageBox::initTestCase()
{
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("fusion")));
}

void TestMessageBox::the_parent_is_the_given_widget()
{
    QWidget window;
    const QWidget* const parent = &window;
    auto* const box = new TMessageBox(parent);
    QCOMPARE(box->parentWidget(), &window);
    QVERIFY(box->isWindow());
    const TMessageBox alone(nullptr);
    QVERIFY(alone.parentWidget() == nullptr);
}

void TestMessageBox::the_look_is_set_by_the_constructor()
{
    const TMessageBox box(nullptr);
    QCOMPARE(box.textFormat(), Qt::RichText);
    QCOMPARE(box.styleSheet(),
             QStringLiteral("dialogbuttonbox-buttons-have-icons: 0;\nbutton-layout: 1;"));
    QVERIFY(box.windowTitle().isEmpty());
}

void TestMessageBox::texts_are_wrapped_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << QStringLiteral("Data Not Saved");
    QTest::newRow("empty") << QString();
    QTest::newRow("two blanks") << QStringLiteral("Labels will be deleted.  Are you sure?");
    QTest::newRow("markup") << QStringLiteral("<b>bold</b> & <i>slanted</i>");
    QTest::newRow("placeholders") << QStringLiteral("%1 of %2, 100 %");
    QTest::newRow("not Latin") << QString::fromUtf8("Größe: 漢字");
}

void TestMessageBox::texts_are_wrapped()
{
    QFETCH(QString, text);
    TMessageBox box(nullptr);
    box.setText(text);
    QCOMPARE(box.text(), Bold(text));
    QCOMPARE(box.informativeText(), QString());
    box.setInformativeText(text);
    QCOMPARE(box.informativeText(), Normal(text));
    QCOMPARE(box.text(), Bold(text));
}

void TestMessageBox::a_text_may_contain_markup()
{
    TMessageBox marked(nullptr);
    marked.setText(QStringLiteral("<span>Data</span> Not Saved"));
    TMessageBox plain(nullptr);
    plain.setText(QStringLiteral("Data Not Saved"));
    marked.show();
    plain.show();
    QCOMPARE(marked.grab().toImage(), plain.grab().toImage());
}

void TestMessageBox::texts_and_run_are_virtual()
{
    TOtherBox other;
    TMessageBox& box = other;
    box.setText(QStringLiteral("a"));
    box.setInformativeText(QStringLiteral("b"));
    QCOMPARE(other.d_texts, QStringLiteral("ab"));
    QCOMPARE(static_cast<QDialog&>(box).exec(), 42);
}

void TestMessageBox::every_message_is_as_wide_as_the_others()
{
    TMessageBox box(nullptr);
    box.setText(QStringLiteral("A"));
    box.setInformativeText(QString());
    box.show();
    QCOMPARE(box.width(), Width);
    const int low = box.height();
    box.hide();

    box.setText(QStringLiteral("A long text that goes on and on. ").repeated(30));
    box.setInformativeText(QStringLiteral("And so does this one. ").repeated(30));
    box.show();
    QCOMPARE(box.width(), Width);
    QVERIFY(box.height() > low);
    box.hide();

    box.setText(QStringLiteral("unbreakable").repeated(40));
    box.show();
    QCOMPARE(box.width(), Width);
}

void TestMessageBox::a_resize_does_not_change_the_width()
{
    TMessageBox box(nullptr);
    box.setText(QStringLiteral("Help - About"));
    box.show();
    for (const int width : {300, 900}) {
        box.setMinimumWidth(0);
        box.setMaximumWidth(QWIDGETSIZE_MAX);
        box.resize(width, box.height());
        QCoreApplication::processEvents();
        QCOMPARE(box.width(), Width);
        QCOMPARE(box.minimumWidth(), Width);
        QCOMPARE(box.maximumWidth(), Width);
    }
}

void TestMessageBox::new_contents_do_not_change_the_width()
{
    TMessageBox box(nullptr);
    box.setText(QStringLiteral("Error Loading Data"));
    box.show();
    box.setInformativeText(QStringLiteral("File contains bad data. ").repeated(10));
    QCoreApplication::processEvents();
    QCOMPARE(box.width(), Width);
    box.setDetailedText(QStringLiteral("ERR: details"));
    QCoreApplication::processEvents();
    QCOMPARE(box.width(), Width);
    const int folded = box.height();
    for (QAbstractButton* const button : box.buttons()) {
        if (box.buttonRole(button) == QMessageBox::ActionRole)
            QTest::mouseClick(button, Qt::LeftButton);
    }
    QCoreApplication::processEvents();
    QVERIFY(box.height() > folded);
    QCOMPARE(box.width(), Width);
}

void TestMessageBox::the_pressed_button_is_the_result_data()
{
    QTest::addColumn<int>("pressed");
    QTest::newRow("yes") << static_cast<int>(QMessageBox::Yes);
    QTest::newRow("no") << static_cast<int>(QMessageBox::No);
    QTest::newRow("cancel") << static_cast<int>(QMessageBox::Cancel);
    QTest::newRow("ok") << static_cast<int>(QMessageBox::Ok);
}

void TestMessageBox::the_pressed_button_is_the_result()
{
    QFETCH(int, pressed);
    TMessageBox box(nullptr);
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel |
                           QMessageBox::Ok);
    bool modal = false;
    QTimer::singleShot(0, &box, [&box, &modal, pressed] {
        modal = box.isModal() && QApplication::activeModalWidget() == &box && box.width() == Width;
        QTest::mouseClick(box.button(static_cast<QMessageBox::StandardButton>(pressed)),
                          Qt::LeftButton);
    });
    QCOMPARE(box.exec(), pressed);
    QVERIFY(modal);
    QVERIFY(!box.isVisible());
}

void TestMessageBox::one_box_serves_many_messages()
{
    TMessageBox box(nullptr);
    const auto answer = [&box](const QString& text, QMessageBox::StandardButtons buttons,
                               QMessageBox::StandardButton default_button) {
        box.setText(text);
        box.setInformativeText(text);
        box.setDetailedText(QString());
        box.setStandardButtons(buttons);
        box.setDefaultButton(default_button);
        box.setIcon(QMessageBox::Question);
        QTimer::singleShot(
            0, &box, [] { QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Return); });
        return box.exec();
    };
    QCOMPARE(answer(QStringLiteral("Remove Labels"), QMessageBox::Yes | QMessageBox::No,
                    QMessageBox::No),
             static_cast<int>(QMessageBox::No));
    QCOMPARE(answer(QStringLiteral("Data Not Saved"),
                    QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Yes),
             static_cast<int>(QMessageBox::Yes));
    QCOMPARE(box.text(), Bold(QStringLiteral("Data Not Saved")));
    QCOMPARE(answer(QStringLiteral("Help - About"), QMessageBox::Ok, QMessageBox::Ok),
             static_cast<int>(QMessageBox::Ok));
}

void TestMessageBox::escape_returns_the_rejecting_button()
{
    TMessageBox box(nullptr);
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
    QTimer::singleShot(0, &box, [&box] { QTest::keyClick(&box, Qt::Key_Escape); });
    QCOMPARE(box.exec(), static_cast<int>(QMessageBox::Cancel));
}

void TestMessageBox::buttons_have_no_icons()
{
    TMessageBox box(nullptr);
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
    box.show();
    const auto* const row = box.findChild<QDialogButtonBox*>();
    QCOMPARE(row->style()->styleHint(QStyle::SH_DialogButtonBox_ButtonsHaveIcons, nullptr, row), 0);
    for (const QAbstractButton* const button : box.buttons())
        QVERIFY(button->icon().isNull());
}

void TestMessageBox::buttons_have_a_fixed_order()
{
    TMessageBox box(nullptr);
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    box.show();
    const auto* const row = box.findChild<QDialogButtonBox*>();
    QCOMPARE(row->style()->styleHint(QStyle::SH_DialogButtonLayout, nullptr, row),
             static_cast<int>(QDialogButtonBox::MacLayout));
    // That layout puts the accepting button at the right end.
    QVERIFY(box.button(QMessageBox::Yes)->x() > box.button(QMessageBox::No)->x());
}

void TestMessageBox::texts_are_readable_in_every_theme_data()
{
    QTest::addColumn<QColor>("background");
    QTest::addColumn<QColor>("text");
    QTest::newRow("light") << QColor(239, 239, 239) << QColor(Qt::black);
    QTest::newRow("dark") << QColor(45, 45, 48) << QColor(230, 230, 230);
    QTest::newRow("high contrast") << QColor(Qt::black) << QColor(Qt::yellow);
}

void TestMessageBox::texts_are_readable_in_every_theme()
{
    QFETCH(QColor, background);
    QFETCH(QColor, text);
    const QPalette usual = QApplication::palette();
    QPalette theme(background);
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        theme.setColor(role, text);
    QApplication::setPalette(theme);
    TMessageBox box(nullptr);
    box.setText(QStringLiteral("Data Not Saved"));
    box.setDetailedText(QStringLiteral("details"));
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    box.show();
    const QImage image = box.grab().toImage();
    QApplication::setPalette(usual);
    // The text is always black.
    QVERIFY(qGray(image.pixel(image.width() - 3, 3)) > 200);
    const auto widgets = box.findChildren<QWidget*>();
    for (const QWidget* const widget : widgets) {
        const QPalette& colors = widget->palette();
        QVERIFY(colors.color(QPalette::WindowText).value() < 50);
        QVERIFY(colors.color(QPalette::Window).value() > 200);
        QVERIFY(colors.color(QPalette::ButtonText).value() < 50);
        QVERIFY(colors.color(QPalette::Button).value() > 200);
        QVERIFY(colors.color(QPalette::Text).value() < 50);
        QVERIFY(colors.color(QPalette::Base).value() > 200);
    }
}

QTEST_MAIN(TestMessageBox)
#include "test_messagebox.moc"
