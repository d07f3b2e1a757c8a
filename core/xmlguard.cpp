#include "core/xmlguard.h"

#include <QBuffer>
#include <QHash>
#include <QXmlDefaultHandler>
#include <QXmlInputSource>
#include <QXmlSimpleReader>

// XmlBuilder uses the deprecated SAX reader. Only the same reader is certain to see the same
// entities and markup.
QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED

namespace {

constexpr ushort last_character = 0xfffd; // U+FFFE and U+FFFF are not characters
// The reader searches all declared entities at each reference. Searching this many takes as long as
// expanding one character.
constexpr int entities_per_character = 4;

/// Feeds a document to the reader and stops it at the first defect.
///
/// Elements and entities are counted as the reader reports them. Attributes and the document type
/// are expensive before the reader reports them, so their characters are counted as it reads them.
class TScout : public QXmlInputSource, public QXmlDefaultHandler
{
public:
    using QXmlInputSource::QXmlInputSource;

    /// The message is empty when there is no defect.
    const XmlGuard::TDefect& Defect() const { return d_defect; }

    QChar next() override;

    bool startPrefixMapping(const QString&, const QString&) override
    {
        return ++d_prefixes <= XmlGuard::Prefix_Limit || Refuse("too many namespace prefixes");
    }
    bool endPrefixMapping(const QString&) override
    {
        --d_prefixes;
        return true;
    }

    bool startElement(const QString&, const QString&, const QString&,
                      const QXmlAttributes&) override
    {
        d_in_tag = false;
        return ++d_depth <= XmlGuard::Nesting_Limit || Refuse("elements nested too deeply");
    }
    bool endElement(const QString&, const QString&, const QString&) override
    {
        --d_depth;
        return true;
    }

    bool characters(const QString& text) override { return Accept_Text(text); }
    bool comment(const QString& text) override { return Accept_Text(text); }
    bool processingInstruction(const QString&, const QString& text) override
    {
        return Accept_Text(text);
    }

    bool startDTD(const QString&, const QString&, const QString&) override
    {
        d_in_dtd = true;
        return true;
    }
    bool endDTD() override
    {
        d_in_dtd = false;
        return true;
    }
    bool externalEntityDecl(const QString& name, const QString&, const QString&) override
    {
        return internalEntityDecl(name, QString());
    }
    bool internalEntityDecl(const QString& name, const QString& value) override;
    bool startEntity(const QString& name) override;

    bool fatalError(const QXmlParseException& exception) override
    {
        d_defect.line = exception.lineNumber();
        d_defect.column = exception.columnNumber();
        return false;
    }
    QString errorString() const override { return d_defect.message; }

private:
    bool Refuse(const char* message)
    {
        d_defect.message = QString::fromLatin1(message);
        return false;
    }
    bool Accept_Text(const QString& text)
    {
        d_attributes = 0;
        return XmlGuard::Is_Text(text) || Refuse("invalid character");
    }
    bool Count_Declared(int characters)
    {
        d_declared += characters;
        return d_declared <= XmlGuard::Document_Type_Limit || Refuse("document type too long");
    }
    void Count_Attributes(QChar character);

    XmlGuard::TDefect d_defect;
    QHash<QString, int> d_lengths; ///< of the declared entities, in characters
    qint64 d_declared = 0;         ///< characters in the document type
    qint64 d_expanded = 0;         ///< characters in expanded entities
    QChar d_previous;
    int d_attributes = 0; ///< equals signs since the last tag or text
    int d_depth = 0;
    int d_prefixes = 0;
    bool d_in_dtd = false;
    bool d_in_tag = false;
    bool d_entities_open_tags = false; ///< an entity contains "<"
    bool d_reading = false;            ///< next() is running
};

QChar TScout::next()
{
    // At the end of a block the base class calls next() itself.
    if (d_reading)
        return QXmlInputSource::next();
    d_reading = true;
    const QChar character = QXmlInputSource::next();
    d_reading = false;
    if (character == QChar(EndOfData))
        return character;
    if (d_in_dtd)
        Count_Declared(1);
    else
        Count_Attributes(character);
    d_previous = character;
    return d_defect.message.isEmpty() ? character : QChar(EndOfDocument);
}

void TScout::Count_Attributes(QChar character)
{
    // A "<" within a tag is a syntax error, so a new tag can only follow the end of another.
    if (d_previous == QLatin1Char('<')) {
        d_in_tag = !QStringLiteral("/!?").contains(character);
        d_attributes = 0;
    }
    // The start of a tag that comes from an entity is not seen here. With such entities, any equals
    // sign may belong to an attribute.
    if (character == QLatin1Char('=') && (d_in_tag || d_entities_open_tags) &&
        ++d_attributes > XmlGuard::Attribute_Limit)
        Refuse("too many attributes");
}

/// @param value  with character references and parameter entities replaced.
bool TScout::internalEntityDecl(const QString& name, const QString& value)
{
    d_entities_open_tags |= value.contains(QLatin1Char('<'));
    // The declaration of a parameter entity is reported with a "%", its expansion without. The
    // reader ignores all but the first declaration of a name.
    d_lengths.insert(name.mid(name.startsWith(QLatin1Char('%')) ? 1 : 0), value.size());
    return true;
}

bool TScout::startEntity(const QString& name)
{
    // Even an empty entity takes time to expand.
    const int characters = 1 + d_lengths.value(name) + d_lengths.size() / entities_per_character;
    if (d_in_dtd)
        return Count_Declared(characters);
    d_expanded += characters;
    return d_expanded <= XmlGuard::Expansion_Limit || Refuse("entities expand too far");
}

} // namespace

namespace XmlGuard {

bool Is_Text(const QString& text)
{
    for (int i = 0; i < text.size(); ++i) {
        const QChar character = text.at(i);
        const bool is_pair =
            character.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        const bool is_white = character == QLatin1Char('\t') || character == QLatin1Char('\n') ||
                              character == QLatin1Char('\r');
        if (is_pair)
            ++i;
        else if (character.isSurrogate() || character.unicode() > last_character ||
                 (character < QLatin1Char(' ') && !is_white))
            return false;
    }
    return true;
}

std::optional<TDefect> Find_Defect(const QByteArray& data, bool namespace_processing)
{
    QBuffer buffer;
    buffer.setData(data);
    TScout scout(&buffer);
    QXmlSimpleReader reader;
    // XmlBuilder sets it in the same way.
    reader.setFeature(QStringLiteral("http://xml.org/sax/features/namespaces"),
                      namespace_processing);
    reader.setFeature(QStringLiteral("http://qt-project.org/xml/features/report-start-end-entity"),
                      true);
    reader.setContentHandler(&scout);
    reader.setLexicalHandler(&scout);
    reader.setDeclHandler(&scout);
    reader.setErrorHandler(&scout);
    reader.parse(&scout);
    if (scout.Defect().message.isEmpty())
        return std::nullopt;
    return scout.Defect();
}

} // namespace XmlGuard

QT_WARNING_POP
