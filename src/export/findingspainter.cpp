#include "src/export/findingspainter.h"

#include "src/findings/findings.h"

#include <QAbstractTextDocumentLayout>
#include <QCoreApplication>
#include <QFontMetricsF>
#include <QImage>
#include <QPaintDevice>
#include <QPainter>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextTable>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>
#include <numeric>
#include <vector>

namespace {

constexpr int font_points = 9;
constexpr double cell_padding = 3.0; // in pixels of 1/96 inch, like all lengths of a table
constexpr double rule_width = 0.5;
const QColor rule_color(160, 160, 160);

/// A row of the table.
struct TLine
{
    QStringList texts;
    bool is_page_name = false; ///< one text across all columns
};

QFont Text_Font()
{
    return QFont(QStringLiteral("Helvetica"), font_points);
}

/// Lays out the list.
class TListLayout
{
    Q_DECLARE_TR_FUNCTIONS(FindingsPainter)

public:
    /// @param room  on a page, in pixels of the device.
    TListLayout(const TFindings& findings, const QSizeF& room, QPaintDevice* device);

    /// A document for each page.
    std::vector<std::unique_ptr<QTextDocument>> Documents() const;

private:
    using TLines = std::vector<TLine>;

    void Set_Widths();
    std::vector<double> Natural_Widths() const;
    double Scale() const;
    std::unique_ptr<QTextDocument> Document(const TLines& lines, const QSizeF& size) const;
    static void Fill_Row(QTextTable* table, int row, const TLine& line);
    std::vector<double> Heights() const;
    std::vector<double> Table_Heights(const TLines& lines) const;
    std::vector<TLines> Pages() const;

