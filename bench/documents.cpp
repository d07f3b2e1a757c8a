#include "bench/documents.h"

#include "src/format/itemlist.h"
#include "src/format/projectfile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cmath>
#include <random>

namespace {

using TRandom = std::minstd_rand;

const QString& data_folder()
{
    static const QString folder = [] {
        const QString path = QStringLiteral(QUILLET_BENCH_DATA);
        QDir().mkpath(path);
        return path;
    }();
    return folder;
}

int Pick(TRandom* random, int first, int last)
{
    // The distributions of the standard library differ between implementations.
    return first + static_cast<int>((*random)() % static_cast<unsigned int>(last - first + 1));
}

/// Paper is slightly yellow and darker at its edges.
QRgb Paper(int x, int y)
{
    constexpr int edge = 120; // pixels
    const int distance = std::min({x, y, Bench::Page_Width - 1 - x, Bench::Page_Height - 1 - y});
    const int shade = distance < edge ? (edge - distance) / 6 : 0;
    return qRgb(246 - shade, 241 - shade, 228 - shade);
}

void Draw_Paper(QImage* page)
{
    for (int y = 0; y < page->height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(page->scanLine(y));
        for (int x = 0; x < page->width(); ++x)
            line[x] = Paper(x, y);
    }
}

void Draw_Stroke(QImage* page, const QRect& stroke, QRgb ink)
{
    for (int y = stroke.top(); y <= stroke.bottom(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(page->scanLine(y));
        std::fill(line + stroke.left(), line + stroke.right() + 1, ink);
    }
}

/// Draws lines of letters, each a vertical stroke and two horizontal ones, with gaps between words.
void Draw_Text(QImage* page, TRandom* random)
{
    constexpr int margin = 240;
    constexpr int line_height = 62;
    constexpr int letter_height = 36;
    constexpr int pen = 5;
    const QRgb ink = qRgb(38, 36, 44);
    for (int y = margin; y < page->height() - margin; y += line_height) {
        for (int x = margin; x < page->width() - margin;) {
            const int width = Pick(random, 12, 26);
            Draw_Stroke(page, QRect(x, y, pen, letter_height), ink);
            Draw_Stroke(page, QRect(x, y + Pick(random, 0, letter_height - pen), width, pen), ink);
            Draw_Stroke(page, QRect(x, y + Pick(random, 0, letter_height - pen), width, pen), ink);
            x += width + (Pick(random, 0, 5) == 0 ? 34 : 9);
        }
    }
}

QRgb With_Grain(QRgb pixel, TRandom* random, int amplitude)
{
    const auto shifted = [&](int channel) {
        return qBound(0, channel + Pick(random, -amplitude, amplitude), 255);
    };
    return qRgb(shifted(qRed(pixel)), shifted(qGreen(pixel)), shifted(qBlue(pixel)));
}

/// @param interval  one pixel in `interval` changes, on average.
void Draw_Grain(QImage* page, TRandom* random, int amplitude, int interval)
{
    for (int y = 0; y < page->height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(page->scanLine(y));
        for (int x = 0; x < page->width(); ++x) {
            if (interval == 1 || Pick(random, 1, interval) == 1)
                line[x] = With_Grain(line[x], random, amplitude);
        }
    }
}

QString Grain_Name(Bench::TGrain grain)
{
    switch (grain) {
    case Bench::TGrain::Noisy:
        return QStringLiteral("noisy");
    case Bench::TGrain::Clean:
        return QStringLiteral("clean");
    default:
        return QStringLiteral("blank");
    }
}

/// Returns a label list; the labels are in rows, from the top-left corner of the page.
QByteArray Item_List(int count)
{
    constexpr int margin = 60;
    std::vector<TDataItem> items;
    const int columns = static_cast<int>(std::ceil(std::sqrt(count)));
    const int step_x = (Bench::Page_Width - 2 * margin) / std::max(columns, 1);
    const int step_y = (Bench::Page_Height - 2 * margin) / std::max(columns, 1);
    constexpr int borders[] = {0, 1, 2, 4, 8};
    for (int number = 0; number < count; ++number) {
        TDataItem item;
        item.id = number + 1;
        item.value = number + 1;
        if (number % 10 == 9)
            item.text = QStringLiteral("R%1").arg(number);
        item.border_type = borders[number % 5];
        item.position = QPointF(margin + number % columns * step_x,
                                margin + number / columns * step_y); // NOLINT: whole pixels
        items.push_back(item);
    }
    return ItemList::Write(items);
}

} // namespace

QImage Bench::Scan_Page(int number, TGrain grain)
{
    TRandom random(static_cast<unsigned int>(number + 1));
    QImage page(Page_Width, Page_Height, QImage::Format_RGB32);
    Draw_Paper(&page);
    if (grain == TGrain::Blank)
        return page;
    Draw_Text(&page, &random);
    if (grain == TGrain::Noisy)
        Draw_Grain(&page, &random, 6, 1);
    else
        Draw_Grain(&page, &random, 2, 12);
    return page;
}

QString Bench::Page_File(int number, TGrain grain, const QString& format)
{
    const QString path =
        QStringLiteral("%1/%2-%3.%4").arg(data_folder(), Grain_Name(grain)).arg(number).arg(format);
    const int jpeg_quality = 90;
    if (!QFile::exists(path)) {
        // An aborted run must not leave half a page behind.
        const QString unfinished = path + QStringLiteral(".new");
        const bool saved = Scan_Page(number, grain)
                               .save(unfinished, qPrintable(format),
                                     format == QLatin1String("jpg") ? jpeg_quality : -1);
        if (!saved || !QFile::rename(unfinished, path))
            qFatal("cannot write %s", qPrintable(path));
    }
    return path;
}

QByteArray Bench::Read_File(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(path));
    return file.readAll();
}

Bench::TShape Bench::Shape(int pages, int labels, TGrain grain, int distinct_pages)
{
    TShape shape{{}, grain, distinct_pages};
    for (int page = 0; page < pages; ++page)
        shape.labels.append(labels);
    return shape;
}

QString Bench::Document_File(const QString& name, const TShape& shape)
{
    TProjectWriter writer;
    writer.Write_Integer(32);
    writer.Write_Text(QStringLiteral("#f79741"));
    writer.Write_Text(QString());
    writer.Write_Text(QString());
    writer.Write_Integer(shape.labels.size());
    QHash<int, QByteArray> item_lists;
    for (int page = 0; page < shape.labels.size(); ++page) {
        const int labels = shape.labels[page];
        if (!item_lists.contains(labels))
            item_lists.insert(labels, Item_List(labels));
        writer.Write_Text(QStringLiteral("Page %1").arg(page + 1));
        writer.Write_Bytes(
            Read_File(Page_File(page % shape.distinct_pages, shape.grain, QStringLiteral("png"))));
        writer.Write_Bytes(item_lists.value(labels));
    }
    const QString path = Output_Path(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !writer.Write_To(&file))
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

QString Bench::Output_Path(const QString& name)
{
    const QString folder = data_folder() + QStringLiteral("/output");
    QDir().mkpath(folder);
    return folder + QLatin1Char('/') + name;
}

void Bench::Use_Own_Home()
{
    static const QTemporaryDir home(Output_Path(QStringLiteral("home-XXXXXX")));
    qputenv("HOME", QFile::encodeName(home.path()));
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
}
