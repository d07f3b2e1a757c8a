#pragma once

#include <functional>

/// Called when a step of a long operation begins. May be empty.
/// @param number  of the step, from 1.
/// @param total   number of all steps.
using TStepReport = std::function<void(int number, int total)>;
