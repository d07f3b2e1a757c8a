// When the window calls the safety net.

#include "src/quillet.h"

#include "src/pagewidget.h"
#include "src/safety/openmark.h"
#include "src/safety/safetynet.h"
#include "src/undo/undohistory.h"

#include <QEvent>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStatusBar>

void TQuillet::Set_Up_Safety_Net()
{
    const QString settings_folder = QFileInfo(d_settings->fileName()).absolutePath();
    d_safety_net = std::make_unique<TSafetyNet>(settings_folder, [this] {
        return TWorkState{Appearance(), Named_Pages(), &d_data};
    });
    d_open_mark = std::make_unique<TOpenMark>(settings_folder + QStringLiteral("/open"));
    Show_Recovery_Notice(d_safety_net->Abandoned());
}

/// Reports a change by the user to the safety net.
void TQuillet::Record_Change()
{
    // A view that is being filled reports positions that the document already has.
    if (d_safety_net && !d_filling_view)
        d_safety_net->Record_Change(d_file_name);
}

/// Writes unsaved changes to the disk. Called when the window loses focus and before a modal dialog
/// opens.
void TQuillet::Flush_Work()
{
    if (!d_safety_net)
        return;
    if (d_history)
        d_history->Record_Page_List();
    d_safety_net->Flush(d_file_name);
}

/// Backs up a file and opens it for writing. Shows where the backup is if the save replaces another
/// version than the one that this window opened or saved.
bool TQuillet::Open_For_Saving(QFile* file, qint64 size)
{
    QString other_version;
    const bool is_changed = d_safety_net->Is_Changed_Elsewhere(file->fileName());
    const bool is_open = d_safety_net->Open_For_Saving(file, size, &other_version);
    if (!other_version.isEmpty())
        statusBar()->showMessage(
            (is_changed ? tr("Another program changed the document. Its version is in %1")
                        : tr("The replaced file is in %1"))
                .arg(other_version));
    return is_open;
}

/// Ends the work on a document that another one replaces. Its unsaved changes stay for the next
/// start unless their loss is confirmed.
/// @param loss_confirmed  whether the user agreed to lose unsaved changes, which are then deleted.
/// @param opened          path of the other document, if it was read from a file.
void TQuillet::End_Recovery(bool loss_confirmed, const QString& opened)
{
    if (loss_confirmed)
        d_safety_net->Discard(opened);
    else
        d_safety_net->Release();
}

/// Adds the pages whose images another program has overwritten to the line in the status bar.
void TQuillet::Show_Lost_Images()
{
    QStringList names;
    for (const TNamedPage& page : Named_Pages()) {
        if (d_data.Page(page.page_id).image.Is_Lost())
            names += d_page_widget->Page_Name(page.page_id);
    }
    if (names.isEmpty())
        return;
    const QString text = tr("Another program has overwritten the images of %1")
                             .arg(names.join(QStringLiteral(", ")));
    const QString line = statusBar()->currentMessage();
    if (!line.contains(text))
        statusBar()->showMessage(line.isEmpty() ? text : line + QStringLiteral(". ") + text);
}

void TQuillet::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && !isActiveWindow())
        Flush_Work();
}
