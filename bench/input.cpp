// Creating a document from a PDF, compared with the renderer alone.

#include "bench/documents.h"
#include "bench/measure.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>

namespace {

void Run(const QString& program, const QStringList& arguments)
{
    if (QProcess::execute(program, arguments) != 0)
        qFatal("%s failed", qPrintable(program));
}

/// The policy manual of Debian, which has 193 pages.
QString Manual()
{
    static const QString path = [] {
        const QString manual = Bench::Output_Path(QStringLiteral("policy.pdf"));
        Run(QStringLiteral("sh"),
            {QStringLiteral("-c"),
             QStringLiteral("zcat /usr/share/doc/debian-policy/policy.pdf.gz >'%1'").arg(manual)});
        return manual;
    }();
    return path;
}

void create_from_pdf(benchmark::State& state)
{
    const QString tool = QCoreApplication::applicationDirPath() + QStringLiteral("/quillet-cli");
    const QStringList arguments{QStringLiteral("create"),
                                Manual(),
                                QStringLiteral("--pdf-pages"),
                                QStringLiteral("1-100"),
                                QStringLiteral("--force"),
                                QStringLiteral("--output"),
                                Bench::Output_Path(QStringLiteral("created.quillet"))};
    Bench::Measure(
        &state, [] {}, [&] { Run(tool, arguments); });
}
BENCH_SLOW(create_from_pdf);

void render_pdf(benchmark::State& state)
{
    const QStringList arguments{QStringLiteral("-r"),
                                QStringLiteral("150"),
                                QStringLiteral("-png"),
                                QStringLiteral("-l"),
                                QStringLiteral("100"),
                                Manual(),
                                Bench::Output_Path(QStringLiteral("rendered"))};
    Bench::Measure(
        &state, [] {}, [&] { Run(QStringLiteral("pdftoppm"), arguments); });
}
BENCH_SLOW(render_pdf);

} // namespace
