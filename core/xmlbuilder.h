#pragma once

#include "core/xmlguard.h"

#include <QByteArray>
#include <QDomDocument>
#include <QHash>

#include <optional>

/// Builds the DOM of a document with the SAX reader that XmlGuard uses.
///
/// QDomDocument::setContent does the same in Qt 5. In Qt 6 it has another reader, with other
/// messages and columns, which replaces CR LF by LF and refuses long entities and bytes that are
/// not UTF-8.
namespace XmlBuilder {

/// Where the start tag of an element ends.
struct TPlace
{
    int line = 0;   ///< from 1; 0 if unknown
    int column = 0; ///< from 1; 0 if unknown
};

/// The places of a document's elements. QDomNode has them only if Qt's own parser made it.
class TPlaces
{
public:
    void Clear() { d_places.clear(); }
    void Add(const QDomNode& element, const TPlace& place);
    TPlace Find(const QDomNode& node) const;

private:
    QHash<const void*, TPlace> d_places; ///< by the node's private object
};

/// Replaces the content of a document. After a syntax error, the content is what precedes it.
/// Declarations of entities and notations are not kept.
/// @param places  receives the places of all elements.
/// @return        the syntax error, if there is one.
std::optional<XmlGuard::TDefect> Build(const QByteArray& data, bool namespace_processing,
                                       QDomDocument* document, TPlaces* places);

} // namespace XmlBuilder
