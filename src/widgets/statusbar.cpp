#include "src/widgets/statusbar.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>
#include <QToolTip>

TStatusBar::TStatusBar(QWidget* parent)
    : QStatusBar(parent)
{
}

bool TStatusBar::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip || Elided_Message() == currentMessage())
        return QStatusBar::event(event);
    // A file name may look like rich text.
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(),
                       QStringLiteral("<qt>%1</qt>").arg(currentMessage().toHtmlEscaped()), this);
    return true;
}

/// Paints like QStatusBar, except for the elided message.
void TStatusBar::paintEvent(QPaintEvent* event)
{
    if (currentMessage().isEmpty()) {
        QStatusBar::paintEvent(event);
        return;
    }
    QPainter painter(this);
    QStyleOption option;
    option.initFrom(this);
    style()->drawPrimitive(QStyle::PE_PanelStatusBar, &option, &painter, this);
    painter.setPen(palette().windowText().color());
    painter.drawText(Message_Area(), Qt::AlignLeading | Qt::AlignVCenter | Qt::TextSingleLine,
                     Elided_Message());
}

/// The place of a message, beside the permanent widgets. QStatusBar hides the other widgets.
QRect TStatusBar::Message_Area() const
{
    constexpr int left = 6;   // pixels, as in QStatusBar
    constexpr int right = 12; // to the edge of the bar
    constexpr int gap = 2;    // to a widget
    int end = width() - right;
    const auto widgets = findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    for (const QWidget* const widget : widgets) {
        if (widget->isVisible())
            end = qMin(end, widget->x() - gap);
    }
    return {left, 0, end - left, height()};
}

QString TStatusBar::Elided_Message() const
{
    return fontMetrics().elidedText(currentMessage(), Qt::ElideMiddle, Message_Area().width());
}
