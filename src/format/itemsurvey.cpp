#include "src/format/itemsurvey.h"

#include "core/xmlfile.h"
#include "src/format/itemlist.h"
#include "src/format/itemxml.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QSet>
#include <QStringList>
#include <QTextCodec>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace {

/// Offsets of everything that looks like the begin tag of an "Item" element.
std::vector<int> Item_Offsets(const QByteArray& document)
{
    static const QRegularExpression item_begin(QStringLiteral("<Item[\\s/>]"));
    std::vector<int> offsets;
    // In Latin-1, each byte is one character. Without the size, a zero byte would end the text.
    auto matches =
        item_begin.globalMatch(QString::fromLatin1(document.constData(), document.size()));
    while (matches.hasNext())
        offsets.push_back(matches.next().capturedStart());
    return offsets;
}

bool Is_Utf8(const QByteArray& document)
{
    const QByteArray declaration = document.left(document.indexOf("?>") + 1).toLower();
    const int encoding = declaration.indexOf("encoding");
    if (encoding >= 0 && declaration.indexOf("utf-8", encoding) < 0)
        return true; // Another encoding is declared, which is not checked.
    QTextCodec::ConverterState state;
    QTextCodec::codecForName("UTF-8")->toUnicode(document.constData(), document.size(), &state);
    return state.invalidChars == 0 && state.remainingChars == 0;
}

bool Is_Finite_Number(const QString& text)
{
    bool is_number = false;
    return std::isfinite(text.toDouble(&is_number)) && is_number;
}

/// Reads the labels of a label document and reports its defects.
class TItemSurveyor
{
    Q_DECLARE_TR_FUNCTIONS(ItemSurvey)

public:
    explicit TItemSurveyor(const QByteArray& document)
        : d_document(document)
    {
    }

    TItemSurvey Survey();

private:
    void Read_Document(const TXmlFile& xml_file);
    void Read_Root_Alone();
    void Read_Separately();
    void Read_Element(const QByteArray& element);
    void Read_Item(const TXmlFile& xml_file, const QDomElement& node);
    void Check_Texts(const TXmlFile& xml_file, const QDomElement& node);
    void Replace_Repeated_Ids();

    void Begin_Label(int offset)
    {
        ++d_number;
        d_offset = offset;
    }
    /// Reports a defect of the current label.
    void Report(const QString& what, bool is_harmless = false)
    {
        d_survey.defects.push_back(
            {d_offset, tr("label %1: %2").arg(d_number).arg(what), 0, is_harmless});
    }

    const QByteArray d_document;
    TItemSurvey d_survey;
    QSet<int> d_ids;
    std::vector<std::size_t> d_repeated; ///< indices of labels whose id an earlier label has
    int d_number = 0;                    ///< of the current label, from 1
    int d_offset = 0;                    ///< of the current label
};

TItemSurvey TItemSurveyor::Survey()
{
    try {
        TXmlFile xml_file;
        int version = 0;
        xml_file.Open_Data(d_document, ItemXml::Root_Name, &version, true);
        if (version != ItemList::Version)
            d_survey.defects.push_back({0, tr("XML Version not recognized")});
        if (!Is_Utf8(d_document))
            d_survey.defects.push_back({0, tr("the label document is not valid UTF-8")});
        d_survey.texts = PageTexts::Read(xml_file);
        Read_Document(xml_file);
    } catch (const TXmlFileException& exception) {
        d_survey.defects.push_back({0, tr("label document, %1").arg(exception.Placed_Message())});
        Read_Root_Alone();
        Read_Separately();
    }
    Replace_Repeated_Ids();
    return std::move(d_survey);
}

/// Reads the labels of a well-formed document.
void TItemSurveyor::Read_Document(const TXmlFile& xml_file)
{
    std::vector<QDomElement> nodes;
    for (QDomElement node = xml_file.Get_Node(&xml_file.d_root_element, ItemXml::Item_Name, true);
         !node.isNull(); node = xml_file.Get_Sibling_Node(&node, ItemXml::Item_Name, true))
        nodes.push_back(node);
    // The parser has no offsets. A comment may contain what looks like a label.
    std::vector<int> offsets = Item_Offsets(d_document);
    if (offsets.size() != nodes.size())
        offsets.assign(nodes.size(), 0);
    auto offset = offsets.cbegin();
    for (const QDomElement& node : nodes) {
        Begin_Label(*offset++);
        Read_Item(xml_file, node);
    }
}

