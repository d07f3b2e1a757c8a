#pragma once

#include <cstdint>

/// Assigns consecutive values to labels, across one or more pages.
///
/// Values wrap around at the limits of a 32-bit integer.
class TNumbering
{
public:
    /// How the first value of a page follows from the previous page. The codes are bit values, not
    /// a sequence.
    enum TMethod { Next_1X = 0, Next_10X = 1, Next_100X = 2, Next_1000X = 4 };

    /// @param first   the first value.
    /// @param method  one of TMethod; any other code continues counting without a gap.
    TNumbering(int first, int method);

    /// Returns the next value and advances by one.
    int Take();

    /// Continues on the next page. If pages start at multiples of m = 10, 100 or 1000, the
    /// next value x becomes (x / m + 1) * m, with division truncating toward zero. So the page
    /// starts above x even if x is a multiple, and a page without labels also advances the value.
    void Break_Page();

    /// Whether a value that Take returned has wrapped around.
    bool Has_Overflowed() const { return d_has_overflowed; }

    /// The value that Take will return.
    int Next() const { return d_next; }

    /// The successor of a value.
    static int After(int value);

private:
    void Set_Next(std::int64_t next);

    int d_next;
    int d_multiple;            ///< pages start at multiples of this; 0 to continue counting
    bool d_is_wrapped = false; ///< whether d_next has wrapped around
    bool d_has_overflowed = false;
};
