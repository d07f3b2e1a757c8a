#include "src/webpage/markup.h"

#include <QChar>
#include <QVector>

#include <cmath>

namespace {

constexpr double decimals = 1000.0;

/// Whether HTML allows a character: neither a control character other than white space nor half of
/// a surrogate pair nor a noncharacter.
bool Is_Allowed(uint character)
{
    const bool is_space = character == '\t' || character == '\n' || character == '\r';
    const bool is_control = character < 0x20 || (character >= 0x7f && character < 0xa0);
    const bool is_noncharacter =
        (character >= 0xfdd0 && character <= 0xfdef) || (character & 0xfffe) == 0xfffe;
    return is_space || !(is_control || is_noncharacter || QChar::isSurrogate(character));
}

} // namespace

QString Markup::Escaped(const QString& text)
{
    QString clean;
    clean.reserve(text.size());
    // Decoding joins surrogate pairs.
    const QVector<uint> characters = text.toUcs4();
    for (const char32_t character : characters)
        clean += Is_Allowed(character) ? QString::fromUcs4(&character, 1)
                                       : QString(QChar::ReplacementCharacter);
    return clean.toHtmlEscaped();
}

QString Markup::Number(double number)
{
    return QString::number(std::round(number * decimals) / decimals, 'g', 12);
}
