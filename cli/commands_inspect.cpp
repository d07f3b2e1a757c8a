// Commands that show a document's content and its defects.

#include "cli/commandline.h"
#include "cli/commands.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/terminal.h"
#include "cli/translate.h"
#include "core/xmlfile.h"
#include "src/format/legacyfile.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

/// What `info` prints about a page.
struct TPageSummary
{
    QString name;
    QSize size; ///< of the image in pixels; (0, 0) when there is none
    int labels;
};

std::vector<TPageSummary> Summaries(const TDocument& document)
{
    TTerminalProgress progress(Tr("Reading page %1 of %2"));
    std::vector<TPageSummary> summaries;
    int number = 0;
    for (const TNamedPage& page : document.pages) {
        progress.Begin_Part(++number, static_cast<int>(document.pages.size()));
        const TPageItem& content = document.Content(page);
        summaries.push_back(
            {page.name, content.image.size(), static_cast<int>(content.data_items.size())});
    }
    return summaries;
}

void Print_Text(const QString& path, const TAppearance& appearance,
                const std::vector<TPageSummary>& pages)
{
    Terminal::Print(Tr("File: %1").arg(path));
    Terminal::Print(Tr("Label size: %1").arg(appearance.label_size));
    Terminal::Print(Tr("Label color: %1").arg(appearance.color_name));
    Terminal::Print(Tr("Header 1: ") + appearance.header_1);
    Terminal::Print(Tr("Header 2: ") + appearance.header_2);
    Terminal::Print(Tr("Pages: %1").arg(pages.size()));
    int number = 0;
    for (const TPageSummary& page : pages) {
        const QString size =
            page.size.isEmpty()
                ? Tr("no image")
                : QStringLiteral("%1 x %2").arg(page.size.width()).arg(page.size.height());
        // The name comes last and is appended, not substituted: it may contain "%1" or commas.
        Terminal::Print(Tr("%1: %2, labels: %3, ").arg(++number).arg(size).arg(page.labels) +
                        page.name);
    }
}

void Print_Json(const QString& path, const TAppearance& appearance,
                const std::vector<TPageSummary>& pages)
{
    QJsonArray list;
    int label_count = 0;
    for (const TPageSummary& page : pages) {
        label_count += page.labels;
        list.append(QJsonObject{{QStringLiteral("number"), list.size() + 1},
                                {QStringLiteral("name"), page.name},
                                {QStringLiteral("width"), page.size.width()},
                                {QStringLiteral("height"), page.size.height()},
                                {QStringLiteral("labels"), page.labels}});
    }
    const QJsonObject object{{QStringLiteral("file"), path},
                             {QStringLiteral("label_size"), appearance.label_size},
                             {QStringLiteral("label_color"), appearance.color_name},
                             {QStringLiteral("header_1"), appearance.header_1},
                             {QStringLiteral("header_2"), appearance.header_2},
                             {QStringLiteral("page_count"), list.size()},
                             {QStringLiteral("label_count"), label_count},
                             {QStringLiteral("pages"), list}};
    Terminal::Print_Text(QJsonDocument(object).toJson());
}

/// Describes all defects of a document.
QStringList Defects(const QString& path)
{
    QStringList defects;
    if (LegacyFile::Is_Legacy(path)) {
        try {
            LegacyFile::Read(path);
        } catch (const TXmlFileException& exception) {
            defects += exception.Placed_Message();
        }
        return defects;
    }
    const TProjectSurvey survey = Files::Survey(path);
    for (const TProjectDefect& defect : survey.defects)
        defects += Files::Describe(defect);
    return defects;
}

} // namespace

void Commands::Info(TCommandLine* line)
{
    line->Add_Argument(QStringLiteral("FILE"), Tr("The document."));
    line->Add_Flag(CommonOptions::Json, Tr("Print as JSON."));
    if (!line->Parse())
        return;

    const TDocument document = Files::Load(line->Argument());
    const std::vector<TPageSummary> pages = Summaries(document);
    const auto print = line->Is_Set(CommonOptions::Json) ? Print_Json : Print_Text;
    print(line->Argument(), document.appearance, pages);
}

void Commands::Check(TCommandLine* line)
{
    line->Add_Argument(QStringLiteral("FILE"), Tr("The documents."),
                       TCommandLine::TCount::One_Or_More);
    if (!line->Parse())
        return;

    bool is_sound = true;
    const QStringList paths = line->Arguments();
    for (const QString& path : paths) {
        QStringList defects;
        try {
            defects = Defects(path);
        } catch (const TJobError& error) {
            // Continue with the other files.
            defects += error.defect;
        }
        for (const QString& defect : std::as_const(defects))
            Terminal::Print_Error(path, defect);
        if (defects.isEmpty())
            Terminal::Print_Report(Tr("%1: no defects").arg(path));
        is_sound = is_sound && defects.isEmpty();
    }
    if (!is_sound)
        throw TReportedError();
}
