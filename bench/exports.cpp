// Exports, compared with the codec, scaling and printing alone.

#include "bench/documents.h"
#include "bench/measure.h"
#include "core/safefile.h"
#include "src/displaywidget.h"
#include "src/export/fastpng.h"
#include "src/format/document.h"
#include "src/format/projectfile.h"
#include "src/pagewidget.h"
#include "src/paint/reportgeometry.h"
#include "src/paint/reportpainter.h"
#include "src/quillet.h"
#include "src/webpage/webpage.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QGraphicsPixmapItem>
#include <QPainter>
#include <QPrinter>

#include <memory>

namespace {

using Bench::TGrain;

constexpr int pages = 10;
constexpr int labels = 100;
constexpr int resolution_code = 2;

const QString& document()
{
    static const QString path = Bench::Document_File(
        QStringLiteral("export.quillet"), Bench::Shape(pages, labels, TGrain::Noisy, pages));
    return path;
}

void Require(bool succeeded)
{
    if (!succeeded)
        qFatal("an export failed");
}

/// An empty folder for exported files.
QString Fresh_Folder()
{
    QDir folder(Bench::Output_Path(QStringLiteral("exported")));
    folder.removeRecursively();
    QDir().mkpath(folder.path());
    return folder.path();
}

/// A window that has just opened the document.
std::unique_ptr<TQuillet> New_Window()
{
    auto window = std::make_unique<TQuillet>(nullptr, Qt::WindowFlags());
    window->show();
    Require(window->Load_Data(document()));
    Bench::Paint_Changes();
    return window;
}

QList<int> Page_Ids(const TQuillet& window)
{
    return window.findChild<TPageWidget*>()->Page_Ids();
}

/// Shows each page in turn and passes the view to a function.
template <typename TUse>
void For_Each_Picture(const TUse& use)
{
    const std::unique_ptr<TQuillet> window = New_Window();
    auto* const page_widget = window->findChild<TPageWidget*>();
    auto* const view = window->findChild<TDisplayWidget*>();
    const QList<int> page_ids = page_widget->Page_Ids();
    for (const int page_id : page_ids) {
        page_widget->Set_Active_Page(page_id);
        use(view);
    }
}

/// Measures the export of a newly opened document into an empty folder.
/// @param run  returns whether it succeeded.
template <typename TExport>
void Measure_Export(benchmark::State* state, const TExport& run)
{
    std::unique_ptr<TQuillet> window;
    QString folder;
    Bench::Measure(
        state,
        [&] {
            window = New_Window();
            folder = Fresh_Folder();
        },
        [&] { Require(run(window.get(), folder)); });
}

void export_images(benchmark::State& state)
{
    Measure_Export(&state, [](TQuillet* window, const QString& folder) {
        return window->Export_Images(folder, Page_Ids(*window));
    });
}
BENCH_SLOW(export_images);

void save_pictures(benchmark::State& state)
{
    std::vector<QImage> pictures;
    For_Each_Picture([&](TDisplayWidget* view) { pictures.push_back(view->Pixmap().toImage()); });
    QString folder;
    Bench::Measure(
        &state, [&] { folder = Fresh_Folder(); },
        [&] {
            int number = 0;
            for (const QImage& picture : pictures)
                Require(picture.save(QStringLiteral("%1/%2.png").arg(folder).arg(++number)));
        });
}
BENCH_SLOW(save_pictures);

/// Encodes the picture of one page in memory.
template <typename TEncode>
void Measure_Encoding(benchmark::State* state, TGrain grain, const TEncode& encode)
{
    const QImage file(Bench::Page_File(0, grain, QStringLiteral("png")));
    const QImage page = file.convertToFormat(QImage::Format_RGB32);
    Bench::Measure(
        state, [] {}, [&] { Require(!encode(page).isEmpty()); });
}

QByteArray Encode_By_Default(const QImage& picture)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    picture.save(&buffer, "png");
    return buffer.data();
}

void encode_fast_scan(benchmark::State& state)
{
    Measure_Encoding(&state, TGrain::Noisy, FastPng::Encode);
}
BENCH_SLOW(encode_fast_scan);

void encode_scan(benchmark::State& state)
{
    Measure_Encoding(&state, TGrain::Noisy, Encode_By_Default);
}
BENCH_SLOW(encode_scan);

void encode_fast_clean(benchmark::State& state)
{
    Measure_Encoding(&state, TGrain::Clean, FastPng::Encode);
}
BENCH_SLOW(encode_fast_clean);

void encode_clean(benchmark::State& state)
{
    Measure_Encoding(&state, TGrain::Clean, Encode_By_Default);
}
BENCH_SLOW(encode_clean);

