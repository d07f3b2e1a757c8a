#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// Finds documents that are small to store and ruinous to parse, before the DOM parser gets them.
///
/// The toolkit's DOM parser limits the length of one expanded entity and fetches nothing from
/// outside, but it recurses once per nesting level until the stack is used up, expands a long
/// entity as often as it is referred to, and takes quadratic time over attributes, entities and
/// name-space prefixes. Told to make null nodes of invalid data, it stops the program at a text
/// that holds any. The limits here are far from what people write by hand or by program: documents
/// within them are parsed as ever, and their cost grows in a straight line.
namespace XmlGuard {

/// Why a document is refused, and where.
struct TDefect
{
    QString message;
    int line = 0;   ///< from 1
    int column = 0; ///< from 1
};

constexpr int Nesting_Limit = 256;            ///< elements within elements, parentheses in a DTD
constexpr int Attribute_Limit = 256;          ///< attributes of one element
constexpr int Prefix_Limit = 32;              ///< name-space prefixes in force at one place
constexpr int Entity_Limit = 512;             ///< entities declared
constexpr int Reference_Limit = 4096;         ///< references within the declarations
constexpr qint64 Expansion_Limit = 4'000'000; ///< characters that all references yield together
constexpr qint64 Declared_Expansion_Limit = 60'000; ///< the same, within the declarations

/// Whether XML can hold every character of a text: no control characters except white space, no
/// halves of characters. Unlike the DOM's own test it allows characters beyond 16 bits.
bool Is_Text(const QString& text);

/// The first transgression of a limit, or text that is none, if there is one. A document that is
/// not well formed has no defect of this kind up to the place of its first error; the parser will
/// name that one.
/// @param namespace_processing  as it will be given to the parser.
std::optional<TDefect> Find_Defect(const QByteArray& data, bool namespace_processing);

} // namespace XmlGuard
