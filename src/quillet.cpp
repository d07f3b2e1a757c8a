// The window as a whole: construction, geometry, closing, questions and messages, zoom, and which
// commands are enabled.

#include "src/quillet.h"

#include "src/displaywidget.h"
#include "src/format/imageencoder.h"
#include "src/labelwidget.h"
#include "src/messagebox.h"
#include "src/pagewidget.h"
#include "src/safety/openmark.h"
#include "src/safety/safetynet.h"
#include "src/settingswidget.h"
#include "src/undo/undohistory.h"
#include "src/widgets/documentname.h"
#include "src/widgets/panelparts.h"
#include "src/widgets/parentwidget.h"
#include "src/widgets/undokeys.h"

#include <QAction>
#include <QCloseEvent>
#include <QDockWidget>
#include <QGuiApplication>
#include <QLabel>
#include <QScreen>
#include <QSlider>
#include <QStatusBar>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr double smallest_scale = 0.1353352832366127; ///< e^-2

/// The position of a window that is completely on a screen, as close as possible to its own. The
/// screen that it was on may no longer exist.
QPoint Position_On_Screen(const QRect& window)
{
    const QScreen* screen = QGuiApplication::screenAt(window.center());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    const QRect area = screen->availableGeometry();
    // The top-left corner of a larger window is visible.
    return {std::max(area.x(), std::min(window.x(), area.x() + area.width() - window.width())),
            std::max(area.y(), std::min(window.y(), area.y() + area.height() - window.height()))};
}

} // namespace

TQuillet::TQuillet(const QWidget* parent, Qt::WindowFlags flags)
    : QMainWindow(Parent_Widget(parent), flags)
{
    resize(800, 600);
    setIconSize(QSize(32, 32));
    Prepare_Settings();
    Restore_Geometry();
    d_message_box = new TMessageBox(this);
    Create_Actions();
    QMenu* view_menu = Create_Menus();
    Create_Tool_Bar();
    Create_Status_Bar();
    Create_Docks(view_menu);
    Create_Panels();
    Create_Central_Widget();
    Set_Focus_Order();
    Set_Titles();
    Restore_Settings();
    d_display_click = false;
    Set_Changed(false);
    d_label_widget->setEnabled(false);
    Connect_Signals();
    Add_Gestures();
    Set_Up_Safety_Net();
    Start_Encoder();
    Start_History();
}

TQuillet::~TQuillet() = default;

void TQuillet::Restore_Geometry()
{
    const QRect visible = Saved_Geometry() & QGuiApplication::primaryScreen()->availableGeometry();
    resize(visible.isEmpty() ? Default_Size : visible.size());
    move(visible.isEmpty() ? Default_Position : visible.topLeft());
}

void TQuillet::Narrow_Docks()
{
    // The page has priority: it gets a fixed share of the window. The docks get their minimum width
    // and, if there is space left, enough to show their captions on one line.
    constexpr double page_share = 0.42;
    const int left = d_label_dock->minimumSizeHint().width();
    const int right =
        qMax(d_page_dock->minimumSizeHint().width(), d_settings_dock->minimumSizeHint().width());
    const int spare = static_cast<int>(width() * (1.0 - page_share)) - left - right;
    const int more_left = qBound(0, spare, PanelParts::Caption_Room(*d_label_widget));
    const int more_right =
        qBound(0, spare - more_left, PanelParts::Caption_Room(*d_settings_widget));
    resizeDocks({d_label_dock, d_page_dock}, {left + more_left, right + more_right},
                Qt::Horizontal);
}

void TQuillet::setVisible(bool visible)
{
    QMainWindow::setVisible(visible);
    if (visible && !std::exchange(d_was_visible, true))
        QMetaObject::invokeMethod(this, &TQuillet::Recover_Work, Qt::QueuedConnection);
    // Floating docks appeared before this window, so the window manager puts it above them. Their
    // sizes are not stored, so they may now reach beyond the screen.
    for (QDockWidget* dock : {d_label_dock, d_settings_dock, d_page_dock}) {
        if (!visible || !dock->isFloating())
            continue;
        dock->move(Position_On_Screen(dock->frameGeometry()));
        dock->raise();
    }
}

void TQuillet::closeEvent(QCloseEvent* event)
{
    Commit_Editors();
    Write_Settings();
    Flush_Work();
    event->setAccepted(!d_data_changed || Confirm_Close());
    if (event->isAccepted())
        d_image_encoder->Set_Images({});
}

