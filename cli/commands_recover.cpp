// Command that saves the readable parts of a damaged project or of a work log.

#include "cli/commandline.h"
#include "cli/commands.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/output.h"
#include "cli/terminal.h"
#include "cli/translate.h"
#include "src/format/legacyfile.h"
#include "src/model/imagecheck.h"

#include <algorithm>

namespace {

/// Replaces damaged images by what can be decoded of them.
/// @return a message about each.
QStringList Repair_Images(std::vector<TSurveyedPage>* pages)
{
    QStringList messages;
    int number = 0;
    for (TSurveyedPage& page : *pages) {
        ++number;
        if (page.is_image_whole)
            continue;
        const ImageCheck::TRest rest = ImageCheck::Rest(page.image.Source_Bytes());
        page.image = rest.image.Encoded();
        if (rest.image.isNull())
            messages += Tr("page %1: the image is lost").arg(number);
        else if (rest.lost_rows > 0)
            messages += Tr("page %1: %2 of %3 rows of the image are incomplete")
                            .arg(number)
                            .arg(rest.lost_rows)
                            .arg(rest.rows);
    }
    return messages;
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
    // What cannot be read now may be readable in another way.
    Files::Check_Is_No_Input(line->Text(CommonOptions::Output), {path});
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
    const QStringList losses = Repair_Images(&survey.pages);
    Files::Save(output.Path(), TDocument(survey));
    output.Finish();

    std::size_t defect_count = 0;
    for (const TProjectDefect& defect : std::as_const(survey.defects)) {
        defect_count += defect.is_harmless ? 0 : 1;
        const QString report = defect.is_harmless ? Tr("%1: warning: %2") : Tr("%1: damaged, %2");
        Terminal::Print_Report(report.arg(path, Files::Describe(defect)));
    }
    for (const QString& loss : losses)
        Terminal::Print_Report(path + QStringLiteral(": ") + loss);
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
                               .arg(defect_count)
                               .arg(line->Text(CommonOptions::Output)));
}
