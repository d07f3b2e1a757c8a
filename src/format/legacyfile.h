#pragma once

#include "src/model/pageitem.h"

#include <QString>

#include <vector>

class TXmlFile;

/// The item-list documents of the two earlier generations (".qld", versions 1 and 2), which had one
/// page whose image (".qli") stood beside them. They are only read.
///
/// All functions that take a document take an opened one, and throw TXmlFileException where
/// something required is missing.
namespace LegacyFile {

/// Whether a path is that of a legacy document, by its suffix in upper or lower case.
bool Is_Legacy(const QString& path);

/// A legacy document's path without its suffix, by which the pair of files is known.
QString Base_Name(const QString& path);

/// The image of a pair of files; null when there is none that can be read.
TPageImage Read_Image(const QString& base_name);

/// Opens the item list of a pair of files and returns its version.
/// @throws TXmlFileException when it cannot be read.
int Open(const QString& base_name, TXmlFile* xml_file);

/// Label size in pixels.
int Read_Label_Size(const TXmlFile& xml_file);

/// Name of the label colour, as QColor::setNamedColor takes it.
QString Read_Color_Name(const TXmlFile& xml_file);

/// Collects the labels of a version 1 document, in document order and without texts. A label whose
/// position does not consist of two parts is left out.
void Read_Items_V1(const TXmlFile& xml_file, std::vector<TDataItem>* items);

/// The same for version 2, whose labels have texts; a text that is a number is no text.
void Read_Items_V2(const TXmlFile& xml_file, std::vector<TDataItem>* items);

/// Border type code of a border number of that time.
int Border_Type(int legacy_border);

} // namespace LegacyFile
