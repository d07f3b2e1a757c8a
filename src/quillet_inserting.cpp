// Pages from image files and PDFs: drops, the page list's context menu, and the command line.

#include "src/quillet.h"

#include "src/format/imageencoder.h"
#include "src/format/legacyfile.h"
#include "src/model/imagefiles.h"
#include "src/pageinput/inputfile.h"
#include "src/pagewidget.h"
#include "src/undo/undohistory.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QTimer>

#include <algorithm>
#include <iterator>
#include <numeric>

namespace {

/// Images that were read, and what the user should know about the others.
struct TReadPages
{
    std::vector<TPageImage> images;
    QStringList pdf_faults;
    QStringList notes; ///< about images that cannot be read and incomplete pages

    void Add_Fault(const TInputFile& file, const QString& message)
    {
        if (file.Is_Pdf())
            pdf_faults += About(file, message);
        else if (file.Page_Count() > 1)
            notes += About(file, message);
        else
            notes += TQuillet::tr("%1 is not an image").arg(QFileInfo(file.Path()).fileName());
    }

    void Add_Note(const TInputFile& file, const QString& message) { notes += About(file, message); }

    static QString About(const TInputFile& file, const QString& message)
    {
        return QFileInfo(file.Path()).fileName() + QStringLiteral(": ") + message;
    }
};

/// The first messages and the number of the others.
QStringList First_Messages(const QStringList& messages, int count)
{
    QStringList first = messages.mid(0, count);
    if (messages.size() > count)
        first += TQuillet::tr("and %1 more").arg(messages.size() - count);
    return first;
}

/// Shortens messages to a text for a message box, which shows rich text.
QString Box_Text(const QStringList& messages)
{
    constexpr int maximum_messages = 5;
    return First_Messages(messages, maximum_messages)
        .join(QLatin1Char('\n'))
        .toHtmlEscaped()
        .replace(QLatin1Char('\n'), QStringLiteral("<br>"));
}

/// Describes an insertion in one line.
QString Status_Text(std::size_t page_count, const QStringList& messages)
{
    QString text = TQuillet::tr("Inserted %1 pages").arg(page_count);
    if (page_count <= 1)
        text = page_count == 0 ? TQuillet::tr("No page inserted") : TQuillet::tr("Inserted 1 page");
    if (!messages.isEmpty())
        text += QStringLiteral(". ") + First_Messages(messages, 1).join(QLatin1Char(' '));
    return text;
}

/// Whether a path has the suffix of a document. Its content may look like that of a PDF.
bool Is_Document_Name(const QString& path)
{
    return path.endsWith(QLatin1String(".quillet"), Qt::CaseInsensitive) ||
           LegacyFile::Is_Legacy(path);
}

/// Counts the pages of files. Leaves out those that cannot be opened.
std::vector<TInputFile> Input_Files(const QStringList& paths, const TInputOptions& options,
                                    TReadPages* pages)
{
    std::vector<TInputFile> files;
    for (const QString& path : paths) {
        TInputFile file(path, options);
        const QString fault = file.Open();
        if (fault.isEmpty())
            files.push_back(std::move(file));
        else
            pages->Add_Fault(file, fault);
    }
    return files;
}

/// Reads the pages of files. Skips the rest of a file after a page that cannot be read.
void Read_Files(std::vector<TInputFile>* files, TProgress* progress, TReadPages* pages)
{
    const int total =
        std::accumulate(files->cbegin(), files->cend(), 0, [](int count, const TInputFile& file) {
            return count + file.Page_Count();
        });
    int number = 0;
    for (TInputFile& file : *files) {
        bool is_readable = true;
        for (int index = 0; index < file.Page_Count(); ++index) {
            progress->Begin_Part(++number, total);
            if (!is_readable)
                continue;
            const TInputPage page = file.Read(index);
            is_readable = page.image.has_value();
            if (!is_readable) {
                pages->Add_Fault(file, page.message);
                continue;
            }
            pages->images.push_back(*page.image);
            if (!page.message.isEmpty())
                pages->Add_Note(file, page.message);
        }
    }
}

} // namespace

void TQuillet::Insert_Images_Here()
{
    Flush_Work();
    const QString patterns =
        QStringLiteral("*.") + ImageFiles::Suffixes().join(QStringLiteral(" *."));
    const QStringList paths =
        QFileDialog::getOpenFileNames(this, tr("Insert images"), d_working_dir.absolutePath(),
                                      tr("Image Files (%1)").arg(patterns));
    Insert_Files(paths, TInputOptions(), Row_After_Selected_Pages());
}

