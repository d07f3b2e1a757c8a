#pragma once

#include <QRect>

#include <functional>

class QPainter;
struct TFindings;

/// Draws the list of findings on pages of the report.
namespace FindingsPainter {

/// Begins a page and returns the room for the list on it, in device pixels.
using TBeginPage = std::function<QRect()>;

/// Draws the list on as many pages as it takes, at least one. Each begins with the headings and the
/// name of the document's page. Rows are split only if they are higher than a page.
/// @param begin_page  all pages have the room of the first.
void Draw(const TFindings& findings, const TBeginPage& begin_page, QPainter* painter);

} // namespace FindingsPainter
