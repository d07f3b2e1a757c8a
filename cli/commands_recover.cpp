// Command that saves the readable parts of a damaged project or of a work log.

#include "cli/commandline.h"
#include "cli/commands.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/output.h"
#include "cli/terminal.h"
#include "cli/translate.h"
#include "src/format/legacyfile.h"

#include <algorithm>

namespace {

/// Returns the image, or a null image if it cannot be decoded: undecodable bytes would be a defect
/// of the new file.
TPageImage Sound_Image(const TPageImage& image)
{
    return image.isNull() ? TPageImage() : image;
}

} // namespace

void Commands::Recover(TCommandLine* line)
{
    line->Add_Argument(QStringLiteral("FILE"), Tr("The damaged project, or a work log."));
    line->Add_Output_Option(CommonOptions::Output, QStringLiteral("FILE"),
                            Tr("The project to write (required)."));
    if (!line->Parse())
        return;

    const QString path = line->Argument();
    const TOutput output(*line, CommonOptions::Output, TOutput::TContent::Project);
    if (LegacyFile::Is_Legacy(path))
        throw TJobError{path,
                        Tr("is a file of an earlier generation; only projects can be recovered")};
    if (Files::Is_Work_Log(path)) {
        const QStringList report = Files::Recover_Work_Log(path, output.Path());
        output.Finish();
        std::for_each(report.cbegin(), report.cend(), Terminal::Print_Report);
        return;
    }
    TProjectSurvey survey = Files::Survey(path);
    if (survey.pages.empty() && !survey.defects.empty())
        throw TJobError{path, Files::Describe(survey.defects.front())};
    for (TSurveyedPage& page : survey.pages)
        page.image = Sound_Image(page.image);
    Files::Save(output.Path(), TDocument(survey));
    output.Finish();

    for (const TProjectDefect& defect : std::as_const(survey.defects))
        Terminal::Print_Report(Tr("%1: damaged, %2").arg(path, Files::Describe(defect)));
    std::size_t label_count = 0;
    int undamaged_count = 0;
    for (const TSurveyedPage& page : std::as_const(survey.pages)) {
        label_count += page.items.size();
        undamaged_count += page.is_whole ? 1 : 0;
    }
    // The path is substituted last: it may contain "%1".
    Terminal::Print_Report(Tr("%5: pages: %1, undamaged pages: %2, labels: %3, defects: %4")
                               .arg(survey.pages.size())
                               .arg(undamaged_count)
                               .arg(label_count)
                               .arg(survey.defects.size())
                               .arg(line->Text(CommonOptions::Output)));
}
