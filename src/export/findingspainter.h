#pragma once

#include <QRect>

#include <functional>
#include <memory>
#include <vector>

class QPainter;
class QTextDocument;
struct TFindings;

/// Draws the list of findings on pages of the report.
///
/// The list takes at least one page. Each page begins with the headings and the name of the
/// document's page. Rows are split only if they are higher than a page.
class TFindingsPainter
{
public:
    /// Headings of a table for which a page has room. With more, columns are narrower than a
    /// letter.
    static constexpr int Maximum_Headings = 24;

    /// Lays out the list.
    /// @param findings  with at most Maximum_Headings.
    /// @param room     for the list on each page, in pixels of the painter's device.
    /// @param painter  active; not owned.
    TFindingsPainter(const TFindings& findings, const QRect& room, QPainter* painter);
    ~TFindingsPainter();
    TFindingsPainter(const TFindingsPainter&) = delete;
    TFindingsPainter& operator=(const TFindingsPainter&) = delete;

    int Page_Count() const;

    /// Draws the list.
    /// @param begin_page  is called before each page.
    void Draw(const std::function<void()>& begin_page) const;

private:
    QRect d_room;
    QPainter* d_painter;
    /// One for each page; one with a row that is higher than a page has several pages.
    std::vector<std::unique_ptr<QTextDocument>> d_documents;
};
