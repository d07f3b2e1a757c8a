// The command that compares two documents.

#include "cli/commandline.h"
#include "cli/commands.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/terminal.h"
#include "cli/translate.h"
#include "src/format/documentdiff.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

using TKind = TDifference::TKind;

/// A value on one line: texts are quoted and escaped as in JSON.
QString Quoted(const QJsonValue& value)
{
    const QByteArray array = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(array.mid(1, array.size() - 2));
}

/// What a difference is about.
QString Subject(const TDifference& difference)
{
    const bool is_left = difference.left_page > 0;
    if (!is_left && difference.right_page == 0)
        return QString();
    const QString page =
        Tr("page %1 %2: ")
            .arg(QString::number(is_left ? difference.left_page : difference.right_page),
                 Quoted(difference.page_name));
    return difference.label_id
               ? page +
                     Tr("label %1 (id %2): ").arg(difference.label_value).arg(*difference.label_id)
               : page;
}

QString Change(const TDifference& difference)
{
    const QString property =
        QString(difference.property).replace(QLatin1Char('_'), QLatin1Char(' ')) +
        QStringLiteral(": ");
    if (!difference.pixels)
        return property +
               QStringLiteral("%1 -> %2").arg(Quoted(difference.left), Quoted(difference.right));
    return property + (*difference.pixels > 0 ? Tr("%1 pixels differ").arg(*difference.pixels)
                                              : Tr("differs and cannot be decoded"));
}

QString Text(const TDifference& difference)
{
    const QString subject = Subject(difference);
    switch (difference.kind) {
    case TKind::Changed:
        return subject + Change(difference);
    case TKind::Added:
        return subject + Tr("added");
    case TKind::Removed:
        return subject + Tr("removed");
    case TKind::Moved:
        break;
    }
    return subject + (difference.property.isEmpty()
                          ? Tr("moved, now page %1").arg(difference.right_page)
                          : Tr("labels are in another order"));
}

QString Kind_Name(TKind kind)
{
    switch (kind) {
    case TKind::Changed:
        return QStringLiteral("changed");
    case TKind::Added:
        return QStringLiteral("added");
    case TKind::Removed:
        return QStringLiteral("removed");
    case TKind::Moved:
        break;
    }
    return QStringLiteral("moved");
}

QJsonObject Json(const TDifference& difference)
{
    QJsonObject object{{QStringLiteral("kind"), Kind_Name(difference.kind)}};
    if (difference.left_page > 0)
        object.insert(QStringLiteral("left_page"), difference.left_page);
    if (difference.right_page > 0)
        object.insert(QStringLiteral("right_page"), difference.right_page);
    if (difference.left_page > 0 || difference.right_page > 0)
        object.insert(QStringLiteral("page_name"), difference.page_name);
    if (difference.label_id) {
        object.insert(QStringLiteral("label_id"), *difference.label_id);
        object.insert(QStringLiteral("label_value"), difference.label_value);
    }
    if (!difference.property.isEmpty())
        object.insert(QStringLiteral("property"), difference.property);
    if (difference.pixels) {
        object.insert(QStringLiteral("pixels"), *difference.pixels);
    } else if (difference.kind == TKind::Changed) {
        object.insert(QStringLiteral("left"), difference.left);
        object.insert(QStringLiteral("right"), difference.right);
    }
    return object;
}

} // namespace

void Commands::Diff(TCommandLine* line)
{
    line->Add_Argument(QStringLiteral("LEFT"), Tr("The first document."));
    line->Add_Argument(QStringLiteral("RIGHT"), Tr("The second document."));
    line->Add_Flag(CommonOptions::Json, Tr("Print as JSON."));
    if (!line->Parse())
        return;

    const QStringList paths = line->Arguments();
    const TDocument left = Files::Load(paths.at(0));
    const TDocument right = Files::Load(paths.at(1));
    const std::vector<TDifference> differences = DocumentDiff::Compare(left, right);
    QJsonArray list;
    for (const TDifference& difference : differences) {
        if (line->Is_Set(CommonOptions::Json))
            list.append(Json(difference));
        else
            Terminal::Print_Report(Text(difference));
    }
    if (line->Is_Set(CommonOptions::Json)) {
        const QJsonObject object{{QStringLiteral("equal"), differences.empty()},
                                 {QStringLiteral("differences"), list}};
        Terminal::Print_Text(QJsonDocument(object).toJson());
    }
    if (!differences.empty())
        throw TReportedError();
}
