#pragma once

#include "src/document.h"
#include "src/projectsurvey.h"

#include <QByteArray>
#include <QString>

/// Reading and writing for the commands. Whatever goes wrong ends in a TJobError with the file.
namespace Files {

/// The content of a file.
QByteArray Read(const QString& path);

/// A document, of the present generation or an earlier one. A damaged one is refused.
TDocument Load(const QString& path);

/// Makes sure that a file can be written, before any work is done for it.
/// @param force  whether it may be there already.
void Check_Output(const QString& path, bool force);

/// Replaces a file by bytes, or leaves it as it was.
void Write(const QString& path, const QByteArray& content);

/// Writes a project file, or leaves the one that is there as it was.
void Save(const QString& path, TDocument* document);

/// A defect in words, with its place.
QString Text(const TProjectDefect& defect);

/// The error of a file that could not be written as a whole.
[[noreturn]] void Fail_To_Write(const QString& path);

} // namespace Files
