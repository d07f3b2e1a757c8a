#include "src/reportheaderdialog.h"

#include "src/widgets/accessibility.h"
#include "src/widgets/dialogparts.h"
#include "src/widgets/parentwidget.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace {

constexpr int header_columns = 2;

/// Rows of the grid, from top to bottom.
enum THeaderRow { First_Header, Second_Header, Line, Space, Buttons_Row };

} // namespace

TReportHeaderDialog::TReportHeaderDialog(const QWidget* parent, Qt::WindowFlags flags)
    : QDialog(Parent_Widget(parent), flags)
{
    setWindowTitle(tr("Report Header"));
    resize(510, 163); // pixels

    auto* const grid = new QGridLayout(this);
    d_header_1 = Add_Header(tr("Header 1 Text:"), First_Header, grid);
    d_header_2 = Add_Header(tr("Header 2 Text:"), Second_Header, grid);
    grid->addWidget(DialogParts::Sunken_Line(QFrame::HLine, this), Line, 0, 1, header_columns);
    DialogParts::Add_Space(grid, Space, header_columns);
    auto* const accept = new QPushButton(tr("Accept"), this);
    accept->setAutoDefault(true);
    accept->setAccessibleDescription(tr("Continues with the file name of the report."));
    grid->addLayout(DialogParts::Button_Row(accept, this), Buttons_Row, 0, 1, header_columns);
}

QString TReportHeaderDialog::Header1_Text() const
{
    return d_header_1->text();
}

QString TReportHeaderDialog::Header2_Text() const
{
    return d_header_2->text();
}

void TReportHeaderDialog::Set_Header1_Text(const QString& text)
{
    d_header_1->setText(text);
}

void TReportHeaderDialog::Set_Header2_Text(const QString& text)
{
    d_header_2->setText(text);
}

QLineEdit* TReportHeaderDialog::Add_Header(const QString& text, int row, QGridLayout* grid)
{
    auto* const label = new QLabel(text, this);
    auto* const edit = new QLineEdit(this);
    label->setBuddy(edit);
    Accessibility::Describe(edit, Accessibility::Name_Of_Caption(text),
                            tr("A line at the top of each page of the report; may be empty."));
    grid->addWidget(label, row, 0);
    grid->addWidget(edit, row, 1);
    return edit;
}
