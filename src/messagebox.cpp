#include "src/messagebox.h"

#include "src/widgets/parentwidget.h"

namespace {

const int box_width = 500; // pixels

// Button layout 1 is QDialogButtonBox::MacLayout.
const char* const box_style = "dialogbuttonbox-buttons-have-icons: 0;\nbutton-layout: 1;";

const char* const text_pattern =
    "<span style=\"font-size:10pt; font-weight:600; color:#000000;\" >%1</span>";
const char* const informative_text_pattern =
    "<span style=\"font-size:10pt; font-weight:400; color:#000000;\" >%1</span>";

/// The colours of the box in every theme: its texts are always black.
QPalette Light_Palette()
{
    const QPalette colors(QColor(239, 239, 239));
    // Only brushes that are set one by one have priority over the theme.
    QPalette palette;
    for (int role = 0; role < QPalette::NColorRoles; ++role) {
        for (const QPalette::ColorGroup group :
             {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
            const auto color_role = static_cast<QPalette::ColorRole>(role);
            palette.setBrush(group, color_role, colors.brush(group, color_role));
        }
    }
    return palette;
}

} // namespace

TMessageBox::TMessageBox(const QWidget* parent)
    : QMessageBox(Parent_Widget(parent))
    , d_fixed_width(box_width)
{
    setPalette(Light_Palette());
    setTextFormat(Qt::RichText);
    setStyleSheet(QString::fromLatin1(box_style));
}

void TMessageBox::resizeEvent(QResizeEvent* event)
{
    QMessageBox::resizeEvent(event);
    // The base class sets its own fixed size whenever the contents change. Setting the width again
    // may resize the box once more, but then the width no longer changes.
    setFixedWidth(d_fixed_width);
}

void TMessageBox::showEvent(QShowEvent* event)
{
    QMessageBox::showEvent(event);
    // Below a widget with a style sheet, palettes are not inherited, and polishing resets them.
    const auto parts = findChildren<QWidget*>();
    for (QWidget* const part : parts) {
        part->ensurePolished();
        part->setPalette(palette());
    }
    setFixedWidth(d_fixed_width);
}

int TMessageBox::exec()
{
    return QDialog::exec();
}

void TMessageBox::setText(const QString& text)
{
    QMessageBox::setText(QString::fromLatin1(text_pattern).arg(text));
}

void TMessageBox::setInformativeText(const QString& text)
{
    QMessageBox::setInformativeText(QString::fromLatin1(informative_text_pattern).arg(text));
}
