#pragma once

#include <QByteArray>
#include <QList>

#include <sys/types.h>

/// Processes that this one has started.
namespace Support {

/// Those that have not ended, or were not waited for.
QList<pid_t> Children();

/// A field of /proc/PID/stat, counted from the process state, which is 0.
QByteArray Process_Field(pid_t process, int index);

constexpr int State_Field = 0;
constexpr int Nice_Field = 16;

} // namespace Support
