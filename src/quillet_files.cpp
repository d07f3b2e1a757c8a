// The file commands New, Open, Save and Save As, and reading and writing project files.

#include "src/quillet.h"

#include "src/displaywidget.h"
#include "src/format/itemlist.h"
#include "src/format/legacyfile.h"
#include "src/format/projectfile.h"
#include "src/labelwidget.h"
#include "src/model/numbering.h"
#include "src/pagewidget.h"
#include "src/reportheaderdialog.h"
#include "src/safety/openmark.h"
#include "src/safety/safetynet.h"
#include "src/settingswidget.h"
#include "src/undo/undohistory.h"

#include "core/xmlfile.h"

#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QScopedValueRollback>
#include <QStatusBar>

void TQuillet::File_New()
{
    Commit_Editors();
    if (!Confirm_Loss())
        return;
    End_Recovery(d_data_changed);
    d_data.Clear();
    Encode_Images();
    d_page_widget->Clear();
    d_label_widget->Clear();
    d_display_widget->Clear();
    d_display_widget->Show_Start_Image();
    Enable_Document_Actions(false);
    Set_File_Name(QString());
    Set_Changed(false);
    d_history->Clear();
}

void TQuillet::File_Open()
{
    Commit_Editors();
    if (!Confirm_Loss())
        return;
    Flush_Work();
    const QString name = QFileDialog::getOpenFileName(this, tr("Select a Quillet file to open"),
                                                      d_working_dir.absolutePath(),
                                                      tr("Quillet files (*.quillet *.qld)"));
    if (!name.isEmpty())
        Open_File(name);
    Update_Document_Actions();
}

void TQuillet::Open_File(const QString& name)
{
    Replace_Document(name);
    const bool is_legacy = LegacyFile::Is_Legacy(name);
    // A legacy file is never overwritten: the next Save asks for a name.
    Set_File_Name(is_legacy ? QString() : name);
    Set_Working_File(is_legacy ? LegacyFile::Base_Name(name) : name);
    Set_Changed(false);
}

/// Replaces the document by that of a file; on failure shows the error and returns false.
bool TQuillet::Replace_Document(const QString& name)
{
    const bool loss_confirmed = d_data_changed;
    d_has_new_document = false;
    const bool is_legacy = LegacyFile::Is_Legacy(name);
    const QString path = is_legacy ? LegacyFile::Base_Name(name) : name;
    const TFileStamp stamp = TFileStamp::Of(name);
    d_file_places.clear();
    const bool loaded =
        Load_Quietly([&] { return is_legacy ? Load_Legacy_Data(path) : Load_Data(path); });
    Encode_Images();
    // Only after loading: if the file crashes the program, the old document can still be recovered.
    // If the file is refused at once, the old document stays open.
    if (d_has_new_document)
        End_Recovery(loss_confirmed, name);
    if (loaded)
        d_safety_net->After_Open(name, stamp, d_file_places);
    else
        Show_File_Error(tr("Error Loading Data"),
                        is_legacy ? tr("The legacy Quillet file cannot be loaded")
                                  : tr("The Quillet file cannot be loaded"));
    return loaded;
}

/// Sets the path of the document, and marks it as open in this window.
/// @param path  empty for a document without a file.
void TQuillet::Set_File_Name(const QString& path)
{
    d_file_name = path;
    Show_Document_Name();
    if (d_open_mark->Set(path))
        statusBar()->showMessage(
            tr("%1 is already open in another window").arg(QFileInfo(path).fileName()));
}

/// Loads without recording changes and undo steps.
bool TQuillet::Load_Quietly(const std::function<bool()>& load)
{
    const QScopedValueRollback<bool> filling(d_filling_view, true);
    return load();
}

void TQuillet::File_Save()
{
    Commit_Editors();
    if (d_file_name.isEmpty())
        File_SaveAs();
    else
        Save_To(d_file_name);
}

void TQuillet::File_SaveAs()
{
    Commit_Editors();
    Flush_Work();
    const QString name =
        QFileDialog::getSaveFileName(this, tr("Save quillet file"), d_working_dir.absolutePath(),
                                     tr("Quillet Files (*.quillet)"));
    if (name.isEmpty())
        return;
    Save_To(name);
    Set_File_Name(name);
    Set_Working_File(name);
}

/// Saves and reports a failure; the document counts as saved either way.
void TQuillet::Save_To(const QString& file_name)
{
    statusBar()->clearMessage();
    if (!Save_Data(file_name))
        Show_File_Error(tr("Error Saving Data"), tr("The Quillet file cannot be saved."));
    else if (statusBar()->currentMessage().isEmpty())
        Show_Status(tr("Saved %1").arg(QFileInfo(file_name).fileName()));
    Set_Changed(false);
}

bool TQuillet::Fail(const QString& reason)
{
    d_error_text = reason;
    return false;
}

QByteArray TQuillet::Write_Items() const
{
    std::vector<TDataItem> items;
    items.reserve(static_cast<std::size_t>(d_data.Item_Count()));
    for (int index = 0; index < d_data.Item_Count(); ++index)
        items.push_back(d_data.Item(index));
    return ItemList::Write(items);
}

