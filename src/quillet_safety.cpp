// The safety net's place in the window: when it is told of changes, and how kept work is announced.

#include "src/quillet.h"

#include "src/pagewidget.h"
#include "src/projectfile.h"
#include "src/safetynet.h"

#include <QEvent>
#include <QFileInfo>
#include <QLabel>
#include <QSettings>
#include <QStatusBar>

void TQuillet::Spread_Safety_Net()
{
    const QString settings_folder = QFileInfo(d_settings->fileName()).absolutePath();
    d_safety_net = std::make_unique<TSafetyNet>(settings_folder, [this](TProjectWriter* writer) {
        Write_Project(writer, TProjectWriter::TImageBytes::As_They_Came);
    });
    Announce_Kept_Work();
}

/// Tells of copies that a run which ended badly has left: in the status bar, where nobody is
/// interrupted, for as long as the window lives.
void TQuillet::Announce_Kept_Work()
{
    const std::vector<TKeptFile>& found = d_safety_net->Found();
    if (found.empty())
        return;
    const QString path = found.front().path;
    auto* notice = new QLabel(tr("Unsaved work was kept in %1").arg(path), this);
    notice->setToolTip(tr("The program ended before this work was saved. Open this file to get it "
                          "back:\n%1")
                           .arg(path));
    notice->setTextInteractionFlags(Qt::TextSelectableByMouse);
    // A long path is cut off rather than making the window wider; the tool tip has all of it.
    notice->setMinimumWidth(1);
    statusBar()->addWidget(notice, 1);
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

/// The user turns away, or a modal command begins. Page names and their order change without a
/// signal, so this is the moment to look at them.
void TQuillet::Keep_Work()
{
    if (!d_safety_net)
        return;
    const QStringList known_names = d_known_page_names;
    Remember_Page_Names();
    if (d_known_page_names != known_names)
        d_safety_net->Note_Change(d_file_name);
    d_safety_net->Keep_Now(d_file_name);
}

void TQuillet::Remember_Page_Names()
{
    d_known_page_names.clear();
    const QList<int> page_ids = d_page_widget->Page_Ids();
    for (const int page_id : page_ids)
        d_known_page_names +=
            QString::number(page_id) + QLatin1Char(' ') + d_page_widget->Page_Name(page_id);
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
    Remember_Page_Names();
}

void TQuillet::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && !isActiveWindow())
        Keep_Work();
}
