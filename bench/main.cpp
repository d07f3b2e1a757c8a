// Entry point of the benchmark programs. Sets up the application as Quillet does, with an empty
// home folder.

#include "bench/documents.h"

#include <QApplication>
#include <QStyleFactory>

#include <benchmark/benchmark.h>

int main(int argument_count, char** arguments)
{
    Bench::Use_Own_Home();
    const QApplication application(argument_count, arguments);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("fusion")));
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0) // the default from then on
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
#endif
    benchmark::Initialize(&argument_count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
