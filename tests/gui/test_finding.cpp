// Finding labels on all pages with the find bar.

#include "support/pages.h"
#include "support/project.h"
#include "support/support.h"
#include "support/widgets.h"
#include "support/window.h"

#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/pagewidget.h"
#include "src/undo/undohistory.h"
#include "src/widgets/findbar.h"

#include <QLineEdit>
#include <QSlider>
#include <QStatusBar>
#include <QTest>

using Support::Label;

class TestFinding : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void ctrl_f_opens_the_bar_above_the_status_bar();
    void ctrl_f_works_in_every_panel();
    void return_finds_labels_by_number_on_all_pages();
    void shift_return_goes_back();
    void labels_are_found_by_text();
    void pages_follow_each_other_in_the_order_of_the_list();
    void the_search_starts_at_the_selected_label();
    void a_found_label_is_selected_and_visible();
    void a_line_says_that_nothing_is_found();
    void an_empty_document_has_nothing_to_find();
    void a_search_works_while_several_pages_are_selected();
    void escape_returns_to_the_page();
    void finding_changes_nothing();
    void typing_in_the_bar_is_undone_there();

private:
    TFindBar* Bar() const { return Support::Only<TFindBar>(*d_window); }
    QLineEdit* Editor() const { return Support::Only<QLineEdit>(*Bar()); }
    void Open(const QString& text) const;
    QString Find_Next() const { return Press_Return(Qt::NoModifier); }
    QString Find_Previous() const { return Press_Return(Qt::ShiftModifier); }
    QString Press_Return(Qt::KeyboardModifiers modifiers) const;
    QString Shown() const;

    std::unique_ptr<TOpenWindow> d_window;
};

/// Two pages with labels and one without an image. The first page is shown.
void TestFinding::init()
{
    d_window = Support::New_Window(32, Qt::red);
    QVERIFY(QTest::qWaitForWindowActive(d_window.get()));
    Support::Add_Pages(d_window.get(),
                       {{"Plan",
                         Support::Picture(1000, 800),
                         {Label(1, 17, "", 1, {40, 40}), Label(2, 5, "Window", 2, {950, 750})}},
                        {"Empty", QImage(), {Label(1, 17, "window", 1, {40, 40})}},
                        {"Roof",
                         Support::Picture(300, 200, 1),
                         {Label(1, 6, "a window", 1, {40, 40}), Label(2, 17, "", 2, {90, 90})}}});
    Support::Show_Page(d_window.get(), 1);
    d_window->d_history->Clear();
    QCoreApplication::processEvents();
    d_window->d_data_changed = false;
}

void TestFinding::cleanup()
{
    d_window->d_data_changed = false;
    d_window.reset();
}

/// Opens the bar and types into it.
void TestFinding::Open(const QString& text) const
{
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_F, Qt::ControlModifier);
    QVERIFY(Editor()->hasFocus());
    QTest::keyClicks(Editor(), text);
}

/// Returns what is shown then.
QString TestFinding::Press_Return(Qt::KeyboardModifiers modifiers) const
{
    QTest::keyClick(Editor(), Qt::Key_Return, modifiers);
    return Shown();
}

/// The page and its selected labels, as "page/label label".
QString TestFinding::Shown() const
{
    QStringList labels;
    for (const int id : d_window->d_label_widget->Selected_Items())
        labels += QString::number(id);
    return QString("%1/%2").arg(d_window->d_data.Active_Page()).arg(labels.join(' '));
}

void TestFinding::ctrl_f_opens_the_bar_above_the_status_bar()
{
    QVERIFY(!Bar()->isVisible());
    Open("17");
    QVERIFY(Bar()->isVisible());
    const auto top = [this](const QWidget* widget) {
        return widget->mapTo(d_window.get(), QPoint()).y();
    };
    QVERIFY(top(Bar()) > top(d_window->d_display_widget));
    QCOMPARE(top(Bar()) + Bar()->height() <= top(d_window->statusBar()), true);
    QVERIFY(top(d_window->statusBar()) - top(Bar()) < 2 * Bar()->height() + 20);
}

void TestFinding::ctrl_f_works_in_every_panel()
{
    for (QWidget* const widget :
         {static_cast<QWidget*>(d_window->d_display_widget),
          static_cast<QWidget*>(Support::Only<QListWidget>(*d_window->d_label_widget)),
          static_cast<QWidget*>(Support::By_Caption<QLineEdit>(*d_window, "Item Value:")),
          static_cast<QWidget*>(Support::Only<QListWidget>(*d_window->d_page_widget)),
          static_cast<QWidget*>(d_window->d_zoom_slider)}) {
        widget->setFocus();
        QTest::keyClick(widget, Qt::Key_F, Qt::ControlModifier);
        QVERIFY(Editor()->hasFocus());
    }
}

