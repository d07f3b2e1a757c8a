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

/// Number of labels on each page. The first page is the one shown before each measurement.
const QList<int> label_counts = {10, 10, 1000, 10000, 20000};

/// A window that shows a document, with shortcuts to its panels.
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
        Bench::Paint_Changes();
    }

    void Show_Page(int index)
    {
        pages->Set_Active_Page(page_ids[index]);
        Bench::Paint_Changes();
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
        // All cases share it, so it lives until the process ends.
        auto* const made = new TOpenWindow(QStringLiteral("labels.quillet"),
                                           Bench::TShape{label_counts, TGrain::Clean, 1});
        // Show every page once, so that its image is decoded.
        for (int index = 0; index < label_counts.size(); ++index)
            made->Show_Page(index);
        return made;
    }();
    return *open;
}

void show_page(benchmark::State& state)
{
    TOpenWindow& open = Labelled_Pages();
    const int index = label_counts.lastIndexOf(static_cast<int>(state.range(0)));
    Bench::Measure(
        &state, [&] { open.Show_Page(0); }, [&] { open.Show_Page(index); });
}
BENCH_QUICK(show_page, 5)->Arg(10)->Arg(1000)->Arg(10000)->Arg(20000);

/// The reference: a plain view and a plain list. All items share one pixmap and one icon and have
/// no id.
class TPlainWidgets
{
public:
    TPlainWidgets()
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
        Bench::Paint_Changes();
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
    TPlainWidgets plain;
    Bench::Measure(
        &state, [&] { plain.Fill(10); }, [&] { plain.Fill(static_cast<int>(state.range(0))); });
}
BENCH_QUICK(show_bare, 5)->Arg(10000);

/// Shows the page with 1,000 labels in a large window.
/// @param percent  scale of the page.
void Show_At_Scale(TOpenWindow* open, int percent)
{
    constexpr double per_cent = 0.01;
    open->window.resize(1600, 1200);
    open->Show_Page(label_counts.indexOf(1000));
    open->view->Change_Scale(percent * per_cent);
    Bench::Paint_Changes();
}

/// Shows the page again as it is when the program starts.
void Show_At_Full_Scale(TOpenWindow* open)
{
    open->view->Change_Scale(1.0);
    open->window.resize(800, 600);
    Bench::Paint_Changes();
}

/// Painting the visible part of the page again.
void paint_page(benchmark::State& state)
{
    TOpenWindow& open = Labelled_Pages();
    Show_At_Scale(&open, static_cast<int>(state.range(0)));
    Bench::Measure(
        &state, [] {}, [&] { open.view->viewport()->repaint(); });
    Show_At_Full_Scale(&open);
}
BENCH_QUICK(paint_page, 50)->Arg(25)->Arg(50);

/// The reference: a plain view of the same pixmaps, which interpolates between neighbouring pixels.
void paint_plain(benchmark::State& state)
{
    TOpenWindow& open = Labelled_Pages();
    Show_At_Scale(&open, static_cast<int>(state.range(0)));
    QGraphicsScene scene(open.view->sceneRect());
    const QList<QGraphicsItem*> items = open.view->scene()->items(Qt::AscendingOrder);
    for (const QGraphicsItem* item : items) {
        const auto* const original = qgraphicsitem_cast<const QGraphicsPixmapItem*>(item);
        QGraphicsPixmapItem* const copy = scene.addPixmap(original->pixmap());
        copy->setTransformationMode(Qt::SmoothTransformation);
        copy->setPos(original->pos());
        copy->setZValue(original->zValue());
    }
    QGraphicsView view(&scene);
    view.resize(open.view->size());
    view.setTransform(open.view->transform());
    view.show();
    Bench::Paint_Changes();
    Bench::Measure(
        &state, [] {}, [&] { view.viewport()->repaint(); });
    Show_At_Full_Scale(&open);
}
BENCH_QUICK(paint_plain, 50)->Arg(25)->Arg(50);

