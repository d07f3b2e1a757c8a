#include "src/settingswidget.h"

#include "src/model/appearance.h"
#include "src/model/itemformat.h"
#include "src/widgets/accessibility.h"
#include "src/widgets/dialogparts.h"
#include "src/widgets/panelparts.h"
#include "src/widgets/parentwidget.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QGridLayout>
#include <QLineEdit>
#include <QSlider>
#include <QToolButton>

#include <array>

namespace {

const QSize panel_size(315, 217); // pixels
const int smallest_icon = 16;     // pixels
const int icon_margin = 6;        // pixels of the colour button that the icon leaves free

struct TChoice
{
    const char* name;
    int code;
};

const std::array<TChoice, 2> orientations = {{
    {QT_TRANSLATE_NOOP("TSettingsWidget", "Portrait"), 0},
    {QT_TRANSLATE_NOOP("TSettingsWidget", "Landscape"), 1},
}};

const std::array<TChoice, 4> resolutions = {{
    {QT_TRANSLATE_NOOP("TSettingsWidget", "96 DPI"), 1},
    {QT_TRANSLATE_NOOP("TSettingsWidget", "180 DPI"), 2},
    {QT_TRANSLATE_NOOP("TSettingsWidget", "276 DPI"), 3},
    {QT_TRANSLATE_NOOP("TSettingsWidget", "372 DPI"), 4},
}};

template <typename TChoices>
QComboBox* New_Box(const TChoices& choices, QWidget* parent)
{
    auto* const box = new QComboBox(parent);
    for (const TChoice& choice : choices)
        box->addItem(TSettingsWidget::tr(choice.name), choice.code);
    return box;
}

/// Selects the entry with this code, or the one at `default_index` if there is none.
void Show_Choice(QComboBox* box, int code, int default_index)
{
    const int index = box->findData(code);
    box->setCurrentIndex(index >= 0 ? index : default_index);
}

} // namespace

TSettingsWidget::TSettingsWidget(const QWidget* parent, Qt::WindowFlags flags)
    : QWidget(Parent_Widget(parent), flags)
    , d_label_color(TAppearance::Initial_Color())
{
    resize(panel_size);
    setWindowTitle(tr("Settings"));
    Create_Widgets();
    Arrange_Widgets();
    Connect_Widgets();
}

void TSettingsWidget::Create_Widgets()
{
    // The Tab key visits the widgets in the order of their creation.
    d_format = QString::fromLatin1(ItemFormat::Initial_Format);
    d_format_editor = new QLineEdit(d_format, this);
    d_format_editor->setAlignment(Qt::AlignCenter);
    d_color_button = new QToolButton(this);
    d_color_button->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
    // The icon fills the button, but the button's size hint is larger than its icon. Without these
    // limits, the button and the dock would grow with the icon and never shrink again.
    d_color_button->setMinimumWidth(smallest_icon + icon_margin);
    d_color_button->setFixedHeight(d_color_button->sizeHint().height());
    d_size_slider = new QSlider(Qt::Horizontal, this);
    d_size_slider->setRange(TAppearance::Smallest_Label, TAppearance::Largest_Label);
    d_size_slider->setValue(TAppearance().label_size);
    d_orientation_box = New_Box(orientations, this);
    d_resolution_box = New_Box(resolutions, this);
    d_track_box = new QCheckBox(tr("Track Selected Item"), this);
    d_track_box->setChecked(true);
    Accessibility::Describe(
        d_track_box, d_track_box->text(),
        tr("Whether the page scrolls to labels that are selected in the list."));
}

