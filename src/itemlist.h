#pragma once

#include "src/data.h"

#include <QByteArray>

/// The labels of one page as an XML document: root "Quillet_Data", version 1, one "Item" a label.
/// docs/file-formats.md describes it.
namespace ItemList {

/// The labels of the active page as compact UTF-8 XML. The selection is not stored.
/// @throws TXmlFileException when a text cannot be written, for example because of a control
///         character that XML does not know.
QByteArray Write(const TData& data);

/// Adds the labels of a document to the active page, unselected.
/// @throws TXmlFileException on bad content; labels read before the fault stay added.
void Read(const QByteArray& document, TData* data);

} // namespace ItemList
