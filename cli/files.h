#pragma once

#include "src/format/document.h"
#include "src/format/projectsurvey.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <vector>

/// File access for the commands. Every failure throws a TJobError that names the file.
namespace Files {

/// The name of standard input as an input, and of standard output as an output.
inline const QLatin1String Standard_Stream("-");

/// Template of the names of temporary folders, for QTemporaryDir.
QString Temporary_Template();

/// Checks that a file can be opened.
void Check_Input(const QString& path);

/// Reads a whole file, a pipe, or standard input. Refuses more than 2 GiB.
QByteArray Read(const QString& path);

/// The same for a project, but a file of any size, and a large one is read when it is needed.
TByteSource Read_Project(const QString& path);

/// Reads a project file with all its defects, and checks its images.
TProjectSurvey Survey(const QString& path);

/// A file's name without folder and last suffix; "stdin" for standard input.
QString Base_Name(const QString& path);

/// Loads a project or a file of an earlier generation. Rejects damaged files.
TDocument Load(const QString& path);

/// Loads a document of an earlier generation.
/// @param loss  receives a message if it has labels that cannot be read.
TDocument Load_Legacy(const QString& path, QString* loss);

/// Loads a document. Rejects one without pages.
TDocument Load_Pages(const QString& path);

/// Checks that the images of pages can be decoded to their ends.
/// @param numbers  of the pages, from 1.
void Check_Images(const QString& path, const TDocument& document, const std::vector<int>& numbers);

/// Checks that files can be written to a folder.
void Check_Folder(const QString& path);

/// Checks that a file can be written. Commands call it before they start to work.
/// @param force  accepts an existing file.
void Check_Output(const QString& path, bool force);

/// The same for a project, which must not have the suffix of a file of an earlier generation.
void Check_Project_Output(const QString& path, bool force);

/// Checks that an output does not overwrite an input, which not even --force allows. Both may be
/// standard streams.
void Check_Is_No_Input(const QString& output, const QStringList& inputs);

/// Checks that a project does not overwrite a legacy document from which it is made. A project may
/// replace the project from which it is made.
void Check_Is_No_Legacy_Input(const QString& output, const QString& input);

/// The settings folder of the window.
QString Settings_Folder();

/// Number of hard links to a file that protect unsaved work or are backups.
int Protecting_Links(const QString& path);

/// Writes a file completely, or leaves it unchanged.
void Write(const QString& path, const QByteArray& content);

/// Writes a project file completely, or leaves an existing one unchanged.
void Save(const QString& path, const TDocument& document);

/// Whether a file looks like a work log of the window.
bool Is_Work_Log(const QString& path);

/// Writes the document in a work log as a project.
/// @return messages for the user.
QStringList Recover_Work_Log(const QString& path, const QString& output);

/// Describes a defect and its byte offset.
QString Describe(const TProjectDefect& defect);

/// Throws the error of a file that could not be read.
/// @param problem  the system's reason.
[[noreturn]] void Throw_Read_Error(const QString& path, const QString& problem);

/// Throws the error of a file that could not be written.
/// @param problem  the system's reason; empty if it is unknown.
[[noreturn]] void Throw_Write_Error(const QString& path, const QString& problem);

} // namespace Files
