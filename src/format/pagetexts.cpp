#include "src/format/pagetexts.h"

#include "core/xmlfile.h"
#include "core/xmlguard.h"

#include <array>
#include <cassert>

namespace {

struct TAttribute
{
    const char* name;
    QString TPageTexts::*text;
};

constexpr std::array<TAttribute, 3> attributes = {{
    {"Page_Name", &TPageTexts::name},
    {"Header_1", &TPageTexts::header_1},
    {"Header_2", &TPageTexts::header_2},
}};

/// Replaces the characters that end or change an attribute's value, and equals signs, whose number
/// in a tag is limited.
QString Escaped(const QString& text)
{
    QString escaped;
    for (const QChar character : text) {
        if (character < QLatin1Char(' ') || QStringLiteral("\"&<=>").contains(character))
            escaped += QStringLiteral("&#%1;").arg(character.unicode());
        else
            escaped += character;
    }
    return escaped;
}

} // namespace

bool PageTexts::Is_Latin1(const QString& text)
{
    return QString::fromLatin1(text.toLatin1()) == text;
}

bool PageTexts::Is_Storable(const QString& text)
{
    return Is_Latin1(text) || XmlGuard::Is_Text(text);
}

QByteArray PageTexts::Attributes(const TPageTexts& texts)
{
    QByteArray written;
    for (const TAttribute& attribute : attributes) {
        const QString& text = texts.*attribute.text;
        if (!Is_Latin1(text) && XmlGuard::Is_Text(text))
            written += ' ' + QByteArray(attribute.name) + "=\"" + Escaped(text).toUtf8() + '"';
    }
    return written;
}

TPageTexts PageTexts::Read(const TXmlFile& xml_file)
{
    TPageTexts texts;
    for (const TAttribute& attribute : attributes)
        texts.*attribute.text = xml_file.Read_Attribute(&xml_file.d_root_element,
                                                        QString::fromLatin1(attribute.name), true);
    return texts;
}

void PageTexts::Restore(const QString& full_text, QString* text)
{
    assert(text);
    if (full_text.toLatin1() == text->toLatin1())
        *text = full_text;
}
