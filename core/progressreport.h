#pragma once

#include <functional>

/// Called when a part of a long operation begins. May be empty.
/// @param number  of the part, from 1.
/// @param total   number of all parts.
using TProgressReport = std::function<void(int number, int total)>;
