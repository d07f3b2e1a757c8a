#include "src/safety/logconversion.h"

#include "core/safefile.h"
#include "src/format/itemlist.h"
#include "src/format/projectfile.h"
#include "src/safety/keptfiles.h"
#include "src/safety/logreader.h"

#include <QCoreApplication>
#include <QFile>

namespace {

QString Tr(const char* text)
{
    return QCoreApplication::translate("LogConversion", text);
}

void Write_Header(const TLogReader& log, TProjectWriter* writer)
{
    const TAppearance& appearance = log.Appearance();
    writer->Write_Integer(appearance.label_size);
    writer->Write_Text(appearance.color_name);
    writer->Write_Text(appearance.header_1);
    writer->Write_Text(appearance.header_2);
    writer->Write_Integer(static_cast<int>(log.Pages().size()));
}

/// Returns false if the image or the labels are missing.
bool Write_Page(TLogReader* log, const TLoggedPage& page, bool is_first, TProjectWriter* writer)
{
    TPageTexts texts{page.name, QString(), QString()};
    if (is_first) {
        texts.header_1 = log->Appearance().header_1;
        texts.header_2 = log->Appearance().header_2;
    }
    const std::optional<QByteArray> image = log->Image(page);
    const std::optional<QByteArray> items = log->Items(page, texts);
    TPageItem written;
    written.image = TPageImage::From_Bytes(image.value_or(QByteArray()));
    writer->Write_Page(page.name, written, TProjectWriter::TImageBytes::Source,
                       items ? *items : ItemList::Write({}, ItemList::TBadText::Leave_Out, texts));
    return image && items;
}

/// Writes the pages one by one, so that only one image is in memory.
bool Write_Project(TLogReader* log, QIODevice* device, const TProgressReport& report,
                   TProjectWriter* writer, int* missing_images)
{
    Write_Header(*log, writer);
    const int total = static_cast<int>(log->Pages().size());
    int number = 0;
    for (const TLoggedPage& page : log->Pages()) {
        ++number;
        if (report)
            report(number, total);
        if (!Write_Page(log, page, number == 1, writer))
            ++*missing_images;
        if (!writer->Flush_To(device))
            return false;
    }
    return writer->Flush_To(device);
}

/// Sets the time of a copy to that of the last change.
void Set_Time(const QString& path, const QDateTime& time)
{
    QFile file(path);
    if (file.open(QIODevice::ReadWrite))
        file.setFileTime(time, QFileDevice::FileModificationTime);
}

/// Converts the log of a locked note. Returns why it cannot be converted as a whole; empty on
/// success.
QString Convert(const TKeptFolder& folder, const QString& name, const QString& backup_folder,
                const TProgressReport& report, const TKeptNote& note)
{
    TLogReader log;
    const TLogReader::TContent content = log.Open(folder.Log_Path(name), backup_folder);
    if (content == TLogReader::TContent::Unreadable)
        return log.Problem();
    if (content == TLogReader::TContent::Nothing) {
        folder.Remove(name);
        return QString();
    }
    const QString copy = folder.Copy_Path(name);
    TSafeFile target(copy, TSafeFile::TKind::Private);
    const LogConversion::TResult result =
        LogConversion::Write(&log, LogConversion::TDamage::Refuse, &target, report);
    if (!result.is_written)
        return log.Is_Whole() ? Tr("cannot be converted: writing failed") : Tr("is damaged");
    Set_Time(copy, log.Changed());
    // The file with the missing images may be unreachable only for a short time.
    if (result.missing_images > 0 || log.Has_Ignored_Changes()) {
        note.Write(log.Document(), result.missing_images);
    } else {
        note.Write(log.Document());
        folder.Remove_Log(name);
    }
    return log.Has_Ignored_Changes() ? Tr("is damaged; only earlier changes were recovered")
                                     : QString();
}

} // namespace

LogConversion::TResult LogConversion::Write(TLogReader* log, TDamage damage, TSafeFile* target,
                                            const TProgressReport& report)
{
    TResult result;
    QFile file(target->Path_To_Write());
    TProjectWriter writer;
    const bool must_be_whole = damage == TDamage::Refuse;
    if (!target->Is_Beside() || (must_be_whole && !log->Check()) ||
        !file.open(QIODevice::WriteOnly) ||
        !Write_Project(log, &file, report, &writer, &result.missing_images) || !file.flush() ||
        (must_be_whole && !log->Is_Whole()))
        return result;
    file.close();
    result.is_written = target->Commit([&writer](const QString& written) {
        return TSafeFile::Is_Complete(written, writer.Size(), QByteArray());
    });
    return result;
}

std::vector<TKeptFile> LogConversion::Convert_Abandoned(const TKeptFolder& folder,
                                                        const QString& backup_folder,
                                                        const TProgressReport& report)
{
    std::vector<TKeptFile> problems;
    for (TKeptFile& log : folder.Abandoned_Logs()) {
        const QString name = TKeptFolder::Name_Of(log.path);
        TKeptNote note;
        // Another process may have converted it meanwhile.
        if (!note.Open(folder.Note_Path(name), TKeptNote::TExisting::Reuse) ||
            !folder.Has_Log_To_Convert(name))
            continue;
        log.problem = Convert(folder, name, backup_folder, report, note);
        if (log.problem.isEmpty() || log.is_reported)
            continue;
        if (folder.Has_Log_To_Convert(name))
            note.Write({log.document, log.document_stamp}, std::nullopt, true);
        problems.push_back(log);
    }
    return problems;
}
