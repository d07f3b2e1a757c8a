#include "src/widgets/elidedlabel.h"

#include <QPainter>
#include <QStyle>

TElidedLabel::TElidedLabel(Qt::TextElideMode mode, QWidget* parent)
    : QLabel(parent)
    , d_mode(mode)
{
    // A file name may look like rich text.
    setTextFormat(Qt::PlainText);
}

QSize TElidedLabel::minimumSizeHint() const
{
    return {0, QLabel::minimumSizeHint().height()};
}

void TElidedLabel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const QRect area = contentsRect();
    style()->drawItemText(&painter, area, Qt::AlignLeft | Qt::AlignVCenter, palette(), isEnabled(),
                          fontMetrics().elidedText(text(), d_mode, area.width()), foregroundRole());
}
