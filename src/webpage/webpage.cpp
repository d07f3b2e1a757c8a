#include "src/webpage/webpage.h"

#include "core/safefile.h"
#include "src/data.h"
#include "src/paint/reportpainter.h"
#include "src/webpage/embeddedimage.h"
#include "src/webpage/findingslist.h"
#include "src/webpage/labelsvg.h"
#include "src/webpage/markup.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QFile>
#include <QHash>

using Markup::Escaped;
using Markup::Number;

namespace {

constexpr const char* end_of_file = "</html>\n";

QString Resource(const QString& name)
{
    QFile file(QStringLiteral(":/webpage/") + name);
    file.open(QIODevice::ReadOnly);
    return QString::fromUtf8(file.readAll());
}

/// The source in a Content-Security-Policy that allows exactly this script or style.
QString Hash_Source(const QString& content)
{
    const QByteArray hash =
        QCryptographicHash::hash(content.toUtf8(), QCryptographicHash::Sha256).toBase64();
    return QStringLiteral("'sha256-%1'").arg(QString::fromLatin1(hash));
}

QString View_Box(const QRectF& rectangle)
{
    return QStringLiteral("%1 %2 %3 %4")
        .arg(Number(rectangle.x()), Number(rectangle.y()), Number(rectangle.width()),
             Number(rectangle.height()));
}

QString Css_Color(const QColor& color)
{
    return QStringLiteral("rgba(%1, %2, %3, %4)")
        .arg(color.red())
        .arg(color.green())
        .arg(color.blue())
        .arg(Number(color.alphaF()));
}

/// Writes one web page.
class TWriter
{
    Q_DECLARE_TR_FUNCTIONS(WebPage)

public:
    TWriter(const TWebPage& page, QIODevice* device);

    /// Returns false if the device did not accept everything.
    bool Write(const TProgressReport& report);

private:
    /// What a page shows.
    struct TSheet
    {
        TEmbeddedImage image;
        QRectF rectangle; ///< in pixels of the image
    };

    void Put(const QByteArray& bytes);
    void Put(const QString& text) { Put(text.toUtf8()); }
    void Put_Head();
    void Put_Header();
    void Put_Thumbnails();
    void Put_Page(std::size_t place);
    void Put_Sheet(std::size_t place);
    void Put_Labels(std::size_t place);
    void Put_List();
    QString Label_Title(const TFinding& finding) const;

