#include "src/findings/findingsdata.h"

#include "src/findings/findings.h"
#include "src/format/itemtable.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QJsonObject Label_Object(const TFinding& finding, const QStringList& headings)
{
    const TDataItem& label = finding.label;
    QJsonObject cells;
    for (int column = 0; column < finding.cells.size(); ++column)
        cells.insert(headings.at(column), finding.cells.at(column));
    return {{QStringLiteral("id"), label.id},
            {QStringLiteral("value"), label.value},
            {QStringLiteral("text"), label.text},
            {QStringLiteral("border"), ItemTable::Border_Text(label.border_type)},
            {QStringLiteral("x"), label.position.x()},
            {QStringLiteral("y"), label.position.y()},
            {QStringLiteral("findings"), cells}};
}

} // namespace

QByteArray FindingsData::Csv(const TFindings& findings)
{
    std::vector<TItemRow> rows;
    for (const TFindingsPage& page : findings.pages) {
        for (const TFinding& finding : page.rows)
            rows.push_back({page.number, finding.label, {}, finding.cells});
    }
    return ItemTable::Write(rows, findings.headings);
}

QByteArray FindingsData::Json(const TFindings& findings)
{
    QJsonArray pages;
    for (const TFindingsPage& page : findings.pages) {
        QJsonArray labels;
        for (const TFinding& finding : page.rows)
            labels.append(Label_Object(finding, findings.headings));
        pages.append(QJsonObject{{QStringLiteral("number"), page.number},
                                 {QStringLiteral("name"), page.name},
                                 {QStringLiteral("labels"), labels}});
    }
    const QJsonObject object{
        {QStringLiteral("headings"), QJsonArray::fromStringList(findings.headings)},
        {QStringLiteral("pages"), pages}};
    return QJsonDocument(object).toJson();
}
