// Keys that work anywhere in the window: zoom, previous and next page, the clipboard, and entering
// a label's text. An editor with the focus handles the keys of the clipboard itself.

#include "src/quillet.h"

#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/pagewidget.h"
#include "src/widgets/returnkey.h"
#include "src/widgets/wheelzoom.h"

#include <QDockWidget>
#include <QLineEdit>
#include <QShortcut>
#include <QSignalBlocker>
#include <QSlider>

#include <algorithm>
#include <cmath>

void TQuillet::Add_Keys()
{
    const auto add = [this](int key, auto command) {
        connect(new QShortcut(QKeySequence(key), this), &QShortcut::activated, this, command);
    };
    const auto add_zoom = [this, add](int key, int slider_steps) {
        add(key, [this, slider_steps] {
            d_zoom_slider->setValue(d_zoom_slider->value() + slider_steps);
        });
    };
    constexpr int ctrl = Qt::CTRL;
    add(ctrl + Qt::Key_0, &TQuillet::Fit_Page);
    add(ctrl + Qt::Key_1, [this] { d_zoom_slider->setValue(0); });
    add_zoom(ctrl + Qt::Key_Plus, TWheelZoom::Steps_Per_Notch);
    // The same key without Shift on many keyboards.
    add_zoom(ctrl + Qt::Key_Equal, TWheelZoom::Steps_Per_Notch);
    add_zoom(ctrl + Qt::Key_Minus, -TWheelZoom::Steps_Per_Notch);

    add(ctrl + Qt::Key_PageUp, [this] { Show_Page_Beside(-1); });
    add(ctrl + Qt::Key_PageDown, [this] { Show_Page_Beside(1); });

    add(ctrl + Qt::Key_C, &TQuillet::Copy_Labels);
    add(ctrl + Qt::Key_X, &TQuillet::Cut_Labels);
    add(ctrl + Qt::Key_V, &TQuillet::Paste_Labels);
    add(ctrl + Qt::Key_D, &TQuillet::Duplicate_Labels);
    Add_Text_Keys();
}

/// Sets the largest zoom that shows the whole page, as far as the slider goes.
void TQuillet::Fit_Page()
{
    const QPixmap page = d_display_widget->Background_Pixmap();
    const QSizeF page_size = QSizeF(page.size()) / page.devicePixelRatio();
    const QSize view_size = d_display_widget->maximumViewportSize();
    const double scale =
        std::min(view_size.width() / page_size.width(), view_size.height() / page_size.height());
    constexpr double rounding = 1e-9;
    d_zoom_slider->setValue(static_cast<int>(std::floor(Zoom_Value(scale) + rounding)));
    d_display_widget->centerOn(QRectF(QPointF(), page_size).center());
}

/// Shows the page a number of rows below the selected one; above it for a negative number. Stops at
/// the ends of the list. Without a selected page, shows the first or the last.
void TQuillet::Show_Page_Beside(int rows)
{
    const QList<int> pages = d_page_widget->Page_Ids();
    if (pages.isEmpty())
        return;
    Commit_Editors();
    // Without a label, its editor is disabled, and the focus would go to another editor.
    if (d_label_widget->Text_Editor()->hasFocus())
        Return_To_Page();
    const std::vector<int> selected = d_page_widget->Selected_Pages();
    const int last = pages.size() - 1;
    const int row = selected.empty() ? (rows > 0 ? 0 : last)
                                     : qBound(0, pages.indexOf(selected.back()) + rows, last);
    d_page_widget->Set_Active_Page(pages.at(row));
}

/// F2, or Return on the page, goes to the editor of the label's text, and Return goes back.
void TQuillet::Add_Text_Keys()
{
    connect(new QShortcut(Qt::Key_F2, this), &QShortcut::activated, this, &TQuillet::Edit_Text);
    new TReturnKey(d_display_widget, [this] { Edit_Text(); });
    // Queued: the editor commits its text after it has emitted this signal.
    connect(d_label_widget->Text_Editor(), &QLineEdit::returnPressed, this,
            &TQuillet::Return_To_Page, Qt::QueuedConnection);
}

/// Selects a label and goes to the editor of its text: the label that was added since the last
/// selection, otherwise the last of the selected ones or, without a selection, of the page.
void TQuillet::Edit_Text()
{
    if (!d_data.Page_Image_Valid() || !d_data.Page_Has_Data()) {
        Show_Status(tr("There is no label on the page"));
        return;
    }
    Commit_Editors();
    const std::vector<int> selected = d_label_widget->Selected_Items();
    const bool has_new = d_new_label && d_data.Item_Exists(*d_new_label);
    if (has_new)
        d_label_widget->Set_Selection(*d_new_label);
    else if (selected.size() != 1)
        d_label_widget->Set_Selection(
            selected.empty() ? d_data.Active_Page_Item()->data_items.back().id : selected.back());
    d_label_dock->show();
    QLineEdit* const editor = d_label_widget->Text_Editor();
    editor->activateWindow();
    editor->setFocus(Qt::ShortcutFocusReason);
    // Qt selects the text only if the editor's window is active already.
    editor->selectAll();
}

void TQuillet::Return_To_Page()
{
    // The text is committed already. Leaving the editor must not commit it again.
    const QSignalBlocker blocker(d_label_widget->Text_Editor());
    activateWindow();
    d_display_widget->setFocus();
}
