#pragma once

#include "src/displaywidget.h"
#include "src/export/pageexporter.h"
#include "src/format/document.h"

/// Draws a document's pages in a hidden page view.
///
/// The view is set up like that of a window that has just opened the document, so both draw the
/// same pixels.
class TPageView
{
public:
    /// @param document  not owned; its active page may change.
    /// @param report    passed to the exporter; may be empty.
    /// @param has_halo  whether labels have a thin light outline.
    /// @param problem   receives the reason if a file cannot be written; may be null, not owned.
    TPageView(TDocument* document, const TProgressReport& report, bool has_halo = false,
              QString* problem = nullptr);

    const TPageExporter& Exporter() const { return d_exporter; }

private:
    TDisplayWidget d_view;
    TPageExporter d_exporter;
};
