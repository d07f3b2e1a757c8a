#include "src/widgets/findbar.h"

#include "src/widgets/accessibility.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QStyle>
#include <QToolButton>

namespace {

constexpr int margin = 4; // pixels

/// A button without a caption, so that the bar fits a narrow window.
QToolButton* New_Icon_Button(const QString& name, const QString& description, QWidget* parent)
{
    auto* const button = new QToolButton(parent);
    button->setAutoRaise(true);
    button->setToolTip(name);
    Accessibility::Describe(button, name, description);
    return button;
}

} // namespace

TFindBar::TFindBar(QWidget* parent)
    : QWidget(parent)
    , d_editor(new QLineEdit(this))
{
    d_editor->setPlaceholderText(tr("Find number or text"));
    Accessibility::Describe(d_editor, tr("Find"),
                            tr("The number or a part of the text of a label. Return shows the next "
                               "one on any page, Shift+Return the previous one."));
    d_editor->installEventFilter(this);
    auto* const previous =
        New_Icon_Button(tr("Find Previous"), tr("Shows the previous label that matches."), this);
    previous->setArrowType(Qt::UpArrow);
    auto* const next =
        New_Icon_Button(tr("Find Next"), tr("Shows the next label that matches."), this);
    next->setArrowType(Qt::DownArrow);
    auto* const close = New_Icon_Button(tr("Close Find Bar"), tr("Returns to the page."), this);
    close->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
    connect(previous, &QToolButton::clicked, this,
            [this] { Q_EMIT Find_Previous(d_editor->text()); });
    connect(next, &QToolButton::clicked, this, [this] { Q_EMIT Find_Next(d_editor->text()); });
    connect(close, &QToolButton::clicked, this, &TFindBar::Close);

    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(margin, 0, margin, 0);
    layout->addWidget(d_editor);
    layout->addWidget(previous);
    layout->addWidget(next);
    layout->addWidget(close);
    hide();
}

void TFindBar::Open()
{
    show();
    d_editor->selectAll();
    d_editor->setFocus();
}

bool TFindBar::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const auto* const press = static_cast<QKeyEvent*>(event);
    if (press->key() != Qt::Key_Return && press->key() != Qt::Key_Enter)
        return QWidget::eventFilter(watched, event);
    if (press->modifiers() & Qt::ShiftModifier)
        Q_EMIT Find_Previous(d_editor->text());
    else
        Q_EMIT Find_Next(d_editor->text());
    return true;
}

void TFindBar::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        Close();
    else
        QWidget::keyPressEvent(event);
}

void TFindBar::Close()
{
    hide();
    Q_EMIT Closed();
}