void TQuillet::Read_Items(const QByteArray& document)
{
    ItemList::Read(document, [this](const TDataItem& item) { d_data.Add_Item(item); });
}

bool TQuillet::Save_Data(const QString& file_name)
{
    const bool saved = Write_Data(file_name);
    if (!saved)
        d_safety_net->After_Failed_Save(file_name);
    else if (ProjectFile::Loses_Headers(Appearance(), d_data.Page_Count()))
        Show_Status(
            tr("Without pages, a document cannot store all characters of its header lines."));
    // The saved document may have been the recovered work that the notice is about.
    Update_Recovery_Notice();
    return saved;
}

bool TQuillet::Write_Data(const QString& file_name)
{
    // Build the document first, since it takes long: if the program is killed meanwhile, the old
    // file is still complete. A fault is reported only after the file was opened, and so emptied.
    TProgress progress = New_Progress(tr("Saving page %1 of %2"));
    TProjectWriter writer;
    const QString fault = ProjectFile::Write(Appearance(), Named_Pages(), d_data, progress.Report(),
                                             &writer, d_image_encoder.get());
    progress.Update();
    QFile file(file_name);
    if (!Open_For_Saving(&file, writer.Size()))
        return Fail(tr("Cannot open file for writing"));
    if (!fault.isEmpty())
        return Fail(fault);
    progress.Update();
    writer.Write_To(&file);
    file.close();
    d_safety_net->After_Save(file_name, writer.Size(), writer.Places());
    Show_Lost_Images();
    // An incomplete file counts as saved, so this line stays until the next message.
    if (QFileInfo(file_name).size() != writer.Size())
        statusBar()->showMessage(
            tr("%1 was not written completely").arg(QFileInfo(file_name).fileName()));
    return true;
}

/// The label settings of the panel and the lines of the header dialog.
TAppearance TQuillet::Appearance() const
{
    return {d_settings_widget->Label_Size(), d_settings_widget->Label_Color().name(),
            d_header_dialog ? d_header_dialog->Header1_Text() : QString(),
            d_header_dialog ? d_header_dialog->Header2_Text() : QString()};
}

/// The pages in the order of the page list, with their names.
std::vector<TNamedPage> TQuillet::Named_Pages() const
{
    std::vector<TNamedPage> pages;
    const QList<int> page_ids = d_page_widget->Page_Ids();
    for (const int page_id : page_ids)
        pages.push_back({page_id, d_page_widget->Page_Name(page_id)});
    return pages;
}

bool TQuillet::Load_Data(const QString& file_name)
{
    TProgress progress = New_Progress(tr("Opening page %1 of %2"));
    QFile file(file_name);
    if (!file.open(QIODevice::ReadOnly))
        return Fail(tr("Cannot open file for reading"));
    // A pipe can only be read once and from its beginning to its end.
    const TByteSource content =
        file.isSequential() ? file.readAll() : TByteSource::Of_File(file_name);
    return Show_Content(ProjectFile::Read(content, progress.Report()), &progress);
}

/// Shows the content of a file. If it has a fault, sets d_error_text and returns false.
bool TQuillet::Show_Content(const TFileContent& content, TProgress* progress)
{
    if (content.label_size)
        d_settings_widget->Set_Label_Size(*content.label_size);
    if (content.color_name)
        Set_Label_Color(*content.color_name);
    // A document without header lines keeps those of the previous document.
    if (!content.header_1.isEmpty() || !content.header_2.isEmpty()) {
        Header_Dialog()->Set_Header1_Text(content.header_1);
        d_header_dialog->Set_Header2_Text(content.header_2);
    }
    int largest_value = 0;
    if (content.pages)
        Show_Pages(*content.pages, &largest_value);
    if (!content.fault.isEmpty())
        return Fail(content.fault);
    // Showing the page decodes its image.
    progress->Update();
    d_page_widget->Set_Active_Page(d_data.Active_Page());
    d_label_widget->Set_Label_Index(TNumbering::After(largest_value));
    return true;
}

/// Replaces the document. The last page becomes the active one, but is not shown yet.
/// @param largest_value  receives the largest value of all labels, at least 0.
void TQuillet::Show_Pages(const std::vector<TFilePage>& pages, int* largest_value)
{
    d_has_new_document = true;
    d_history->Clear();
    d_data.Clear();
    d_page_widget->Clear();
    *largest_value = 0;
    for (const TFilePage& page : pages) {
        const int page_id = d_data.Add_Page(page.image);
        d_data.Set_Active_Page(page_id);
        d_page_widget->Add_Page(page_id);
        d_page_widget->Set_Page_Name(page_id, page.name);
        for (const TDataItem& item : page.items)
            d_data.Add_Item(item);
        *largest_value = qMax(*largest_value, d_data.Item_Max_Value());
        // Only a project file has places.
        if (page.place.items.length == 0)
            continue;
        d_file_places.push_back(page.place);
        d_file_places.back().revision = d_data.Active_Page_Item()->revision;
        d_file_places.back().image_id = page.image.Id();
    }
}
