// The cost of backups and recovery copies: saves and editing sessions with and without them.
//
// For a save without a backup, the settings folder cannot hold backups. A session without recovery
// has no safety net.

#include "bench/documents.h"
#include "bench/measure.h"
#include "core/safefile.h"
#include "src/safety/safetynet.h"
#include "tests/support/window.h"

#include <QDir>
#include <QFile>

#include <memory>

namespace {

using Bench::TGrain;

const QString& document()
{
    static const QString path = Bench::Document_File(QStringLiteral("safety.quillet"),
                                                     Bench::Shape(10, 100, TGrain::Clean, 8));
    return path;
}

void Require(bool succeeded)
{
    if (!succeeded)
        qFatal("a file operation failed");
}

/// Empties the folders for backups and recovery copies, or replaces them by files. A file in place
/// of a folder prevents copies even if the process is privileged.
void Allow_Copies(bool allowed)
{
    for (const char* const name : {"backup", "recovery"}) {
        const QString path = QDir::homePath() + QStringLiteral("/.quillet/") + QLatin1String(name);
        QDir(path).removeRecursively();
        QFile::remove(path);
        if (!allowed)
            Require(QFile(path).open(QIODevice::WriteOnly));
    }
}

std::unique_ptr<TOpenWindow> New_Window(bool with_net)
{
    QDir::home().mkdir(QStringLiteral(".quillet"));
    Allow_Copies(with_net);
    auto window = std::make_unique<TOpenWindow>();
    window->show();
    Require(window->Load_Data(document()));
    Bench::Paint_Changes();
    return window;
}

/// Measures saving over an existing file that is on the disk, as half a minute after the last save.
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

/// Measures value changes without a pause, for some seconds, including the recovery copies that are
/// written between them.
void Measure_Session(benchmark::State* state, bool with_net)
{
    constexpr int edits = 300'000;
    const std::unique_ptr<TOpenWindow> window = New_Window(true);
    if (!with_net)
        window->d_safety_net.reset();
    Bench::Measure(
        state, [] {},
        [&] {
            for (int edit = 0; edit < edits; ++edit) {
                window->Change_Item_Value(1 + edit % 100, edit);
                Bench::Paint_Changes();
            }
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
