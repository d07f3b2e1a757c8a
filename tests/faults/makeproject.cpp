// Writes a project file of one page without labels, as a document to begin with.
//
// Usage: makeproject FILE

#include "src/format/itemlist.h"
#include "src/format/projectfile.h"
#include "support/support.h"

#include <QFile>
#include <QGuiApplication>

int main(int argument_count, char** arguments)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argument_count, arguments);
    if (argument_count != 2)
        return 2;
    const TPageImage picture = Support::Picture(500, 450);
    constexpr int label_size = 32;
    TProjectWriter writer;
    writer.Write_Integer(label_size);
    writer.Write_Text(QStringLiteral("#f79741"));
    writer.Write_Text(QString());
    writer.Write_Text(QString());
    writer.Write_Integer(1);
    writer.Write_Text(QStringLiteral("Page 1"));
    writer.Write_Image(picture);
    writer.Write_Bytes(ItemList::Write({}));
    QFile file(QFile::decodeName(arguments[1]));
    return file.open(QIODevice::WriteOnly) && writer.Write_To(&file) && file.flush() ? 0 : 1;
}
