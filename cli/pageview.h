#pragma once

#include "src/displaywidget.h"
#include "src/export/pageexporter.h"
#include "src/format/document.h"

/// A view of a document's pages that nobody sees, set up as the window's is after it has opened the
/// document, so that what it draws is what the window draws.
class TPageView
{
public:
    /// @param document  not owned; a page of it becomes the active one.
    /// @param progress  of the exporter; may be empty.
    TPageView(TDocument* document, const TPageExporter::TProgress& progress);

    const TPageExporter& Exporter() const { return d_exporter; }

private:
    TDisplayWidget d_view;
    TPageExporter d_exporter;
};
