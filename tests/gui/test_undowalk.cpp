// A random walk through all commands that change the document, undo and redo. The test compares the
// window with its own copies of all states of the document.
//
// The environment variables QUILLET_WALK_SEED and QUILLET_WALK_LENGTH select another walk.

#include "support/modal.h"
#include "support/project.h"
#include "support/support.h"
#include "support/view.h"
#include "support/widgets.h"
#include "support/window.h"

#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/model/itemformat.h"
#include "src/pagewidget.h"
#include "src/reindexdialog.h"
#include "src/safety/safetynet.h"
#include "src/settingswidget.h"
#include "src/undo/undohistory.h"

#include <QApplication>
#include <QComboBox>
#include <QCoreApplication>
#include <QGraphicsPixmapItem>
#include <QLineEdit>
#include <QListWidget>
#include <QListWidgetItem>
#include <QMap>
#include <QMessageBox>
#include <QPixmap>
#include <QRadioButton>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>

#include <algorithm>
#include <random>

/// Whether two labels are equal except for their selection.
static bool operator==(const TDataItem& left, const TDataItem& right)
{
    return left.id == right.id && left.value == right.value && left.text == right.text &&
           left.border_type == right.border_type && left.position == right.position;
}

namespace {

constexpr int default_length = 10000;
constexpr unsigned int default_seed = 20240229;
constexpr int picture_count = 4;

/// The test's copy of a page.
struct TPlainPage
{
    int id = 0;
    QString name;
    int picture = -1; ///< which of the test's pictures; -1 for none
    QVector<TDataItem> labels;
};

/// The test's copy of the document; cheap to copy.
struct TPlainDocument
{
    QVector<TPlainPage> pages; ///< in the model's order
    QVector<int> order;        ///< ids, as in the page list
    int label_size = 0;
    QColor label_color;
};

bool operator==(const TPlainPage& left, const TPlainPage& right)
{
    return left.id == right.id && left.name == right.name && left.picture == right.picture &&
           left.labels == right.labels;
}

bool operator==(const TPlainDocument& left, const TPlainDocument& right)
{
    return left.pages == right.pages && left.order == right.order &&
           left.label_size == right.label_size && left.label_color == right.label_color;
}

} // namespace

class TestUndoWalk : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void ten_thousand_commands_with_undo_and_redo_agree_with_a_plain_copy();

private:
    using TCommand = bool (TestUndoWalk::*)();
    struct TChoice
    {
        const char* name;
        int weight;
        TCommand run;
    };

    int Number_Below(int limit) { return static_cast<int>(d_random() % unsigned(limit)); }
    template <typename TList>
    auto Pick(const TList& list)
    {
        return list[Number_Below(static_cast<int>(list.size()))];
    }
    TPlainPage* Page(int id);
    TPlainPage* Shown_Page();
    TDataItem* Label(int id);
    std::vector<int> Selected_Labels() const { return d_window->d_label_widget->Selected_Items(); }
    void Remember();
    void Press_Control(Qt::Key key);
    QString Difference();
    QString Page_List_Difference() const;
    QString Model_Difference(const TPlainPage& page);
    QString Shown_Difference();
    QString Selection_Difference();

    // Each command returns false if it does not apply to the current state.
    bool Add_Label_At_Point();
    bool Add_Label_In_Corner();
    bool Remove_Labels();
    bool Decline_Removing_Labels();
    bool Change_Value();
    bool Change_Text();
    bool Change_Border();
    bool Move_Label();
    bool Nudge_Labels();
    bool Add_Page();
    bool Remove_Pages();
    bool Rename_Page();
    bool Move_Page();
    bool Import();
    bool Renumber();
    bool Change_Size();
    bool Change_Color();
    bool Select_Page();
    bool Select_Labels();
    bool Undo();
    bool Redo();

    static const TChoice choices[];

    std::mt19937 d_random;
    QTemporaryDir d_folder;
    QVector<QImage> d_pictures;
    QStringList d_picture_paths;
    std::unique_ptr<TOpenWindow> d_window;
    TPlainDocument d_plain;
    std::vector<TPlainDocument> d_states;
    std::size_t d_state = 0; ///< index of the current one
};

