#include "src/format/plainitems.h"

#include "core/xmlguard.h"
#include "src/format/itemxml.h"

#include <QString>

#include <algorithm>

namespace {

/// The tags of an element.
struct TTags
{
    explicit TTags(const QLatin1String& name)
        : begin('<' + QByteArray(name.data()) + '>')
        , end("</" + QByteArray(name.data()) + '>')
        , empty('<' + QByteArray(name.data()) + "/>")
    {
    }

    QByteArray begin;
    QByteArray end;
    QByteArray empty; ///< of an element without content
};

struct TItemTags
{
    TTags item{ItemXml::Item_Name};
    TTags id{ItemXml::Id_Name};
    TTags value{ItemXml::Value_Name};
    TTags text{ItemXml::Text_Name};
    TTags border{ItemXml::Border_Name};
    TTags position{ItemXml::Position_Name};
};

class TScanner
{
public:
    explicit TScanner(const QByteArray& document)
        : d_document(document)
    {
    }

    bool Is_At_End() const { return d_position == d_document.size(); }

    /// Skips these bytes if they come next.
    bool Skip(const QByteArray& bytes)
    {
        const bool is_next =
            d_document.size() - d_position >= bytes.size() &&
            std::equal(bytes.cbegin(), bytes.cend(), d_document.cbegin() + d_position);
        d_position += is_next ? bytes.size() : 0;
        return is_next;
    }

    /// Reads and skips an element that contains only text.
    bool Read(const TTags& tags, QByteArray* content)
    {
        if (!Skip(tags.begin))
            return false;
        const int end = d_document.indexOf('<', d_position);
        if (end < 0)
            return false;
        *content = d_document.mid(d_position, end - d_position);
        d_position = end;
        return Skip(tags.end);
    }

private:
    const QByteArray& d_document;
    int d_position = 0;
};

/// Reads an element whose content is visible ASCII characters without "&", "<" and ">".
bool Read_Word(const TTags& tags, TScanner* scanner, QString* word)
{
    QByteArray content;
    if (!scanner->Read(tags, &content))
        return false;
    *word = QString::fromLatin1(content);
    return !content.isEmpty() && std::all_of(content.cbegin(), content.cend(), [](char byte) {
        return byte > ' ' && byte <= '~' && byte != '&' && byte != '>';
    });
}

bool Read_Integer(const TTags& tags, TScanner* scanner, int* number)
{
    QString word;
    const bool is_read = Read_Word(tags, scanner, &word);
    *number = word.toInt();
    return is_read;
}

/// Reads the text of a label: no references, line breaks or control characters, and not only white
/// space, which a DOM leaves out.
bool Read_Text(const TTags& tags, TScanner* scanner, QString* text)
{
    if (scanner->Skip(tags.empty))
        return true;
    QByteArray content;
    if (!scanner->Read(tags, &content))
        return false;
    *text = QString::fromUtf8(content);
    const auto is_special = [](QChar character) {
        return character < QLatin1Char(' ') || character == QLatin1Char('&');
    };
    return content.isEmpty() ||
           (!text->trimmed().isEmpty() && !text->contains(QLatin1String("]]>")) &&
            std::none_of(text->cbegin(), text->cend(), is_special) && XmlGuard::Is_Text(*text) &&
            text->toUtf8() == content);
}

bool Read_Item(const TItemTags& tags, TScanner* scanner, TDataItem* item)
{
    QString position;
    return scanner->Skip(tags.item.begin) && Read_Integer(tags.id, scanner, &item->id) &&
           Read_Integer(tags.value, scanner, &item->value) &&
           Read_Text(tags.text, scanner, &item->text) &&
           Read_Integer(tags.border, scanner, &item->border_type) &&
           Read_Word(tags.position, scanner, &position) &&
           ItemXml::To_Position(position, &item->position) && scanner->Skip(tags.item.end);
}

} // namespace

std::optional<std::vector<TDataItem>> PlainItems::Read(const QByteArray& document,
                                                       const QByteArray& start)
{
    static const TItemTags tags;
    static const QByteArray end = TTags(ItemXml::Root_Name).end;
    TScanner scanner(document);
    if (!scanner.Skip(start))
        return std::nullopt;
    std::vector<TDataItem> items;
    while (!scanner.Skip(end)) {
        TDataItem item;
        if (!Read_Item(tags, &scanner, &item))
            return std::nullopt;
        items.push_back(item);
    }
    if (!scanner.Is_At_End())
        return std::nullopt;
    return items;
}
