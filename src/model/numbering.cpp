#include "src/model/numbering.h"

namespace {

/// The number of which each page start is a multiple; 0 to continue counting.
int Page_Multiple(int method)
{
    switch (method) {
    case TNumbering::Next_10X:
        return 10;
    case TNumbering::Next_100X:
        return 100;
    case TNumbering::Next_1000X:
        return 1000;
    default:
        return 0;
    }
}

/// The low 32 bits of a value. Sums and products are computed in 64 bits, where they cannot
/// overflow.
int Wrapped(std::int64_t value)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

} // namespace

TNumbering::TNumbering(int first, int method)
    : d_next(first)
    , d_multiple(Page_Multiple(method))
{
}

int TNumbering::After(int value)
{
    return Wrapped(std::int64_t{value} + 1);
}

int TNumbering::Take()
{
    const int value = d_next;
    d_has_overflowed = d_has_overflowed || d_is_wrapped;
    Set_Next(std::int64_t{value} + 1);
    return value;
}

void TNumbering::Break_Page()
{
    if (d_multiple == 0)
        return;
    Set_Next((std::int64_t{d_next} / d_multiple + 1) * d_multiple);
}

void TNumbering::Set_Next(std::int64_t next)
{
    d_next = Wrapped(next);
    d_is_wrapped = d_is_wrapped || d_next != next;
}