const TestUndoWalk::TChoice TestUndoWalk::choices[] = {
    {"add a label at a point", 14, &TestUndoWalk::Add_Label_At_Point},
    {"add a label in the corner", 5, &TestUndoWalk::Add_Label_In_Corner},
    {"remove labels", 5, &TestUndoWalk::Remove_Labels},
    {"decline removing labels", 1, &TestUndoWalk::Decline_Removing_Labels},
    {"change a value", 8, &TestUndoWalk::Change_Value},
    {"change a text", 6, &TestUndoWalk::Change_Text},
    {"change a border", 6, &TestUndoWalk::Change_Border},
    {"move a label", 8, &TestUndoWalk::Move_Label},
    {"nudge labels", 4, &TestUndoWalk::Nudge_Labels},
    {"add a page", 1, &TestUndoWalk::Add_Page},
    {"remove pages", 1, &TestUndoWalk::Remove_Pages},
    {"rename a page", 3, &TestUndoWalk::Rename_Page},
    {"move a page", 3, &TestUndoWalk::Move_Page},
    {"import", 2, &TestUndoWalk::Import},
    {"renumber", 3, &TestUndoWalk::Renumber},
    {"change the size", 2, &TestUndoWalk::Change_Size},
    {"change the color", 2, &TestUndoWalk::Change_Color},
    {"select a page", 6, &TestUndoWalk::Select_Page},
    {"select labels", 6, &TestUndoWalk::Select_Labels},
    {"undo", 26, &TestUndoWalk::Undo},
    {"redo", 16, &TestUndoWalk::Redo},
};

void TestUndoWalk::initTestCase()
{
    for (int picture = 0; picture < picture_count; ++picture) {
        d_pictures += Support::Picture(60 + 10 * picture, 40, picture);
        d_picture_paths += d_folder.filePath(QString("%1.png").arg(picture));
        QVERIFY(d_pictures.last().save(d_picture_paths.last()));
    }
    d_window = std::make_unique<TOpenWindow>();
    d_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(d_window.get()));
    d_plain.label_size = d_window->d_settings_widget->Label_Size();
    d_plain.label_color = d_window->d_settings_widget->Label_Color();
    d_states = {d_plain};
}

void TestUndoWalk::cleanupTestCase()
{
    d_window->d_safety_net->Discard();
    d_window.reset();
}

void TestUndoWalk::ten_thousand_commands_with_undo_and_redo_agree_with_a_plain_copy()
{
    bool is_given = false;
    const int given = qEnvironmentVariableIntValue("QUILLET_WALK_SEED", &is_given);
    const unsigned int seed = is_given ? static_cast<unsigned int>(given) : default_seed;
    const int given_length = qEnvironmentVariableIntValue("QUILLET_WALK_LENGTH", &is_given);
    const int length = is_given ? given_length : default_length;
    qInfo("seed %u, %d commands", seed, length);
    d_random.seed(seed);

    std::vector<int> weights;
    for (const TChoice& choice : choices)
        weights.push_back(choice.weight);
    std::discrete_distribution<int> distribution(weights.begin(), weights.end());
    QMap<QString, int> done;
    for (int command = 0; command < length;) {
        const TChoice& choice = choices[distribution(d_random)];
        d_window->d_history->Finish_Step();
        if (!(this->*choice.run)())
            continue;
        ++command;
        ++done[choice.name];
        if (qEnvironmentVariableIsSet("QUILLET_WALK_TRACE"))
            qInfo("%d %s, state %zu of %zu", command, choice.name, d_state, d_states.size());
        const QString difference = Difference();
        QVERIFY2(difference.isEmpty(), qPrintable(QString("command %1, %2 (seed %3): %4")
                                                      .arg(command)
                                                      .arg(choice.name)
                                                      .arg(seed)
                                                      .arg(difference)));
    }
    QCOMPARE(done.size(), static_cast<int>(std::size(choices)));
}

TPlainPage* TestUndoWalk::Page(int id)
{
    const auto found = std::find_if(d_plain.pages.begin(), d_plain.pages.end(),
                                    [id](const TPlainPage& page) { return page.id == id; });
    return found == d_plain.pages.end() ? nullptr : &*found;
}

TPlainPage* TestUndoWalk::Shown_Page()
{
    TPlainPage* const page = Page(d_window->d_data.Active_Page());
    return page && page->picture >= 0 ? page : nullptr;
}

