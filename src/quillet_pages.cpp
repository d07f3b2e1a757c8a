// Pages: adding, importing, encoding, removing and showing them.

#include "src/quillet.h"

#include "src/displaywidget.h"
#include "src/format/imageencoder.h"
#include "src/labelwidget.h"
#include "src/model/imagefiles.h"
#include "src/model/pageturn.h"
#include "src/pagewidget.h"
#include "src/safety/safetynet.h"
#include "src/undo/undohistory.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QScopedValueRollback>

#include <algorithm>
#include <utility>

namespace {

/// @param files   number of files chosen, at least one.
/// @param others  those that are not images.
QString Imported_Text(int files, const QStringList& others)
{
    if (others.isEmpty())
        return files == 1 ? TQuillet::tr("Imported 1 image")
                          : TQuillet::tr("Imported %1 images").arg(files);
    const QString name = QFileInfo(others.first()).fileName();
    const QString text =
        TQuillet::tr("Imported %1 of %2 images; ").arg(files - others.size()).arg(files);
    return text + (others.size() == 1 ? TQuillet::tr("%1 is not an image").arg(name)
                                      : TQuillet::tr("%1 and %2 more are not images")
                                            .arg(name, QString::number(others.size() - 1)));
}

} // namespace

void TQuillet::File_Import()
{
    Flush_Work();
    const QStringList paths = QFileDialog::getOpenFileNames(
        this, tr("Import one or more supported image files"), d_working_dir.absolutePath(),
        tr("Image Files (%1)").arg(ImageFiles::Patterns()));
    Import_Files(paths);
}

void TQuillet::Start_Encoder()
{
    d_image_encoder = std::make_unique<TImageEncoder>();
    connect(d_image_encoder.get(), &TImageEncoder::Encoded, this,
            [this](const TPageImage& image) { d_safety_net->Store_Png(image); });
}

/// Encodes the images of the document in the background, so that a save need not. Called when
/// pages were added, removed or replaced.
void TQuillet::Encode_Images()
{
    std::vector<TPageImage> images;
    images.reserve(d_data.Pages().size());
    for (const TPageItem& page : d_data.Pages())
        images.push_back(page.image);
    d_image_encoder->Set_Images(images);
    d_image_encoder->Start();
}

/// Imports image files, possibly none, as one step.
void TQuillet::Import_Files(const QStringList& paths)
{
    Commit_Editors();
    TProgress progress = New_Progress(tr("Importing image %1 of %2"));
    int number = 0;
    QStringList others;
    const TStepScope step = Record_Step(TStepKind::Import, 0, paths.size());
    for (const QString& path : paths) {
        progress.Begin_Part(++number, paths.size());
        if (!Import_Image(path))
            others += path;
    }
    if (!paths.isEmpty()) {
        Set_Working_File(paths.first());
        Mark_Changed();
        Encode_Images();
        Show_Status(Imported_Text(paths.size(), others));
    }
    Update_Document_Actions();
}

void TQuillet::Load_Image(const QString& path)
{
    Import_Image(path);
}

/// Makes an image file a page or the image of the active page; false if it is not an image.
bool TQuillet::Import_Image(const QString& path)
{
    const TPageImage image = TPageImage::From_File(path);
    if (image.isNull())
        return false;
    const TStepScope step = Record_Step(TStepKind::Import);
    if (d_data.Active_Page() < 0 || d_data.Page_Has_Data()) {
        d_page_widget->Add_Page(d_data.Add_Page(image));
        return true;
    }
    d_data.Set_Page_Image(image);
    d_display_widget->Set_Background_Image(QPixmap::fromImage(image));
    d_label_widget->setEnabled(true);
    return true;
}

void TQuillet::Add_Page()
{
    const TStepScope step = Record_Step(TStepKind::Add_Page);
    d_page_widget->Add_Page(d_data.Add_Page());
    Mark_Changed();
}

void TQuillet::Remove_Pages(const QList<int>& pages)
{
    if (Confirm(tr("Remove Pages"),
                tr("All page associated labels will be deleted.  Are you sure?"))) {
        const TStepScope step = Record_Step(TStepKind::Remove_Pages, 0, pages.size());
        Enable_Document_Actions(false);
        d_label_widget->Clear();
        d_display_widget->Clear();
        d_display_widget->Show_Start_Image();
        for (const int page : pages) {
            d_data.Remove_Page(page);
            d_page_widget->Remove_Page(page);
        }
        Encode_Images();
    }
    Update_Document_Actions();
    Mark_Changed();
}

