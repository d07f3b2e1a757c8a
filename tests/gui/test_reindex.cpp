#include "support/modal.h"
#include "support/pages.h"
#include "support/support.h"
#include "support/view.h"
#include "support/widgets.h"

#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/pagewidget.h"
#include "src/reindexdialog.h"

#include <QAbstractItemModel>
#include <QComboBox>
#include <QGraphicsPixmapItem>
#include <QLineEdit>
#include <QListWidget>
#include <QModelIndex>
#include <QPixmap>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTest>

using TValues = QList<int>;
using TPageValues = QList<TValues>;
Q_DECLARE_METATYPE(TPageValues)

namespace {

const QString all_pages = QStringLiteral("All Pages, All Label Items");
const QString current_page = QStringLiteral("Current Page, All Label Items");
const QString selected_items = QStringLiteral("Current Page, Selected Label Items");

/// The value of labels before a test renumbers them.
constexpr int untouched = -7000;

/// A user's input in the dialog.
struct TChoice
{
    QString first_value;
    QString method;
    QString option;
};

void Choose_In_Dialog(QWidget* dialog, const TChoice& choice)
{
    Support::Type_Over(dialog->findChild<QLineEdit*>(), choice.first_value);
    auto* const methods = dialog->findChild<QComboBox*>();
    QVERIFY(methods->findText(choice.method) >= 0);
    methods->setCurrentIndex(methods->findText(choice.method));
    for (QRadioButton* const option : dialog->findChildren<QRadioButton*>()) {
        if (option->text() == choice.option)
            option->click();
    }
}

/// Describes the dialog in one line.
QString Shown(QWidget* dialog)
{
    QString shown = dialog->findChild<QLineEdit*>()->text() + QStringLiteral(", ") +
                    dialog->findChild<QComboBox*>()->currentText();
    for (const QRadioButton* const option : dialog->findChildren<QRadioButton*>()) {
        if (option->isChecked())
            shown += QStringLiteral(", ") + option->text();
    }
    return shown;
}

} // namespace

/// Renumbering: the menu, the dialog, the document, the panels and the view.
class TestReindex : public QObject
{
    Q_OBJECT

    std::unique_ptr<TOpenWindow> d_window;

    /// Adds a page with labels whose ids count from 1 and whose values are untouched.
    int Add_Page(int label_count, bool has_image = true)
    {
        std::vector<TDataItem> items;
        for (int id = 1; id <= label_count; ++id)
            items.push_back({id, untouched, QString(), 1, QPointF(10.0 * id, 20.0), false});
        return Support::Add_Page(d_window.get(), has_image ? Support::Picture(200, 150) : QImage(),
                                 items);
    }

    void Show_Page(int page_id) { Support::Show_Page(d_window.get(), page_id); }

    QListWidget* Label_List() const
    {
        return Support::Only<QListWidget>(*d_window->d_label_widget);
    }

    TValues Values(int page_id)
    {
        TData& data = d_window->d_data;
        const int active_page = data.Active_Page();
        data.Set_Active_Page(page_id);
        TValues values;
        for (int i = 0; i < data.Item_Count(); ++i)
            values += data.Item(i).value;
        data.Set_Active_Page(active_page);
        return values;
    }

    TPageValues All_Values()
    {
        TPageValues values;
        for (const int page_id : d_window->d_page_widget->Page_Ids())
            values += Values(page_id);
        return values;
    }

    TValues Values_In_View() const
    {
        TValues values;
        for (const QGraphicsPixmapItem* label : Support::Labels(*d_window->d_display_widget))
            values += label->data(TDisplayWidget::Value_Key).toInt();
        return values;
    }

    QStringList Rows() const
    {
        QStringList rows;
        for (int i = 0; i < Label_List()->count(); ++i)
            rows += Label_List()->item(i)->text();
        return rows;
    }

    QList<bool> Selected_In_Document() const
    {
        QList<bool> selected;
        for (int i = 0; i < d_window->d_data.Item_Count(); ++i)
            selected += d_window->d_data.Item(i).selected;
        return selected;
    }

    /// Takes the value of the next label, as adding a label does.
    int Next_Value() { return d_window->d_label_widget->Take_Label_Index(); }

    /// Triggers the command and answers its dialog.
    QString Run(const Support::TAnswer& answer)
    {
        if (!d_window->d_action_reindex->isEnabled())
            return QStringLiteral("the command is disabled");
        return Support::Run_Answering([this] { d_window->d_action_reindex->trigger(); }, {answer});
    }

