// Command that finds defects of documents.

#include "cli/commandline.h"
#include "cli/commands.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/terminal.h"
#include "cli/translate.h"
#include "src/format/itemtable.h"
#include "src/format/legacyfile.h"
#include "src/model/imagecheck.h"
#include "src/paint/labelpainter.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRectF>

#include <algorithm>

namespace {

constexpr qint64 no_offset = -1; ///< of a defect that is not at a certain byte

/// Reports the labels of a page whose drawings are outside the image.
void Find_Stray_Labels(const TPageItem& page, int number, int label_size,
                       std::vector<TProjectDefect>* defects)
{
    const QRectF image(QPointF(0, 0), ImageCheck::Size(page.image.Stored_Source()));
    if (image.isEmpty())
        return;
    const int edge = label_size + LabelPainter::Margin;
    TLabelStyle style;
    style.width = style.height = edge;
    for (const TDataItem& label : page.data_items) {
        const QRectF drawing(label.position - LabelPainter::Centre(style), QSizeF(edge, edge));
        if (!drawing.intersects(image))
            defects->push_back({no_offset,
                                Tr("page %1: label %2 at %3 is outside the image")
                                    .arg(number)
                                    .arg(label.value)
                                    .arg(ItemTable::Position_Text(label.position)),
                                number, true});
    }
}

void Find_Stray_Labels(const TDocument& document, std::vector<TProjectDefect>* defects)
{
    int number = 0;
    for (const TNamedPage& page : document.pages)
        Find_Stray_Labels(document.Content(page), ++number, document.appearance.label_size,
                          defects);
}

/// Returns all defects of a document.
/// @throws TJobError if it cannot be read.
std::vector<TProjectDefect> Defects(const QString& path)
{
    std::vector<TProjectDefect> defects;
    if (LegacyFile::Is_Legacy(path)) {
        QString loss;
        const TDocument document = Files::Load_Legacy(path, &loss);
        if (!loss.isEmpty())
            defects.push_back({no_offset, loss});
        Find_Stray_Labels(document, &defects);
        return defects;
    }
    const TProjectSurvey survey = Files::Survey(path);
    defects = survey.defects;
    Find_Stray_Labels(TDocument(survey), &defects);
    return defects;
}

/// The same with an error as the only defect.
std::vector<TProjectDefect> Defects_Or_Error(const QString& path)
{
    try {
        return Defects(path);
    } catch (const TJobError& error) {
        // The image of a legacy document is another file.
        const QString file = error.file == path ? QString() : error.file + QStringLiteral(": ");
        return {{no_offset, file + error.defect}};
    }
}

void Print_Defects(const QString& path, const std::vector<TProjectDefect>& defects)
{
    for (const TProjectDefect& defect : defects) {
        const QString text = defect.offset == no_offset ? defect.what : Files::Describe(defect);
        const auto print = defect.is_harmless
                               ? Terminal::Print_Warning
                               : qOverload<const QString&, const QString&>(Terminal::Print_Error);
        print(path, text);
    }
    const auto warning_count =
        std::count_if(defects.cbegin(), defects.cend(),
                      [](const TProjectDefect& defect) { return defect.is_harmless; });
    // The path is not substituted: it may contain "%1".
    if (defects.empty())
        Terminal::Print_Report(path + Tr(": no defects"));
    else if (warning_count == static_cast<std::ptrdiff_t>(defects.size()))
        Terminal::Print_Report(path + Tr(": no defects, warnings: %1").arg(warning_count));
}

QJsonObject Json_Object(const QString& path, const std::vector<TProjectDefect>& defects)
{
    QJsonArray errors;
    QJsonArray warnings;
    for (const TProjectDefect& defect : defects) {
        QJsonObject entry{{QStringLiteral("message"), defect.what}};
        if (defect.offset != no_offset)
            entry.insert(QStringLiteral("byte"), defect.offset);
        if (defect.page > 0)
            entry.insert(QStringLiteral("page"), defect.page);
        (defect.is_harmless ? warnings : errors).append(entry);
    }
    return {{QStringLiteral("file"), path},
            {QStringLiteral("defects"), errors},
            {QStringLiteral("warnings"), warnings}};
}

} // namespace

void Commands::Check(TCommandLine* line)
{
    line->Add_Argument(QStringLiteral("FILE"), Tr("The documents."),
                       TCommandLine::TCount::One_Or_More);
    line->Add_Flag(CommonOptions::Json, Tr("Print as JSON."));
    if (!line->Parse())
        return;

    const bool is_json = line->Is_Set(CommonOptions::Json);
    bool is_sound = true;
    QJsonArray results;
    const QStringList paths = line->Arguments();
    for (const QString& path : paths) {
        const std::vector<TProjectDefect> defects = Defects_Or_Error(path);
        if (is_json)
            results.append(Json_Object(path, defects));
        else
            Print_Defects(path, defects);
        is_sound = is_sound &&
                   std::all_of(defects.cbegin(), defects.cend(),
                               [](const TProjectDefect& defect) { return defect.is_harmless; });
    }
    if (is_json)
        Terminal::Print_Text(QJsonDocument(results).toJson());
    if (!is_sound)
        throw TReportedError();
}
