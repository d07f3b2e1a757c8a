#include "core/xmlfile.h"

#include "core/xmlguard.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDomImplementation>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

#include <cassert>
#include <optional>

namespace {

constexpr int indentation = 4; ///< blanks per level

const QLatin1String version_attribute("File_Version");

[[noreturn]] void Throw_Data_Error(const QString& message)
{
    throw TXmlFileException(message, TXmlFileException::Data_Error);
}

using TPlaces = XmlBuilder::TPlaces;

/// Throws the error of a node, with its place if it was read from a document. The reason is the
/// message without its prefix "ERR:".
[[noreturn]] void Throw_Node_Error(const TPlaces& places, const QDomNode& node,
                                   const QString& message)
{
    const QString reason = message.mid(message.indexOf(QLatin1Char(' '))).trimmed();
    const XmlBuilder::TPlace place = places.Find(node);
    throw TXmlFileException(message, TXmlFileException::Data_Error, reason, place.line,
                            place.column);
}

[[noreturn]] void Throw_File_Error(const QString& message)
{
    throw TXmlFileException(message, TXmlFileException::File_Error);
}

[[noreturn]] void Throw_Missing_Node(const TPlaces& places, const QDomNode& parent,
                                     const QString& name, const QString& parent_name)
{
    Throw_Node_Error(places, parent,
                     QStringLiteral("ERR: Node '%1' is missing from node '%2' and not optional.")
                         .arg(name, parent_name));
}

QString Child_Text(const TPlaces& places, const QDomNode& node, const QString& name, bool optional)
{
    if (node.isNull())
        Throw_Data_Error(QStringLiteral("ERR:  Cannot read data from a NULL node"));
    const QDomNode child = node.firstChild();
    if (child.isText())
        return child.nodeValue();
    if (!optional)
        Throw_Node_Error(places, node,
                         QStringLiteral("ERR: Node Text for '%1' is not optional.").arg(name));
    return QString();
}

QString Attribute_Value(const TPlaces& places, const QDomNode& node, const QString& name,
                        bool optional)
{
    if (node.isNull())
        Throw_Data_Error(QStringLiteral("ERR:  Cannot read attribute from a NULL node"));
    const QDomNode attribute = node.attributes().namedItem(name);
    if (attribute.isNull() && !optional)
        Throw_Node_Error(
            places, node,
            QStringLiteral("ERR: Node attribute '%1' missing and not optional.").arg(name));
    return attribute.nodeValue();
}

QDomElement Child_Element(const TPlaces& places, const QDomNode& node, const QString& node_name,
                          const QString& name, bool optional)
{
    if (node.isNull())
        Throw_Data_Error(QStringLiteral("ERR:  Cannot get child from a NULL node"));
    const QDomElement child = node.firstChildElement(name);
    if (child.isNull() && !optional)
        Throw_Missing_Node(places, node, name, node_name);
    return child;
}

QDomNode First_Child(const QDomNode& parent, const QString& parent_name, bool optional)
{
    const QDomNode child = parent.firstChild();
    if (child.isNull() && !optional)
        Throw_Data_Error(
            QStringLiteral("ERR: Parent '%1' does not have nodes and they are not optional.")
                .arg(parent_name));
    return child;
}

/// Makes the DOM accept any text for as long as this object lives. The DOM's own check rejects
/// every character beyond 16 bits, and its parser crashes on the null node that results. XmlGuard
/// checks the texts instead.
class TAcceptAnyText
{
public:
    TAcceptAnyText()
    {
        QDomImplementation::setInvalidDataPolicy(QDomImplementation::AcceptInvalidChars);
    }
    ~TAcceptAnyText() { QDomImplementation::setInvalidDataPolicy(d_before); }
    Q_DISABLE_COPY(TAcceptAnyText)

private:
    const QDomImplementation::InvalidDataPolicy d_before = QDomImplementation::invalidDataPolicy();
};

QString Fixed(double value, int precision)
{
    return QString::number(value, 'f', precision);
}

} // namespace

QString TXmlFileException::Placed_Message() const
{
    return d_line < 1 ? d_message
                      : QCoreApplication::translate("TXmlFile", "line %1, column %2: %3")
                            .arg(QString::number(d_line), QString::number(d_column), d_reason);
}

TXmlFile::TXmlFile()
{
    QDomImplementation::setInvalidDataPolicy(QDomImplementation::ReturnNullNode);
}

void TXmlFile::Reset(const QString& root_name, int version)
{
    Clear();
    appendChild(createProcessingInstruction(QStringLiteral("xml"),
                                            QStringLiteral("version=\"1.0\" encoding=\"utf-8\"")));
    Create_Root(root_name, version);
}

