#pragma once

#include <QByteArray>

struct TFindings;

/// The list of findings as data.
namespace FindingsData {

/// A table in comma-separated values: the columns of ItemTable, then those of the headings.
QByteArray Csv(const TFindings& findings);

/// A JSON object: "headings" in order, and "pages" with their labels. Coordinates that are not
/// finite are null.
QByteArray Json(const TFindings& findings);

} // namespace FindingsData
