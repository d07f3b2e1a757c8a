#pragma once

#include <QApplication>

#include <benchmark/benchmark.h>
#include <chrono>
#include <sys/resource.h>

namespace Bench {

/// Measures wall time and processor time since its construction. Processor time, of this process
/// and its finished children, is less sensitive to other programs on the machine.
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

/// Measures `work`, but not `prepare`, in each iteration.
/// @param work  receives the stopwatch. Restarts it if it needs further preparation.
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

/// The same for work that needs no further preparation.
template <typename TPrepare, typename TWork>
void Measure(benchmark::State* state, const TPrepare& prepare, const TWork& work)
{
    Measure_From(state, prepare, [&work](TStopwatch*) { work(); });
}

/// Lays out and paints all changes, as the event loop does before it waits for input.
inline void Paint_Changes()
{
    // The first pass performs pending layouts; a second one paints the changes they make.
    QApplication::sendPostedEvents();
    QApplication::processEvents();
    QApplication::processEvents();
}

/// Registers a function that takes seconds; each repetition calls it once.
#define BENCH_SLOW(function)                                                                       \
    BENCHMARK(function)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1)

/// Registers a function that takes micro- or milliseconds.
#define BENCH_QUICK(function, iterations)                                                          \
    BENCHMARK(function)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(iterations)

} // namespace Bench