    const TWebPage& d_page;
    QIODevice* d_device;
    TLabelSvg d_labels;
    std::vector<TSheet> d_sheets; ///< one for each page
    int d_label_count = 0;        ///< written so far
    bool d_is_complete = true;    ///< so far
};

TWriter::TWriter(const TWebPage& page, QIODevice* device)
    : d_page(page)
    , d_device(device)
    , d_labels(page.appearance)
{
    for (std::size_t place = 0; place < page.images.size(); ++place) {
        const TEmbeddedImage image(page.images[place]);
        d_sheets.push_back({image, d_labels.Sheet(image.Size(), page.findings.pages[place])});
    }
}

bool TWriter::Write(const TProgressReport& report)
{
    Put_Head();
    Put_Header();
    Put_Thumbnails();
    Put(QStringLiteral("<main id=\"pages\">\n") + d_labels.Definitions());
    const int count = static_cast<int>(d_sheets.size());
    for (int place = 0; place < count && d_is_complete; ++place) {
        if (report)
            report(place + 1, count);
        Put_Page(static_cast<std::size_t>(place));
    }
    Put(QStringLiteral("</main>\n"));
    Put_List();
    Put(QStringLiteral("</div>\n<dl id=\"card\" hidden></dl>\n<footer>%1</footer>\n<script>")
            .arg(Escaped(Maker_Text())));
    Put(Resource(QStringLiteral("webpage.js")));
    Put(QByteArray("</script>\n</body>\n") + end_of_file);
    return d_is_complete;
}

void TWriter::Put(const QByteArray& bytes)
{
    d_is_complete = d_is_complete && d_device->write(bytes) == bytes.size();
}

void TWriter::Put_Head()
{
    const QColor color = TAppearance::Color(d_page.appearance.color_name);
    const QString style = QStringLiteral(":root { --label: %1; }\n").arg(Css_Color(color)) +
                          Resource(QStringLiteral("webpage.css"));
    const QString policy =
        QStringLiteral("default-src 'none'; img-src data:; style-src %1; script-src %2; "
                       "base-uri 'none'; form-action 'none'")
            .arg(Hash_Source(style), Hash_Source(Resource(QStringLiteral("webpage.js"))));
    Put(QStringLiteral("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                       "<meta http-equiv=\"Content-Security-Policy\" content=\"%1\">\n"
                       "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
                       "<meta name=\"color-scheme\" content=\"light dark\">\n"
                       "<meta name=\"referrer\" content=\"no-referrer\">\n"
                       "<meta name=\"generator\" content=\"Quillet\">\n"
                       "<link rel=\"icon\" href=\"data:,\">\n")
            .arg(policy));
    Put(QStringLiteral("<title>") + Escaped(d_page.title) + QStringLiteral("</title>\n<style>") +
        style + QStringLiteral("</style>\n</head>\n"));
}

void TWriter::Put_Header()
{
    const int page_count = static_cast<int>(d_sheets.size());
    const int label_count = d_page.findings.Count();
    QString header = QStringLiteral("<body>\n<a class=\"skip\" href=\"#findings\">") +
                     Escaped(tr("Go to the list")) +
                     QStringLiteral("</a>\n<header>\n<h1 dir=\"auto\">") + Escaped(d_page.title) +
                     QStringLiteral("</h1>\n");
    if (!d_page.subtitle.isEmpty())
        header += QStringLiteral("<p dir=\"auto\">") + Escaped(d_page.subtitle) +
                  QStringLiteral("</p>\n");
    header += QStringLiteral("<p class=\"counts\">%1</p>\n</header>\n<div class=\"layout\">\n")
                  .arg(Escaped(tr("Pages: %1, labels: %2").arg(page_count).arg(label_count)));
    Put(header);
}

/// The thumbnails refer to the images of the pages, so that none is embedded twice.
void TWriter::Put_Thumbnails()
{
    Put(QStringLiteral("<nav aria-label=\"%1\">\n<ol>\n").arg(Escaped(tr("Pages"))));
    for (std::size_t place = 0; place < d_sheets.size(); ++place) {
        const TSheet& sheet = d_sheets[place];
        const TFindingsPage& page = d_page.findings.pages[place];
        QString link =
            QStringLiteral("<li><a class=\"thumbnail\" href=\"#page-%1\">").arg(page.number);
        if (!sheet.rectangle.isEmpty())
            link += QStringLiteral("<svg viewBox=\"%1\" aria-hidden=\"true\">"
                                   "<use href=\"#image-%2\"/></svg>")
                        .arg(View_Box(sheet.rectangle))
                        .arg(page.number);
        Put(link + QStringLiteral("<span dir=\"auto\">") + Escaped(page.Title()) +
            QStringLiteral("</span></a></li>\n"));
    }
    Put(QStringLiteral("</ol>\n</nav>\n"));
}

void TWriter::Put_Page(std::size_t place)
{
    const TFindingsPage& page = d_page.findings.pages[place];
    Put(QStringLiteral("<section class=\"page\" id=\"page-%1\" aria-labelledby=\"title-%1\">\n"
                       "<h2 id=\"title-%1\" dir=\"auto\">")
            .arg(page.number) +
        Escaped(page.Title()) + QStringLiteral("</h2>\n"));
    if (d_sheets[place].rectangle.isEmpty())
        Put(QStringLiteral("<p class=\"empty\">%1</p>\n")
                .arg(Escaped(tr("This page has no image."))));
    else
        Put_Sheet(place);
    Put(QStringLiteral("</section>\n"));
}

void TWriter::Put_Sheet(std::size_t place)
{
    const TSheet& sheet = d_sheets[place];
    const QRectF& rectangle = sheet.rectangle;
    const int number = d_page.findings.pages[place].number;
    Put(QStringLiteral("<svg class=\"sheet\" role=\"group\" aria-labelledby=\"title-%1\" "
                       "width=\"%2\" height=\"%3\" viewBox=\"%4\"><g id=\"image-%1\">")
            .arg(QString::number(number), Number(rectangle.width()), Number(rectangle.height()),
                 View_Box(rectangle)));
    Put(QStringLiteral("<rect class=\"paper\" x=\"%1\" y=\"%2\" width=\"%3\" height=\"%4\"/>\n")
            .arg(Number(rectangle.x()), Number(rectangle.y()), Number(rectangle.width()),
                 Number(rectangle.height())));
    const QSize size = sheet.image.Size();
    if (!size.isEmpty()) {
        Put(QStringLiteral(
                "<image role=\"img\" aria-label=\"%1\" width=\"%2\" height=\"%3\" href=\"")
                .arg(Escaped(tr("Image of the page")))
                .arg(size.width())
                .arg(size.height()));
        const TEmbeddedImage::TDataUrl url = sheet.image.Data_Url(d_page.max_width);
        Put(url.begin);
        Put(url.base64);
        Put(QStringLiteral("\"/>\n"));
    }
    Put(QByteArray("</g>\n"));
    Put_Labels(place);
    Put(QByteArray("</svg>\n"));
}

void TWriter::Put_Labels(std::size_t place)
{
    for (const TFinding& finding : d_page.findings.pages[place].rows) {
        ++d_label_count;
        if (d_labels.Is_On(d_sheets[place].rectangle, finding))
            Put(d_labels.Label(finding, d_label_count, Label_Title(finding)));
    }
}

void TWriter::Put_List()
{
    const TFindingsList list(d_page.findings);
    Put(QStringLiteral("<aside id=\"findings\" tabindex=\"-1\" aria-labelledby=\"list-title\">\n"
                       "<div class=\"tools\"><h2 id=\"list-title\">%1</h2>\n"
                       "<label class=\"filter\" hidden><span>%2</span> "
                       "<input type=\"search\" id=\"filter\" autocomplete=\"off\"></label>\n"
                       "<output id=\"count\" for=\"filter\" data-text=\"%3\"></output></div>\n")
            .arg(Escaped(tr("Findings")), Escaped(tr("Filter")), Escaped(tr("%1 of %2"))));
    Put(QByteArray("<div class=\"rows\">\n"));
    Put(list.Begin());
    int first_number = 1;
    for (std::size_t place = 0; place < d_sheets.size(); ++place) {
        const TFindingsPage& page = d_page.findings.pages[place];
        std::vector<bool> is_on_sheet;
        for (const TFinding& finding : page.rows)
            is_on_sheet.push_back(d_labels.Is_On(d_sheets[place].rectangle, finding));
        Put(list.Page(page, first_number, is_on_sheet));
        first_number += static_cast<int>(page.rows.size());
    }
    Put(TFindingsList::End());
    Put(QByteArray("</div>\n</aside>\n"));
}

/// Number, text and cells in one line each, for tool tip and screen reader.
QString TWriter::Label_Title(const TFinding& finding) const
{
    QStringList lines{tr("Label %1").arg(finding.label.value)};
    const QStringList texts = QStringList{finding.label.text} + finding.cells;
    for (const QString& text : texts) {
        if (!text.isEmpty())
            lines += text;
    }
    return lines.join(QLatin1Char('\n'));
}

} // namespace

