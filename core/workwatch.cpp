#include "core/workwatch.h"

#include <utility>

namespace {

TWorkWatch* current_watch = nullptr;

} // namespace

TWorkWatch::TWorkWatch(TUse use)
    : d_use(std::move(use))
    , d_outer(std::exchange(current_watch, this))
{
}

TWorkWatch::~TWorkWatch()
{
    current_watch = d_outer;
}

void TWorkWatch::Tell()
{
    if (current_watch)
        current_watch->d_use();
}
