#include "core/xmlguard.h"

#include <QBuffer>
#include <QHash>
#include <QStringList>
#include <QXmlDefaultHandler>
#include <QXmlInputSource>
#include <QXmlSimpleReader>

#include <algorithm>

// The DOM parser is built on the SAX reader, deprecated as it is. Only the very same reader sees
// entities and markup as the DOM parser will.
QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED

namespace {

/// Feeds the reader with a document, listens to what it makes of it, and stops it at the first
/// transgression. Elements and entities are known from what the reader reports; what costs too much
/// before it is reported (references, attributes, parentheses) is known from the characters.
class TScout : public QXmlInputSource, public QXmlDefaultHandler
{
public:
    explicit TScout(QIODevice* device)
        : QXmlInputSource(device)
    {
    }

    /// Empty when there is no defect.
    const XmlGuard::TDefect& Defect() const { return d_defect; }

    QChar next() override;

    bool startPrefixMapping(const QString& prefix, const QString& uri) override;
    bool endPrefixMapping(const QString& prefix) override;
    bool startElement(const QString& uri, const QString& local_name, const QString& name,
                      const QXmlAttributes& attributes) override;
    bool endElement(const QString& uri, const QString& local_name, const QString& name) override;
    bool characters(const QString& text) override;
    bool endCDATA() override;
    bool comment(const QString& text) override;
    bool processingInstruction(const QString& target, const QString& data) override;
    bool startDTD(const QString& name, const QString& public_id, const QString& system_id) override;
    bool endDTD() override;
    bool internalEntityDecl(const QString& name, const QString& value) override;
    bool externalEntityDecl(const QString& name, const QString& public_id,
                            const QString& system_id) override;
    bool fatalError(const QXmlParseException& exception) override;
    QString errorString() const override { return d_defect.message; }

private:
    enum TPlace { Outside, Tag, Quoted, Other };

    bool Refuse(const char* message);
    bool Token_Ends();
    bool Text_Ends(const QString& text);
    bool Declare(const QString& name, qint64 cost);
    qint64 Cost(const QString& name, const QString& value) const;
    void Follow_Reference(QChar character);
    void Follow_Tag(QChar character);
    void Follow_Parentheses(QChar character);

