// Command that shows a document's content.

#include "cli/commandline.h"
#include "cli/commands.h"
#include "cli/files.h"
#include "cli/terminal.h"
#include "cli/translate.h"
#include "src/model/imagecheck.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

/// What `info` prints about a page.
struct TPageSummary
{
    QString name;
    bool has_image;
    QSize size; ///< of the image in pixels; (0, 0) if there is none or its header is damaged
    int labels;
};

std::vector<TPageSummary> Summaries(const TDocument& document)
{
    std::vector<TPageSummary> summaries;
    for (const TNamedPage& page : document.pages) {
        const TPageItem& content = document.Content(page);
        const TByteSource image = content.image.Stored_Source();
        summaries.push_back({page.name, !image.Is_Empty(), ImageCheck::Size(image),
                             static_cast<int>(content.data_items.size())});
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
        QString size = page.has_image ? Tr("damaged image") : Tr("no image");
        if (!page.size.isEmpty())
            size = QStringLiteral("%1 x %2").arg(page.size.width()).arg(page.size.height());
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
