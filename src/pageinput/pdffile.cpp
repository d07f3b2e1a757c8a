#include "src/pageinput/pdffile.h"

#include "src/model/pageimage.h"
#include "src/pageinput/toolrun.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <cmath>

namespace {

/// More pages are refused. A file of some bytes can declare billions of pages.
constexpr int page_limit = 100'000;

/// An absolute path is not mistaken for an option or a number of an open file.
QString Argument(const QString& path)
{
    return QFileInfo(path).absoluteFilePath();
}

/// The first error among poppler's messages. Warnings are about harmless deviations.
QString First_Error(const QByteArray& messages)
{
    static const QRegularExpression pattern(QStringLiteral("^(?:\\w+ )?Error.*$"),
                                            QRegularExpression::MultilineOption);
    constexpr int longest = 200;
    return pattern.match(QString::fromLatin1(messages)).captured().left(longest);
}

bool Is_Complete_Png(const QByteArray& bytes)
{
    const QByteArray last_chunk("\0\0\0\0IEND\xae\x42\x60\x82", 12);
    return bytes.startsWith(TPageImage::Png_Signature) && bytes.endsWith(last_chunk);
}

} // namespace

TPdfFile::TPdfFile(const QString& path)
    : d_path(path)
{
}

QString TPdfFile::Open()
{
    QFile file(d_path);
    if (!file.open(QIODevice::ReadOnly))
        return file.errorString();
    const ToolRun::TResult run =
        ToolRun::Run(QStringLiteral("pdfinfo"),
                     {QStringLiteral("-box"), QStringLiteral("-f"), QStringLiteral("1"),
                      QStringLiteral("-l"), QString::number(page_limit), Argument(d_path)});
    if (run.messages.contains("Incorrect password"))
        return tr("is encrypted and needs a password");
    return run.fault.isEmpty() ? Read_Sizes(QString::fromLatin1(run.output)) : run.fault;
}

/// Reads the number of pages and their boxes from the output of pdfinfo.
QString TPdfFile::Read_Sizes(const QString& output)
{
    static const QRegularExpression count_pattern(QStringLiteral("^Pages: +(\\d+)$"),
                                                  QRegularExpression::MultilineOption);
    static const QRegularExpression box_pattern(
        QStringLiteral("^Page +(\\d+) MediaBox: +(\\S+) +(\\S+) +(\\S+) +(\\S+)$"),
        QRegularExpression::MultilineOption);
    // The title of a hostile PDF can look like these lines, but the true ones follow it.
    int count = 0;
    for (auto matches = count_pattern.globalMatch(output); matches.hasNext();)
        count = matches.next().captured(1).toInt();
    if (count > page_limit)
        return tr("has more than %1 pages").arg(page_limit);
    d_sizes.assign(static_cast<std::size_t>(count), QSizeF());
    for (auto matches = box_pattern.globalMatch(output); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        const auto number = [&match](int group) { return match.captured(group).toDouble(); };
        const int page = match.captured(1).toInt();
        if (page >= 1 && page <= count)
            d_sizes[static_cast<std::size_t>(page - 1)] = {number(4) - number(2),
                                                           number(5) - number(3)};
    }
    return count > 0 ? QString() : tr("contains no pages");
}

QString TPdfFile::Page_Fault(int page, int resolution) const
{
    if (page > Page_Count())
        return tr("does not exist; the file has %1 pages").arg(Page_Count());
    const QSizeF size = d_sizes[static_cast<std::size_t>(page - 1)];
    // For such a page, pdftoppm silently renders the previous page again.
    if (!size.isValid())
        return tr("cannot be read");
    constexpr double points_per_inch = 72.0;
    const double scale = resolution / points_per_inch;
    const double pixels = std::ceil(size.width() * scale) * std::ceil(size.height() * scale);
    constexpr qint64 million = 1'000'000;
    if (!(pixels <= TPageImage::Maximum_Pixels))
        return tr("is larger than %1 megapixels at %2 dpi")
            .arg(TPageImage::Maximum_Pixels / million)
            .arg(resolution);
    return QString();
}

TRenderedPage TPdfFile::Render(int page, int resolution) const
{
    const QString number = QString::number(page);
    const ToolRun::TResult run = ToolRun::Run(
        QStringLiteral("pdftoppm"),
        {QStringLiteral("-png"), QStringLiteral("-r"), QString::number(resolution),
         QStringLiteral("-f"), number, QStringLiteral("-l"), number, Argument(d_path)});
    if (!run.fault.isEmpty())
        return {QByteArray(), run.fault};
    const QString error = First_Error(run.messages);
    if (Is_Complete_Png(run.output))
        return {run.output, error.isEmpty() ? error : tr("may be incomplete: %1").arg(error)};
    return {QByteArray(), error.isEmpty() ? tr("cannot be rendered") : error};
}
