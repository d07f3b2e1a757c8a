#pragma once

#include "core/bytesource.h"

/// Keeps large byte arrays, such as imported images, in a file instead of memory.
///
/// All of them are in one file without a name. The space of an array is returned to the disk when
/// its last copy vanishes.
namespace Spool {

/// Smaller arrays stay in memory. In bytes.
constexpr int Smallest_Array = 64 * 1024;

/// The same bytes, in the file if they are large. They stay in memory if the disk is full.
TByteSource Keep(const QByteArray& bytes);

} // namespace Spool
