// Command that saves the readable parts of a damaged project or of a work log.

#include "cli/commandline.h"
#include "cli/commands.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/terminal.h"
#include "cli/translate.h"
#include "src/format/legacyfile.h"

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
    const QString output = line->Text(CommonOptions::Output);
    Files::Check_Project_Output(output, line->Is_Set(CommonOptions::Force));
    if (LegacyFile::Is_Legacy(path))
        throw TJobError{path,
                        Tr("is a file of an earlier generation; only projects can be recovered")};
    if (Files::Is_Work_Log(path)) {
        Terminal::Print(Files::Recover_Work_Log(path, output).join(QLatin1Char('\n')));
        return;
    }
    TProjectSurvey survey = Files::Survey(path);
    if (survey.pages.empty() && !survey.defects.empty())
        throw TJobError{path, Files::Describe(survey.defects.front())};
    for (TSurveyedPage& page : survey.pages)
        page.image = Sound_Image(page.image);
    Files::Save(output, TDocument(survey));

    for (const TProjectDefect& defect : std::as_const(survey.defects))
        Terminal::Print(Tr("%1: damaged, %2").arg(path, Files::Describe(defect)));
    std::size_t label_count = 0;
    int undamaged_count = 0;
    for (const TSurveyedPage& page : std::as_const(survey.pages)) {
        label_count += page.items.size();
        undamaged_count += page.is_whole ? 1 : 0;
    }
    // The path is substituted last: it may contain "%1".
    Terminal::Print(Tr("%5: pages: %1, undamaged pages: %2, labels: %3, defects: %4")
                        .arg(survey.pages.size())
                        .arg(undamaged_count)
                        .arg(label_count)
                        .arg(survey.defects.size())
                        .arg(output));
}