/// Decodes the pages, which the export of a newly opened document also requires.
void decode_pages(benchmark::State& state)
{
    Bench::Measure(
        &state, [] {},
        [] {
            for (int page = 0; page < pages; ++page)
                Require(
                    !QImage(Bench::Page_File(page, TGrain::Noisy, QStringLiteral("png"))).isNull());
        });
}
BENCH_SLOW(decode_pages);

void export_pdf(benchmark::State& state)
{
    Measure_Export(&state, [](TQuillet* window, const QString& folder) {
        return window->Export_PDF(folder + QStringLiteral("/report.pdf"), Page_Ids(*window),
                                  {0, resolution_code, QString(), QString()});
    });
}
BENCH_SLOW(export_pdf);

/// Returns a prepared scene for each page, with the page image and its labels.
std::vector<std::unique_ptr<QGraphicsScene>> Finished_Scenes()
{
    std::vector<std::unique_ptr<QGraphicsScene>> scenes;
    For_Each_Picture([&](const TDisplayWidget* view) {
        auto scene = std::make_unique<QGraphicsScene>();
        const QList<QGraphicsItem*> items = view->scene()->items(Qt::AscendingOrder);
        for (const QGraphicsItem* const item : items) {
            const auto* const source = qgraphicsitem_cast<const QGraphicsPixmapItem*>(item);
            QGraphicsPixmapItem* const copy = scene->addPixmap(source->pixmap());
            copy->setPos(source->pos());
            copy->setTransformationMode(source->transformationMode());
        }
        scenes.push_back(std::move(scene));
    });
    return scenes;
}

QPixmap Render(QGraphicsScene* scene)
{
    const QRectF box = scene->itemsBoundingRect();
    QPixmap picture(static_cast<int>(box.width()), static_cast<int>(box.height()));
    picture.fill(Qt::white);
    QPainter painter(&picture);
    scene->render(&painter, picture.rect(), box, Qt::KeepAspectRatio);
    return picture;
}

void print_pictures(benchmark::State& state)
{
    const std::vector<std::unique_ptr<QGraphicsScene>> scenes = Finished_Scenes();
    QString folder;
    Bench::Measure(
        &state, [&] { folder = Fresh_Folder(); },
        [&] {
            QPrinter printer(QPrinter::HighResolution);
            printer.setOutputFormat(QPrinter::PdfFormat);
            printer.setOutputFileName(folder + QStringLiteral("/plain.pdf"));
            printer.setPageMargins(QMarginsF(), QPageLayout::Millimeter);
            printer.setResolution(TReportGeometry::Resolution(resolution_code));
            QPainter painter(&printer);
            TReportPainter report(&painter, resolution_code, QString(), QString(),
                                  printer.pageLayout().paintRectPixels(printer.resolution()));
            int number = 0;
            for (const auto& scene : scenes) {
                if (number > 0)
                    printer.newPage();
                report.Draw_Frame(++number);
                report.Draw_Picture(Render(scene.get()));
            }
        });
}
BENCH_SLOW(print_pictures);

const QString& hundred_pages()
{
    static const QString path = Bench::Document_File(QStringLiteral("save.quillet"),
                                                     Bench::Shape(100, 20, TGrain::Clean, 8));
    return path;
}

/// Measures work on the document of a hundred pages, which is in the disk cache.
/// @param run  gets an empty folder.
template <typename TRun>
void Measure_Hundred_Pages(benchmark::State* state, const TRun& run)
{
    QString folder;
    Bench::Measure(
        state,
        [&] {
            folder = Fresh_Folder();
            Bench::Read_File(hundred_pages());
        },
        [&] { run(folder); });
}

void export_web_page(benchmark::State& state)
{
    Measure_Hundred_Pages(&state, [](const QString& folder) {
        const TDocument document(ProjectFile::Read(Bench::Read_File(hundred_pages())));
        const TWebPage page = WebPage::Of(document.data, document.appearance,
                                          Findings::Of(document.data, document.pages), QString());
        Require(WebPage::Save(page, nullptr, folder + QStringLiteral("/report.html")));
    });
}
BENCH_SLOW(export_web_page);

/// Reads the document, encodes its images and writes them to the disk.
void encode_base64(benchmark::State& state)
{
    Measure_Hundred_Pages(&state, [](const QString& folder) {
        const TFileContent content = ProjectFile::Read(Bench::Read_File(hundred_pages()));
        QFile file(folder + QStringLiteral("/images.txt"));
        Require(file.open(QIODevice::WriteOnly));
        for (const TFilePage& page : *content.pages)
            file.write(page.image.Source_Bytes().toBase64());
        file.close();
        Require(TSafeFile::Sync(file.fileName()));
    });
}
BENCH_SLOW(encode_base64);

} // namespace
