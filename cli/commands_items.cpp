// Commands that exchange labels with other programs: CSV tables and JSON.

#include "cli/commandline.h"
#include "cli/commands.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/findingsoptions.h"
#include "cli/output.h"
#include "cli/terminal.h"
#include "cli/translate.h"
#include "src/findings/findingsdata.h"
#include "src/format/csv.h"
#include "src/format/itemtable.h"

#include <QRegularExpression>

#include <optional>

namespace {

/// Groups the labels of a table by page.
/// @throws TCsvException for a page that the document does not have.
std::vector<std::vector<TDataItem>> Labels_By_Page(const std::vector<TItemRow>& rows,
                                                   std::size_t page_count)
{
    std::vector<std::vector<TDataItem>> labels(page_count);
    for (const TItemRow& row : rows) {
        if (row.page < 1 || static_cast<std::size_t>(row.page) > page_count)
            throw TCsvException(Tr("there is no page %1").arg(row.page), row.place);
        labels[static_cast<std::size_t>(row.page) - 1].push_back(row.item);
    }
    return labels;
}

std::vector<std::vector<TDataItem>> Read_Labels(const QString& table, const TDocument& document)
{
    try {
        const std::vector<TItemRow> rows =
            ItemTable::Read(Files::Read(table), Csv::Comma, document.Page_Names());
        return Labels_By_Page(rows, document.pages.size());
    } catch (const TCsvException& exception) {
        throw TJobError{table, exception.Placed_Message()};
    }
}

/// Replaces line breaks with blanks: a label has one line.
QString In_One_Line(QString text)
{
    static const QRegularExpression line_break(QStringLiteral("\\r\\n|\\r|\\n"));
    return text.replace(line_break, QStringLiteral(" "));
}

/// Adds labels to the active page under unused ids.
void Add_Labels(const std::vector<TDataItem>& labels, TData* data)
{
    int next_id = 1;
    for (TDataItem label : labels) {
        label.text = In_One_Line(label.text);
        do
            label.id = next_id++;
        while (!data->Add_Item(label));
    }
}

} // namespace

void Commands::Export_Items(TCommandLine* line)
{
    line->Add_Argument(QStringLiteral("FILE"), Tr("The document."));
    line->Add_Option(CommonOptions::Csv, QStringLiteral("ITEMS.csv"),
                     Tr("The table to write (required without --json)."));
    line->Add_Flag(CommonOptions::Json, Tr("Print as JSON."));
    FindingsOptions::Add(line);
    line->Add_Force_Flag();
    if (!line->Parse())
        return;

    const bool is_json = line->Is_Set(CommonOptions::Json);
    if (!is_json && !line->Is_Set(CommonOptions::Csv))
        throw TUsageError{Tr("Missing option 'csv' or 'json'.")};
    if (line->Is_Set(CommonOptions::Csv))
        line->Require(CommonOptions::Csv);
    FindingsOptions::Check(*line, line->Text(CommonOptions::Csv));
    std::optional<TOutput> output;
    if (line->Is_Set(CommonOptions::Csv)) {
        if (is_json && line->Text(CommonOptions::Csv) == Files::Standard_Stream)
            throw TUsageError{Tr("Standard output can be used only once.")};
        Files::Check_Is_No_Input(line->Text(CommonOptions::Csv), {line->Argument()});
        output.emplace(*line, CommonOptions::Csv, TOutput::TContent::Text);
    }
    const TDocument document = Files::Load(line->Argument());
    const TFindings findings = FindingsOptions::Load(*line, document);
    if (output) {
        Files::Write(output->Path(), FindingsData::Csv(findings));
        output->Finish();
    }
    if (is_json)
        Terminal::Print_Text(FindingsData::Json(findings));
}

void Commands::Import_Items(TCommandLine* line)
{
    line->Add_Argument(QStringLiteral("FILE"), Tr("The document."));
    line->Add_Option(CommonOptions::Csv, QStringLiteral("ITEMS.csv"),
                     Tr("The table to read (required)."), TCommandLine::TNeed::Required);
    line->Add_Output_Option(CommonOptions::Output, QStringLiteral("FILE"),
                            Tr("The project to write (required)."));
    if (!line->Parse())
        return;

    const QString table = line->Text(CommonOptions::Csv);
    Files::Check_Is_No_Legacy_Input(line->Text(CommonOptions::Output), line->Argument());
    Files::Check_Is_No_Input(line->Text(CommonOptions::Output), {table});
    const TOutput output(*line, CommonOptions::Output, TOutput::TContent::Project);
    TDocument document = Files::Load(line->Argument());
    const auto labels = Read_Labels(table, document);
    for (std::size_t index = 0; index < labels.size(); ++index) {
        document.data.Set_Active_Page(document.pages[index].page_id);
        Add_Labels(labels[index], &document.data);
    }
    Files::Save(output.Path(), document);
    output.Finish();
}
