#pragma once

#include <QPointF>
#include <QString>

class QDomElement;
class TXmlFile;

/// The common part of the item lists of all generations: labels are "Item" elements below the root,
/// and their properties are the texts of child elements.
namespace ItemXml {

extern const QLatin1String Root_Name;
extern const QLatin1String Item_Name;
extern const QLatin1String Id_Name;
extern const QLatin1String Value_Name;
extern const QLatin1String Text_Name;
extern const QLatin1String Border_Name;
extern const QLatin1String Position_Name;

/// Tags in the bytes of a document: where its root begins and where a label ends.
constexpr char Root_Begin[] = "<Quillet_Data";
constexpr char Item_End[] = "</Item>";

/// The text of a required child element.
/// @param optional_text  whether the element may be empty.
/// @throws TXmlFileException when the element, or a required text, is missing.
QString Read_Text(const TXmlFile& xml_file, const QDomElement& parent, const QString& name,
                  bool optional_text = false);

/// The same as an integer; 0 if the text is not a number.
int Read_Integer(const TXmlFile& xml_file, const QDomElement& parent, const QString& name);

/// Reads "x,y". A coordinate that is not a number is 0; false unless there are exactly two parts.
bool To_Position(const QString& text, QPointF* position);

} // namespace ItemXml