TDataItem* TestUndoWalk::Label(int id)
{
    for (TDataItem& label : Page(d_window->d_data.Active_Page())->labels) {
        if (label.id == id)
            return &label;
    }
    return nullptr;
}

/// Call this after a command. If it changed the document, removes the undone states and adds the
/// new one.
void TestUndoWalk::Remember()
{
    if (d_plain == d_states[d_state])
        return;
    d_states.resize(d_state + 1);
    d_states.push_back(d_plain);
    ++d_state;
}

QString TestUndoWalk::Difference()
{
    TData& data = d_window->d_data;
    if (data.Page_Count() != d_plain.pages.size())
        return QString("%1 pages instead of %2").arg(data.Page_Count()).arg(d_plain.pages.size());
    const int active_page = data.Active_Page();
    QString difference;
    for (int index = 0; index < d_plain.pages.size() && difference.isEmpty(); ++index) {
        if (data.Page_Id(index) != d_plain.pages[index].id)
            difference = QString("page id %1 at %2").arg(data.Page_Id(index)).arg(index);
        else
            difference = Model_Difference(d_plain.pages[index]);
    }
    data.Set_Active_Page(active_page);
    if (difference.isEmpty())
        difference = Page_List_Difference();
    if (difference.isEmpty())
        difference = Shown_Difference();
    if (difference.isEmpty())
        difference = Selection_Difference();
    return difference;
}

QString TestUndoWalk::Page_List_Difference() const
{
    const TPageWidget& list = *d_window->d_page_widget;
    if (list.Page_Ids().toVector() != d_plain.order)
        return "the order of the page list differs";
    for (const TPlainPage& page : d_plain.pages) {
        if (list.Page_Name(page.id) != page.name)
            return QString("page %1 is named %2").arg(page.id).arg(list.Page_Name(page.id));
    }
    const auto* const name_editor = list.findChild<QLineEdit*>();
    const std::vector<int> selected = list.Selected_Pages();
    const QString edited = selected.size() == 1 ? list.Page_Name(selected.front()) : QString();
    if (name_editor->text() != edited)
        return QString("the page list's editor shows %1").arg(name_editor->text());
    return QString();
}

QString TestUndoWalk::Model_Difference(const TPlainPage& page)
{
    TData& data = d_window->d_data;
    data.Set_Active_Page(page.id);
    if (data.Page_Image() != (page.picture < 0 ? QImage() : d_pictures[page.picture]))
        return QString("page %1 has another picture").arg(page.id);
    if (data.Item_Count() != page.labels.size())
        return QString("page %1 has %2 labels instead of %3")
            .arg(page.id)
            .arg(data.Item_Count())
            .arg(page.labels.size());
    for (int index = 0; index < page.labels.size(); ++index) {
        const TDataItem label = data.Item(index);
        if (!(label == page.labels[index]))
            return QString("page %1 has %2 instead of %3")
                .arg(page.id)
                .arg(Support::Describe_Label(label), Support::Describe_Label(page.labels[index]));
    }
    return QString();
}

