#include "src/widgets/dialogparts.h"

#include <QDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QPushButton>

QFrame* DialogParts::Sunken_Line(QFrame::Shape shape, QWidget* parent)
{
    auto* const line = new QFrame(parent);
    line->setFrameShape(shape);
    line->setFrameShadow(QFrame::Sunken);
    return line;
}

void DialogParts::Add_Space(QGridLayout* grid, int row, int column_count)
{
    constexpr int least_height = 8; // pixels
    grid->addItem(new QSpacerItem(0, least_height, QSizePolicy::Minimum, QSizePolicy::Expanding),
                  row, 0, 1, column_count);
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
