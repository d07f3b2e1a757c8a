#include "src/widgets/dialogparts.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QPushButton>

QFrame* DialogParts::Sunken_Line(QFrame::Shape shape, QWidget* parent)
{
    auto* const line = new QFrame(parent);
    line->setFrameShape(shape);
    line->setFrameShadow(QFrame::Sunken);
    return line;
}

QBoxLayout* DialogParts::Button_Row(QPushButton* accept, QDialog* dialog)
{
    auto* const cancel = new QPushButton(QDialog::tr("Cancel"), dialog);
    cancel->setAutoDefault(false);
    cancel->setAccessibleDescription(QDialog::tr("Closes the dialog without changing anything."));
    // The accepting button was created first, but is the last in the row.
    QWidget::setTabOrder(cancel, accept);

    auto* const row = new QHBoxLayout; // owned by the layout it is put into
    row->addStretch();
    row->addWidget(cancel);
    row->addWidget(accept);

    QObject::connect(cancel, SIGNAL(clicked()), dialog, SLOT(reject()));
    QObject::connect(accept, SIGNAL(clicked()), dialog, SLOT(accept()));
    return row;
}