/// Compares the view and the item list with the current page, size and colour.
QString TestUndoWalk::Shown_Difference()
{
    const TDisplayWidget& view = *d_window->d_display_widget;
    const TPlainPage* const page = Shown_Page();
    const QVector<TDataItem> labels = page ? page->labels : QVector<TDataItem>();
    const QList<QGraphicsPixmapItem*> shown = Support::Labels(view);
    const auto* const list = d_window->d_label_widget->findChild<QListWidget*>();
    if (shown.size() != labels.size() || list->count() != labels.size())
        return QString("%1 labels in the view and %2 in the list instead of %3")
            .arg(shown.size())
            .arg(list->count())
            .arg(labels.size());
    for (int index = 0; index < labels.size(); ++index) {
        const QGraphicsPixmapItem& item = *shown[index];
        const TDataItem drawn{item.data(TDisplayWidget::Id_Key).toInt(),
                              item.data(TDisplayWidget::Value_Key).toInt(),
                              item.data(TDisplayWidget::Text_Key).toString(),
                              item.data(TDisplayWidget::Border_Key).toInt(),
                              item.data(TDisplayWidget::Centre_Key).toPointF(),
                              false};
        if (!(drawn == labels[index]))
            return QString("the view has %1").arg(Support::Describe_Label(drawn));
        const QListWidgetItem& row = *list->item(index);
        const QString text = ItemFormat::Row_Text(d_window->d_label_widget->d_display_format,
                                                  labels[index].value, labels[index].text);
        if (row.data(Qt::UserRole).toInt() != labels[index].id || row.text() != text ||
            row.data(Qt::UserRole + 3).toInt() != labels[index].border_type)
            return QString("the list has %1").arg(row.text());
    }
    if (d_window->d_settings_widget->Label_Size() != d_plain.label_size ||
        view.Label_Size() != QSize(d_plain.label_size, d_plain.label_size))
        return "the label size differs";
    if (d_window->d_settings_widget->Label_Color() != d_plain.label_color ||
        view.Label_Color() != d_plain.label_color)
        return "the label color differs";
    const QPixmap none(":/images/background_default.png");
    if (view.Background_Pixmap().size() != (page ? d_pictures[page->picture].size() : none.size()))
        return "the view shows the wrong picture";
    return QString();
}

QString TestUndoWalk::Selection_Difference()
{
    const std::vector<int> selected = Selected_Labels();
    const QSet<int> listed(selected.cbegin(), selected.cend());
    const QList<QGraphicsPixmapItem*> shown = Support::Labels(*d_window->d_display_widget);
    for (const QGraphicsPixmapItem* const item : shown) {
        const bool is_highlighted = item->data(TDisplayWidget::Selected_Key).toInt() != 0;
        if (is_highlighted != listed.contains(item->data(TDisplayWidget::Id_Key).toInt()))
            return "view and list have different selections";
    }
    return QString();
}

bool TestUndoWalk::Add_Label_At_Point()
{
    TPlainPage* const page = Shown_Page();
    if (!page || page->labels.size() > 40)
        return false;
    const QPointF point(Number_Below(600) / 10.0, Number_Below(400) / 10.0);
    const int value = d_window->d_label_widget->Next_Value();
    d_window->Add_Item(point);
    const TDataItem added = d_window->d_data.Item(d_window->d_data.Item_Count() - 1);
    page->labels +=
        {added.id, value, QString(), d_window->d_label_widget->Border_Type(), point, false};
    Remember();
    return true;
}

bool TestUndoWalk::Add_Label_In_Corner()
{
    TPlainPage* const page = Shown_Page();
    if (!page || page->labels.size() > 40)
        return false;
    const int value = d_window->d_label_widget->Next_Value();
    Support::By_Tool_Tip<QToolButton>(*d_window->d_label_widget, "Add Item")->click();
    const TDataItem added = d_window->d_data.Item(d_window->d_data.Item_Count() - 1);
    const QPointF centre = d_window->d_display_widget->Item_Position(added.id);
    page->labels +=
        {added.id, value, QString(), d_window->d_label_widget->Border_Type(), centre, false};
    Remember();
    return true;
}

bool TestUndoWalk::Remove_Labels()
{
    TPlainPage* const page = Shown_Page();
    const std::vector<int> ids = Selected_Labels();
    if (!page || ids.empty())
        return false;
    Support::Run_Answering([this] { d_window->Remove_Item(); }, {Support::Press(QMessageBox::Yes)});
    const auto is_removed = [&ids](const TDataItem& label) {
        return std::find(ids.cbegin(), ids.cend(), label.id) != ids.cend();
    };
    page->labels.erase(std::remove_if(page->labels.begin(), page->labels.end(), is_removed),
                       page->labels.end());
    Remember();
    return true;
}

bool TestUndoWalk::Decline_Removing_Labels()
{
    if (Selected_Labels().empty())
        return false;
    Support::Run_Answering([this] { d_window->Remove_Item(); }, {Support::Press(QMessageBox::No)});
    return true;
}

bool TestUndoWalk::Change_Value()
{
    const std::vector<int> ids = Selected_Labels();
    if (!Shown_Page() || ids.size() != 1)
        return false;
    const int value = Number_Below(2000) - 500;
    auto* const editor = Support::By_Tool_Tip<QLineEdit>(*d_window->d_label_widget, "Item Value");
    Support::Type_Over(editor, QString::number(value));
    Label(ids.front())->value = value;
    Remember();
    return true;
}

