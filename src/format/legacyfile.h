#pragma once

#include "src/format/filecontent.h"

#include <QString>

#include <functional>
#include <vector>

class TXmlFile;

/// Documents of the two earlier generations: one page, whose image (".qli") and item list (".qld",
/// version 1 or 2) are a pair of files. Quillet only reads them.
///
/// All functions that take a list expect an opened one and throw TXmlFileException when a required
/// element is missing.
namespace LegacyFile {

/// Whether a path has the suffix of an item list, in upper or lower case.
bool Is_Legacy(const QString& path);

/// Whether a path has the suffix of an item list or of an image, in upper or lower case.
bool Has_Suffix(const QString& path);

/// The common path of a pair of files: the path of its item list without the suffix.
QString Base_Name(const QString& path);

/// The path of the image of a pair.
QString Image_Path(const QString& base_name);

/// Reads label settings and labels of a list of version 1 or 2.
using TReadList =
    std::function<void(TXmlFile* xml_file, int version, std::vector<TDataItem>* items)>;

/// Reads a pair of files as a page with the default name of page 1.
/// @param read_list  reads a list of version 1 or 2. Not called for other versions, of which only
///                   the image is read.
/// @throws TXmlFileException when one of the files cannot be read.
TFilePage Read_Pair(const QString& base_name, const TReadList& read_list);

/// Reads a whole document.
/// @param path           of the item list.
/// @param skipped_count  receives the number of skipped labels; may be null.
/// @throws TXmlFileException when one of the files cannot be read.
TFileContent Read(const QString& path, int* skipped_count = nullptr);

/// Label size in pixels.
int Read_Label_Size(const TXmlFile& xml_file);

/// Name of the label colour, as QColor::setNamedColor accepts it.
QString Read_Color_Name(const TXmlFile& xml_file);

/// Appends the labels in document order. A label whose position does not have two parts is skipped.
/// Labels have texts in version 2 only; a text that is an integer is dropped.
/// @return the number of skipped labels.
int Read_Items(const TXmlFile& xml_file, int version, std::vector<TDataItem>* items);

/// Border type code of a border number in a list.
int Border_Type(int legacy_border);

} // namespace LegacyFile