void TSettingsWidget::Arrange_Widgets()
{
    auto* const grid = new QGridLayout(this);
    PanelParts::Set_Margins(grid);
    const int both_columns = 2;
    int row = 0;
    PanelParts::Add_Row(
        grid, row++, tr("Item Display Format:"), d_format_editor,
        tr("How the item list shows a label: %1 stands for its value, %2 for its text."));
    PanelParts::Add_Row(grid, row++, tr("Item Color:"), d_color_button,
                        tr("Asks for the colour of all labels."));
    PanelParts::Add_Row(grid, row++, tr("Item Size:"), d_size_slider,
                        tr("The size of all labels, in pixels of the page image."));
    grid->addWidget(DialogParts::Sunken_Line(QFrame::HLine, this), row++, 0, 1, both_columns);
    PanelParts::Add_Row(grid, row++, tr("PDF Orientation"), d_orientation_box,
                        tr("Whether the pages of a report are upright or lie on their side."));
    PanelParts::Add_Row(grid, row++, tr("PDF Resolution"), d_resolution_box,
                        tr("How finely the pages of a report are drawn, in dots per inch."));
    grid->addWidget(DialogParts::Sunken_Line(QFrame::HLine, this), row++, 0, 1, both_columns);
    grid->addWidget(d_track_box, row++, 0, 1, both_columns);
    grid->addItem(new QSpacerItem(0, 0, QSizePolicy::Minimum, QSizePolicy::Expanding), row, 0, 1,
                  both_columns);
}

void TSettingsWidget::Connect_Widgets()
{
    connect(d_color_button, SIGNAL(clicked()), this, SLOT(Select_Color()));
    connect(d_size_slider, SIGNAL(valueChanged(int)), this, SIGNAL(Label_Size_Changed(int)));
    connect(d_format_editor, SIGNAL(editingFinished()), this, SLOT(Display_Format_Updated()));
    connect(d_track_box, SIGNAL(toggled(bool)), this, SIGNAL(Track_Item_Option_Changed(bool)));
}

int TSettingsWidget::Label_Size() const
{
    return d_size_slider->value();
}

void TSettingsWidget::Set_Label_Size(int size)
{
    d_size_slider->setValue(size);
}

QColor TSettingsWidget::Label_Color() const
{
    return d_label_color;
}

void TSettingsWidget::Set_Label_Color(const QColor& color)
{
    d_label_color = color;
    Show_Color();
}

bool TSettingsWidget::Track_Label() const
{
    return d_track_box->isChecked();
}

void TSettingsWidget::Set_Track_Label(bool track)
{
    d_track_box->setChecked(track);
}

QString TSettingsWidget::Display_Format() const
{
    return d_format_editor->text();
}

void TSettingsWidget::Set_Display_Format(const QString& format)
{
    d_format = format;
    d_format_editor->setText(format);
}

void TSettingsWidget::Commit_Display_Format()
{
    if (d_format_editor->isModified() && d_format_editor->text() != d_format)
        Display_Format_Updated();
}

int TSettingsWidget::PDF_Orientation() const
{
    return d_orientation_box->currentData().toInt();
}

void TSettingsWidget::Set_PDF_Orientation(int orientation)
{
    const int landscape_index = 1;
    Show_Choice(d_orientation_box, orientation, landscape_index);
}

int TSettingsWidget::PDF_Resolution() const
{
    return d_resolution_box->currentData().toInt();
}

void TSettingsWidget::Set_PDF_Resolution(int resolution)
{
    const int lowest_index = 0;
    Show_Choice(d_resolution_box, resolution, lowest_index);
}

QIcon TSettingsWidget::Create_Icon(const QSize& size, const QColor& color) const
{
    QPixmap pixmap(size);
    pixmap.fill(color);
    return QIcon(pixmap);
}

void TSettingsWidget::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    // The layout sets the size of the colour button before the first resize event.
    if (!d_first_resize)
        return;
    d_first_resize = false;
    const QSize free = d_color_button->size() - QSize(icon_margin, icon_margin);
    d_color_button->setIconSize(free.expandedTo(QSize(smallest_icon, smallest_icon)));
    Show_Color();
}

void TSettingsWidget::Select_Color()
{
    QColorDialog dialog(d_label_color, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    Set_Label_Color(dialog.selectedColor());
    Q_EMIT Color_Changed(d_label_color);
}

void TSettingsWidget::Display_Format_Updated()
{
    const QString format = ItemFormat::Clean(d_format_editor->text());
    if (format != d_format_editor->text())
        d_format_editor->setText(format);
    d_format = format;
    Q_EMIT Item_Display_Format_Changed(format);
}

void TSettingsWidget::Show_Color()
{
    d_color_button->setIcon(Create_Icon(d_color_button->iconSize(), d_label_color));
}
