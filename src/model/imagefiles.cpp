#include "src/model/imagefiles.h"

#include <QCollator>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>

#include <algorithm>

namespace {

/// Those that File > Import offers.
const QStringList& Import_Suffixes()
{
    static const QStringList suffixes = {
        QStringLiteral("bmp"), QStringLiteral("gif"), QStringLiteral("jpg"), QStringLiteral("jpeg"),
        QStringLiteral("png"), QStringLiteral("pbm"), QStringLiteral("pgm"), QStringLiteral("ppm"),
        QStringLiteral("xbm"), QStringLiteral("xpm")};
    return suffixes;
}

} // namespace

QString ImageFiles::Patterns()
{
    return QStringLiteral("*.") + Import_Suffixes().join(QStringLiteral(" *."));
}

QStringList ImageFiles::Suffixes()
{
    const QList<QByteArray> formats = QImageReader::supportedImageFormats();
    QStringList suffixes;
    const QStringList candidates =
        Import_Suffixes() +
        QStringList{QStringLiteral("tif"), QStringLiteral("tiff"), QStringLiteral("webp")};
    std::copy_if(candidates.cbegin(), candidates.cend(), std::back_inserter(suffixes),
                 [&formats](const QString& suffix) { return formats.contains(suffix.toLatin1()); });
    suffixes.sort();
    return suffixes;
}

QStringList ImageFiles::Suffixes_And_Pdf()
{
    QStringList suffixes = Suffixes() + QStringList{QStringLiteral("pdf")};
    suffixes.sort();
    return suffixes;
}

bool ImageFiles::Is_Image_Or_Pdf_Name(const QString& path)
{
    static const QStringList suffixes = Suffixes_And_Pdf();
    return suffixes.contains(QFileInfo(path).suffix(), Qt::CaseInsensitive);
}

bool ImageFiles::Is_Pdf(const QString& path)
{
    // Readers accept other bytes before the signature.
    constexpr int searched = 1024;
    const QFileInfo information(path);
    if (information.suffix().compare(QLatin1String("pdf"), Qt::CaseInsensitive) == 0)
        return true;
    QFile file(path);
    return information.isFile() && file.open(QIODevice::ReadOnly) &&
           file.read(searched).contains("%PDF-");
}

bool ImageFiles::Is_Image_Or_Pdf(const QString& path)
{
    return Is_Image_Or_Pdf_Name(path) || Is_Pdf(path);
}

void ImageFiles::Sort(QStringList* paths)
{
    // A fixed locale: the C locale has no natural order, and the order of the pages must not depend
    // on the user's locale.
    QCollator collator{QLocale(QLocale::English)};
    collator.setNumericMode(true);
    std::stable_sort(paths->begin(), paths->end(),
                     [&collator](const QString& left, const QString& right) {
                         return collator(QFileInfo(left).fileName(), QFileInfo(right).fileName());
                     });
}
