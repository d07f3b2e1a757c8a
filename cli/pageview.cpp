#include "cli/pageview.h"

TPageView::TPageView(TDocument* document, const TPageExporter::TProgress& progress)
    : d_view(nullptr)
    , d_exporter(&document->data, &d_view, progress)
{
    const int size = document->appearance.label_size;
    d_view.Set_Label_Size(QSize(size, size), TAppearance::Font_Size(size));
    d_view.Set_Label_Color(TAppearance::Color(document->appearance.color_name));
    // The last page is the one that is shown when a document has been opened. What the view has
    // shown decides how large it draws a page without a picture.
    if (document->pages.empty())
        return;
    d_view.Clear();
    document->data.Set_Active_Page(document->pages.back().page_id);
    if (document->data.Page_Image_Valid())
        TPageExporter::Fill_View(document->data, &d_view);
}
