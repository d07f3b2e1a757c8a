// Creating a document from a PDF, compared with the renderer alone, and merging documents, compared
// with reading and writing the same bytes.

#include "bench/documents.h"
#include "bench/measure.h"
#include "core/safefile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
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

QString Tool()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/quillet-cli");
}

constexpr int merged_documents = 10;

QString Fifty_Pages()
{
    static const QString path = Bench::Document_File(QStringLiteral("part.quillet"),
                                                     Bench::Shape(50, 20, Bench::TGrain::Clean, 8));
    return path;
}

void create_from_pdf(benchmark::State& state)
{
    const QStringList arguments{QStringLiteral("create"),
                                Manual(),
                                QStringLiteral("--pdf-pages"),
                                QStringLiteral("1-100"),
                                QStringLiteral("--force"),
                                QStringLiteral("--output"),
                                Bench::Output_Path(QStringLiteral("created.quillet"))};
    Bench::Measure(
        &state, [] {}, [&] { Run(Tool(), arguments); });
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

void merge_documents(benchmark::State& state)
{
    QStringList arguments{QStringLiteral("merge"), QStringLiteral("--force"),
                          QStringLiteral("--output"),
                          Bench::Output_Path(QStringLiteral("merged.quillet"))};
    for (int count = 0; count < merged_documents; ++count)
        arguments += Fifty_Pages();
    Bench::Measure(
        &state, [] { Bench::Read_File(Fifty_Pages()); }, [&] { Run(Tool(), arguments); });
}
BENCH_SLOW(merge_documents);

/// Reads each document and writes it behind the one before, to the disk as the tool does.
void read_and_write(benchmark::State& state)
{
    const QString path = Bench::Output_Path(QStringLiteral("copied"));
    Bench::Measure(
        &state, [] { Bench::Read_File(Fifty_Pages()); },
        [&] {
            QFile file(path);
            bool is_written = file.open(QIODevice::WriteOnly);
            for (int count = 0; count < merged_documents; ++count) {
                const QByteArray bytes = Bench::Read_File(Fifty_Pages());
                is_written = is_written && file.write(bytes) == bytes.size();
            }
            file.close();
            if (!is_written || !TSafeFile::Sync(path))
                qFatal("cannot write %s", qPrintable(path));
        });
}
BENCH_SLOW(read_and_write);

} // namespace
