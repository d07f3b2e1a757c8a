#pragma once

#include "src/format/document.h"
#include "src/format/projectsurvey.h"

#include <QString>

/// Documents outside of a window from what stands in files. What they hold is what the window holds
/// after it has opened the same file.
namespace DocumentReader {

/// Everything that a survey has found, damaged or not.
TDocument From_Survey(const TProjectSurvey& survey);

/// A document of an earlier generation.
/// @param path  of the item list; its image stands beside it.
/// @throws TXmlFileException when one of them cannot be read.
TDocument Read_Legacy(const QString& path);

} // namespace DocumentReader
