// Peak memory of a process that shows a window without a document, or opens a document and pages
// through it.
//
// Usage: bench_memory window | paging
// Prints the figures as JSON, in bytes.

#include "bench/documents.h"
#include "bench/measure.h"
#include "src/pagewidget.h"
#include "src/quillet.h"

#include <QStyleFactory>

#include <cstdio>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int pages = 500;

/// Writes the document in a child process, whose memory is not measured. Returns its path.
QString Document()
{
    const QString path = Bench::Output_Path(QStringLiteral("paging.quillet"));
    const pid_t child = fork();
    if (child == 0) {
        Bench::Document_File(QStringLiteral("paging.quillet"),
                             Bench::Shape(pages, 20, Bench::TGrain::Clean, 8));
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (status != 0)
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

void Page_Through(TQuillet* window)
{
    auto* const page_widget = window->findChild<TPageWidget*>();
    const QList<int> page_ids = page_widget->Page_Ids();
    for (const int page_id : page_ids) {
        page_widget->Set_Active_Page(page_id);
        Bench::Paint_Changes();
    }
}

} // namespace

int main(int argument_count, char** arguments)
{
    Bench::Use_Own_Home();
    const bool paging = argument_count > 1 && qstrcmp(arguments[1], "paging") == 0;
    const QString document = paging ? Document() : QString();
    const QApplication application(argument_count, arguments);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("fusion")));
    TQuillet window(nullptr, Qt::WindowFlags());
    window.show();
    Bench::Paint_Changes();
    if (paging) {
        if (!window.Load_Data(document))
            qFatal("cannot open %s", qPrintable(document));
        Page_Through(&window);
    }
    struct rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    constexpr long bytes_per_unit = 1024;
    std::printf("{\"peak\": %ld}\n", usage.ru_maxrss * bytes_per_unit);
    return 0;
}
