#include "src/widgets/thumbnailtip.h"

#include "src/widgets/rowlist.h"

#include <QBuffer>
#include <QHelpEvent>
#include <QToolTip>

#include <utility>

namespace {

/// A picture as the content of an HTML element.
QString Html_Image(const QImage& picture)
{
    QByteArray png;
    QBuffer buffer(&png);
    picture.save(&buffer, "PNG");
    return QStringLiteral("<img src=\"data:image/png;base64,%1\">")
        .arg(QString::fromLatin1(png.toBase64()));
}

} // namespace

TThumbnailTip::TThumbnailTip(TRowList* list, TSource source)
    : QObject(list)
    , d_list(list)
    , d_source(std::move(source))
{
    list->viewport()->installEventFilter(this);
}

bool TThumbnailTip::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QObject::eventFilter(object, event);
    const auto* const help = static_cast<QHelpEvent*>(event);
    const QListWidgetItem* const row = d_list->itemAt(help->pos());
    // An empty text hides the tool tip.
    QToolTip::showText(help->globalPos(), row ? Tip(*row) : QString(), d_list->viewport(),
                       row ? d_list->visualItemRect(row) : QRect());
    return true;
}

QString TThumbnailTip::Tip(const QListWidgetItem& row) const
{
    const QImage picture = d_source(row.data(TRowList::Id_Role).toInt());
    if (picture.isNull())
        return QString();
    const QSize size = picture.size().boundedTo(
        picture.size().scaled(Side, Side, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)));
    const QImage thumbnail = picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    return QStringLiteral("<div>%1</div><div>%2</div>")
        .arg(row.text().toHtmlEscaped(), Html_Image(thumbnail));
}