TWebPage WebPage::Of(const TData& data, const TAppearance& appearance, const TFindings& findings,
                     const QString& title)
{
    QHash<int, TPageImage> images;
    for (const TPageItem& page : data.Pages())
        images.insert(page.page_id, page.image);
    TWebPage web_page;
    web_page.title = appearance.header_1.isEmpty() ? title : appearance.header_1;
    web_page.subtitle = appearance.header_2;
    web_page.appearance = appearance;
    web_page.findings = findings;
    for (const TFindingsPage& page : findings.pages)
        web_page.images.push_back(images.value(page.page_id));
    return web_page;
}

bool WebPage::Write(const TWebPage& page, const TProgressReport& report, QIODevice* device)
{
    return TWriter(page, device).Write(report);
}

bool WebPage::Save(const TWebPage& page, const TProgressReport& report, const QString& path,
                   QString* problem)
{
    TSafeFile target(path);
    QFile file(target.Path_To_Write());
    const bool is_written =
        file.open(QIODevice::WriteOnly) && Write(page, report, &file) && file.flush();
    const qint64 size = file.size();
    file.close();
    if (is_written && target.Commit([size](const QString& written) {
            return TSafeFile::Is_Complete(written, size, end_of_file);
        }))
        return true;
    if (problem)
        *problem = target.Write_Problem();
    return false;
}
