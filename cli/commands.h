#pragma once

class TCommandLine;

/// The subcommands, one function each. A command that throws an error leaves no new file. Only
/// Export_Images and Export_Pdf with several outputs may already have overwritten existing files.
namespace Commands {

// Create and change projects.
void Create(TCommandLine* line);
void Recover(TCommandLine* line);
void Reindex(TCommandLine* line);
void Set(TCommandLine* line);
void Pages(TCommandLine* line);
void Merge(TCommandLine* line);

// Inspect documents and safety copies.
void Info(TCommandLine* line);
void Check(TCommandLine* line);
void Diff(TCommandLine* line);
void Kept(TCommandLine* line);

// Draw pages.
void Export_Images(TCommandLine* line);
void Export_Pdf(TCommandLine* line);
void Export_Html(TCommandLine* line);
void Thumbnail(TCommandLine* line);

// Exchange labels as CSV tables.
void Export_Items(TCommandLine* line);
void Import_Items(TCommandLine* line);

} // namespace Commands
