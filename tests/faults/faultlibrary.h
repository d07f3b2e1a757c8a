#pragma once

/// Interface of the preloaded fault library, for tests that find its functions by name.
namespace Faults {

/// Kinds of calls. A truncation counts as a Write. So does copy_file_range(), which is also a Clone
/// and a Read. Cloning a whole file is a Clone, too. A link counts as a Rename.
enum TCall { Open, Write, Rename, Sync, Clone, Remove, Read, Close };

/// What happens to the call: it fails, does half its work and fails from then on, or the process is
/// killed before or after it. A Clone that did half its work copies nothing from then on, as at the
/// end of a file.
enum TKind { Fail, Short, Kill, Kill_After };

} // namespace Faults

extern "C" {

/// Starts watching files below the given folders and injects one fault.
/// @param folders  up to four paths, separated by colons.
/// @param at       number of the call among its kind, from 1; 0 just counts and logs.
void Quillet_Arm_Fault(const char* folders, int call, int kind, int at);

/// Stops watching; returns the number of calls of the armed kind.
int Quillet_Disarm_Fault();

/// The calls since the last arming, in order, one per line: "write PATH", "truncate PATH",
/// "sync PATH", "rename FROM TO", "link FROM TO" or "unlink PATH". Consecutive writes to one file
/// are one line.
const char* Quillet_Logged_Calls();

/// Moves the monotonic clock of the process forward.
void Quillet_Advance_Clock(int seconds);

/// Adds a line to the records of tests/faults/recorder.h.
void Quillet_Record_Mark(const char* text);

} // extern "C"
