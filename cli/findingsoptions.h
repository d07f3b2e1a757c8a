#pragma once

#include "src/findings/findings.h"

class TCommandLine;
struct TDocument;

/// The options of the commands that write the list of findings.
namespace FindingsOptions {

/// Declares --findings and --strict.
void Add(TCommandLine* line);

/// Checks that --findings is not empty, that --strict is used only with it, and that the table is
/// not the output.
void Check(const TCommandLine& line, const QString& output);

/// The labels of a document, joined to the table if there is one. Prints a warning for each
/// mismatch; with --strict, any mismatch throws a TReportedError.
/// @param checked_pages  numbers of the pages to check; all if empty.
TFindings Load(const TCommandLine& line, const TDocument& document,
               const QSet<int>& checked_pages = {});

} // namespace FindingsOptions