    QString Renumber(const TChoice& choice)
    {
        return Run(Support::Click(QStringLiteral("Apply"),
                                  [&](QWidget* dialog) { Choose_In_Dialog(dialog, choice); }));
    }

private slots:
    void init()
    {
        d_window = std::make_unique<TOpenWindow>();
        d_window->show();
    }

    void cleanup() { d_window.reset(); }

    void the_command_needs_a_page()
    {
        QVERIFY(!d_window->d_action_reindex->isEnabled());
        Add_Page(0);
        QVERIFY(d_window->d_action_reindex->isEnabled());
    }

    void all_pages_are_numbered_by_the_method_data()
    {
        QTest::addColumn<QList<int>>("label_counts");
        QTest::addColumn<QString>("first_value");
        QTest::addColumn<QString>("method");
        QTest::addColumn<TPageValues>("values");
        QTest::addColumn<int>("next_value");

        TValues hundred_to_219;
        for (int value = 100; value <= 219; ++value)
            hundred_to_219 += value;
        QTest::newRow("1X continues without gaps")
            << TValues{2, 0, 3} << "7"
            << "Next 1X" << TPageValues{{7, 8}, {}, {9, 10, 11}} << 12;
        QTest::newRow("10X") << TValues{5, 1} << "12"
                             << "Next 10X" << TPageValues{{12, 13, 14, 15, 16}, {20}} << 30;
        QTest::newRow("10X skips a round number")
            << TValues{5, 1} << "15"
            << "Next 10X" << TPageValues{{15, 16, 17, 18, 19}, {30}} << 40;
        QTest::newRow("100X") << TValues{3, 120, 1} << "1"
                              << "Next 100X" << TPageValues{{1, 2, 3}, hundred_to_219, {300}}
                              << 400;
        QTest::newRow("1000X") << TValues{1, 1} << "5"
                               << "Next 1000X" << TPageValues{{5}, {1000}} << 2000;
        QTest::newRow("an empty page counts") << TValues{0, 1} << "100"
                                              << "Next 100X" << TPageValues{{}, {200}} << 300;
        QTest::newRow("an empty page counts with 10X")
            << TValues{1, 0, 0, 1} << "3"
            << "Next 10X" << TPageValues{{3}, {}, {}, {30}} << 40;
        QTest::newRow("an empty page counts with 1000X")
            << TValues{1, 0, 1} << "5"
            << "Next 1000X" << TPageValues{{5}, {}, {2000}} << 3000;
        // -14 / 10 is -1; the start is (-1 + 1) * 10.
        QTest::newRow("below zero, division truncates")
            << TValues{1, 1} << "-15"
            << "Next 10X" << TPageValues{{-15}, {0}} << 10;
        // -250 / 100 is -2, (-2 + 1) * 100; then -99 / 100 is 0, (0 + 1) * 100.
        QTest::newRow("below zero with 100X") << TValues{1, 1} << "-251"
                                              << "Next 100X" << TPageValues{{-251}, {-100}} << 100;
        QTest::newRow("no number") << TValues{2, 1} << "abc"
                                   << "Next 1X" << TPageValues{{1, 2}, {3}} << 4;
        QTest::newRow("empty field") << TValues{1, 1} << ""
                                     << "Next 10X" << TPageValues{{1}, {10}} << 20;
        QTest::newRow("fraction") << TValues{1} << "12.5"
                                  << "Next 1X" << TPageValues{{1}} << 2;
        QTest::newRow("hexadecimal") << TValues{1} << "0x10"
                                     << "Next 1X" << TPageValues{{1}} << 2;
        QTest::newRow("too large a number") << TValues{1} << "99999999999"
                                            << "Next 1X" << TPageValues{{1}} << 2;
        QTest::newRow("zero") << TValues{1, 1} << "0"
                              << "Next 100X" << TPageValues{{0}, {100}} << 200;
    }
    void all_pages_are_numbered_by_the_method()
    {
        QFETCH(const QList<int>, label_counts);
        QFETCH(const QString, first_value);
        QFETCH(const QString, method);
        QFETCH(const TPageValues, values);
        QFETCH(const int, next_value);
        int last_page = 0;
        for (const int label_count : label_counts)
            last_page = Add_Page(label_count);
        Show_Page(last_page);
        QCOMPARE(Renumber({first_value, method, all_pages}), QString());
        QCOMPARE(All_Values(), values);
        QCOMPARE(Values_In_View(), values.last());
        QCOMPARE(d_window->d_data.Active_Page(), last_page);
        QCOMPARE(Next_Value(), next_value);
    }