void Send_Mouse(TDisplayWidget* view, QEvent::Type type, const QPoint& point)
{
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    const Qt::MouseButtons buttons =
        type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, point, view->viewport()->mapToGlobal(point), button, buttons,
                      Qt::NoModifier);
    QApplication::sendEvent(view->viewport(), &event);
}

void Click(TDisplayWidget* view, const QPoint& point)
{
    Send_Mouse(view, QEvent::MouseButtonPress, point);
    Send_Mouse(view, QEvent::MouseButtonRelease, point);
    Bench::Paint_Changes();
}

/// Shows a page with its first label visible and selected.
void Go_To_First_Label(TOpenWindow* open, int labels)
{
    open->Show_Page(0);
    open->Show_Page(label_counts.lastIndexOf(labels));
    open->list->Set_Selection(1);
    open->view->centerOn(0.0, 0.0);
    Bench::Paint_Changes();
}

QPoint Place_Of(const TOpenWindow& open, int id)
{
    return open.view->mapFromScene(open.view->Item_Position(id));
}

void Press_Key(QWidget* editor, int key, const QString& text)
{
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
    QApplication::sendEvent(editor, &press);
    Bench::Paint_Changes();
}

/// A key press in the value editor that changes the value of the selected label.
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

/// One mouse move while dragging a label.
void drag_move(benchmark::State& state)
{
    TOpenWindow& open = Labelled_Pages();
    Go_To_First_Label(&open, static_cast<int>(state.range(0)));
    const QPoint begin = Place_Of(open, 1);
    Send_Mouse(open.view, QEvent::MouseButtonPress, begin);
    int move = 0;
    Bench::Measure(
        &state, [] {},
        [&] {
            ++move;
            constexpr int path_length = 20;
            const int x =
                move / path_length % 2 == 0 ? move % path_length : path_length - move % path_length;
            Send_Mouse(open.view, QEvent::MouseMove, begin + QPoint(2 * x, 0));
            Bench::Paint_Changes();
        });
    Send_Mouse(open.view, QEvent::MouseButtonRelease, begin);
    open.view->Move_Item(1, open.view->mapToScene(begin));
}
BENCH_QUICK(drag_move, 500)->Arg(10)->Arg(10000);

/// Alternate clicks on a label and on the empty page, so that each click changes the selection.
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
constexpr int labels_per_page = 200;

TOpenWindow& Many_Pages()
{
    static auto* const open =
        new TOpenWindow(QStringLiteral("renumber.quillet"),
                        Bench::Shape(many_pages, labels_per_page, TGrain::Blank, 1));
    return *open;
}

/// Runs the Reindex command and restarts the stopwatch when "Apply" is pressed. The first value
/// alternates, so that each call changes all labels.
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
    Bench::Paint_Changes();
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

/// Undoes renumbering with Ctrl+Z.
void undo_renumbering(benchmark::State& state)
{
    TOpenWindow& open = Many_Pages();
    const QList<QShortcut*> shortcuts = open.window.findChildren<QShortcut*>();
    const auto is_undo = [](const QShortcut* shortcut) {
        return shortcut->key() == QKeySequence(Qt::CTRL + Qt::Key_Z);
    };
    QShortcut* const undo = *std::find_if(shortcuts.cbegin(), shortcuts.cend(), is_undo);
    Bench::TStopwatch unused;
    // The first value alternates, so after an undo it may equal the current one. Then the first
    // call records no step, but the second one does.
    const auto renumber = [&open, &unused] {
        Renumber(&open, &unused);
        Renumber(&open, &unused);
    };
    Bench::Measure(&state, renumber, [&] {
        QMetaObject::invokeMethod(undo, "activated", Qt::DirectConnection);
        Bench::Paint_Changes();
    });
}
BENCH_QUICK(undo_renumbering, 5);

/// The reference: changes the same number of items in memory and shows one page.
void pass_and_show(benchmark::State& state)
{
    TOpenWindow& open = Many_Pages();
    std::vector<std::vector<TDataItem>> pages(many_pages, std::vector<TDataItem>(labels_per_page));
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
