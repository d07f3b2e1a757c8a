#pragma once

#include <QApplication>

#include <benchmark/benchmark.h>
#include <chrono>
#include <sys/resource.h>

namespace Bench {

/// Wall and processor time since it was made. The processor's, which is that of the process and of
/// the children that have ended, tells what other programs on the machine did to the wall's.
class TStopwatch
{
public:
    double Wall_Seconds() const
    {
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - d_begin;
        return time.count();
    }
    double Cpu_Seconds() const { return Cpu_Now() - d_cpu_begin; }

private:
    static double Seconds(const timeval& time)
    {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    }
    static double Cpu_Now()
    {
        double total = 0.0;
        for (const auto whose : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
            struct rusage usage = {};
            getrusage(whose, &usage);
            total += Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
        }
        return total;
    }

    double d_cpu_begin = Cpu_Now();
    std::chrono::steady_clock::time_point d_begin = std::chrono::steady_clock::now();
};

/// Times some work, and not what prepares it, once for each iteration.
/// @param work  gets the stopwatch, to start it anew where the preparation goes on.
template <typename TPrepare, typename TWork>
void Measure_From(benchmark::State* state, const TPrepare& prepare, const TWork& work)
{
    double cpu_seconds = 0.0;
    for (auto iteration : *state) {
        static_cast<void>(iteration);
        prepare();
        TStopwatch stopwatch;
        work(&stopwatch);
        state->SetIterationTime(stopwatch.Wall_Seconds());
        cpu_seconds += stopwatch.Cpu_Seconds();
    }
    constexpr double milliseconds = 1e3;
    state->counters["cpu_ms"] =
        benchmark::Counter(cpu_seconds * milliseconds, benchmark::Counter::kAvgIterations);
}

/// The same for work that is timed from its beginning.
template <typename TPrepare, typename TWork>
void Measure(benchmark::State* state, const TPrepare& prepare, const TWork& work)
{
    Measure_From(state, prepare, [&work](TStopwatch*) { work(); });
}

/// Lays out and paints what has changed, as the event loop does before it waits for the user.
inline void Let_Paint()
{
    // Layouts that were put off are done in the first pass, what they change is painted in another.
    QApplication::sendPostedEvents();
    QApplication::processEvents();
    QApplication::processEvents();
}

/// Registers a function that takes seconds: once for each repetition.
#define BENCH_SLOW(function)                                                                       \
    BENCHMARK(function)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1)

/// Registers a function that takes micro- or milliseconds.
#define BENCH_QUICK(function, iterations)                                                          \
    BENCHMARK(function)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(iterations)

} // namespace Bench
