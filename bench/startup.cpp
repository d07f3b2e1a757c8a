// Time from the start of a process to the first paint of its window.

#include "bench/measure.h"

#include <QCoreApplication>
#include <QProcess>

namespace {

void Run(const QString& name)
{
    const QString folder = QCoreApplication::applicationDirPath();
    if (QProcess::execute(folder + QLatin1Char('/') + name, {}) != 0)
        qFatal("%s failed", qPrintable(name));
}

void Measure_Start(benchmark::State* state, const QString& name)
{
    Run(name); // fills the caches of the disk and of fontconfig
    Bench::Measure(
        state, [] {}, [&] { Run(name); });
}

void start_quillet(benchmark::State& state)
{
    Measure_Start(&state, QStringLiteral("first_paint_quillet"));
}
BENCH_QUICK(start_quillet, 10);

void start_empty(benchmark::State& state)
{
    Measure_Start(&state, QStringLiteral("first_paint_empty"));
}
BENCH_QUICK(start_empty, 10);

} // namespace
