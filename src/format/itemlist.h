#pragma once

#include "src/format/pagetexts.h"
#include "src/model/pageitem.h"

#include <QByteArray>

#include <functional>
#include <vector>

class QDomElement;
class TXmlFile;

/// The labels of one page as an XML document: root "Quillet_Data", version 1, one "Item" per label.
/// docs/file-formats.md describes it.
namespace ItemList {

/// The only version of the document.
constexpr int Version = 1;

/// What to do with characters that XML cannot represent, such as control characters.
enum class TBadText {
    Refuse,   ///< throw
    Leave_Out ///< write the text without them
};

/// Writes labels as compact UTF-8 XML. The selection is not stored.
/// @param texts  of the page; those that Latin-1 cannot represent become attributes of the root.
/// @throws TXmlFileException if bad texts are refused and XML cannot represent one.
QByteArray Write(const std::vector<TDataItem>& items, TBadText bad_text = TBadText::Refuse,
                 const TPageTexts& texts = {});

/// Returns a label document with other texts in its root.
/// @throws TXmlFileException on bad content, unless there is nothing to replace.
QByteArray With_Texts(const QByteArray& document, const TPageTexts& texts);

/// Reads the labels of a document, unselected.
/// @param add    is called with each label, including those before a fault.
/// @param texts  receives the texts in the root's attributes, even before a fault; may be null.
/// @throws TXmlFileException on bad content.
void Read(const QByteArray& document, const std::function<void(const TDataItem&)>& add,
          TPageTexts* texts = nullptr);

/// Reads one label, unselected.
/// @param node  its element in an opened document.
/// @throws TXmlFileException when an element is missing or the position is invalid.
TDataItem Read_Item(const TXmlFile& xml_file, const QDomElement& node);

} // namespace ItemList
