// The cost of protecting the user's work: saves, edits and editing sessions with and without it.
//
// Saves without a backup run with a settings folder that cannot hold backups, edits without
// protection in a window without a safety net.

#include "bench/documents.h"
#include "bench/measure.h"
#include "core/safefile.h"
#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/pagewidget.h"
#include "src/safety/safetynet.h"
#include "tests/support/window.h"

#include <QDir>
#include <QFile>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>

namespace {

using Bench::TGrain;

constexpr int labels = 100; ///< on each page

/// The path of a document with a number of pages, synced to the disk.
const QString& Document(int pages)
{
    static std::map<int, QString> paths;
    QString& path = paths[pages];
    if (path.isEmpty()) {
        path = Bench::Document_File(QStringLiteral("safety-%1.quillet").arg(pages),
                                    Bench::Shape(pages, labels, TGrain::Clean, 8));
        if (!TSafeFile::Sync(path))
            qFatal("cannot sync a document");
    }
    return path;
}

void Require(bool succeeded)
{
    if (!succeeded)
        qFatal("a file operation failed");
}

/// Creates empty folders for backups and unsaved work, or files in their place. A file in place of
/// a folder prevents copies even if the process is privileged.
void Allow_Copies(bool allowed)
{
    for (const char* const name : {"backup", "recovery"}) {
        const QString path = QDir::homePath() + QStringLiteral("/.quillet/") + QLatin1String(name);
        QDir(path).removeRecursively();
        QFile::remove(path);
        Require(allowed ? QDir().mkpath(path) : QFile(path).open(QIODevice::WriteOnly));
    }
}

std::unique_ptr<TOpenWindow> New_Window(bool with_net, int pages = 10)
{
    QDir::home().mkdir(QStringLiteral(".quillet"));
    Allow_Copies(with_net);
    auto window = std::make_unique<TOpenWindow>();
    window->show();
    window->Open_File(Document(pages));
    Require(window->d_page_widget->Page_Ids().size() == pages);
    Bench::Paint_Changes();
    return window;
}

/// Measures saving over a file that is already synced, as is usual half a minute after a save.
void Measure_Save(benchmark::State* state, bool with_net)
{
    const QString path = Bench::Output_Path(QStringLiteral("saved.quillet"));
    const std::unique_ptr<TOpenWindow> window = New_Window(with_net);
    Require(window->Save_Data(path));
    Bench::Measure(
        state, [&] { Require(TSafeFile::Sync(path)); }, [&] { Require(window->Save_Data(path)); });
}

void save_with_backup(benchmark::State& state)
{
    Measure_Save(&state, true);
}
BENCH_QUICK(save_with_backup, 3);

void save_without_backup(benchmark::State& state)
{
    Measure_Save(&state, false);
}
BENCH_QUICK(save_without_backup, 3);

/// Changes the value of a label on the page that is shown, as a key in the value editor does.
void Edit(TOpenWindow* window, int edit)
{
    window->Change_Item_Value(1 + edit % labels, 1000 + edit);
    Bench::Paint_Changes();
}

/// Opens a document for edits that are protected or not.
std::unique_ptr<TOpenWindow> Window_To_Edit(int pages, bool with_net)
{
    std::unique_ptr<TOpenWindow> window = New_Window(true, pages);
    if (!with_net)
        window->d_safety_net.reset();
    return window;
}

/// Bytes that this process has written so far, to files or to memory mapped from files.
double Written_Bytes()
{
    QFile file(QStringLiteral("/proc/self/io"));
    Require(file.open(QIODevice::ReadOnly));
    double most = 0;
    for (const QByteArray& line : file.readAll().split('\n')) {
        if (line.startsWith("wchar:") || line.startsWith("write_bytes:"))
            most = std::max(most, line.mid(line.indexOf(':') + 1).toDouble());
    }
    return most;
}

/// Measures a function in a new window each time, after some edits.
void Measure_After_Edits(benchmark::State* state, bool with_net, int edits,
                         const std::function<void(TOpenWindow*)>& measured)
{
    std::unique_ptr<TOpenWindow> window;
    Bench::Measure(
        state,
        [&] {
            window.reset();
            window = Window_To_Edit(static_cast<int>(state->range(0)), with_net);
            for (int edit = 0; edit < edits; ++edit)
                Edit(window.get(), edit);
        },
        [&] { measured(window.get()); });
}

/// Measures the first edit of a document that was just opened.
void Measure_First_Edit(benchmark::State* state, bool with_net)
{
    Measure_After_Edits(state, with_net, 0, [](TOpenWindow* window) { Edit(window, 0); });
}

void first_edit_with_net(benchmark::State& state)
{
    Measure_First_Edit(&state, true);
}
BENCH_QUICK(first_edit_with_net, 3)->Arg(100)->Arg(500);

void first_edit_without_net(benchmark::State& state)
{
    Measure_First_Edit(&state, false);
}
BENCH_QUICK(first_edit_without_net, 3)->Arg(100)->Arg(500);

constexpr int several = 50;

/// Measures a number of edits after the first one, and the bytes that all of them write.
void Measure_Further_Edits(benchmark::State* state, bool with_net)
{
    const auto window = Window_To_Edit(static_cast<int>(state->range(0)), with_net);
    const double before = Written_Bytes();
    Edit(window.get(), 0);
    int edit = 0;
    Bench::Measure(
        state, [] {},
        [&] {
            for (int i = 0; i < several; ++i)
                Edit(window.get(), ++edit);
        });
    state->counters["written_bytes"] = Written_Bytes() - before;
}

void further_edits_with_net(benchmark::State& state)
{
    Measure_Further_Edits(&state, true);
}
BENCH_SLOW(further_edits_with_net)->Arg(100)->Arg(500);

void further_edits_without_net(benchmark::State& state)
{
    Measure_Further_Edits(&state, false);
}
BENCH_SLOW(further_edits_without_net)->Arg(100)->Arg(500);

/// Measures what happens when the window loses the focus or a dialog opens, after some edits.
void Measure_Pause(benchmark::State* state, bool with_net)
{
    Measure_After_Edits(state, with_net, several,
                        [](TOpenWindow* window) { window->Flush_Work(); });
}

void pause_with_net(benchmark::State& state)
{
    Measure_Pause(&state, true);
}
BENCH_QUICK(pause_with_net, 3)->Arg(100)->Arg(500);

void pause_without_net(benchmark::State& state)
{
    Measure_Pause(&state, false);
}
BENCH_QUICK(pause_without_net, 3)->Arg(100)->Arg(500);

/// Measures the part of the start that looks for the work of killed processes.
void start_net(benchmark::State& state)
{
    QDir::home().mkdir(QStringLiteral(".quillet"));
    Allow_Copies(true);
    const QString folder = QDir::homePath() + QStringLiteral("/.quillet");
    Bench::Measure(
        &state, [] {},
        [&] {
            const TSafetyNet net(folder, nullptr);
            Require(!net.Has_Abandoned_Logs());
        });
}
BENCH_QUICK(start_net, 100);

void Send_Mouse(QWidget* viewport, QEvent::Type type, const QPoint& place, bool is_down)
{
    const Qt::MouseButtons buttons = is_down ? Qt::LeftButton : Qt::NoButton;
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, place, viewport->mapToGlobal(place), button, buttons, Qt::NoModifier);
    QApplication::sendEvent(viewport, &event);
    Bench::Paint_Changes();
}

