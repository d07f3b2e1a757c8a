#include "cli/files.h"

#include "cli/errors.h"
#include "cli/terminal.h"
#include "cli/words.h"
#include "core/safefile.h"
#include "core/xmlfile.h"
#include "src/format/documentreader.h"
#include "src/format/legacyfile.h"
#include "src/format/projectfile.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

TDocument Load_Project(const QString& path)
{
    const TProjectSurvey survey = ProjectSurvey::Survey(Files::Read(path));
    if (!survey.defects.empty())
        throw TJobError{path, Files::Text(survey.defects.front())};
    return DocumentReader::From_Survey(survey);
}

} // namespace

QByteArray Files::Read(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw TJobError{path, file.errorString()};
    if (file.size() > TProjectWriter::Maximum_Size)
        throw TJobError{path, Translated("is larger than 2 GiB")};
    QByteArray content = file.readAll();
    // Opening a folder succeeds; reading it does not.
    if (file.error() != QFileDevice::NoError)
        throw TJobError{path, file.errorString()};
    return content;
}

TProjectSurvey Files::Survey(const QString& path)
{
    TTerminalProgress progress(Translated("Looking at page %1 of %2"));
    return ProjectSurvey::Survey(Read(path), ProjectSurvey::TImages::Decode, progress.Steps());
}

TDocument Files::Load(const QString& path)
{
    if (!LegacyFile::Is_Legacy(path))
        return Load_Project(path);
    try {
        return DocumentReader::Read_Legacy(path);
    } catch (const TXmlFileException& exception) {
        throw TJobError{path, exception.Message()};
    }
}

void Files::Check_Output(const QString& path, bool force)
{
    const QFileInfo file(path);
    const QFileInfo folder(file.path());
    if (path.isEmpty() || file.isDir())
        throw TJobError{path, Translated("is no name for a file")};
    if (file.exists() && !file.isFile())
        throw TJobError{path, Translated("is no file that can be replaced")};
    if (file.exists() && !force)
        throw TJobError{path, Translated("exists already; --force replaces it")};
    if (!folder.isDir())
        throw TJobError{path, Translated("its folder does not exist")};
    // What cannot be replaced as a whole is not written at all.
    if (!folder.isWritable() || (file.exists() && !file.isWritable()))
        throw TJobError{path, Translated("is write-protected")};
}

void Files::Check_Is_Other(const QString& path, const QStringList& inputs)
{
    const QString file = QFileInfo(path).canonicalFilePath();
    const bool is_input =
        std::any_of(inputs.cbegin(), inputs.cend(), [&file](const QString& input) {
            return QFileInfo(input).canonicalFilePath() == file;
        });
    if (!file.isEmpty() && is_input)
        throw TJobError{path, Translated("is read here and would be lost")};
}

void Files::Write(const QString& path, const QByteArray& content)
{
    if (!TSafeFile::Replace(path, content))
        Fail_To_Write(path);
}

void Files::Save(const QString& path, TDocument* document)
{
    TTerminalProgress progress(Translated("Saving page %1 of %2"));
    TProjectWriter project;
    const QString fault =
        WholeDocument::Write(document->appearance, document->pages, WholeDocument::TPurpose::Save,
                             &document->data, progress.Steps(), &project);
    if (!fault.isEmpty())
        throw TJobError{path, fault};
    if (project.Size() > TProjectWriter::Maximum_Size)
        throw TJobError{path, Translated("would be larger than 2 GiB")};
    TSafeFile target(path);
    if (!target.Is_Beside() || !ProjectFile::Commit(project, &target))
        Fail_To_Write(path);
}

QString Files::Text(const TProjectDefect& defect)
{
    return Translated("byte %1: %2").arg(defect.offset).arg(defect.what);
}

void Files::Fail_To_Write(const QString& path)
{
    throw TJobError{path, Translated("cannot be written")};
}
