#pragma once

#include "src/format/document.h"
#include "src/format/projectsurvey.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

/// Reading and writing for the commands. Whatever goes wrong ends in a TJobError with the file.
namespace Files {

/// The content of a file.
QByteArray Read(const QString& path);

/// A project file with whatever is wrong with it, its images included.
TProjectSurvey Survey(const QString& path);

/// A document, of the present generation or an earlier one. A damaged one is refused.
TDocument Load(const QString& path);

/// Makes sure that a file can be written, before any work is done for it.
/// @param force  whether it may be there already.
void Check_Output(const QString& path, bool force);

/// Makes sure that none of the files that are read is replaced by what is written, which is of
/// another kind: that takes more than a slip and the flag that lets files be replaced.
void Check_Is_Other(const QString& path, const QStringList& inputs);

/// Replaces a file by bytes, or leaves it as it was.
void Write(const QString& path, const QByteArray& content);

/// Writes a project file, or leaves the one that is there as it was.
void Save(const QString& path, TDocument* document);

/// A defect in words, with its place.
QString Text(const TProjectDefect& defect);

/// The error of a file that could not be written as a whole.
[[noreturn]] void Fail_To_Write(const QString& path);

} // namespace Files