    QSizeF d_room;
    QPaintDevice* d_device;
    TLine d_headings;
    TLines d_lines;
    QVector<QTextLength> d_widths;
};

TListLayout::TListLayout(const TFindings& findings, const QSizeF& room, QPaintDevice* device)
    : d_room(room)
    , d_device(device)
{
    const bool has_texts = findings.Has_Texts();
    d_headings.texts += tr("No.");
    if (has_texts)
        d_headings.texts += tr("Label");
    d_headings.texts += findings.headings;
    for (const TFindingsPage& page : findings.pages) {
        if (!page.rows.empty())
            d_lines.push_back({{page.Title()}, true});
        for (const TFinding& finding : page.rows) {
            QStringList texts{QString::number(finding.label.value)};
            if (has_texts)
                texts += finding.label.text;
            d_lines.push_back({texts + finding.cells, false});
        }
    }
    Set_Widths();
}

std::vector<std::unique_ptr<QTextDocument>> TListLayout::Documents() const
{
    std::vector<std::unique_ptr<QTextDocument>> documents;
    for (const TLines& lines : Pages())
        documents.push_back(Document(lines, d_room));
    return documents;
}

/// Gives each column the width of its widest text, or a fair share of the area if that is less.
/// The widest column gets what is left.
void TListLayout::Set_Widths()
{
    const std::vector<double> natural = Natural_Widths();
    std::vector<std::size_t> narrow_first(natural.size());
    std::iota(narrow_first.begin(), narrow_first.end(), 0);
    std::stable_sort(
        narrow_first.begin(), narrow_first.end(),
        [&natural](std::size_t left, std::size_t right) { return natural[left] < natural[right]; });
    d_widths = QVector<QTextLength>(static_cast<int>(natural.size()));
    double rest = d_room.width();
    std::size_t rest_count = natural.size();
    for (const std::size_t column : narrow_first) {
        const double share = rest / static_cast<double>(rest_count);
        const double width = rest_count == 1 ? rest : std::min(natural[column], share);
        d_widths[static_cast<int>(column)] = QTextLength(QTextLength::FixedLength, width / Scale());
        rest -= width;
        --rest_count;
    }
}

/// The width of each column's widest line, in device pixels.
std::vector<double> TListLayout::Natural_Widths() const
{
    QFont bold = Text_Font();
    bold.setBold(true);
    const QFontMetricsF metrics(bold, d_device);
    std::vector<double> widths(static_cast<std::size_t>(d_headings.texts.size()));
    const auto measure = [&](const TLine& line) {
        for (std::size_t column = 0; column < widths.size() && !line.is_page_name; ++column) {
            const QRectF box =
                metrics.boundingRect(QRectF(), 0, line.texts.at(static_cast<int>(column)));
            widths[column] = std::max(widths[column], box.width() + 4 * cell_padding * Scale());
        }
    };
    measure(d_headings);
    std::for_each(d_lines.cbegin(), d_lines.cend(), measure);
    return widths;
}

/// Device pixels per pixel of a table, as in QTextDocument.
double TListLayout::Scale() const
{
    const QImage table_device(1, 1, QImage::Format_RGB32);
    return static_cast<double>(d_device->logicalDpiY()) / table_device.logicalDpiY();
}

/// A document with a table of the headings and lines.
std::unique_ptr<QTextDocument> TListLayout::Document(const TLines& lines, const QSizeF& size) const
{
    auto document = std::make_unique<QTextDocument>();
    document->documentLayout()->setPaintDevice(d_device);
    document->setDefaultFont(Text_Font());
    document->setDocumentMargin(0);
    document->setUndoRedoEnabled(false);
    QTextOption option = document->defaultTextOption();
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    document->setDefaultTextOption(option);

    QTextTableFormat format;
    format.setBorder(0);
    format.setBorderCollapse(true);
    format.setCellPadding(cell_padding);
    format.setCellSpacing(0);
    format.setColumnWidthConstraints(d_widths);
    format.setHeaderRowCount(1);
    // One edit block, or each change would lay out the document.
    QTextCursor cursor(document.get());
    cursor.beginEditBlock();
    QTextTable* const table =
        cursor.insertTable(static_cast<int>(lines.size()) + 1, d_headings.texts.size(), format);
    Fill_Row(table, 0, d_headings);
    for (std::size_t row = 0; row < lines.size(); ++row)
        Fill_Row(table, static_cast<int>(row) + 1, lines[row]);
    cursor.endEditBlock();
    document->setPageSize(size);
    return document;
}

void TListLayout::Fill_Row(QTextTable* table, int row, const TLine& line)
{
    if (line.is_page_name)
        table->mergeCells(row, 0, 1, table->columns());
    for (int column = 0; column < line.texts.size(); ++column) {
        QTextTableCell cell = table->cellAt(row, column);
        QTextTableCellFormat format;
        format.setBottomBorder(rule_width);
        format.setBottomBorderStyle(QTextFrameFormat::BorderStyle_Solid);
        format.setBottomBorderBrush(rule_color);
        cell.setFormat(format);
        QTextCharFormat text_format;
        if (row == 0 || line.is_page_name)
            text_format.setFontWeight(QFont::Bold);
        cell.firstCursorPosition().insertText(line.texts.at(column), text_format);
    }
}

/// The heights of the headings and of each line, in device pixels.
std::vector<double> TListLayout::Heights() const
{
    std::vector<double> heights = Table_Heights({});
    // The time to lay out a table grows faster than its number of rows.
    constexpr std::ptrdiff_t lines_at_once = 25;
    auto begin = d_lines.cbegin();
    while (begin != d_lines.cend()) {
        const auto end = begin + std::min(lines_at_once, d_lines.cend() - begin);
        const std::vector<double> part = Table_Heights({begin, end});
        heights.insert(heights.end(), std::next(part.cbegin()), part.cend());
        begin = end;
    }
    return heights;
}

/// The heights of a table's rows, beginning with the headings.
std::vector<double> TListLayout::Table_Heights(const TLines& lines) const
{
    // Without a page height a document does not break pages.
    const auto document = Document(lines, QSizeF(d_room.width(), -1));
    const auto* const table =
        qobject_cast<QTextTable*>(document->rootFrame()->childFrames().constFirst());
    const auto top = [&](int row) {
        const QTextBlock block = table->cellAt(row, 0).firstCursorPosition().block();
        return document->documentLayout()->blockBoundingRect(block).top();
    };
    std::vector<double> heights;
    for (int row = 0; row + 1 < table->rows(); ++row)
        heights.push_back(top(row + 1) - top(row));
    heights.push_back(document->size().height() - top(table->rows() - 1));
    return heights;
}

/// The lines of each report page. Rows of a document page that continue on another report page
/// repeat its name there.
std::vector<TListLayout::TLines> TListLayout::Pages() const
{
    const std::vector<double> heights = Heights();
    std::vector<TLines> pages(1);
    double height = heights.front();
    std::size_t name = 0; // of the document page, among the lines
    for (std::size_t place = 0; place < d_lines.size(); ++place) {
        const bool is_name = d_lines[place].is_page_name;
        if (is_name)
            name = place;
        // A name stays on the same page as the first row below it.
        const double needed = heights[place + 1] + (is_name ? heights[place + 2] : 0.0);
        // Do not break after a name alone: the row below it is higher than a page.
        const bool has_rows = pages.back().size() > 1;
        if (height + needed > d_room.height() && has_rows) {
            pages.emplace_back();
            height = heights.front();
            if (!is_name) {
                pages.back().push_back(d_lines[name]);
                height += heights[name + 1];
            }
        }
        pages.back().push_back(d_lines[place]);
        height += heights[place + 1];
    }
    return pages;
}

} // namespace

TFindingsPainter::TFindingsPainter(const TFindings& findings, const QRect& room, QPainter* painter)
    : d_room(room)
    , d_painter(painter)
    , d_documents(TListLayout(findings, room.size(), painter->device()).Documents())
{
}

TFindingsPainter::~TFindingsPainter() = default;

int TFindingsPainter::Page_Count() const
{
    return std::accumulate(d_documents.cbegin(), d_documents.cend(), 0,
                           [](int count, const std::unique_ptr<QTextDocument>& document) {
                               return count + document->pageCount();
                           });
}

void TFindingsPainter::Draw(const std::function<void()>& begin_page) const
{
    for (const auto& document : d_documents) {
        for (int page = 0; page < document->pageCount(); ++page) {
            begin_page();
            const int top = page * d_room.height();
            d_painter->save();
            d_painter->translate(d_room.left(), d_room.top() - top);
            document->drawContents(d_painter, QRectF(0, top, d_room.width(), d_room.height()));
            d_painter->restore();
        }
    }
}
