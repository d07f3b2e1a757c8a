// Whatever can be saved of a damaged project.

#include "cli/commandline.h"
#include "cli/commands.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/terminal.h"
#include "cli/words.h"
#include "src/format/documentreader.h"
#include "src/format/legacyfile.h"

namespace {

/// An image that can be decoded. Bytes that cannot would be carried on to the new file, which is to
/// be free of defects.
TPageImage Sound_Image(const TPageImage& image)
{
    return image.isNull() ? TPageImage() : image;
}

} // namespace

void Commands::Recover(TCommandLine* line)
{
    line->Take_Arguments(QStringLiteral("FILE"), Translated("The damaged project."));
    line->Take_Output(Options::Output, QStringLiteral("FILE"),
                      Translated("The project to write (required)."));
    if (!line->Parse())
        return;

    const QString path = line->Argument();
    const QString output = line->Text(Options::Output);
    Files::Check_Output(output, line->Is_Set(Options::Force));
    if (LegacyFile::Is_Legacy(path))
        throw TJobError{path, Translated("is of an earlier generation, and no project")};
    TProjectSurvey survey = Files::Survey(path);
    if (survey.pages.empty() && !survey.defects.empty())
        throw TJobError{path, Files::Text(survey.defects.front())};
    for (TSurveyedPage& page : survey.pages)
        page.image = Sound_Image(page.image);
    TDocument document = DocumentReader::From_Survey(survey);
    Files::Save(output, &document);

    for (const TProjectDefect& defect : std::as_const(survey.defects))
        Terminal::Print(Translated("%1: damaged, %2").arg(path, Files::Text(defect)));
    std::size_t label_count = 0;
    int whole_count = 0;
    for (const TSurveyedPage& page : std::as_const(survey.pages)) {
        label_count += page.items.size();
        whole_count += page.is_whole ? 1 : 0;
    }
    // The name last of all that is filled in, as it may be anything.
    Terminal::Print(Translated("%5: pages: %1, of these whole: %2, labels: %3, defects: %4")
                        .arg(survey.pages.size())
                        .arg(whole_count)
                        .arg(label_count)
                        .arg(survey.defects.size())
                        .arg(output));
}
