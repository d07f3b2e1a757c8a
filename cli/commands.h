#pragma once

class TCommandLine;

/// The subcommands, one function each. They throw TUsageError or TJobError; where they do, nothing
/// has been written.
namespace Commands {

// Documents from something else.
void Create(TCommandLine* line);
void Recover(TCommandLine* line);
void Reindex(TCommandLine* line);

// What there is.
void Info(TCommandLine* line);
void Check(TCommandLine* line);
void Kept(TCommandLine* line);

// What a document is made into. These draw pages.
void Export_Images(TCommandLine* line);
void Export_Pdf(TCommandLine* line);
void Thumbnail(TCommandLine* line);

// Labels as a table.
void Export_Items(TCommandLine* line);
void Import_Items(TCommandLine* line);

} // namespace Commands
