#include "src/format/itemxml.h"

#include "core/xmlfile.h"

#include <QStringList>

namespace ItemXml {

const QLatin1String Root_Name("Quillet_Data");
const QLatin1String Item_Name("Item");
const QLatin1String Id_Name("Id");
const QLatin1String Value_Name("Value");
const QLatin1String Text_Name("Text");
const QLatin1String Border_Name("Border_Type");
const QLatin1String Position_Name("Position");

QString Read_Text(const TXmlFile& xml_file, const QDomElement& parent, const QString& name,
                  bool optional_text)
{
    const QDomElement element = xml_file.Get_Node(&parent, name, false);
    return xml_file.Read_Text_Node(&element, optional_text);
}

int Read_Integer(const TXmlFile& xml_file, const QDomElement& parent, const QString& name)
{
    return Read_Text(xml_file, parent, name).toInt();
}

bool To_Position(const QString& text, QPointF* position)
{
    const QStringList parts = text.split(QLatin1Char(','));
    if (parts.size() != 2)
        return false;
    *position = QPointF(parts.first().toDouble(), parts.last().toDouble());
    return true;
}

} // namespace ItemXml
