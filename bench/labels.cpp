// Showing, changing and renumbering labels.

#include "bench/documents.h"
#include "bench/measure.h"
#include "src/data.h"
#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/pagewidget.h"
#include "src/quillet.h"
#include "src/reindexdialog.h"

#include <QGraphicsPixmapItem>
#include <QGraphicsView>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QShortcut>
#include <QTimer>

#include <algorithm>
#include <vector>

namespace {

using Bench::TGrain;

/// Labels on the pages of the document that is shown; the first page is the one to come from.
const QList<int> label_counts = {10, 10, 1000, 10000, 20000};

/// A window that shows a document, and the parts of it that a user touches.
struct TOpenWindow
{
    TOpenWindow(const QString& name, const Bench::TShape& shape)
    {
        window.show();
        if (!window.Load_Data(Bench::Document_File(name, shape)))
            qFatal("cannot open %s", qPrintable(name));
        pages = window.findChild<TPageWidget*>();
        list = window.findChild<TLabelWidget*>();
        view = window.findChild<TDisplayWidget*>();
        page_ids = pages->Page_Ids();
        Bench::Let_Paint();
    }

    void Show_Page(int place)
    {
        pages->Set_Active_Page(page_ids[place]);
        Bench::Let_Paint();
    }

    TQuillet window{nullptr, Qt::WindowFlags()};
    TPageWidget* pages = nullptr;
    TLabelWidget* list = nullptr;
    TDisplayWidget* view = nullptr;
    QList<int> page_ids;
};

TOpenWindow& Labelled_Pages()
{
    static auto* const open = [] {
        // Lives until the process ends: all cases share it.
        auto* const made = new TOpenWindow(QStringLiteral("labels.quillet"),
                                           Bench::TShape{label_counts, TGrain::Clean, 1});
        // Every page has been seen once, so that its image is decoded.
        for (int place = 0; place < label_counts.size(); ++place)
            made->Show_Page(place);
        return made;
    }();
    return *open;
}

void show_page(benchmark::State& state)
{
    TOpenWindow& open = Labelled_Pages();
    const int place = label_counts.lastIndexOf(static_cast<int>(state.range(0)));
    Bench::Measure(
        &state, [&] { open.Show_Page(0); }, [&] { open.Show_Page(place); });
}
BENCH_QUICK(show_page, 5)->Arg(10)->Arg(1000)->Arg(10000)->Arg(20000);

/// What a view and a list cost that know nothing of documents: all items share a picture and an
/// icon, and nothing can be found again.
class TBarePair
{
public:
    TBarePair()
    {
        constexpr int label_extent = 40;
        auto* const layout = new QHBoxLayout(&d_window);
        layout->addWidget(&d_list);
        layout->addWidget(&d_view);
        d_window.resize(800, 600);
        d_view.setScene(&d_scene);
        d_list.setUniformItemSizes(true);
        d_label.fill(QColor(0, 0, 0, 100));
        d_label = d_label.scaled(label_extent, label_extent);
        d_window.show();
    }

    void Fill(int count)
    {
        d_view.setUpdatesEnabled(false);
        d_list.clear();
        d_scene.clear();
        d_scene.addPixmap(d_page);
        const int columns = 100;
        for (int number = 0; number < count; ++number) {
            d_list.addItem(new QListWidgetItem(d_icon, QStringLiteral("Item[%1]").arg(number)));
            QGraphicsPixmapItem* const item = d_scene.addPixmap(d_label);
            item->setPos(number % columns * 24, number / columns * 34); // NOLINT: whole pixels
        }
        d_view.setUpdatesEnabled(true);
        Bench::Let_Paint();
    }

private:
    QPixmap d_page = QPixmap(Bench::Page_File(0, TGrain::Clean, QStringLiteral("png")));
    QPixmap d_label{1, 1};
    QIcon d_icon{QStringLiteral(":/gui/outline_ellipse.png")};
    QWidget d_window;
    QListWidget d_list;
    QGraphicsScene d_scene;
    QGraphicsView d_view;
};

void show_bare(benchmark::State& state)
{
    TBarePair bare;
    Bench::Measure(
        &state, [&] { bare.Fill(10); }, [&] { bare.Fill(static_cast<int>(state.range(0))); });
}
BENCH_QUICK(show_bare, 5)->Arg(10000);

void Send_Mouse(TDisplayWidget* view, QEvent::Type type, const QPoint& place)
{
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    const Qt::MouseButtons buttons =
        type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, place, view->viewport()->mapToGlobal(place), button, buttons,
                      Qt::NoModifier);
    QApplication::sendEvent(view->viewport(), &event);
}

void Click(TDisplayWidget* view, const QPoint& place)
{
    Send_Mouse(view, QEvent::MouseButtonPress, place);
    Send_Mouse(view, QEvent::MouseButtonRelease, place);
    Bench::Let_Paint();
}

/// Shows a page with the first label in sight and selected.
void Go_To_First_Label(TOpenWindow* open, int labels)
{
    open->Show_Page(0);
    open->Show_Page(label_counts.lastIndexOf(labels));
    open->list->Set_Selection(1);
    open->view->centerOn(0.0, 0.0);
    Bench::Let_Paint();
}

QPoint Place_Of(const TOpenWindow& open, int id)
{
    return open.view->mapFromScene(open.view->Item_Position(id));
}

void Press_Key(QWidget* editor, int key, const QString& text)
{
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
    QApplication::sendEvent(editor, &press);
    Bench::Let_Paint();
}

