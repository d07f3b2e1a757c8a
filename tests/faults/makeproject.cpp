// Writes a project file without labels, as a document to begin with: two pages with a photograph
// that has to be encoded, and a page that has not. Also writes the photograph as JPEG, and
// PHOTOGRAPH.png as the program encodes it.
//
// Usage: makeproject FILE PHOTOGRAPH

#include "src/format/itemlist.h"
#include "src/format/projectfile.h"
#include "support/support.h"

#include <QFile>
#include <QGuiApplication>
#include <QPainter>

namespace {

/// A picture of few bytes that is large enough for a process of its own.
QImage Photograph()
{
    constexpr int dots_per_meter = 3000;
    QImage image(1000, 600, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    QPainter(&image).fillRect(200, 100, 300, 400, Qt::yellow);
    // Otherwise the resolution of the encoded image would depend on the screen.
    image.setDotsPerMeterX(dots_per_meter);
    image.setDotsPerMeterY(dots_per_meter);
    return image;
}

void Write_Page(const QString& name, const TPageImage& image, TProjectWriter* writer)
{
    writer->Write_Text(name);
    writer->Write_Image(image, TProjectWriter::TImageBytes::Source);
    writer->Write_Bytes(ItemList::Write({}));
}

} // namespace

int main(int argument_count, char** arguments)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argument_count, arguments);
    if (argument_count != 3)
        return 2;
    const QString path = QFile::decodeName(arguments[2]);
    const TPageImage photograph = TPageImage::From_Bytes(Support::Encoded(Photograph(), "JPG"));
    Support::Write_File(path, photograph.Source_Bytes());
    Support::Write_File(path + QStringLiteral(".png"), Support::Png(photograph));
    constexpr int page_count = 3;
    constexpr int label_size = 32;
    TProjectWriter writer;
    writer.Write_Integer(label_size);
    writer.Write_Text(QStringLiteral("#f79741"));
    writer.Write_Text(QString());
    writer.Write_Text(QString());
    writer.Write_Integer(page_count);
    Write_Page(QStringLiteral("Page 1"), photograph, &writer);
    Write_Page(QStringLiteral("Page 2"), photograph, &writer);
    Write_Page(QStringLiteral("Page 3"), Support::Picture(500, 450), &writer);
    QFile file(QFile::decodeName(arguments[1]));
    return file.open(QIODevice::WriteOnly) && writer.Write_To(&file) && file.flush() ? 0 : 1;
}
