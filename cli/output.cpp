#include "cli/output.h"

#include "cli/commandline.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/terminal.h"
#include "cli/translate.h"

#include <QFile>
#include <QFileInfo>

TOutput::TOutput(const TCommandLine& line, const char* option, TContent content)
    : d_path(line.Text(option))
    , d_content(content)
{
    const bool force = line.Is_Set(CommonOptions::Force);
    if (d_path == Files::Standard_Stream)
        Redirect(force);
    else if (d_content == TContent::Project)
        Files::Check_Project_Output(d_path, force);
    else
        Files::Check_Output(d_path, force);
}

void TOutput::Redirect(bool force)
{
    if (d_content != TContent::Text && !force && Terminal::Is_Output_Terminal())
        throw TJobError{Tr("standard output"),
                        Tr("is a terminal; redirect it, or use --force to write to it")};
    d_folder = std::make_unique<QTemporaryDir>(Files::Temporary_Template());
    if (!d_folder->isValid())
        Files::Throw_Write_Error(d_folder->path(), d_folder->errorString());
    d_path = d_folder->filePath(QStringLiteral("output"));
    d_registration.emplace(d_path);
    Terminal::Reserve_Output();
}

void TOutput::Finish() const
{
    Terminal::Print_Detail(d_folder ? Tr("standard output") : d_path,
                           Tr("written, %1 bytes").arg(QFileInfo(d_path).size()));
    if (!d_folder)
        return;
    if (d_content == TContent::Text) {
        Terminal::Print_Text(Files::Read(d_path));
        return;
    }
    QFile file(d_path);
    constexpr qint64 block_size = 1024 * 1024;
    if (!file.open(QIODevice::ReadOnly))
        Files::Throw_Read_Error(d_path, file.errorString());
    while (!file.atEnd())
        Terminal::Print_Raw(file.read(block_size));
}