void TXmlFile::Reset(const QString& doctype_name, const QString& root_name, int version)
{
    QDomDocument::operator=(QDomDocument(doctype_name));
    Create_Root(root_name, version);
}

void TXmlFile::Clear()
{
    clear();
    d_root_element.clear();
}

void TXmlFile::Create_Root(const QString& root_name, int version)
{
    d_places.Clear();
    d_root_element = createElement(root_name);
    d_root_element.setAttribute(version_attribute, version);
    appendChild(d_root_element);
}

void TXmlFile::Open(const QString& identification, int* version, bool namespace_processing)
{
    if (!QFileInfo(d_file_path).isReadable())
        Throw_File_Error(
            QStringLiteral("ERR:  Cannot open file '%1' for reading.").arg(d_file_path));
    QFile file(d_file_path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        Throw_File_Error(QStringLiteral("ERR:  Cannot open file: '%1'.  Reason: %2")
                             .arg(d_file_path, file.errorString()));
    // Do not translate line ends: in UTF-16, a carriage-return byte may be half a character.
    file.setTextModeEnabled(false);
    const QByteArray data = file.readAll();
    Load(data, namespace_processing,
         QStringLiteral("ERR: Reference file XML parse error at line %1 column %2: %3"));
    Identify(identification, version);
}

void TXmlFile::Open_Data(const QByteArray& data, const QString& identification, int* version,
                         bool namespace_processing)
{
    Load(data, namespace_processing,
         QStringLiteral("ERR: Reference data XML parse error at line %1 column %2: %3"));
    Identify(identification, version);
}

void TXmlFile::Load(const QByteArray& data, bool namespace_processing, const QString& error_pattern)
{
    std::optional<XmlGuard::TDefect> defect = XmlGuard::Find_Defect(data, namespace_processing);
    if (defect) {
        clear();
        d_places.Clear();
    } else {
        const TAcceptAnyText scope;
        defect = XmlBuilder::Build(data, namespace_processing, this, &d_places);
    }
    // The parser's text comes first, then the line and the column, although the pattern suggests
    // another order. Existing messages have this order.
    if (defect)
        throw TXmlFileException(error_pattern.arg(defect->message, QString::number(defect->line),
                                                  QString::number(defect->column)),
                                TXmlFileException::Data_Error, defect->message, defect->line,
                                defect->column);
}

void TXmlFile::Identify(const QString& identification, int* version)
{
    d_root_element = documentElement();
    if (d_root_element.tagName() != identification)
        Throw_Node_Error(d_places, d_root_element,
                         QStringLiteral("ERR:  Identification '%1' does not match '%2'")
                             .arg(identification, d_root_element.tagName()));
    d_doctype_name = doctype().name();
    d_identification = identification;
    if (!version)
        return;
    if (!d_root_element.hasAttribute(version_attribute))
        Throw_Node_Error(d_places, d_root_element,
                         QStringLiteral("ERR: The 'File_Version' attribute is missing."));
    *version = d_root_element.attribute(version_attribute).toInt();
}

QString TXmlFile::Read_Text_Node(const QDomElement* node, bool optional) const
{
    assert(node);
    return Child_Text(d_places, *node, node->tagName(), optional);
}

QString TXmlFile::Read_Text_Node(const QDomNode* node, bool optional) const
{
    assert(node);
    return Child_Text(d_places, *node, node->localName(), optional);
}

QString TXmlFile::Read_Attribute(const QDomElement* node, const QString& name, bool optional) const
{
    assert(node);
    return Attribute_Value(d_places, *node, name, optional);
}

QString TXmlFile::Read_Attribute(const QDomNode* node, const QString& name, bool optional) const
{
    assert(node);
    return Attribute_Value(d_places, *node, name, optional);
}

QDomElement TXmlFile::Get_Node(const QDomElement* node, const QString& name, bool optional) const
{
    assert(node);
    return Child_Element(d_places, *node, node->tagName(), name, optional);
}

QDomElement TXmlFile::Get_Node(const QDomNode* node, const QString& name, bool optional) const
{
    assert(node);
    return Child_Element(d_places, *node, node->nodeName(), name, optional);
}

QDomElement TXmlFile::Get_Sibling_Node(const QDomElement* current_node, const QString& name,
                                       bool optional) const
{
    assert(current_node);
    if (current_node->isNull())
        Throw_Data_Error(QStringLiteral("ERR:  Cannot get sibling from a NULL node"));
    const QDomElement sibling = current_node->nextSiblingElement(name);
    if (sibling.isNull() && !optional)
        Throw_Missing_Node(d_places, *current_node, name, current_node->tagName());
    return sibling;
}

QDomNode TXmlFile::Get_First_Node(const QDomElement* parent, bool optional) const
{
    assert(parent);
    return First_Child(*parent, parent->tagName(), optional);
}

QDomNode TXmlFile::Get_First_Node(const QDomNode* parent, bool optional) const
{
    assert(parent);
    return First_Child(*parent, parent->localName(), optional);
}

QDomNode TXmlFile::Get_Sibling_Node(const QDomNode* current_node, bool optional) const
{
    assert(current_node);
    const QDomNode sibling = current_node->nextSibling();
    if (sibling.isNull() && !optional)
        Throw_Data_Error(
            QStringLiteral("ERR: Node '%1' does not have siblings and they are not optional.")
                .arg(current_node->localName()));
    return sibling;
}

QDomElement TXmlFile::Create_Node(QDomElement* parent, const QString& name)
{
    assert(parent);
    if (parent->isNull())
        Throw_Data_Error(QStringLiteral("ERR:  Cannot create node from a NULL node"));
    if (name.isEmpty())
        Throw_Data_Error(QStringLiteral("ERR:  Cannot create an unnamed node"));
    const QDomElement element = createElement(name);
    parent->appendChild(element);
    return element;
}

void TXmlFile::Write_Text_Node(QDomElement* node, const QString& text)
{
    assert(node);
    if (node->isNull())
        Throw_Data_Error(QStringLiteral("ERR:  Cannot append data to a NULL node"));
    if (!XmlGuard::Is_Text(text))
        Throw_Data_Error(QStringLiteral("ERR:  Cannot write node '%1' with data '%2'")
                             .arg(node->tagName(), text));
    const TAcceptAnyText scope;
    node->appendChild(createTextNode(text));
}

void TXmlFile::Write_Text_Node(QDomElement* node, const double& value, int precision)
{
    assert(node);
    Write_Text_Node(node, Fixed(value, precision));
}

void TXmlFile::Write_Text_Node(QDomElement* node, int value)
{
    assert(node);
    Write_Text_Node(node, QString::number(value));
}

void TXmlFile::Write_Lines(QDomElement* node, const QString& text)
{
    const bool is_good = XmlGuard::Is_Text(text);
    if (is_good && !text.isEmpty() && text.trimmed().isEmpty()) {
        const TAcceptAnyText scope;
        node->appendChild(createCDATASection(text));
        return;
    }
    // Do not split an invalid text: the error message quotes all of it.
    const QStringList lines = is_good ? text.split(QLatin1Char('\n')) : QStringList(text);
    Write_Text_Node(node, lines.first());
    for (int index = 1; index < lines.size(); ++index) {
        const TAcceptAnyText scope;
        node->appendChild(createEntityReference(QStringLiteral("#10")));
        Write_Text_Node(node, lines.at(index));
    }
}

void TXmlFile::Write_Attribute(QDomElement* node, const QString& name, const QString& value)
{
    assert(node);
    if (name.isEmpty())
        Throw_Data_Error(QStringLiteral("ERR:  Cannot create an unnamed attribute"));
    node->setAttribute(name, value);
}

void TXmlFile::Write_Attribute(QDomElement* node, const QString& name, const double& value,
                               int precision)
{
    assert(node);
    Write_Attribute(node, name, Fixed(value, precision));
}

void TXmlFile::Write_Attribute(QDomElement* node, const QString& name, int value)
{
    assert(node);
    Write_Attribute(node, name, QString::number(value));
}

void TXmlFile::Write_File(bool compact) const
{
    const QFileInfo info(d_file_path);
    if (info.exists() && !info.isWritable())
        Throw_File_Error(
            QStringLiteral("ERR:  Cannot open file '%1' for writing").arg(d_file_path));
    QFile file(d_file_path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text))
        Throw_Data_Error(QStringLiteral("ERR:  Cannot write file '%1'.  Reason: %2")
                             .arg(d_file_path, file.errorString()));
    Save_To(&file, compact);
}

void TXmlFile::Write_Data(QByteArray* data, bool compact) const
{
    assert(data);
    QBuffer buffer(data);
    buffer.open(QIODevice::WriteOnly);
    Save_To(&buffer, compact);
}

void TXmlFile::Save_To(QIODevice* device, bool compact) const
{
    // The DOM sets the codec of the stream, so the locale does not matter.
    if (!compact) {
        QTextStream stream(device);
        save(stream, indentation);
        return;
    }
    QByteArray lines;
    QTextStream stream(&lines);
    save(stream, 0);
    stream.flush();
    device->write(lines.replace('\r', "").replace('\n', ""));
}
