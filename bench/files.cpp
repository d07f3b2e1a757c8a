// Saving, opening and importing, compared with the codecs and the disk alone.

#include "bench/documents.h"
#include "bench/measure.h"
#include "src/quillet.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>

namespace {

using Bench::TGrain;

constexpr int imported_pages = 10;

QString Hundred_Pages()
{
    static const QString path = Bench::Document_File(QStringLiteral("save.quillet"),
                                                     Bench::Shape(100, 20, TGrain::Clean, 8));
    return path;
}

QString Five_Hundred_Pages()
{
    static const QString path = Bench::Document_File(QStringLiteral("open.quillet"),
                                                     Bench::Shape(500, 20, TGrain::Clean, 8));
    return path;
}

QString Jpeg(int number)
{
    return Bench::Page_File(number, TGrain::Noisy, QStringLiteral("jpg"));
}

/// Returns the path of a file that does not exist, so that saving makes no backup. The cost of
/// backups is measured in safety.cpp.
QString Fresh_Path()
{
    const QString path = Bench::Output_Path(QStringLiteral("written.quillet"));
    QFile::remove(path);
    return path;
}

void Write_Plain(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(path));
}

void Require(bool succeeded)
{
    if (!succeeded)
        qFatal("a file operation failed");
}

void save_unchanged(benchmark::State& state)
{
    TQuillet window(nullptr, Qt::WindowFlags());
    Require(window.Load_Data(Hundred_Pages()));
    QString path;
    Bench::Measure(
        &state, [&] { path = Fresh_Path(); }, [&] { Require(window.Save_Data(path)); });
}
BENCH_SLOW(save_unchanged);

void plain_copy(benchmark::State& state)
{
    QString path;
    Bench::Measure(
        &state, [&] { path = Fresh_Path(); },
        [&] { Write_Plain(path, Bench::Read_File(Hundred_Pages())); });
}
BENCH_SLOW(plain_copy);

void save_imported(benchmark::State& state)
{
    std::unique_ptr<TQuillet> window;
    QString path;
    Bench::Measure(
        &state,
        [&] {
            window = std::make_unique<TQuillet>(nullptr, Qt::WindowFlags());
            for (int page = 0; page < imported_pages; ++page)
                window->Load_Image(Jpeg(page));
            path = Fresh_Path();
        },
        [&] { Require(window->Save_Data(path)); });
}
BENCH_SLOW(save_imported);

/// Whether images are being encoded in other processes.
bool Is_Encoding()
{
    const QString id = QString::number(QCoreApplication::applicationPid());
    return !Bench::Read_File(QStringLiteral("/proc/%1/task/%1/children").arg(id)).isEmpty();
}

/// Imports pages, and waits until they are encoded in the background.
void Import_And_Pause(TQuillet* window)
{
    QStringList paths;
    for (int page = 0; page < imported_pages; ++page)
        paths += Jpeg(page);
    window->Open_Arguments(paths);
    Require(Is_Encoding());
    while (Is_Encoding())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

void save_after_pause(benchmark::State& state)
{
    std::unique_ptr<TQuillet> window;
    QString path;
    Bench::Measure(
        &state,
        [&] {
            window = std::make_unique<TQuillet>(nullptr, Qt::WindowFlags());
            Import_And_Pause(window.get());
            path = Fresh_Path();
        },
        [&] { Require(window->Save_Data(path)); });
}
BENCH_SLOW(save_after_pause);

void write_plain(benchmark::State& state)
{
    const QString source = Bench::Document_File(QStringLiteral("imported.quillet"),
                                                Bench::Shape(10, 0, TGrain::Noisy, 10));
    const QByteArray bytes = Bench::Read_File(source);
    QString path;
    Bench::Measure(
        &state, [&] { path = Fresh_Path(); }, [&] { Write_Plain(path, bytes); });
}
BENCH_SLOW(write_plain);

void encode_alone(benchmark::State& state)
{
    std::vector<QImage> images;
    for (int page = 0; page < imported_pages; ++page)
        images.emplace_back(Jpeg(page));
    Bench::Measure(
        &state, [] {},
        [&] {
            for (const QImage& image : images) {
                QBuffer buffer;
                buffer.open(QIODevice::WriteOnly);
                Require(image.save(&buffer, "PNG"));
            }
        });
}
BENCH_SLOW(encode_alone);

void import_jpeg(benchmark::State& state)
{
    std::unique_ptr<TQuillet> window;
    Bench::Measure(
        &state,
        [&] {
            window = std::make_unique<TQuillet>(nullptr, Qt::WindowFlags());
            window->show();
            Bench::Paint_Changes();
            for (int page = 0; page < imported_pages; ++page)
                Bench::Read_File(Jpeg(page));
        },
        [&] {
            for (int page = 0; page < imported_pages; ++page)
                window->Load_Image(Jpeg(page));
            Bench::Paint_Changes();
        });
}
BENCH_SLOW(import_jpeg);

void decode_alone(benchmark::State& state)
{
    Bench::Measure(
        &state, [] {},
        [&] {
            for (int page = 0; page < imported_pages; ++page)
                Require(!QImage(Jpeg(page)).isNull());
        });
}
BENCH_SLOW(decode_alone);

void open_document(benchmark::State& state)
{
    std::unique_ptr<TQuillet> window;
    Bench::Measure(
        &state,
        [&] {
            // Load the file into the disk cache, as for the reference.
            Bench::Read_File(Five_Hundred_Pages());
            window = std::make_unique<TQuillet>(nullptr, Qt::WindowFlags());
            window->show();
            Bench::Paint_Changes();
        },
        [&] {
            Require(window->Load_Data(Five_Hundred_Pages()));
            Bench::Paint_Changes();
        });
}
BENCH_SLOW(open_document);

void read_document(benchmark::State& state)
{
    Bench::Measure(
        &state, [&] { Bench::Read_File(Five_Hundred_Pages()); },
        [&] { Require(!Bench::Read_File(Five_Hundred_Pages()).isEmpty()); });
}
BENCH_SLOW(read_document);

} // namespace