/// Reads the root's begin tag of a document that is not well-formed.
void TItemSurveyor::Read_Root_Alone()
{
    const int begin = d_document.indexOf(ItemXml::Root_Begin);
    const int end = d_document.indexOf('>', begin);
    if (begin < 0 || end < 0)
        return;
    QByteArray tag = d_document.mid(begin, end - begin);
    if (!tag.endsWith('/'))
        tag += '/';
    try {
        TXmlFile xml_file;
        xml_file.Open_Data(tag + '>', ItemXml::Root_Name, nullptr, true);
        d_survey.texts = PageTexts::Read(xml_file);
    } catch (const TXmlFileException&) {
        // The defect is in the tag, and has been reported.
    }
}

/// Reads the labels of a document that is not well-formed, each as a document of its own.
void TItemSurveyor::Read_Separately()
{
    std::vector<int> offsets = Item_Offsets(d_document);
    offsets.push_back(d_document.size());
    for (std::size_t i = 0; i + 1 < offsets.size(); ++i) {
        Begin_Label(offsets[i]);
        const QByteArray element = d_document.mid(offsets[i], offsets[i + 1] - offsets[i]);
        const int end = element.indexOf(ItemXml::Item_End);
        if (end < 0)
            Report(tr("the element is not closed"));
        else
            Read_Element(element.left(end) + ItemXml::Item_End);
    }
}

void TItemSurveyor::Read_Element(const QByteArray& element)
{
    try {
        TXmlFile xml_file;
        xml_file.Open_Data(element, ItemXml::Item_Name, nullptr, true);
        Read_Item(xml_file, xml_file.d_root_element);
    } catch (const TXmlFileException&) {
        // Omit the parser's message: its position is not one in this document.
        Report(tr("the element is not well-formed"));
    }
}

void TItemSurveyor::Read_Item(const TXmlFile& xml_file, const QDomElement& node)
{
    try {
        TDataItem item = ItemList::Read_Item(xml_file, node);
        Check_Texts(xml_file, node);
        // A label without finite coordinates can be neither drawn nor moved.
        for (qreal* coordinate : {&item.position.rx(), &item.position.ry()}) {
            if (!std::isfinite(*coordinate))
                *coordinate = 0;
        }
        if (d_ids.contains(item.id)) {
            Report(tr("an earlier label has the same Id %1").arg(item.id));
            d_repeated.push_back(d_survey.items.size());
        }
        d_ids.insert(item.id);
        d_survey.items.push_back(item);
    } catch (const TXmlFileException& exception) {
        Report(exception.Message());
    }
}

/// Reports values of a label that are not read as written.
void TItemSurveyor::Check_Texts(const TXmlFile& xml_file, const QDomElement& node)
{
    for (const QLatin1String name : {ItemXml::Id_Name, ItemXml::Value_Name, ItemXml::Border_Name}) {
        const QString text = ItemXml::Read_Text(xml_file, node, name);
        bool is_number = false;
        text.toInt(&is_number);
        if (!is_number)
            Report(tr("%1 \"%2\" is not a number and is read as 0").arg(name, text));
    }
    const int border = ItemXml::Read_Integer(xml_file, node, ItemXml::Border_Name);
    if (!Is_Border_Type(border))
        Report(tr("unknown border code %1").arg(border), true);
    const QString position = ItemXml::Read_Text(xml_file, node, ItemXml::Position_Name, true);
    const QStringList parts = position.split(QLatin1Char(','));
    if (!std::all_of(parts.cbegin(), parts.cend(), Is_Finite_Number))
        Report(tr("Position \"%1\" is not a pair of numbers").arg(position));
}

void TItemSurveyor::Replace_Repeated_Ids()
{
    int free_id = 0;
    for (const std::size_t index : d_repeated) {
        while (d_ids.contains(free_id))
            ++free_id;
        d_survey.items[index].id = free_id++;
    }
}

} // namespace

TItemSurvey ItemSurvey::Survey(const QByteArray& document)
{
    return TItemSurveyor(document).Survey();
}
