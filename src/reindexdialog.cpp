#include "src/reindexdialog.h"

#include "src/model/numbering.h"
#include "src/widgets/accessibility.h"
#include "src/widgets/dialogparts.h"
#include "src/widgets/parentwidget.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

namespace {

constexpr int initial_width = 520; // pixels
constexpr int initial_height = 250;
constexpr int fallback_value = 1; ///< first value when the typed text is not an integer
constexpr int column_count = 5;
constexpr int spacer_size = 8; ///< minimum width of the space beside the parameters, in pixels

/// Rows of the grid, from top to bottom.
enum TRow {
    Top_Line = 0,
    First_Value = 1,
    Increment = 2,
    Middle_Line = 3,
    First_Option = 4,
    Bottom_Line = 7,
    Spacer = 8,
    Buttons = 9
};
constexpr int parameter_rows = 2;
constexpr int option_rows = 3;

/// Adds the title of a group of rows and the line between the title and the rows.
void Add_Group_Title(const QString& title, TRow row, int row_count, QDialog* dialog,
                     QGridLayout* grid)
{
    auto* const label = new QLabel(title, dialog);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    grid->addWidget(label, row, 0, row_count, 1, Qt::AlignLeft | Qt::AlignTop);
    grid->addWidget(DialogParts::Sunken_Line(QFrame::VLine, dialog), row, 1, row_count, 1);
}

/// Adds a row with an input widget and its caption.
void Add_Input(const QString& text, QWidget* input, const QString& description, TRow row,
               QDialog* dialog, QGridLayout* grid)
{
    auto* const label = new QLabel(text, dialog);
    label->setBuddy(input);
    Accessibility::Describe(input, Accessibility::Name_Of_Caption(text), description);
    grid->addWidget(label, row, 2);
    grid->addWidget(input, row, 3);
}

} // namespace

TReindexDialog::TReindexDialog(const QWidget* parent, Qt::WindowFlags flags)
    : QDialog(Parent_Widget(parent), flags)
{
    setWindowTitle(tr("Reindex Items"));
    resize(initial_width, initial_height);

    auto* const grid = new QGridLayout(this);
    for (const TRow row : {Top_Line, Middle_Line, Bottom_Line})
        grid->addWidget(DialogParts::Sunken_Line(QFrame::HLine, this), row, 0, 1, column_count);
    Build_Parameters(grid);
    Build_Options(grid);
    DialogParts::Add_Space(grid, Spacer, column_count);
    Build_Buttons(grid);
}

int TReindexDialog::Initial_Value() const
{
    bool valid = false;
    const int value = d_initial_value->text().toInt(&valid, 10);
    return valid ? value : fallback_value;
}

int TReindexDialog::Increment_Over_Page_Method() const
{
    return d_increment_method->currentData().toInt();
}

int TReindexDialog::Reindex_Option() const
{
    if (d_option_current_page->isChecked())
        return Current_Page;
    if (d_option_selected->isChecked())
        return Current_Page_Selected;
    return All_Pages;
}

void TReindexDialog::Build_Parameters(QGridLayout* grid)
{
    Add_Group_Title(tr("Parameters:"), First_Value, parameter_rows, this, grid);

    d_initial_value = new QLineEdit(QStringLiteral("100"), this);
    d_initial_value->setAlignment(Qt::AlignCenter);
    Add_Input(tr("First Item Value:"), d_initial_value, tr("The number of the first label."),
              First_Value, this, grid);

    d_increment_method = new QComboBox(this);
    d_increment_method->addItem(tr("Next 1X"), TNumbering::Next_1X);
    d_increment_method->addItem(tr("Next 10X"), TNumbering::Next_10X);
    d_increment_method->addItem(tr("Next 100X"), TNumbering::Next_100X);
    d_increment_method->addItem(tr("Next 1000X"), TNumbering::Next_1000X);
    d_increment_method->setCurrentIndex(d_increment_method->findData(TNumbering::Next_100X));
    Add_Input(tr("Increment Over Page:"), d_increment_method,
              tr("The number with which each further page begins."), Increment, this, grid);

    grid->addItem(new QSpacerItem(spacer_size, 0, QSizePolicy::Expanding, QSizePolicy::Minimum),
                  First_Value, column_count - 1, parameter_rows, 1);
}

void TReindexDialog::Build_Options(QGridLayout* grid)
{
    Add_Group_Title(tr("Options:"), First_Option, option_rows, this, grid);

    d_option_all_pages = new QRadioButton(tr("All Pages, All Label Items"), this);
    d_option_current_page = new QRadioButton(tr("Current Page, All Label Items"), this);
    d_option_selected = new QRadioButton(tr("Current Page, Selected Label Items"), this);
    d_option_all_pages->setChecked(true);

    d_option_all_pages->setAccessibleDescription(
        tr("Renumbers all labels of the document, page by page."));
    d_option_current_page->setAccessibleDescription(
        tr("Renumbers the labels of the current page."));
    d_option_selected->setAccessibleDescription(
        tr("Renumbers the selected labels of the current page."));

    int row = First_Option;
    for (QRadioButton* const option :
         {d_option_all_pages, d_option_current_page, d_option_selected})
        grid->addWidget(option, row++, 2, 1, column_count - 2);
}

void TReindexDialog::Build_Buttons(QGridLayout* grid)
{
    d_apply_button = new QPushButton(tr("Apply"), this);
    d_apply_button->setAutoDefault(false);
    d_apply_button->setAccessibleDescription(tr("Renumbers the labels and closes the dialog."));
    grid->addLayout(DialogParts::Button_Row(d_apply_button, this), Buttons, 0, 1, column_count);
}