/// Ids of the selected pages, from top to bottom.
QList<int> TQuillet::Selected_Pages() const
{
    const std::vector<int> selected = d_page_widget->Selected_Pages();
    QList<int> page_ids = d_page_widget->Page_Ids();
    const auto is_other = [&selected](int page_id) {
        return std::find(selected.cbegin(), selected.cend(), page_id) == selected.cend();
    };
    page_ids.erase(std::remove_if(page_ids.begin(), page_ids.end(), is_other), page_ids.end());
    return page_ids;
}

/// Rotates the selected pages that have an image.
void TQuillet::Turn_Pages(PageTurn::TDirection direction)
{
    Commit_Editors();
    QList<int> page_ids = Selected_Pages();
    const auto has_no_image = [this](int page_id) { return d_data.Page(page_id).image.isNull(); };
    page_ids.erase(std::remove_if(page_ids.begin(), page_ids.end(), has_no_image), page_ids.end());
    if (page_ids.isEmpty()) {
        Show_Status(tr("No page with an image is selected"));
        return;
    }
    const TShownState shown = Shown_State();
    TProgress progress = New_Progress(tr("Rotating page %1 of %2"));
    const TStepScope step = Record_Step(TStepKind::Rotate_Pages, 0, page_ids.size());
    int number = 0;
    for (const int page_id : std::as_const(page_ids)) {
        progress.Begin_Part(++number, page_ids.size());
        const TPageItem turned = PageTurn::Turned(d_data.Page(page_id), direction);
        d_data.Replace_Content(page_id, turned.image, turned.data_items);
    }
    Encode_Images();
    Mark_Changed();
    if (page_ids.contains(d_data.Active_Page())) {
        Refresh_Active_Page();
        Show_Selection(shown, d_page_widget->Selected_Pages());
    }
}

/// Inserts a copy of each selected page after it.
void TQuillet::Duplicate_Pages()
{
    Commit_Editors();
    const QList<int> page_ids = Selected_Pages();
    if (page_ids.isEmpty()) {
        Show_Status(tr("No page is selected"));
        return;
    }
    const TStepScope step = Record_Step(TStepKind::Duplicate_Pages, 0, page_ids.size());
    for (const int page_id : page_ids) {
        TPageItem page = d_data.Page(page_id);
        for (TDataItem& item : page.data_items)
            item.selected = false;
        const int copy_id = d_data.Add_Page(page.image);
        d_data.Replace_Content(copy_id, page.image, std::move(page.data_items));
        d_page_widget->Insert_Page(copy_id, d_page_widget->Page_Ids().indexOf(page_id) + 1);
        d_page_widget->Set_Page_Name(copy_id, tr("%1 copy").arg(d_page_widget->Page_Name(page_id)));
    }
    Mark_Changed();
}

void TQuillet::Page_Selection_Changed(int page)
{
    Finish_Step();
    d_label_widget->Clear();
    d_display_widget->Clear();
    // Showing a page changes nothing, although the view reports the position of each label.
    const bool changed = d_data_changed;
    if (d_data.Set_Active_Page(page) && d_data.Page_Image_Valid()) {
        d_label_widget->setEnabled(true);
        d_display_widget->setUpdatesEnabled(false);
        Fill_View();
        d_display_widget->setUpdatesEnabled(true);
    } else {
        d_display_widget->Show_Start_Image();
        d_label_widget->setEnabled(false);
    }
    Set_Changed(changed);
}

/// Shows the active page in list and view, which must have been cleared.
void TQuillet::Fill_View()
{
    const QScopedValueRollback<bool> filling(d_filling_view, true);
    const TPageItem& page = *d_data.Active_Page_Item();
    d_display_widget->Set_Background_Image(QPixmap::fromImage(page.image));
    if (page.image.Is_Lost())
        Show_Lost_Images();
    for (const TDataItem& item : page.data_items) {
        d_label_widget->Add_Item(item);
        d_display_widget->Add_Item(item);
    }
}

/// Rebuilds list and view after the labels' values have changed.
void TQuillet::Refresh_Active_Page()
{
    d_display_widget->setUpdatesEnabled(false);
    d_label_widget->Clear();
    d_display_widget->Clear();
    Fill_View();
    d_display_widget->setUpdatesEnabled(true);
}