/// Moves the mouse to a label, drags the label, and types a digit into its value, as a user does in
/// one or two seconds.
void Drag_And_Type(TOpenWindow* window, int edit)
{
    constexpr int moves = 30;
    TDisplayWidget* const view = window->d_display_widget;
    QWidget* const viewport = view->viewport();
    const QPoint label = view->mapFromScene(view->Item_Position(1));
    const int direction = edit % 2 == 0 ? 1 : -1;
    for (int move = moves; move > 0; --move)
        Send_Mouse(viewport, QEvent::MouseMove, label + QPoint(move, 2 * move), false);
    Send_Mouse(viewport, QEvent::MouseButtonPress, label, true);
    for (int move = 1; move <= moves; ++move)
        Send_Mouse(viewport, QEvent::MouseMove, label + QPoint(direction * move, 0), true);
    Send_Mouse(viewport, QEvent::MouseButtonRelease, label + QPoint(direction * moves, 0), false);
    auto* const editor = window->d_label_widget->findChild<QLineEdit*>();
    QKeyEvent press(QEvent::KeyPress, edit % 2 == 0 ? Qt::Key_8 : Qt::Key_Backspace, Qt::NoModifier,
                    edit % 2 == 0 ? QStringLiteral("8") : QString());
    QApplication::sendEvent(editor, &press);
    Bench::Paint_Changes();
}

/// Measures a session: opens a document and edits labels on each of its pages, without pauses.
void Measure_Session(benchmark::State* state, bool with_net)
{
    constexpr int edits_per_page = 20;
    Bench::Measure(
        state, [] {},
        [&] {
            const auto window = Window_To_Edit(10, with_net);
            for (const int page_id : window->d_page_widget->Page_Ids()) {
                window->d_page_widget->Set_Active_Page(page_id);
                window->d_display_widget->centerOn(0.0, 0.0);
                window->d_label_widget->Set_Selection(1);
                for (int edit = 0; edit < edits_per_page; ++edit)
                    Drag_And_Type(window.get(), edit);
            }
            window->Flush_Work();
        });
}

void edit_with_recovery(benchmark::State& state)
{
    Measure_Session(&state, true);
}
BENCH_SLOW(edit_with_recovery);

void edit_without_recovery(benchmark::State& state)
{
    Measure_Session(&state, false);
}
BENCH_SLOW(edit_without_recovery);

} // namespace
