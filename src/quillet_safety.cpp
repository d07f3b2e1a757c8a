// The safety net's place in the window: when it is told of changes, and how kept work is announced.

#include "src/quillet.h"

#include "src/format/projectfile.h"
#include "src/pagewidget.h"
#include "src/safety/safetynet.h"

#include <QEvent>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QSettings>
#include <QStatusBar>

void TQuillet::Spread_Safety_Net()
{
    const QString settings_folder = QFileInfo(d_settings->fileName()).absolutePath();
    d_safety_net = std::make_unique<TSafetyNet>(settings_folder, [this](TProjectWriter* writer) {
        Write_Project(writer, WholeDocument::TPurpose::Recovery_Copy);
    });
    Announce_Kept_Work();
}

/// Tells of copies that a run which ended badly has left: in the status bar, where nobody is
/// interrupted, for as long as they are there.
void TQuillet::Announce_Kept_Work()
{
    QStringList paths;
    for (const TKeptFile& file : d_safety_net->Found()) {
        if (QFile::exists(file.path))
            paths += file.path;
    }
    if (paths.isEmpty()) {
        if (d_kept_notice)
            d_kept_notice->hide();
        return;
    }
    if (!d_kept_notice) {
        d_kept_notice = new QLabel(this);
        d_kept_notice->setTextInteractionFlags(Qt::TextSelectableByMouse);
        // A path is shown as it is written, whatever characters it has.
        d_kept_notice->setTextFormat(Qt::PlainText);
        // A long one is cut off rather than making the window wider; the tool tip has all of it.
        d_kept_notice->setMinimumWidth(1);
        statusBar()->addWidget(d_kept_notice, 1);
    }
    d_kept_notice->setText(tr("Unsaved work was kept in %1").arg(paths.first()));
    d_kept_notice->setToolTip(tr("The program ended before this work was saved. Open this file to "
                                 "get it back:\n%1")
                                  .arg(paths.join(QLatin1Char('\n'))));
}

void TQuillet::Mark_Changed()
{
    d_data_changed = true;
    Note_Work();
}

void TQuillet::Note_Work()
{
    // While the view is being filled it reports positions that the document already has.
    if (d_safety_net && !d_filling_view)
        d_safety_net->Note_Change(d_file_name);
}

/// The user turns away, or a modal command begins.
void TQuillet::Keep_Work()
{
    if (!d_safety_net)
        return;
    Note_Page_List();
    d_safety_net->Keep_Now(d_file_name);
}

/// Another document takes this one's place.
/// @param gave_up  whether the user was asked about unsaved work and let it go; otherwise what is
///                 kept of it stays where it is.
void TQuillet::Leave_Work(bool gave_up)
{
    if (gave_up)
        d_safety_net->Give_Up();
    else
        d_safety_net->Set_Aside();
}

void TQuillet::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && !isActiveWindow())
        Keep_Work();
}