    void pages_are_numbered_in_the_order_of_the_page_list()
    {
        const int first = Add_Page(1);
        const int second = Add_Page(2);
        const int third = Add_Page(1);
        Show_Page(second);
        // The same as dragging the first row to the end.
        auto* const pages = Support::Only<QListWidget>(*d_window->d_page_widget);
        QVERIFY(pages->model()->moveRow(QModelIndex(), 0, QModelIndex(), 3));
        QCOMPARE(Renumber({QStringLiteral("1"), QStringLiteral("Next 10X"), all_pages}), QString());
        QCOMPARE(Values(second), TValues({1, 2}));
        QCOMPARE(Values(third), TValues({10}));
        QCOMPARE(Values(first), TValues({20}));
        QCOMPARE(Next_Value(), 30);
        QCOMPARE(d_window->d_data.Active_Page(), second);
    }

    void without_an_active_page_nothing_is_refreshed()
    {
        const int first = Add_Page(2);
        Add_Page(1);
        d_window->d_label_widget->Set_Label_Index(77);
        // A refresh would remove this.
        const QPixmap background(10, 10);
        d_window->d_display_widget->Set_Background_Image(background);
        QCOMPARE(d_window->d_data.Active_Page(), -1);
        QCOMPARE(Renumber({QStringLiteral("5"), QStringLiteral("Next 10X"), all_pages}), QString());
        QCOMPARE(All_Values(), TPageValues({{5, 6}, {10}}));
        QCOMPARE(d_window->d_data.Active_Page(), -1);
        QCOMPARE(d_window->d_display_widget->Background_Pixmap().cacheKey(), background.cacheKey());
        QCOMPARE(Label_List()->count(), 0);
        QVERIFY(!d_window->d_data_changed);
        QCOMPARE(Next_Value(), 77);
        Show_Page(first);
        QCOMPARE(Values_In_View(), TValues({5, 6}));
    }

    void the_current_page_needs_an_active_page_data()
    {
        QTest::addColumn<QString>("option");
        QTest::newRow("all") << current_page;
        QTest::newRow("selected") << selected_items;
    }
    void the_current_page_needs_an_active_page()
    {
        QFETCH(const QString, option);
        Add_Page(2);
        d_window->d_label_widget->Set_Label_Index(77);
        QCOMPARE(Renumber({QStringLiteral("5"), QStringLiteral("Next 10X"), option}), QString());
        QCOMPARE(All_Values(), TPageValues({{untouched, untouched}}));
        QVERIFY(!d_window->d_data_changed);
        QCOMPARE(Next_Value(), 77);
    }

    void the_current_page_is_numbered_regardless_of_the_method_data()
    {
        QTest::addColumn<QString>("method");
        for (const char* method : {"Next 1X", "Next 10X", "Next 100X", "Next 1000X"})
            QTest::newRow(method) << QString::fromLatin1(method);
    }
    void the_current_page_is_numbered_regardless_of_the_method()
    {
        QFETCH(const QString, method);
        Add_Page(1);
        const int page = Add_Page(3);
        Add_Page(1);
        Show_Page(page);
        QCOMPARE(Renumber({QStringLiteral("48"), method, current_page}), QString());
        QCOMPARE(All_Values(), TPageValues({{untouched}, {48, 49, 50}, {untouched}}));
        QCOMPARE(Values_In_View(), TValues({48, 49, 50}));
        QCOMPARE(Rows(), QStringList({"Item [48] ", "Item [49] ", "Item [50] "}));
        QCOMPARE(Next_Value(), 51);

        // The same for selected labels: the last one is clicked first, then the first one.
        Support::Click_Row(Label_List(), 2);
        Support::Click_Row(Label_List(), 0, Qt::ControlModifier);
        QCOMPARE(Renumber({QStringLiteral("9"), method, selected_items}), QString());
        QCOMPARE(All_Values(), TPageValues({{untouched}, {9, 49, 10}, {untouched}}));
        QCOMPARE(Values_In_View(), TValues({9, 49, 10}));
        QCOMPARE(Rows(), QStringList({"Item [9] ", "Item [49] ", "Item [10] "}));
        QCOMPARE(Next_Value(), 11);
    }

