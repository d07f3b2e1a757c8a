#pragma once

#include <sys/types.h>

/// Records every change of the files below a folder, as tests/faults/powerloss reads it.
///
/// The environment variable QUILLET_RECORD_FOLDER names the folder, QUILLET_RECORD the file for the
/// records; without them nothing is recorded. Files are told apart by their inodes, since their
/// names change. Descriptors and paths that are not below the folder are ignored.
namespace Recorder {

/// Whether a path does not exist yet and its creation will be recorded.
bool Is_New(const char* path);

/// The functions below record a call that succeeded. This one: a file was opened.
void Opened(int descriptor, int flags, bool is_new);
/// Bytes were written.
/// @param place  offset of the first byte; if negative, the bytes end at the current position.
void Wrote(int descriptor, ssize_t size, off64_t place = -1);
void Truncated(int descriptor, off64_t size);
void Synced(int descriptor);
void Linked(const char* to);
void Renamed(const char* from, const char* to);
void Unlinked(const char* path);
void Made_Folder(const char* path);

} // namespace Recorder
