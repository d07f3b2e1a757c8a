#pragma once

#include "src/model/pageitem.h"

#include <QByteArray>
#include <QString>

#include <vector>

/// Something in a file that keeps it from being shown as it was meant.
struct TProjectDefect
{
    qint64 offset = 0; ///< in bytes, from the beginning of what was looked through
    QString what;
};

namespace ItemSurvey {

/// The labels that can be read from a label document, whatever its state, and its defects.
///
/// A document without defects is read by ItemList::Read to the same labels. In a document that is
/// no well-formed XML every label is read whose element is well-formed by itself. A label whose id
/// another one before it has gets an id of its own; a number that is none reads as 0, as it does
/// everywhere. Takes time and memory in proportion to the document.
/// @param defects  receives what is wrong, with offsets within the document. What concerns one
/// label
///                 stands where its element begins (at the beginning of the document when that is
///                 not certain), what concerns the document at its beginning.
std::vector<TDataItem> Survey(const QByteArray& document, std::vector<TProjectDefect>* defects);

} // namespace ItemSurvey
