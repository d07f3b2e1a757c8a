// Commands of the tool on a large document, compared with reading and decoding it.

#include "bench/documents.h"
#include "bench/measure.h"

#include <QCoreApplication>
#include <QImage>
#include <QProcess>

#include <vector>

namespace {

using Bench::TGrain;

constexpr int page_count = 500;
constexpr int picture_count = 8; ///< of the document; its pages repeat them

QString Document()
{
    static const QString path = Bench::Document_File(
        QStringLiteral("open.quillet"), Bench::Shape(page_count, 20, TGrain::Clean, picture_count));
    return path;
}

void Run(const QStringList& arguments)
{
    const QString tool = QCoreApplication::applicationDirPath() + QStringLiteral("/quillet-cli");
    if (QProcess::execute(tool, arguments) != 0)
        qFatal("%s failed", qPrintable(arguments.first()));
}

void Measure_Command(benchmark::State* state, const QStringList& arguments)
{
    // Load the file into the disk cache, as for the references.
    Bench::Measure(
        state, [] { Bench::Read_File(Document()); }, [&] { Run(arguments); });
}

void tool_info(benchmark::State& state)
{
    Measure_Command(&state, {QStringLiteral("info"), Document()});
}
BENCH_SLOW(tool_info);

void tool_check(benchmark::State& state)
{
    Measure_Command(&state, {QStringLiteral("check"), Document()});
}
BENCH_SLOW(tool_check);

void tool_export_items(benchmark::State& state)
{
    Measure_Command(&state,
                    {QStringLiteral("export-items"), Document(), QStringLiteral("--force"),
                     QStringLiteral("--csv"), Bench::Output_Path(QStringLiteral("items.csv"))});
}
BENCH_SLOW(tool_export_items);

void start_and_read(benchmark::State& state)
{
    Bench::Measure(
        &state, [] { Bench::Read_File(Document()); },
        [] {
            Run({QStringLiteral("--version")});
            Bench::Read_File(Document());
        });
}
BENCH_SLOW(start_and_read);

void decode_all_pages(benchmark::State& state)
{
    std::vector<QByteArray> pictures;
    for (int number = 0; number < picture_count; ++number)
        pictures.push_back(
            Bench::Read_File(Bench::Page_File(number, TGrain::Clean, QStringLiteral("png"))));
    Bench::Measure(
        &state, [] {},
        [&] {
            for (int page = 0; page < page_count; ++page) {
                if (QImage::fromData(pictures[page % picture_count]).isNull())
                    qFatal("a page cannot be decoded");
            }
        });
}
BENCH_SLOW(decode_all_pages);

} // namespace
