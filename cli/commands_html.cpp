// The web page.

#include "cli/commandline.h"
#include "cli/commands.h"
#include "cli/files.h"
#include "cli/findingsoptions.h"
#include "cli/output.h"
#include "cli/terminal.h"
#include "cli/translate.h"
#include "src/webpage/webpage.h"

namespace {

const char* const max_width_option = "max-width";

constexpr int largest_max_width = 100'000; // pixels

} // namespace

void Commands::Export_Html(TCommandLine* line)
{
    line->Add_Argument(QStringLiteral("FILE"), Tr("The document."));
    line->Add_Output_Option(CommonOptions::Output, QStringLiteral("FILE"),
                            Tr("The web page to write (required)."));
    FindingsOptions::Add(line);
    line->Add_Option(CommonOptions::Title, QStringLiteral("TEXT"),
                     Tr("Title of the web page; the first header line or the document's "
                        "file name by default."));
    line->Add_Option(max_width_option, QStringLiteral("PIXELS"),
                     Tr("Scale wider images down to this width."));
    if (!line->Parse())
        return;

    const QString input = line->Argument();
    const int max_width =
        line->Is_Set(max_width_option) ? line->Number(max_width_option, 1, largest_max_width) : 0;
    FindingsOptions::Check(*line, line->Text(CommonOptions::Output));
    const TOutput output(*line, CommonOptions::Output, TOutput::TContent::Text);
    Files::Check_Is_No_Input(line->Text(CommonOptions::Output), {input});
    const TDocument document = Files::Load_Pages(input);
    Files::Check_Images(input, document, document.Page_Numbers());
    const TFindings findings = FindingsOptions::Load(*line, document);
    TWebPage page =
        WebPage::Of(document.data, document.appearance, findings, Files::Base_Name(input));
    if (!line->Text(CommonOptions::Title).isEmpty())
        page.title = line->Text(CommonOptions::Title);
    page.max_width = max_width;
    TTerminalProgress progress(Tr("Exporting page %1 of %2"));
    QString problem;
    if (!WebPage::Save(page, progress.Report(), output.Path(), &problem))
        Files::Throw_Write_Error(output.Path(), problem);
    output.Finish();
}
