#pragma once

#include "src/data.h"

#include <QString>

#include <vector>

class TXmlFile;

/// The item-list documents of the two earlier generations (".qld", versions 1 and 2), which had one
/// page whose image (".qli") stood beside them. They are only read.
///
/// All functions take an opened document and throw TXmlFileException where something required is
/// missing.
namespace LegacyFile {

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
