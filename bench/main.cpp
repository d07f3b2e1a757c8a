// Entry point of the benchmark programs: the application as the program sets it up, in a home of
// its own.

#include "bench/documents.h"

#include <QApplication>
#include <QStyleFactory>

#include <benchmark/benchmark.h>

int main(int argument_count, char** arguments)
{
    Bench::Use_Own_Home();
    const QApplication application(argument_count, arguments);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("fusion")));
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    benchmark::Initialize(&argument_count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