    XmlGuard::TDefect d_defect;
    /// Characters that each declared entity yields; a parameter entity's key begins with "%".
    QHash<QString, qint64> d_costs;
    qint64 d_spent = 0;
    QString d_reference; ///< the reference that is being read, from its "&" or "%"
    TPlace d_place = Outside;
    QChar d_previous;
    QChar d_quote;
    int d_attributes = 0; ///< in the tag that is being read
    int d_references = 0; ///< in the declarations
    int d_depth = 0;
    int d_parentheses = 0;
    int d_prefixes = 0;
    bool d_in_dtd = false;
    bool d_entities_open_tags = false; ///< there is one that holds a "<"
    bool d_reading = false;            ///< the character comes from within next
};

/// Within 16 bits; the two behind it are no characters.
constexpr ushort last_character = 0xfffd;
/// No reference is followed beyond this many characters.
constexpr int name_limit = 256;
/// The reader looks through the declared entities at each reference; so many of them take as long
/// as one expanded character.
constexpr int entities_per_character = 4;

/// The control characters that XML allows.
bool Is_White(QChar character)
{
    return character == QLatin1Char('\t') || character == QLatin1Char('\n') ||
           character == QLatin1Char('\r');
}

bool Is_Predefined(const QString& name)
{
    static const QStringList names{QStringLiteral("amp"), QStringLiteral("lt"),
                                   QStringLiteral("gt"), QStringLiteral("quot"),
                                   QStringLiteral("apos")};
    return names.contains(name);
}

bool TScout::Refuse(const char* message)
{
    d_defect.message = QString::fromLatin1(message);
    return false;
}

/// The reader has reported something, so it is between tags: at most the next "<" has been read.
bool TScout::Token_Ends()
{
    d_place = Outside;
    d_attributes = 0;
    return true;
}

bool TScout::Text_Ends(const QString& text)
{
    Token_Ends();
    return XmlGuard::Is_Text(text) || Refuse("invalid character");
}

QChar TScout::next()
{
    // At the end of a block the source asks itself for the next character.
    if (d_reading)
        return QXmlInputSource::next();
    if (!d_defect.message.isEmpty())
        return QChar(EndOfDocument);
    d_reading = true;
    const QChar character = QXmlInputSource::next();
    d_reading = false;
    if (character == QChar(EndOfData))
        return character;
    Follow_Reference(character);
    if (d_in_dtd)
        Follow_Parentheses(character);
    else
        Follow_Tag(character);
    d_previous = character;
    return d_defect.message.isEmpty() ? character : QChar(EndOfDocument);
}

void TScout::Follow_Reference(QChar character)
{
    if (character == QLatin1Char('&') || (d_in_dtd && character == QLatin1Char('%'))) {
        d_reference = character;
    } else if (!d_reference.isEmpty() && character != QLatin1Char(';')) {
        if (d_reference.size() < name_limit)
            d_reference += character;
    } else if (!d_reference.isEmpty()) {
        const bool general = d_reference.startsWith(QLatin1Char('&'));
        d_spent += d_costs.value(general ? d_reference.mid(1) : d_reference) +
                   d_costs.size() / entities_per_character;
        d_reference.clear();
        // Within the declarations the reader's own search for long entities takes quadratic time.
        if (d_spent > (d_in_dtd ? XmlGuard::Declared_Expansion_Limit : XmlGuard::Expansion_Limit))
            Refuse("entities expand too far");
        else if (d_in_dtd && ++d_references > XmlGuard::Reference_Limit)
            Refuse("too many references in declarations");
    }
}

void TScout::Follow_Tag(QChar character)
{
    const bool opens = d_previous == QLatin1Char('<') && character != QLatin1Char('/');
    if (d_place == Outside && opens) {
        const bool is_element = character != QLatin1Char('!') && character != QLatin1Char('?');
        d_place = is_element ? Tag : Other;
        d_attributes = 0;
    } else if (d_place == Quoted && character == d_quote) {
        d_place = Tag;
    } else if (d_place == Tag && character == QLatin1Char('>')) {
        d_place = Outside;
    } else if (d_place == Tag &&
               (character == QLatin1Char('"') || character == QLatin1Char('\''))) {
        d_place = Quoted;
        d_quote = character;
    }
    // An entity may hold the beginning of a tag, which does not pass through here, so with such
    // entities about anything may be an attribute.
    const bool counts = d_place == Tag || d_entities_open_tags;
    if (counts && character == QLatin1Char('=') && ++d_attributes > XmlGuard::Attribute_Limit)
        Refuse("too many attributes");
}

void TScout::Follow_Parentheses(QChar character)
{
    // Comments may hold any number of either kind; never falling below zero, the count is at least
    // the true depth.
    if (character == QLatin1Char('(') && ++d_parentheses > XmlGuard::Nesting_Limit)
        Refuse("parentheses nested too deeply");
    else if (character == QLatin1Char(')'))
        d_parentheses = std::max(0, d_parentheses - 1);
}

bool TScout::startPrefixMapping(const QString&, const QString&)
{
    return ++d_prefixes <= XmlGuard::Prefix_Limit || Refuse("too many namespace prefixes");
}

bool TScout::endPrefixMapping(const QString&)
{
    --d_prefixes;
    return true;
}

bool TScout::startElement(const QString&, const QString&, const QString&, const QXmlAttributes&)
{
    Token_Ends();
    return ++d_depth <= XmlGuard::Nesting_Limit || Refuse("elements nested too deeply");
}

bool TScout::endElement(const QString&, const QString&, const QString&)
{
    --d_depth;
    return Token_Ends();
}

bool TScout::characters(const QString& text)
{
    return Text_Ends(text);
}

bool TScout::endCDATA()
{
    return Token_Ends();
}

bool TScout::comment(const QString& text)
{
    return Text_Ends(text);
}

bool TScout::processingInstruction(const QString&, const QString& data)
{
    return Text_Ends(data);
}

bool TScout::startDTD(const QString&, const QString&, const QString&)
{
    d_in_dtd = true;
    return Token_Ends();
}

bool TScout::endDTD()
{
    d_in_dtd = false;
    d_reference.clear();
    return Token_Ends();
}

bool TScout::internalEntityDecl(const QString& name, const QString& value)
{
    // Character references and parameter entities have been replaced in the value, and a "<" that
    // comes out of another entity is that one's.
    d_entities_open_tags |= value.contains(QLatin1Char('<'));
    return Declare(name, Cost(name, value));
}

bool TScout::externalEntityDecl(const QString& name, const QString&, const QString&)
{
    return Declare(name, 0);
}

bool TScout::Declare(const QString& name, qint64 cost)
{
    qint64& known = d_costs[name];
    known = std::max(known, cost);
    return d_costs.size() <= XmlGuard::Entity_Limit || Refuse("too many entities");
}

/// Characters that an entity yields with all that it refers to, and at least one, since the reader
/// works for empty ones too. An entity that refers to one not yet known, or that ends within a
/// reference, might yield anything.
qint64 TScout::Cost(const QString& name, const QString& value) const
{
    constexpr qint64 anything = XmlGuard::Expansion_Limit + 1;
    const bool parameter = name.startsWith(QLatin1Char('%'));
    qint64 cost = 1 + value.size();
    for (int i = 0; i < value.size() && cost < anything; ++i) {
        const bool general = value.at(i) == QLatin1Char('&');
        if (!general && !(parameter && value.at(i) == QLatin1Char('%')))
            continue;
        const QString rest = value.mid(i, name_limit);
        const int end = rest.indexOf(QLatin1Char(';'));
        if (end < 0)
            return anything;
        const QString reference = general ? rest.mid(1, end - 1) : rest.left(end);
        if (!reference.startsWith(QLatin1Char('#')))
            cost += d_costs.value(reference, Is_Predefined(reference) ? 1 : anything);
    }
    return std::min(cost, anything);
}

bool TScout::fatalError(const QXmlParseException& exception)
{
    d_defect.line = exception.lineNumber();
    d_defect.column = exception.columnNumber();
    return false;
}

} // namespace

namespace XmlGuard {

bool Is_Text(const QString& text)
{
    for (int i = 0; i < text.size(); ++i) {
        const QChar character = text.at(i);
        const bool starts_pair =
            character.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        if (starts_pair)
            ++i;
        else if (character.isSurrogate() || character.unicode() > last_character ||
                 (character < QLatin1Char(' ') && !Is_White(character)))
            return false;
    }
    return true;
}

std::optional<TDefect> Find_Defect(const QByteArray& data, bool namespace_processing)
{
    QBuffer buffer;
    buffer.setData(data);
    buffer.open(QIODevice::ReadOnly);
    TScout scout(&buffer);
    QXmlSimpleReader reader;
    // As the DOM parser sets them.
    reader.setFeature(QStringLiteral("http://xml.org/sax/features/namespaces"),
                      namespace_processing);
    reader.setFeature(QStringLiteral("http://xml.org/sax/features/namespace-prefixes"),
                      !namespace_processing);
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
