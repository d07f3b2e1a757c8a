#include "src/format/itemsurvey.h"

#include "core/xmlfile.h"
#include "src/format/itemlist.h"
#include "src/format/itemxml.h"

#include <QCoreApplication>
#include <QSet>
#include <QStringList>
#include <QTextCodec>

#include <algorithm>
#include <cassert>
#include <cctype>
#include <cmath>
#include <cstddef>

namespace {

constexpr char root_begin[] = "<Quillet_Data";
constexpr char item_begin[] = "<Item";
constexpr char item_end[] = "</Item>";
constexpr int item_begin_size = sizeof(item_begin) - 1;
constexpr int item_end_size = sizeof(item_end) - 1;

/// Offsets of everything that looks like the begin tag of an "Item" element.
std::vector<int> Item_Offsets(const QByteArray& document)
{
    std::vector<int> offsets;
    for (int offset = document.indexOf(item_begin); offset >= 0;
         offset = document.indexOf(item_begin, offset + 1)) {
        const int next = offset + item_begin_size;
        const char after = next < document.size() ? document.at(next) : '\0';
        if (after == '>' || after == '/' || std::isspace(static_cast<unsigned char>(after)))
            offsets.push_back(offset);
    }
    return offsets;
}

/// A document with a single label.
QByteArray Alone(const QByteArray& element)
{
    return R"(<?xml version="1.0" encoding="utf-8"?><Quillet_Data File_Version="1">)" + element +
           "</Quillet_Data>";
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

/// Reports the defects of a label document and reads its labels.
class TItemSurveyor
{
    Q_DECLARE_TR_FUNCTIONS(ItemSurvey)

public:
    TItemSurveyor(const QByteArray& document, std::vector<TProjectDefect>* defects)
        : d_document(document)
        , d_defects(defects)
    {
    }

    std::vector<TDataItem> Survey();
    /// The texts in the attributes of the root, after Survey.
    const TPageTexts& Texts() const { return d_texts; }

private:
    void Read_Document(const TXmlFile& xml_file);
    void Read_Root_Alone();
    void Read_Separately();
    void Read_Element(const QByteArray& element);
    void Read_Item(const TXmlFile& xml_file, const QDomElement& node);
    TDataItem Checked(TDataItem item, const TXmlFile& xml_file, const QDomElement& node);
    void Check_Integer(const TXmlFile& xml_file, const QDomElement& node, const QString& name);
    void Check_Position(const TXmlFile& xml_file, const QDomElement& node);
    void Replace_Repeated_Ids();

    void Begin_Label(int offset)
    {
        ++d_number;
        d_offset = offset;
    }
    /// Reports a defect of the current label.
    void Report(const QString& what)
    {
        d_defects->push_back({d_offset, tr("label %1: %2").arg(d_number).arg(what)});
    }

    const QByteArray d_document;
    TPageTexts d_texts;
    std::vector<TProjectDefect>* d_defects;
    std::vector<TDataItem> d_items;
    QSet<int> d_ids;
    std::vector<std::size_t> d_repeated; ///< indices of labels whose id an earlier label has
    int d_number = 0;                    ///< of the current label, from 1
    int d_offset = 0;                    ///< of the current label
};

std::vector<TDataItem> TItemSurveyor::Survey()
{
    try {
        TXmlFile xml_file;
        int version = 0;
        xml_file.Open_Data(d_document, ItemXml::Root_Name, &version, true);
        if (version != ItemList::Version)
            d_defects->push_back({0, tr("XML Version not recognized")});
        if (!Is_Utf8(d_document))
            d_defects->push_back({0, tr("the label document is not valid UTF-8")});
        d_texts = PageTexts::Read(xml_file);
        Read_Document(xml_file);
    } catch (const TXmlFileException& exception) {
        d_defects->push_back({0, tr("label document, %1").arg(exception.Placed_Message())});
        Read_Root_Alone();
        Read_Separately();
    }
    Replace_Repeated_Ids();
    return std::move(d_items);
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
    const int begin = d_document.indexOf(root_begin);
    const int end = d_document.indexOf('>', begin);
    if (begin < 0 || end < 0)
        return;
    QByteArray tag = d_document.mid(begin, end - begin);
    if (!tag.endsWith('/'))
        tag += '/';
    try {
        TXmlFile xml_file;
        xml_file.Open_Data(tag + '>', ItemXml::Root_Name, nullptr, true);
        d_texts = PageTexts::Read(xml_file);
    } catch (const TXmlFileException&) {
        // The defect is in the tag, and has been reported.
    }
}

/// Reads the labels of a document that is not well-formed, each in a document of its own.
void TItemSurveyor::Read_Separately()
{
    std::vector<int> offsets = Item_Offsets(d_document);
    offsets.push_back(d_document.size());
    for (std::size_t i = 0; i + 1 < offsets.size(); ++i) {
        Begin_Label(offsets[i]);
        const QByteArray element = d_document.mid(offsets[i], offsets[i + 1] - offsets[i]);
        const int end = element.indexOf(item_end);
        if (end < 0)
            Report(tr("the element is not closed"));
        else
            Read_Element(element.left(end + item_end_size));
    }
}

void TItemSurveyor::Read_Element(const QByteArray& element)
{
    try {
        TXmlFile xml_file;
        int version = 0;
        xml_file.Open_Data(Alone(element), ItemXml::Root_Name, &version, true);
        Read_Item(xml_file, xml_file.Get_Node(&xml_file.d_root_element, ItemXml::Item_Name, false));
    } catch (const TXmlFileException&) {
        // Omit the parser's message: its position is not one in this document.
        Report(tr("the element is not well-formed"));
    }
}

void TItemSurveyor::Read_Item(const TXmlFile& xml_file, const QDomElement& node)
{
    try {
        const TDataItem item = Checked(ItemList::Read_Item(xml_file, node), xml_file, node);
        if (d_ids.contains(item.id)) {
            Report(tr("an earlier label has the same Id %1").arg(item.id));
            d_repeated.push_back(d_items.size());
        }
        d_ids.insert(item.id);
        d_items.push_back(item);
    } catch (const TXmlFileException& exception) {
        Report(exception.Message());
    }
}

/// Reports values of a label that are not read as written. Makes its position finite.
TDataItem TItemSurveyor::Checked(TDataItem item, const TXmlFile& xml_file, const QDomElement& node)
{
    Check_Integer(xml_file, node, ItemXml::Id_Name);
    Check_Integer(xml_file, node, ItemXml::Value_Name);
    Check_Integer(xml_file, node, ItemXml::Border_Name);
    if (!Is_Border_Type(item.border_type))
        Report(tr("unknown border code %1").arg(item.border_type));
    Check_Position(xml_file, node);
    // A label without finite coordinates can be neither drawn nor moved.
    for (qreal* coordinate : {&item.position.rx(), &item.position.ry()}) {
        if (!std::isfinite(*coordinate))
            *coordinate = 0;
    }
    return item;
}

void TItemSurveyor::Check_Integer(const TXmlFile& xml_file, const QDomElement& node,
                                  const QString& name)
{
    const QString text = ItemXml::Read_Text(xml_file, node, name);
    bool is_number = false;
    text.toInt(&is_number);
    if (!is_number)
        Report(tr("%1 \"%2\" is not a number and is read as 0").arg(name, text));
}

void TItemSurveyor::Check_Position(const TXmlFile& xml_file, const QDomElement& node)
{
    const QString text = ItemXml::Read_Text(xml_file, node, ItemXml::Position_Name, true);
    const QStringList parts = text.split(QLatin1Char(','));
    const bool are_numbers = std::all_of(parts.cbegin(), parts.cend(), [](const QString& part) {
        bool is_number = false;
        return std::isfinite(part.toDouble(&is_number)) && is_number;
    });
    if (!are_numbers)
        Report(tr("Position \"%1\" is not a pair of numbers").arg(text));
}

void TItemSurveyor::Replace_Repeated_Ids()
{
    int free_id = 0;
    for (const std::size_t index : d_repeated) {
        while (d_ids.contains(free_id))
            ++free_id;
        d_items[index].id = free_id++;
    }
}

} // namespace

std::vector<TDataItem> ItemSurvey::Survey(const QByteArray& document,
                                          std::vector<TProjectDefect>* defects, TPageTexts* texts)
{
    assert(defects);
    TItemSurveyor surveyor(document, defects);
    std::vector<TDataItem> items = surveyor.Survey();
    if (texts)
        *texts = surveyor.Texts();
    return items;
}
