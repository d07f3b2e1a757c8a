#pragma once

// The main window, opened up for tests: they look at its document and flags, which users of the
// class never touch. Everything that the header includes comes first, so that nothing else is
// opened.
#include "src/data.h"
#include "src/format/projectfile.h"

#include <QtWidgets>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#define private public
#include "src/quillet.h"
#undef private
