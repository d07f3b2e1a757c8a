// The notice about recovered work, and opening that work as unsaved changes of its document.

#include "src/quillet.h"

#include "src/safety/safetynet.h"
#include "src/widgets/recoverynotice.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFileInfo>
#include <QStatusBar>
#include <QWindow>

#include <algorithm>

namespace {

/// The document that a recovery copy belongs to; empty if it was never saved among the user's
/// files.
QString Document_Of(const TKeptFile& copy)
{
    const bool is_hidden = QFileInfo(copy.document).path() == QFileInfo(copy.path).path();
    return is_hidden ? QString() : copy.document;
}

/// The time for a notice, with the date unless it is today.
QString Time_Text(const QDateTime& time)
{
    const bool is_today = time.date() == QDate::currentDate();
    return time.toString(is_today ? QStringLiteral("hh:mm") : QStringLiteral("yyyy-MM-dd hh:mm"));
}

/// @param work    a recovery copy, or a log that could not be converted.
/// @param others  number of other copies and logs.
QString Notice_Text(const TKeptFile& work, std::size_t others)
{
    const QString document = Document_Of(work);
    const QString name =
        document.isEmpty() ? TQuillet::tr("a new document") : QFileInfo(document).fileName();
    // All arguments at once: the name may contain "%2".
    QString text = work.problem.isEmpty()
                       ? TQuillet::tr("Unsaved changes to %1 from %2 were recovered")
                             .arg(name, Time_Text(work.time))
                       : TQuillet::tr("Unsaved changes to %1 from %2 were not recovered: %3 %4")
                             .arg(name, Time_Text(work.time), work.path, work.problem);
    if (work.missing_images > 0)
        text += TQuillet::tr("; missing images: %1").arg(work.missing_images);
    if (work.problem.isEmpty() && work.Is_Document_Changed())
        text += TQuillet::tr("; the document has changed since");
    return others == 0 ? text : text + TQuillet::tr(" (%1 more)").arg(others);
}

/// The tool tip of the notice. Qt decides by the first line whether a text is rich text, so that
/// line contains no names.
QString Notice_Details(const TKeptFile& work)
{
    const QString document = Document_Of(work);
    QString text = TQuillet::tr("The program ended before this work was saved.");
    text += work.problem.isEmpty()
                ? TQuillet::tr("\nRecovered work: ") + work.path
                : TQuillet::tr("\nThe work stays in %1, which %2.").arg(work.path, work.problem);
    if (!document.isEmpty())
        text += TQuillet::tr("\nDocument: ") + document;
    if (!work.problem.isEmpty())
        return text;
    if (!document.isEmpty() && !QFileInfo::exists(document))
        text += TQuillet::tr("\nThe document does not exist any more. Saving creates it again.");
    if (work.Is_Document_Changed())
        text += TQuillet::tr("\nThe document has changed since this work began. Saving replaces "
                             "that version and keeps it as a backup.");
    return text;
}

} // namespace

/// Converts the work logs that killed processes left. May take long with large images.
void TQuillet::Recover_Work()
{
    if (!d_safety_net->Has_Abandoned_Logs())
        return;
    // The progress is painted without an event loop, which needs a window on the screen.
    constexpr int longest_wait = 1000; // milliseconds
    const QDeadlineTimer deadline(longest_wait);
    while (!windowHandle()->isExposed() && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    TProgress progress = New_Progress(tr("Recovering page %1 of %2"));
    d_safety_net->Convert_Abandoned_Logs(progress.Report());
    Show_Recovery_Notice(d_safety_net->Abandoned());
}

/// Shows a notice for each of these recovery copies and logs, one after the other.
void TQuillet::Show_Recovery_Notice(const std::vector<TKeptFile>& recovered)
{
    d_recovered = recovered;
    if (!d_recovery_notice && !d_recovered.empty()) {
        d_recovery_notice = new TRecoveryNotice(this);
        connect(d_recovery_notice, &TRecoveryNotice::Open_Requested, this,
                &TQuillet::Open_Recovered);
        connect(d_recovery_notice, &TRecoveryNotice::Dismissed, this, &TQuillet::Dismiss_Recovered);
        statusBar()->addWidget(d_recovery_notice);
    }
    Update_Recovery_Notice();
}

/// Shows the notice for the next copy or log that still exists, or hides it.
void TQuillet::Update_Recovery_Notice()
{
    const auto end =
        std::remove_if(d_recovered.begin(), d_recovered.end(),
                       [](const TKeptFile& work) { return !QFileInfo::exists(work.path); });
    d_recovered.erase(end, d_recovered.end());
    if (d_recovered.empty()) {
        if (d_recovery_notice)
            d_recovery_notice->hide();
        return;
    }
    const TKeptFile& work = d_recovered.front();
    d_recovery_notice->Set_Text(Notice_Text(work, d_recovered.size() - 1), Notice_Details(work));
    d_recovery_notice->Set_Openable(work.problem.isEmpty());
}

/// Goes on to the next copy or log. The file stays.
void TQuillet::Dismiss_Recovered()
{
    d_recovered.erase(d_recovered.begin());
    Update_Recovery_Notice();
}

/// Opens the recovery copy that the notice is about as unsaved changes of its document.
void TQuillet::Open_Recovered()
{
    Commit_Editors();
    if (!Confirm_Loss())
        return;
    Flush_Work();
    TKeptFile copy = d_recovered.front();
    const bool loaded = Replace_Document(copy.path);
    if (!d_has_new_document) {
        // Another window may have saved the work and deleted the copy.
        Update_Recovery_Notice();
        return;
    }
    // Save asks for a name if only a part was read: it must not replace the complete document.
    Set_File_Name(loaded ? Document_Of(copy) : QString());
    if (!d_file_name.isEmpty())
        Set_Working_File(d_file_name);
    Set_Changed(true);
    if (loaded) {
        copy.document = d_file_name;
        d_safety_net->After_Recovery(copy);
        Dismiss_Recovered();
    }
    Update_Document_Actions();
}
