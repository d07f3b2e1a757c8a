#include "cli/pageview.h"

#include <algorithm>

TPageView::TPageView(TDocument* document, const TProgressReport& report, bool has_halo,
                     QString* problem)
    : d_view(nullptr)
    , d_exporter(&document->data, &d_view, report, problem)
{
    const int size = document->appearance.label_size;
    d_view.Set_Label_Size(QSize(size, size), TAppearance::Font_Size(size));
    d_view.Set_Label_Color(TAppearance::Color(document->appearance.color_name));
    d_view.Set_Label_Halo(has_halo);
    // The size of a page without an image depends on the pages shown before. The window shows the
    // last page after opening a document.
    const auto has_no_image = [document](const TNamedPage& page) {
        return document->Content(page).image.Source_Bytes().isEmpty();
    };
    if (std::none_of(document->pages.cbegin(), document->pages.cend(), has_no_image))
        return;
    document->data.Set_Active_Page(document->pages.back().page_id);
    if (document->data.Page_Image_Valid())
        d_view.Show_Page(*document->data.Active_Page_Item());
}
