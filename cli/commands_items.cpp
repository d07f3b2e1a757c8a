// Commands that exchange labels with other programs: CSV tables and JSON.

#include "cli/commandline.h"
#include "cli/commands.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/findingsoptions.h"
#include "cli/itemimport.h"
#include "cli/output.h"
#include "cli/terminal.h"
#include "cli/translate.h"
#include "src/findings/findingsdata.h"
#include "src/format/csv.h"
#include "src/format/itemtable.h"

#include <algorithm>
#include <optional>

namespace {

const char* const replace_option = "replace";
const char* const dry_run_option = "dry-run";
const char* const any_place_option = "any-place";

/// Brings the labels of a table into a document.
/// @return what was done.
QStringList Import(const TCommandLine& line, const QString& table, TDocument* document)
{
    const auto others =
        line.Is_Set(replace_option) ? TItemImport::TOthers::Remove : TItemImport::TOthers::Keep;
    try {
        TItemImport import(ItemTable::Read(Files::Read(table), Csv::Comma, document->Page_Names()),
                           others);
        if (!line.Is_Set(any_place_option))
            import.Check_Positions(*document);
        return import.Apply(document);
    } catch (const TCsvException& exception) {
        throw TJobError{table, exception.Placed_Message()};
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
    line->Add_Option(CommonOptions::Output, QStringLiteral("FILE"),
                     Tr("The project to write (required without --dry-run)."));
    line->Add_Flag(replace_option, Tr("Remove the labels that the table does not name by an id."));
    line->Add_Flag(any_place_option, Tr("Accept positions that are far outside the images."));
    line->Add_Flag(dry_run_option, Tr("Only print what would happen."));
    line->Add_Force_Flag();
    if (!line->Parse())
        return;

    const bool is_dry_run = line->Is_Set(dry_run_option);
    const QString table = line->Text(CommonOptions::Csv);
    std::optional<TOutput> output;
    if (!is_dry_run || line->Is_Set(CommonOptions::Output)) {
        line->Require(CommonOptions::Output);
        Files::Check_Is_No_Legacy_Input(line->Text(CommonOptions::Output), line->Argument());
        Files::Check_Is_No_Input(line->Text(CommonOptions::Output), {table});
        output.emplace(*line, CommonOptions::Output, TOutput::TContent::Project);
    }
    TDocument document = Files::Load(line->Argument());
    const QStringList changes = Import(*line, table, &document);
    if (is_dry_run) {
        std::for_each(changes.cbegin(), changes.cend(), Terminal::Print);
    } else {
        Files::Save(output->Path(), document);
        output->Finish();
    }
}