bool TestUndoWalk::Change_Text()
{
    const std::vector<int> ids = Selected_Labels();
    if (!Shown_Page() || ids.size() != 1)
        return false;
    const QString text = Pick(QStringList{"", "Pump", "two words", "x", "42"});
    auto* const editor = Support::By_Tool_Tip<QLineEdit>(*d_window->d_label_widget, "Item Text");
    Support::Type_Over(editor, text);
    QTest::keyClick(editor, Qt::Key_Return);
    Label(ids.front())->text = text;
    Remember();
    return true;
}

bool TestUndoWalk::Change_Border()
{
    const std::vector<int> ids = Selected_Labels();
    if (!Shown_Page() || ids.empty())
        return false;
    auto* const box = Support::Only<QComboBox>(*d_window->d_label_widget);
    const int index = Number_Below(box->count());
    // Choosing the current entry again emits nothing.
    if (index != box->currentIndex()) {
        box->setCurrentIndex(index);
        for (const int id : ids)
            Label(id)->border_type = box->itemData(index).toInt();
    }
    Remember();
    return true;
}

bool TestUndoWalk::Move_Label()
{
    TPlainPage* const page = Shown_Page();
    if (!page || page->labels.isEmpty())
        return false;
    const int id = Pick(page->labels).id;
    const QPointF point(Number_Below(90) - 15, Number_Below(600) / 10.0);
    d_window->d_display_widget->Move_Item(id, point);
    Label(id)->position = point;
    Remember();
    return true;
}

/// Nudges the selected labels one to three times in a row, as one step.
bool TestUndoWalk::Nudge_Labels()
{
    const std::vector<int> selected = Selected_Labels();
    if (!Shown_Page() || selected.empty())
        return false;
    const bool is_back = Number_Below(2) == 0;
    for (int number = Number_Below(3); number >= 0; --number) {
        Press_Control(is_back ? Qt::Key_Left : Qt::Key_Right);
        for (const int id : selected)
            Label(id)->position += QPointF(is_back ? -1 : 1, 0);
    }
    Remember();
    return true;
}

bool TestUndoWalk::Add_Page()
{
    if (d_plain.pages.size() > 12)
        return false;
    Support::By_Tool_Tip<QToolButton>(*d_window->d_page_widget, "Add Page")->click();
    const int id = d_window->d_page_widget->Page_Ids().last();
    d_plain.pages += {id, QString("Page %1").arg(id), -1, {}};
    d_plain.order += id;
    Remember();
    return true;
}

bool TestUndoWalk::Remove_Pages()
{
    if (d_plain.pages.size() < 3)
        return false;
    auto* const list = d_window->d_page_widget->findChild<QListWidget*>();
    const int count = 1 + Number_Below(2);
    for (int i = 0; i < count; ++i)
        Support::Click_Row(list, Number_Below(list->count()),
                           i == 0 ? Qt::NoModifier : Qt::ShiftModifier);
    const std::vector<int> ids = d_window->d_page_widget->Selected_Pages();
    auto* const button = Support::By_Tool_Tip<QToolButton>(*d_window->d_page_widget, "Remove Page");
    Support::Run_Answering([button] { button->click(); }, {Support::Press(QMessageBox::Yes)});
    for (const int id : ids) {
        d_plain.order.removeOne(id);
        d_plain.pages.erase(d_plain.pages.begin() + (Page(id) - d_plain.pages.data()));
    }
    Remember();
    return true;
}

bool TestUndoWalk::Rename_Page()
{
    const std::vector<int> ids = d_window->d_page_widget->Selected_Pages();
    if (ids.size() != 1)
        return false;
    const QString name = Pick(QStringList{"Cover", "Front", "a/b:c", "Roof 1", ""});
    Support::Type_Over(d_window->d_page_widget->findChild<QLineEdit*>(), name);
    Page(ids.front())->name = name;
    Remember();
    d_window->d_history->Record_Page_List();
    return true;
}