/// Asks whether to save the unsaved changes, and does so. Returns false if the user cancels.
bool TQuillet::Confirm_Close()
{
    const QMessageBox::StandardButton answer =
        Show_Message(tr("Data Not Saved"), tr("Do you want to save the Quillet data?"), QString(),
                     QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Yes,
                     QMessageBox::Question);
    if (answer == QMessageBox::Yes)
        File_Save();
    if (answer == QMessageBox::No)
        d_safety_net->Discard();
    return answer != QMessageBox::Cancel;
}

void TQuillet::Help_About()
{
    Show_Message(tr("Help - About"), tr("Quillet - Version 3.0"), QString(), QMessageBox::Ok,
                 QMessageBox::Ok, QMessageBox::Information);
}

void TQuillet::Image_Zoom_Changed(int value)
{
    // The slider covers scales from e^-2 to e^2. Each step of the slider multiplies the scale by
    // the same factor, and the middle is the original size.
    const double x =
        static_cast<double>(value - d_zoom_slider->minimum()) / d_zoom_slider->maximum();
    const double scale = std::exp(2.0 * x) * smallest_scale;
    d_display_widget->Change_Scale(scale);
    d_zoom_label->setText(tr("%1 X").arg(scale, 0, 'f', 2));
}

/// The inverse of Image_Zoom_Changed: the value of the slider for a scale, possibly out of its
/// range.
double TQuillet::Zoom_Value(double scale) const
{
    const double x = std::log(scale / smallest_scale) / 2.0;
    return x * d_zoom_slider->maximum() + d_zoom_slider->minimum();
}

QMessageBox::StandardButton
TQuillet::Show_Message(const QString& text, const QString& informative_text,
                       const QString& detailed_text, QMessageBox::StandardButtons buttons,
                       QMessageBox::StandardButton default_button, QMessageBox::Icon icon)
{
    Flush_Work();
    d_message_box->setText(text);
    d_message_box->setInformativeText(informative_text);
    d_message_box->setDetailedText(detailed_text);
    d_message_box->setStandardButtons(buttons);
    d_message_box->setDefaultButton(default_button);
    d_message_box->setIcon(icon);
    return static_cast<QMessageBox::StandardButton>(d_message_box->exec());
}

bool TQuillet::Confirm(const QString& text, const QString& question)
{
    return Show_Message(text, question, QString(), QMessageBox::Yes | QMessageBox::No,
                        QMessageBox::No, QMessageBox::Question) == QMessageBox::Yes;
}

bool TQuillet::Confirm_Loss()
{
    return !d_data_changed || Confirm(tr("Data Not Saved"),
                                      tr("Current data will be lost.  Do you want to continue?"));
}

void TQuillet::Show_File_Error(const QString& text, const QString& informative_text)
{
    Show_Message(text, informative_text, d_error_text, QMessageBox::Ok, QMessageBox::Ok,
                 QMessageBox::Critical);
}

/// Shows a line in the status bar for some seconds.
void TQuillet::Show_Status(const QString& text)
{
    statusBar()->showMessage(text, Message_Milliseconds);
}

/// Shows a long operation in the left part of the status bar for as long as the returned object
/// lives.
TProgress TQuillet::New_Progress(const QString& pattern) const
{
    constexpr int margin = 2; // pixels
    QRect area = statusBar()->contentsRect().adjusted(margin, margin, 0, -margin);
    area.setRight(d_zoom_slider->parentWidget()->x() - 2 * margin);
    return TProgress(statusBar(), area, pattern, d_progress_clock);
}

/// Commits what the user has typed into an editor but not finished, as the Return key does. Neither
/// a shortcut nor the tool bar takes the focus from the editor.
void TQuillet::Commit_Editors()
{
    d_label_widget->Commit_Text();
    d_settings_widget->Commit_Display_Format();
}

void TQuillet::Mark_Changed()
{
    Set_Changed(true);
    Record_Change();
}

void TQuillet::Set_Changed(bool is_changed)
{
    d_data_changed = is_changed;
    Show_Document_Name();
}

void TQuillet::Show_Document_Name()
{
    d_document_name->Show_Document(d_file_name, d_data_changed);
}

void TQuillet::Update_Document_Actions()
{
    Enable_Document_Actions(d_data.Page_Count() > 0);
}

void TQuillet::Enable_Document_Actions(bool enable)
{
    for (QAction* action : {d_action_export_pdf, d_action_export_images, d_action_export_web_page,
                            d_action_reindex, d_action_save})
        action->setEnabled(enable);
}

void TQuillet::Set_Working_File(const QString& path)
{
    d_working_dir.setPath(path.left(path.lastIndexOf(QLatin1Char('/'))));
}
