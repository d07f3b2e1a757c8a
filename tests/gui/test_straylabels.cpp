// Labels outside of their page: the warning after an export, and moving them back.

#include "support/menu.h"
#include "support/pages.h"
#include "support/project.h"
#include "support/support.h"
#include "support/widgets.h"
#include "support/window.h"

#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/pagewidget.h"
#include "src/undo/undohistory.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QListWidget>
#include <QLocale>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using Support::Label;

class TestStrayLabels : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void an_export_names_a_label_outside_of_its_page();
    void an_export_counts_further_labels();
    void labels_at_the_edge_are_no_strays();
    void the_context_menu_moves_selected_labels_onto_the_page();
    void moving_labels_onto_the_page_is_one_step();
    void labels_on_the_page_stay();

private:
    QString Line() const { return d_window->statusBar()->currentMessage(); }
    void Show(const std::vector<TDataItem>& labels);
    QListWidget* List() const { return Support::Only<QListWidget>(*d_window->d_label_widget); }
    QList<QPointF> Positions() const;

    std::unique_ptr<QTemporaryDir> d_folder;
    std::unique_ptr<TOpenWindow> d_window;
};

void TestStrayLabels::init()
{
    d_folder = std::make_unique<QTemporaryDir>();
    d_window = Support::New_Window(32, Qt::red);
    QVERIFY(QTest::qWaitForWindowActive(d_window.get()));
}

void TestStrayLabels::cleanup()
{
    d_window.reset();
    d_folder.reset();
}

/// Shows a page of 300 x 200 pixels with labels.
void TestStrayLabels::Show(const std::vector<TDataItem>& labels)
{
    Support::Show_Page(d_window.get(),
                       Support::Add_Page(d_window.get(), Support::Picture(300, 200), labels));
    d_window->d_history->Clear();
}

/// Positions of the labels in the document. Checks that they have the same ones in the view.
QList<QPointF> TestStrayLabels::Positions() const
{
    QList<QPointF> positions;
    for (const TDataItem& item : d_window->d_data.Active_Page_Item()->data_items) {
        positions += item.position;
        if (d_window->d_display_widget->Item_Position(item.id) != item.position)
            qFatal("the view shows label %d elsewhere", item.id);
    }
    return positions;
}

void TestStrayLabels::an_export_names_a_label_outside_of_its_page()
{
    Show({Label(1, 5, "", 2, {20, 20}), Label(2, 17, "", 2, {8099.5, 50})});
    QVERIFY(d_window->Export_Images(d_folder->path(), d_window->d_page_widget->Page_Ids()));
    const QString distance = QLocale().toString(7800);
    QVERIFY2(Line().startsWith("Page 1: label 17 is " + distance +
                               " pixels outside the page. Exported 1 page to "),
             qPrintable(Line()));
    TQuillet::TReportSettings settings;
    settings.resolution = 1;
    QVERIFY(d_window->Export_PDF(d_folder->filePath("a.pdf"), d_window->d_page_widget->Page_Ids(),
                                 settings));
    QCOMPARE(Line(), QString("Page 1: label 17 is " + distance +
                             " pixels outside the page. Exported 1 page to a.pdf"));
}

void TestStrayLabels::an_export_counts_further_labels()
{
    Show({Label(1, 5, "", 2, {20, -1}), Label(2, 6, "", 2, {50, 50}), Label(3, 7, "", 2, {-9, 0})});
    Show({Label(1, 8, "", 2, {20, 300})});
    QVERIFY(d_window->Export_Images(d_folder->path(), d_window->d_page_widget->Page_Ids()));
    QVERIFY2(Line().startsWith("Page 1: label 5 is 1 pixels outside the page, and 2 more. "),
             qPrintable(Line()));
}

void TestStrayLabels::labels_at_the_edge_are_no_strays()
{
    Show({Label(1, 5, "", 2, {0, 0}), Label(2, 6, "", 2, {300, 200})});
    Support::Add_Page(d_window.get(), QImage(), {Label(3, 7, "", 2, {50, 50})});
    QVERIFY(d_window->Export_Images(d_folder->path(), d_window->d_page_widget->Page_Ids()));
    QVERIFY2(Line().startsWith("Exported 2 pages to ") && Line().endsWith('/'), qPrintable(Line()));
}

void TestStrayLabels::the_context_menu_moves_selected_labels_onto_the_page()
{
    Show({Label(1, 5, "", 2, {-90, 50}), Label(2, 6, "", 2, {50, 50}),
          Label(3, 7, "", 2, {9000, 900}), Label(4, 8, "", 2, {500, 100})});
    d_window->d_label_widget->Select_Items({1, 2, 3});
    d_window->d_data_changed = false;
    QCOMPARE(Support::Choose_From_Menu(List(), "Move onto the page"), QString());
    QCOMPARE(Positions(), (QList<QPointF>{{16, 50}, {50, 50}, {284, 184}, {500, 100}}));
    QVERIFY(d_window->d_data_changed);
}

void TestStrayLabels::moving_labels_onto_the_page_is_one_step()
{
    Show({Label(1, 5, "", 2, {-90, 50}), Label(2, 6, "", 2, {50, 300})});
    d_window->d_label_widget->Select_Items({1, 2});
    const QList<QPointF> before = Positions();
    QCOMPARE(Support::Choose_From_Menu(List(), "Move onto the page"), QString());
    const QList<QPointF> after = Positions();
    QVERIFY(before != after);
    List()->setFocus();
    QTest::keyClick(List(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(Line(), QString("Undone: move 2 labels"));
    QCOMPARE(Positions(), before);
    QTest::keyClick(List(), Qt::Key_Y, Qt::ControlModifier);
    QCOMPARE(Positions(), after);
}

void TestStrayLabels::labels_on_the_page_stay()
{
    Show({Label(1, 5, "", 2, {3, 3})});
    d_window->d_label_widget->Select_Items({1});
    d_window->d_data_changed = false;
    QCOMPARE(Support::Choose_From_Menu(List(), "Move onto the page"), QString());
    QCOMPARE(Positions(), QList<QPointF>{QPointF(3, 3)});
    QCOMPARE(Line(), QString("No selected label is outside the page"));
    QVERIFY(!d_window->d_data_changed);
    QVERIFY(!d_window->d_history->Can_Undo());
}

QTEST_MAIN(TestStrayLabels)
#include "test_straylabels.moc"
