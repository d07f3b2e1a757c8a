#include "src/model/imagefiles.h"

#include <QFileInfo>
#include <QStringList>

namespace {

const QStringList& Suffixes()
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
    return QStringLiteral("*.") + Suffixes().join(QStringLiteral(" *."));
}

bool ImageFiles::Is_Image_Name(const QString& path)
{
    return Suffixes().contains(QFileInfo(path).suffix(), Qt::CaseInsensitive);
}