void TQuillet::Insert_Pdf_Pages()
{
    Flush_Work();
    const QStringList paths = QFileDialog::getOpenFileNames(
        this, tr("Insert pages from PDF"), d_working_dir.absolutePath(), tr("PDF Files (*.pdf)"));
    if (paths.isEmpty())
        return;
    TInputOptions options;
    bool is_accepted = false;
    options.resolution =
        QInputDialog::getInt(this, tr("Insert pages from PDF"), tr("Resolution in dots per inch:"),
                             TPdfFile::Default_Resolution, TPdfFile::Lowest_Resolution,
                             TPdfFile::Highest_Resolution, 1, &is_accepted);
    if (is_accepted)
        Insert_Files(paths, options, Row_After_Selected_Pages());
}

/// Inserts files that were dropped on the window, at the end.
void TQuillet::Insert_Dropped_Files(const QStringList& paths)
{
    Flush_Work();
    Insert_Files(paths, TInputOptions(), d_page_widget->Page_Ids().size());
}

/// The row after the last selected page; without a selection, the row after all pages.
int TQuillet::Row_After_Selected_Pages() const
{
    const QList<int> page_ids = d_page_widget->Page_Ids();
    int row = -1;
    for (const int page_id : d_page_widget->Selected_Pages())
        row = qMax(row, page_ids.indexOf(page_id));
    return row < 0 ? page_ids.size() : row + 1;
}

/// Inserts the pages of files, sorted by name, as one step.
/// @param row  of the first new page in the page list.
void TQuillet::Insert_Files(const QStringList& paths, const TInputOptions& options, int row)
{
    if (paths.isEmpty())
        return;
    Commit_Editors();
    QStringList sorted_paths = paths;
    ImageFiles::Sort(&sorted_paths);
    TReadPages pages;
    {
        TProgress progress = New_Progress(tr("Reading page %1 of %2"));
        std::vector<TInputFile> files = Input_Files(sorted_paths, options, &pages);
        Read_Files(&files, &progress, &pages);
        // Protecting the new pages may take long, too.
        Insert_Pages(pages.images, row);
    }
    Set_Working_File(sorted_paths.first());
    if (pages.pdf_faults.isEmpty())
        Show_Status(Status_Text(pages.images.size(), pages.notes));
    else
        Show_Message(tr("Error Inserting Pages"), Box_Text(pages.pdf_faults + pages.notes),
                     QString(), QMessageBox::Ok, QMessageBox::Ok, QMessageBox::Critical);
}

void TQuillet::Insert_Pages(const std::vector<TPageImage>& images, int row)
{
    if (images.empty())
        return;
    const TStepScope step =
        Record_Step(TStepKind::Insert_Pages, 0, static_cast<int>(images.size()));
    for (const TPageImage& image : images)
        d_page_widget->Insert_Page(d_data.Add_Page(image), row++);
    Encode_Images();
    // The work log would encode them one after the other.
    for (const TPageImage& image : images) {
        if (!image.Has_Source())
            d_image_encoder->Encode(image);
    }
    Mark_Changed();
    Update_Document_Actions();
}

/// Handles files that were dropped on the window.
void TQuillet::Drop_Files(const QStringList& paths)
{
    if (std::none_of(paths.cbegin(), paths.cend(), Is_Document_Name)) {
        Insert_Dropped_Files(paths);
        return;
    }
    QStringList accepted;
    std::copy_if(paths.cbegin(), paths.cend(), std::back_inserter(accepted), Can_Open);
    // A question now would block the program that the files come from.
    QTimer::singleShot(0, this, [this, accepted] { Open_Files(accepted); });
}

/// Whether a file is a document, or has pages to insert.
bool TQuillet::Can_Open(const QString& path)
{
    return Is_Document_Name(path) || ImageFiles::Is_Image_Or_Pdf(path);
}

void TQuillet::Open_Arguments(const QStringList& arguments)
{
    QStringList paths;
    for (const QString& argument : arguments) {
        // Qt's own options are removed already.
        if (!argument.startsWith(QLatin1Char('-')))
            paths += QFileInfo(argument).absoluteFilePath();
    }
    Open_Files(paths);
}

/// Opens the first document among these files, and inserts the pages of images and PDFs.
void TQuillet::Open_Files(const QStringList& paths)
{
    QStringList documents;
    QStringList pages;
    for (const QString& path : paths)
        (!Is_Document_Name(path) && ImageFiles::Is_Image_Or_Pdf(path) ? pages : documents) += path;
    if (!documents.isEmpty()) {
        Commit_Editors();
        if (!Confirm_Loss())
            return;
        Flush_Work();
        Open_File(documents.first());
        Update_Document_Actions();
    }
    Insert_Dropped_Files(pages);
    if (documents.size() > 1)
        Show_Status(tr("%1 was not opened: a window shows one document")
                        .arg(QFileInfo(documents.at(1)).fileName()));
}
