#include "core/workwatch.h"

#include <utility>

namespace {

TWorkWatch* current_watch = nullptr;

} // namespace

TWorkWatch::TWorkWatch(TCallback callback)
    : d_callback(std::move(callback))
    , d_outer(std::exchange(current_watch, this))
{
}

TWorkWatch::~TWorkWatch()
{
    current_watch = d_outer;
}

void TWorkWatch::Notify()
{
    if (current_watch)
        current_watch->d_callback();
}
