#pragma once

#include <QByteArray>
#include <QString>

class TXmlFile;

/// The texts of a project file that belong to a page. The file stores them as Latin-1; the page's
/// label document carries those that Latin-1 cannot represent.
struct TPageTexts
{
    QString name;
    QString header_1; ///< only with the first page of a file
    QString header_2;
};

namespace PageTexts {

/// Whether Latin-1 has all characters of a text.
bool Is_Latin1(const QString& text);

/// Returns the attributes of a root element for the texts that Latin-1 cannot represent, each after
/// a blank. Texts that XML cannot hold get none.
QByteArray Attributes(const TPageTexts& texts);

/// Reads the attributes of an opened label document.
TPageTexts Read(const TXmlFile& xml_file);

/// Replaces a text that was read from a Latin-1 field by the one of the label document. Does
/// nothing if they differ in other than the replaced characters: another program changed the field.
void Restore(const QString& full_text, QString* text);

} // namespace PageTexts