/// Moves a page as dragging it does: removes the row and inserts it elsewhere.
bool TestUndoWalk::Move_Page()
{
    if (d_plain.pages.size() < 2)
        return false;
    auto* const list = d_window->d_page_widget->findChild<QListWidget*>();
    const int from = Number_Below(list->count());
    Support::Click_Row(list, from);
    const int to = Number_Below(list->count());
    list->insertItem(to, list->takeItem(from));
    list->setCurrentRow(to);
    d_plain.order.move(from, to);
    Remember();
    QCoreApplication::processEvents();
    return true;
}

bool TestUndoWalk::Import()
{
    if (d_plain.pages.size() > 12)
        return false;
    const int picture = Number_Below(picture_count);
    TPlainPage* const active = Page(d_window->d_data.Active_Page());
    d_window->Load_Image(d_picture_paths[picture]);
    d_window->Update_Document_Actions();
    if (active && active->labels.isEmpty()) {
        active->picture = picture;
    } else {
        const int id = d_window->d_page_widget->Page_Ids().last();
        d_plain.pages += {id, QString("Page %1").arg(id), picture, {}};
        d_plain.order += id;
    }
    Remember();
    return true;
}

bool TestUndoWalk::Renumber()
{
    const int first = Number_Below(500);
    const bool current_page = Number_Below(2) == 0;
    const bool is_page_active = d_window->d_data.Active_Page() >= 0;
    // Renumbering would refresh an active page without a picture, which the test's copy does not
    // model.
    if (is_page_active ? !Shown_Page() : current_page)
        return false;
    if (!d_window->d_reindex_dialog)
        d_window->d_reindex_dialog = new TReindexDialog(d_window.get(), Qt::WindowFlags());
    TReindexDialog& dialog = *d_window->d_reindex_dialog;
    dialog.findChild<QLineEdit*>()->setText(QString::number(first));
    dialog.findChild<QComboBox*>()->setCurrentIndex(2);
    dialog.findChildren<QRadioButton*>()[current_page ? 1 : 0]->setChecked(true);
    Support::Run_Answering([this] { d_window->Edit_Reindex(); }, {Support::Click("Apply")});

    const QVector<int> order =
        current_page ? QVector<int>{d_window->d_data.Active_Page()} : d_plain.order;
    int value = first;
    for (const int id : order) {
        for (TDataItem& label : Page(id)->labels)
            label.value = value++;
        value = (value / 100 + 1) * 100;
    }
    Remember();
    return true;
}

bool TestUndoWalk::Change_Size()
{
    const int size = 16 + Number_Below(112);
    d_window->d_settings_widget->Set_Label_Size(size);
    d_plain.label_size = size;
    Remember();
    return true;
}

bool TestUndoWalk::Change_Color()
{
    const QColor color(Number_Below(256), Number_Below(256), Number_Below(256));
    d_window->d_settings_widget->Set_Label_Color(color);
    emit d_window->d_settings_widget->Color_Changed(color);
    d_plain.label_color = color;
    Remember();
    return true;
}

bool TestUndoWalk::Select_Page()
{
    auto* const list = d_window->d_page_widget->findChild<QListWidget*>();
    if (list->count() == 0)
        return false;
    Support::Click_Row(list, Number_Below(list->count()));
    return true;
}

bool TestUndoWalk::Select_Labels()
{
    auto* const list = d_window->d_label_widget->findChild<QListWidget*>();
    if (list->count() == 0)
        return false;
    Support::Click_Row(list, Number_Below(list->count()));
    if (Number_Below(2) == 0)
        Support::Click_Row(list, Number_Below(list->count()), Qt::ControlModifier);
    return true;
}

/// Activates the window first: without a window manager, it stays inactive after a dialog.
void TestUndoWalk::Press_Control(Qt::Key key)
{
    QApplication::setActiveWindow(d_window.get());
    QTest::keyClick(d_window->d_display_widget, key, Qt::ControlModifier);
}

bool TestUndoWalk::Undo()
{
    Press_Control(Qt::Key_Z);
    if (d_state > 0)
        d_plain = d_states[--d_state];
    return true;
}

bool TestUndoWalk::Redo()
{
    Press_Control(Qt::Key_Y);
    if (d_state + 1 < d_states.size())
        d_plain = d_states[++d_state];
    return true;
}

QTEST_MAIN(TestUndoWalk)
#include "test_undowalk.moc"
