#pragma once

#include <QByteArray>
#include <QString>

class TXmlFile;

/// The texts of a project file that belong to a page. The file stores them as Latin-1. The page's
/// label document stores those that Latin-1 cannot represent.
struct TPageTexts
{
    QString name;
    QString header_1; ///< only with the first page of a file
    QString header_2;
};

namespace PageTexts {

/// Whether Latin-1 has all characters of a text.
bool Is_Latin1(const QString& text);

/// Whether a file with a page can store all characters of a text.
bool Is_Storable(const QString& text);

/// Returns the attributes of a root element for the texts that Latin-1 cannot represent, each after
/// a blank. Omits texts that XML cannot represent.
QByteArray Attributes(const TPageTexts& texts);

/// Reads the attributes of an opened label document.
TPageTexts Read(const TXmlFile& xml_file);

/// Replaces the text of a Latin-1 field with the full text from the label document. Does nothing if
/// the full text does not match the field, which another program must have changed.
void Restore(const QString& full_text, QString* text);

} // namespace PageTexts
