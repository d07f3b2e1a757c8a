// Common parts of the panels.

#include "src/widgets/panelparts.h"

#include "src/labelwidget.h"
#include "src/pagewidget.h"
#include "src/settingswidget.h"
#include "support/widgets.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLineEdit>
#include <QTest>
#include <QToolButton>

namespace {

/// A widget does not report whether its text is clipped, so compare its size with the required one.
bool Has_Room(const QWidget& panel)
{
    for (const QLabel* const label : panel.findChildren<QLabel*>()) {
        if (label->height() < label->heightForWidth(label->width()) ||
            label->width() < label->QLabel::minimumSizeHint().width()) {
            qWarning() << label->text() << label->size();
            return false;
        }
    }
    for (const QComboBox* const box : panel.findChildren<QComboBox*>()) {
        if (box->width() < box->sizeHint().width() || box->height() < box->sizeHint().height())
            return false;
    }
    for (const QCheckBox* const box : panel.findChildren<QCheckBox*>()) {
        if (box->width() < box->sizeHint().width())
            return false;
    }
    return true;
}

} // namespace

class TestPanelParts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void a_button_is_named_by_its_tool_tip();
    void an_editor_is_named_by_its_caption();
    void captions_stay_on_one_line_in_a_wide_panel();
    void captions_wrap_in_a_narrow_panel();
    void the_narrowest_panels_show_everything();
    void the_panels_leave_most_of_a_small_window_to_the_page();
};

void TestPanelParts::initTestCase()
{
    Support::Set_Style();
}

void TestPanelParts::a_button_is_named_by_its_tool_tip()
{
    QWidget panel;
    const QToolButton* const button =
        PanelParts::New_Button(QStringLiteral("+"), QStringLiteral("Add Page"),
                               QStringLiteral("Adds an empty page."), &panel);
    QCOMPARE(button->parentWidget(), &panel);
    QCOMPARE(button->text(), QStringLiteral("+"));
    QCOMPARE(button->toolTip(), QStringLiteral("Add Page"));
    QCOMPARE(button->accessibleName(), QStringLiteral("Add Page"));
    QCOMPARE(button->accessibleDescription(), QStringLiteral("Adds an empty page."));
    QCOMPARE(button->minimumSize(), QSize(22, 22));
    QCOMPARE(button->maximumSize(), QSize(22, 22));
}

void TestPanelParts::an_editor_is_named_by_its_caption()
{
    QWidget panel;
    auto* const grid = new QGridLayout(&panel);
    auto* const editor = new QLineEdit(&panel);
    PanelParts::Add_Row(grid, 2, QStringLiteral("Item Value:"), editor,
                        QStringLiteral("The number."));
    QCOMPARE(grid->itemAtPosition(2, 1)->widget(), editor);
    const auto* const caption = qobject_cast<QLabel*>(grid->itemAtPosition(2, 0)->widget());
    QVERIFY(caption != nullptr);
    QCOMPARE(caption->text(), QStringLiteral("Item Value:"));
    QCOMPARE(caption->buddy(), editor);
    QCOMPARE(editor->accessibleName(), QStringLiteral("Item Value"));
    QCOMPARE(editor->accessibleDescription(), QStringLiteral("The number."));
}

void TestPanelParts::captions_stay_on_one_line_in_a_wide_panel()
{
    TSettingsWidget panel(nullptr, Qt::WindowFlags());
    panel.resize(panel.sizeHint().width(), 400);
    panel.show();
    const QLabel* const caption = Support::Caption(panel, QStringLiteral("Item Display Format:"));
    QVERIFY(caption->heightForWidth(caption->width()) < 2 * caption->fontMetrics().lineSpacing());
    QVERIFY(Has_Room(panel));
}

void TestPanelParts::captions_wrap_in_a_narrow_panel()
{
    TSettingsWidget panel(nullptr, Qt::WindowFlags());
    panel.resize(panel.minimumSizeHint());
    panel.show();
    const QLabel* const caption = Support::Caption(panel, QStringLiteral("Item Display Format:"));
    QVERIFY(caption->height() >= 2 * caption->fontMetrics().lineSpacing());
}

void TestPanelParts::the_narrowest_panels_show_everything()
{
    QWidget window;
    const QList<QWidget*> panels = {new TLabelWidget(&window, Qt::WindowFlags()),
                                    new TPageWidget(&window, Qt::WindowFlags()),
                                    new TSettingsWidget(&window, Qt::WindowFlags())};
    for (QWidget* const panel : panels)
        panel->resize(panel->minimumSizeHint());
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    for (const QWidget* const panel : panels) {
        QCOMPARE(panel->size(), panel->minimumSizeHint());
        QVERIFY(Has_Room(*panel));
    }
}

void TestPanelParts::the_panels_leave_most_of_a_small_window_to_the_page()
{
    const TLabelWidget labels(nullptr, Qt::WindowFlags());
    const TPageWidget pages(nullptr, Qt::WindowFlags());
    const TSettingsWidget settings(nullptr, Qt::WindowFlags());
    const int window_width = 800;
    const int separators =
        2 * QApplication::style()->pixelMetric(QStyle::PM_DockWidgetSeparatorExtent);
    const int right = qMax(pages.minimumSizeHint().width(), settings.minimumSizeHint().width());
    const int view = window_width - separators - labels.minimumSizeHint().width() - right;
    QVERIFY2(view * 100 >= window_width * 45, qPrintable(QString::number(view)));
}

QTEST_MAIN(TestPanelParts)
#include "test_panelparts.moc"