void TestFinding::return_finds_labels_by_number_on_all_pages()
{
    Open("17");
    QCOMPARE(Find_Next(), QString("1/1"));
    QCOMPARE(Find_Next(), QString("3/2"));
    QCOMPARE(Find_Next(), QString("1/1"));
    QVERIFY(Editor()->hasFocus());
}

void TestFinding::shift_return_goes_back()
{
    Open("17");
    QCOMPARE(Find_Previous(), QString("3/2"));
    QCOMPARE(Find_Previous(), QString("1/1"));
    QCOMPARE(Find_Previous(), QString("3/2"));
}

void TestFinding::labels_are_found_by_text()
{
    Open("WINDOW");
    QCOMPARE(Find_Next(), QString("1/2"));
    QCOMPARE(Find_Next(), QString("3/1"));
}

void TestFinding::pages_follow_each_other_in_the_order_of_the_list()
{
    auto* const list = Support::Only<QListWidget>(*d_window->d_page_widget);
    list->setFocus();
    // The shown page becomes the last one.
    QTest::keyClick(list, Qt::Key_Down, Qt::AltModifier);
    QTest::keyClick(list, Qt::Key_Down, Qt::AltModifier);
    Support::Show_Page(d_window.get(), 2);
    Open("17");
    QCOMPARE(Find_Next(), QString("3/2"));
    QCOMPARE(Find_Next(), QString("1/1"));
}

void TestFinding::the_search_starts_at_the_selected_label()
{
    d_window->d_label_widget->Select_Items({1});
    Open("17");
    QCOMPARE(Find_Next(), QString("3/2"));
}

void TestFinding::a_found_label_is_selected_and_visible()
{
    d_window->d_display_widget->d_track_item = false;
    Open("window");
    QCOMPARE(Find_Next(), QString("1/2"));
    const TDisplayWidget& view = *d_window->d_display_widget;
    QVERIFY(view.viewport()->rect().contains(view.mapFromScene(view.Item_Position(2))));
    QVERIFY(d_window->d_data.Item(1).selected);
    QVERIFY(!view.d_track_item);
    QCOMPARE(d_window->d_page_widget->Selected_Pages(), std::vector<int>{1});
}

void TestFinding::a_line_says_that_nothing_is_found()
{
    Open("roof");
    QCOMPARE(Find_Next(), QString("1/"));
    QCOMPARE(d_window->statusBar()->currentMessage(), QString("Not found"));
    QVERIFY(Bar()->isVisible());
}

void TestFinding::an_empty_document_has_nothing_to_find()
{
    d_window->File_New();
    Open("17");
    QCOMPARE(Find_Next(), QString("-1/"));
    QCOMPARE(d_window->statusBar()->currentMessage(), QString("Not found"));
}

void TestFinding::a_search_works_while_several_pages_are_selected()
{
    d_window->d_page_widget->Select_Pages({1, 2, 3});
    d_window->Page_Selection_Changed(-1);
    Open("17");
    QCOMPARE(Find_Next(), QString("1/1"));
    QCOMPARE(d_window->d_page_widget->Selected_Pages(), std::vector<int>{1});
}

void TestFinding::escape_returns_to_the_page()
{
    Open("17");
    QTest::keyClick(Editor(), Qt::Key_Escape);
    QVERIFY(!Bar()->isVisible());
    QVERIFY(d_window->d_display_widget->hasFocus());
}

void TestFinding::finding_changes_nothing()
{
    const QStringList before = Support::Describe(d_window.get());
    Open("17");
    Find_Next();
    Find_Next();
    QTest::keyClick(Editor(), Qt::Key_Escape);
    Support::Show_Page(d_window.get(), 1);
    QCOMPARE(Support::Describe(d_window.get()), before);
    QVERIFY(!d_window->d_data_changed);
    QVERIFY(!d_window->d_history->Can_Undo());
}

void TestFinding::typing_in_the_bar_is_undone_there()
{
    d_window->Add_Item(QPointF(20, 20));
    Open("17");
    QTest::keyClick(Editor(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(Editor()->text(), QString());
    QCOMPARE(d_window->d_data.Item_Count(), 3);
}

QTEST_MAIN(TestFinding)
#include "test_finding.moc"
