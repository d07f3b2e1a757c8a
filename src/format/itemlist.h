#pragma once

#include "src/data.h"

#include <QByteArray>

class QDomElement;
class TXmlFile;

/// The labels of one page as an XML document: root "Quillet_Data", version 1, one "Item" a label.
/// docs/file-formats.md describes it.
namespace ItemList {

/// The only version of the document.
constexpr int Version = 1;

/// What becomes of characters that XML does not know, for example control characters.
enum class TBadText {
    Refuse,   ///< the document is not written
    Leave_Out ///< the texts are written without them
};

/// The labels of the active page as compact UTF-8 XML. The selection is not stored.
/// @throws TXmlFileException when a text cannot be written and is to be refused.
QByteArray Write(const TData& data, TBadText bad_text = TBadText::Refuse);

/// Adds the labels of a document to the active page, unselected.
/// @throws TXmlFileException on bad content; labels read before the fault stay added.
void Read(const QByteArray& document, TData* data);

/// One label, unselected.
/// @param node  its element in an opened document.
/// @throws TXmlFileException when a part is missing or the position is none.
TDataItem Read_Item(const TXmlFile& xml_file, const QDomElement& node);

} // namespace ItemList
