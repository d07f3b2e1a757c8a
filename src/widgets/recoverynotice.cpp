#include "src/widgets/recoverynotice.h"

#include "src/widgets/accessibility.h"
#include "src/widgets/elidedlabel.h"

#include <QHBoxLayout>
#include <QToolButton>

namespace {

QToolButton* New_Text_Button(const QString& text, const QString& description, QWidget* parent)
{
    auto* const button = new QToolButton(parent);
    button->setText(text);
    button->setToolTip(description);
    Accessibility::Describe(button, text, description);
    return button;
}

} // namespace

TRecoveryNotice::TRecoveryNotice(QWidget* parent)
    : QWidget(parent)
    , d_label(new TElidedLabel(Qt::ElideRight, this))
{
    auto* const open =
        New_Text_Button(tr("Open"), tr("Open the recovered work as unsaved changes"), this);
    d_open_button = open;
    auto* const dismiss = New_Text_Button(
        tr("Dismiss"), tr("Hide this notice until the next start; the file stays"), this);
    connect(open, &QToolButton::clicked, this, &TRecoveryNotice::Open_Requested);
    connect(dismiss, &QToolButton::clicked, this, &TRecoveryNotice::Dismissed);

    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(d_label);
    layout->addWidget(open);
    layout->addWidget(dismiss);
}

void TRecoveryNotice::Set_Text(const QString& text, const QString& details)
{
    d_label->setText(text);
    d_label->setToolTip(details);
}

void TRecoveryNotice::Set_Openable(bool is_openable)
{
    d_open_button->setVisible(is_openable);
}

QString TRecoveryNotice::Text() const
{
    return d_label->text();
}