    void reindexing_clears_the_selection_of_the_list()
    {
        const int page = Add_Page(2);
        Show_Page(page);
        Support::Click_Row(Label_List(), 1);
        QCOMPARE(Selected_In_Document(), QList<bool>({false, true}));
        QCOMPARE(Renumber({QStringLiteral("3"), QStringLiteral("Next 1X"), selected_items}),
                 QString());
        QCOMPARE(Values(page), TValues({untouched, 3}));
        // Clearing the list reports an empty selection.
        QCOMPARE(Selected_In_Document(), QList<bool>({false, false}));
        QVERIFY(Label_List()->selectedItems().isEmpty());
    }

    void a_selection_that_the_list_does_not_show_stays()
    {
        const int page = Add_Page(3);
        Show_Page(page);
        d_window->d_data.Change_Item_Selection(1, true);
        d_window->d_data.Change_Item_Selection(3, true);
        QCOMPARE(Renumber({QStringLiteral("3"), QStringLiteral("Next 1X"), selected_items}),
                 QString());
        QCOMPARE(Values(page), TValues({3, untouched, 4}));
        QCOMPARE(Selected_In_Document(), QList<bool>({true, false, true}));
        for (const QGraphicsPixmapItem* label : Support::Labels(*d_window->d_display_widget))
            QCOMPARE(label->data(TDisplayWidget::Selected_Key).toInt(), 0);
    }

    void without_a_selection_only_the_next_value_changes()
    {
        const int page = Add_Page(2);
        Show_Page(page);
        const QSignalSpy list_cleared(Label_List()->model(), SIGNAL(modelReset()));
        QCOMPARE(Renumber({QStringLiteral("30"), QStringLiteral("Next 1X"), selected_items}),
                 QString());
        QCOMPARE(Values(page), TValues({untouched, untouched}));
        QCOMPARE(Values_In_View(), TValues({untouched, untouched}));
        QVERIFY(list_cleared.count() > 0);
        QVERIFY(d_window->d_data_changed);
        QCOMPARE(Next_Value(), 30);
    }

    void the_document_is_changed_when_the_active_page_has_labels_data()
    {
        QTest::addColumn<QString>("option");
        QTest::addColumn<int>("label_count");
        QTest::addColumn<bool>("before");
        QTest::addColumn<bool>("after");
        QTest::newRow("all pages, labels") << all_pages << 1 << false << true;
        QTest::newRow("all pages, none here") << all_pages << 0 << false << false;
        QTest::newRow("this page, labels") << current_page << 1 << false << true;
        QTest::newRow("this page, none here") << current_page << 0 << false << false;
        QTest::newRow("selected, labels but none selected") << selected_items << 1 << false << true;
        QTest::newRow("selected, none here") << selected_items << 0 << false << false;
        QTest::newRow("changed before") << current_page << 0 << true << true;
    }
    void the_document_is_changed_when_the_active_page_has_labels()
    {
        QFETCH(const QString, option);
        QFETCH(const int, label_count);
        QFETCH(const bool, before);
        QFETCH(const bool, after);
        // The other page always has labels.
        Add_Page(2);
        Show_Page(Add_Page(label_count));
        d_window->d_data_changed = before;
        QCOMPARE(Renumber({QStringLiteral("1"), QStringLiteral("Next 1X"), option}), QString());
        QCOMPARE(d_window->d_data_changed, after);
    }

    void the_view_and_the_list_are_rebuilt_in_order()
    {
        const int page = Add_Page(2);
        Show_Page(page);
        TDisplayWidget* const view = d_window->d_display_widget;
        QStringList log;
        // Disconnects before the captured variables are destroyed: the list's destructor clears it
        // once more.
        const QObject listener;
        const auto state = [&] {
            return QStringLiteral("%1 rows, %2 labels%3%4")
                .arg(Label_List()->count())
                .arg(Support::Labels(*view).size())
                .arg(view->updatesEnabled() ? ", painting" : "",
                     view->Background_Pixmap().size() == QSize(200, 150) ? "" : ", other image");
        };
        connect(Label_List()->model(), &QAbstractItemModel::modelReset, &listener,
                [&] { log += QStringLiteral("list cleared: ") + state(); });
        connect(Label_List()->model(), &QAbstractItemModel::rowsInserted, &listener,
                [&] { log += QStringLiteral("row: ") + state(); });
        connect(
            view, &TDisplayWidget::Update_Item_Position, &listener, [&](int id, const QPointF& at) {
                log += QStringLiteral("moved %1 to %2: ").arg(id).arg(Support::Text(at)) + state();
            });
        QCOMPARE(Renumber({QStringLiteral("1"), QStringLiteral("Next 1X"), current_page}),
                 QString());
        QCOMPARE(log, QStringList({"list cleared: 0 rows, 2 labels", "row: 1 rows, 0 labels",
                                   "moved 1 to 10,20: 1 rows, 1 labels", "row: 2 rows, 1 labels",
                                   "moved 2 to 20,20: 2 rows, 2 labels"}));
        QVERIFY(view->updatesEnabled());
        QCOMPARE(
            Support::Difference(view->Background_Pixmap().toImage(), Support::Picture(200, 150)),
            QString());
    }

