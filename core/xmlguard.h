#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// Detects small documents that would take too much time or memory to parse, or crash the program,
/// before XmlBuilder reads them.
///
/// Qt's SAX reader limits the length of an expanded entity and loads no external ones. But it
/// expands a long entity at every reference, and takes quadratic time for attributes, namespace
/// prefixes and the document type. The DOM recurses once per nesting level until the stack
/// overflows. The limits are far above what people or programs write, and within them the cost of
/// parsing is linear.
namespace XmlGuard {

/// Why a document is refused, and where.
struct TDefect
{
    QString message;
    int line = 0;   ///< from 1
    int column = 0; ///< from 1
};

constexpr int Nesting_Limit = 256;             ///< nested elements
constexpr int Attribute_Limit = 256;           ///< equals signs in one tag
constexpr int Prefix_Limit = 32;               ///< namespace prefixes in scope
constexpr qint64 Expansion_Limit = 4'000'000;  ///< characters in all expanded entities together
constexpr qint64 Document_Type_Limit = 16'384; ///< characters, with parameter entities expanded

/// Whether XML allows every character of a text: no control characters except white space, no
/// unpaired surrogates. Unlike the DOM's own check, accepts characters beyond 16 bits.
bool Is_Text(const QString& text);

/// Returns the first exceeded limit or invalid text. Ignores everything after the first syntax
/// error, which XmlBuilder reports.
/// @param namespace_processing  must be the same for XmlBuilder.
std::optional<TDefect> Find_Defect(const QByteArray& data, bool namespace_processing);

} // namespace XmlGuard