/// One key in the value editor, which types another value for the selected label.
void change_value(benchmark::State& state)
{
    TOpenWindow& open = Labelled_Pages();
    Go_To_First_Label(&open, static_cast<int>(state.range(0)));
    auto* const editor = open.list->findChild<QLineEdit*>();
    editor->setText(QStringLiteral("7"));
    bool is_longer = false;
    const auto type = [&] {
        is_longer = !is_longer;
        if (is_longer)
            Press_Key(editor, Qt::Key_8, QStringLiteral("8"));
        else
            Press_Key(editor, Qt::Key_Backspace, QString());
    };
    type();
    type();
    Bench::Measure(
        &state, [] {}, type);
}
BENCH_QUICK(change_value, 500)->Arg(10)->Arg(10000);

/// One mouse move with a label under the pressed button.
void drag_step(benchmark::State& state)
{
    TOpenWindow& open = Labelled_Pages();
    Go_To_First_Label(&open, static_cast<int>(state.range(0)));
    const QPoint begin = Place_Of(open, 1);
    Send_Mouse(open.view, QEvent::MouseButtonPress, begin);
    int step = 0;
    Bench::Measure(
        &state, [] {},
        [&] {
            ++step;
            constexpr int path_length = 20;
            const int x =
                step / path_length % 2 == 0 ? step % path_length : path_length - step % path_length;
            Send_Mouse(open.view, QEvent::MouseMove, begin + QPoint(2 * x, 0));
            Bench::Let_Paint();
        });
    Send_Mouse(open.view, QEvent::MouseButtonRelease, begin);
    open.view->Move_Item(1, open.view->mapToScene(begin));
}
BENCH_QUICK(drag_step, 500)->Arg(10)->Arg(10000);

/// A click on the label that is not selected, of two.
void click(benchmark::State& state)
{
    TOpenWindow& open = Labelled_Pages();
    Go_To_First_Label(&open, static_cast<int>(state.range(0)));
    const QPoint first = Place_Of(open, 1);
    const QPoint nowhere(2, 2);
    bool on_label = false;
    const auto press = [&] {
        on_label = !on_label;
        Click(open.view, on_label ? first : nowhere);
    };
    press();
    press();
    Bench::Measure(
        &state, [] {}, press);
}
BENCH_QUICK(click, 500)->Arg(10)->Arg(10000);

constexpr int many_pages = 500;
constexpr int labels_a_page = 200;

TOpenWindow& Many_Pages()
{
    static auto* const open =
        new TOpenWindow(QStringLiteral("renumber.quillet"),
                        Bench::Shape(many_pages, labels_a_page, TGrain::Blank, 1));
    return *open;
}

/// Runs the command with a user who presses "Apply" at once; the time begins with that. The numbers
/// are others than those of the time before, on all pages.
void Renumber(TOpenWindow* open, Bench::TStopwatch* stopwatch)
{
    static int first_value = 1;
    constexpr int two_values = 1 + 5001;
    first_value = two_values - first_value;
    QTimer::singleShot(0, &open->window, [&] {
        auto* const dialog = open->window.findChild<TReindexDialog*>();
        dialog->findChild<QLineEdit*>()->setText(QString::number(first_value));
        *stopwatch = Bench::TStopwatch();
        dialog->accept();
    });
    open->window.Edit_Reindex();
    Bench::Let_Paint();
}

void renumber_all(benchmark::State& state)
{
    TOpenWindow& open = Many_Pages();
    Bench::TStopwatch unused;
    Renumber(&open, &unused);
    Bench::Measure_From(
        &state, [] {}, [&](Bench::TStopwatch* stopwatch) { Renumber(&open, stopwatch); });
}
BENCH_QUICK(renumber_all, 5);

/// The same taken back, by the key.
void undo_renumbering(benchmark::State& state)
{
    TOpenWindow& open = Many_Pages();
    const QList<QShortcut*> shortcuts = open.window.findChildren<QShortcut*>();
    const auto is_undo = [](const QShortcut* shortcut) {
        return shortcut->key() == QKeySequence(Qt::CTRL + Qt::Key_Z);
    };
    QShortcut* const undo = *std::find_if(shortcuts.cbegin(), shortcuts.cend(), is_undo);
    Bench::TStopwatch unused;
    // What was taken back has the numbers that are next again: only the second time is a step for
    // sure.
    const auto renumber = [&open, &unused] {
        Renumber(&open, &unused);
        Renumber(&open, &unused);
    };
    Bench::Measure(&state, renumber, [&] {
        QMetaObject::invokeMethod(undo, "activated", Qt::DirectConnection);
        Bench::Let_Paint();
    });
}
BENCH_QUICK(undo_renumbering, 5);

/// The same numbers put into the same items in memory, and one page shown.
void pass_and_show(benchmark::State& state)
{
    TOpenWindow& open = Many_Pages();
    std::vector<std::vector<TDataItem>> pages(many_pages, std::vector<TDataItem>(labels_a_page));
    const int last = many_pages - 1;
    Bench::Measure(
        &state, [&] { open.Show_Page(last - 1); },
        [&] {
            int value = 0;
            for (std::vector<TDataItem>& page : pages) {
                for (TDataItem& item : page)
                    item.value = ++value;
            }
            benchmark::DoNotOptimize(pages.data());
            open.Show_Page(last);
        });
}
BENCH_QUICK(pass_and_show, 5);

} // namespace