    void reindexing_refreshes_a_page_without_an_image()
    {
        const int page = Add_Page(0, false);
        Add_Page(1);
        Show_Page(page);
        QCOMPARE(Renumber({QStringLiteral("1"), QStringLiteral("Next 10X"), all_pages}), QString());
        QCOMPARE(All_Values(), TPageValues({{}, {10}}));
        QVERIFY(d_window->d_display_widget->Background_Pixmap().isNull());
        QVERIFY(!d_window->d_data_changed);
        QCOMPARE(Next_Value(), 20);
    }

    void cancelling_changes_nothing()
    {
        Show_Page(Add_Page(2));
        d_window->d_label_widget->Set_Label_Index(77);
        const QString fault = Run(Support::Click(QStringLiteral("Cancel"), [](QWidget* dialog) {
            Choose_In_Dialog(dialog,
                             {QStringLiteral("5"), QStringLiteral("Next 10X"), current_page});
        }));
        QCOMPARE(fault, QString());
        QCOMPARE(All_Values(), TPageValues({{untouched, untouched}}));
        QVERIFY(!d_window->d_data_changed);
        QCOMPARE(Next_Value(), 77);
        // The dialog keeps the input.
        QString shown;
        QCOMPARE(Run([&](QWidget* dialog) {
                     shown = Shown(dialog);
                     QTest::keyClick(dialog, Qt::Key_Escape);
                 }),
                 QString());
        QCOMPARE(shown, QStringLiteral("5, Next 10X, ") + current_page);
        QCOMPARE(All_Values(), TPageValues({{untouched, untouched}}));
    }

    void the_dialog_is_kept_with_its_choices()
    {
        Show_Page(Add_Page(2));
        QVERIFY(d_window->d_reindex_dialog == nullptr);
        QString shown;
        QCOMPARE(Run(Support::Click(QStringLiteral("Apply"),
                                    [&](QWidget* dialog) {
                                        shown = Shown(dialog);
                                        Choose_In_Dialog(dialog,
                                                         {QStringLiteral("8"),
                                                          QStringLiteral("Next 1000X"), all_pages});
                                    })),
                 QString());
        QCOMPARE(shown, QStringLiteral("100, Next 100X, ") + all_pages);
        const TReindexDialog* const dialog = d_window->d_reindex_dialog;
        QCOMPARE(dialog->parentWidget(), d_window.get());
        QCOMPARE(Next_Value(), 1000);

        QCOMPARE(Run(Support::Click(QStringLiteral("Apply"),
                                    [&](QWidget* again) { shown = Shown(again); })),
                 QString());
        QCOMPARE(shown, QStringLiteral("8, Next 1000X, ") + all_pages);
        QCOMPARE(d_window->d_reindex_dialog, dialog);
        QCOMPARE(All_Values(), TPageValues({{8, 9}}));
        QCOMPARE(Next_Value(), 1000);
    }

    void the_value_editor_shows_the_next_value()
    {
        Show_Page(Add_Page(3));
        QCOMPARE(Renumber({QStringLiteral("20"), QStringLiteral("Next 1X"), current_page}),
                 QString());
        const QList<QLineEdit*> editors = d_window->d_label_widget->findChildren<QLineEdit*>();
        QStringList texts;
        for (const QLineEdit* const editor : editors)
            texts += editor->text();
        QVERIFY2(texts.contains(QStringLiteral("23")), qPrintable(texts.join(',')));
    }
};

QTEST_MAIN(TestReindex)
#include "test_reindex.moc"
