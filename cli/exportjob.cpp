#include "cli/exportjob.h"

#include "cli/commandline.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/terminal.h"
#include "cli/translate.h"
#include "core/samefile.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

#include <algorithm>
#include <utility>

namespace {

const char* const pages_option = "pages";
const char* const halo_option = "halo";

} // namespace

QList<int> TExportInput::Page_Ids() const
{
    QList<int> page_ids;
    for (const TExportPage& page : pages)
        page_ids += page.page_id;
    return page_ids;
}

void TExportJob::Declare(TCommandLine* line)
{
    line->Add_Argument(QStringLiteral("FILE"), Tr("The documents."),
                       TCommandLine::TCount::One_Or_More);
    line->Add_Option(pages_option, QStringLiteral("PAGES"),
                     Tr("Export only these pages, such as 1-3,7, in this order."));
    line->Add_Flag(halo_option, Tr("Draw a thin light outline around the labels."));
    line->Add_Flag(CommonOptions::Json, Tr("Print the list of written files as JSON."));
}

TExportJob::TExportJob(const TCommandLine& line)
    : d_line(line)
{
    if (line.Is_Set(pages_option))
        d_ranges = line.Pages(pages_option);
}

TExportJob::~TExportJob()
{
    if (d_is_finished)
        return;
    for (const QString& path : std::as_const(d_new_files))
        QFile::remove(path);
}

void TExportJob::Run(const std::function<void(TExportInput*)>& export_document)
{
    const QStringList paths = d_line.Arguments();
    for (const QString& path : paths) {
        TExportInput input = Load(path);
        export_document(&input);
    }
    d_is_finished = true;
    if (d_line.Is_Set(CommonOptions::Json))
        Terminal::Print_Text(QJsonDocument(d_details).toJson());
    else
        std::for_each(d_files.cbegin(), d_files.cend(), Terminal::Print_Report);
}

void TExportJob::Add_File(const QString& path, const QJsonObject& details)
{
    const bool exists = QFileInfo::exists(path);
    // Links may give a file several names.
    const auto is_same = [&path](const QString& file) { return Is_Same_File(path, file); };
    if (d_files.contains(path) ||
        (exists && std::any_of(d_files.cbegin(), d_files.cend(), is_same)))
        throw TJobError{path, Tr("would be written twice")};
    Files::Check_Output(path, d_line.Is_Set(CommonOptions::Force));
    Files::Check_Is_No_Input(path, d_line.Arguments());
    d_files += path;
    QJsonObject entry = details;
    entry.insert(QStringLiteral("path"), path);
    d_details.append(entry);
    if (!exists)
        d_missing_files += path;
}

void TExportJob::Mark_Written(const QString& path)
{
    if (d_missing_files.contains(path))
        d_new_files += path;
}

bool TExportJob::Has_Halo() const
{
    return d_line.Is_Set(halo_option);
}

TExportInput TExportJob::Load(const QString& path) const
{
    TExportInput input{path, Files::Load_Pages(path), {}};
    const auto page_count = static_cast<int>(input.document.pages.size());
    const int last_page = PageRanges::Last_Page(d_ranges);
    if (last_page > page_count)
        throw TJobError{path, Tr("there is no page %1").arg(last_page)};
    const std::vector<TPageRange> all{{1, page_count}};
    std::vector<int> numbers;
    for (const int number : PageRanges::Numbers(d_ranges.empty() ? all : d_ranges)) {
        const TNamedPage& page = input.document.pages[static_cast<std::size_t>(number) - 1];
        input.pages.push_back({number, page.page_id, page.name});
        numbers.push_back(number);
    }
    Files::Check_Images(path, input.document, numbers);
    return input;
}
