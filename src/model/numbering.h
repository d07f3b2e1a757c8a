#pragma once

/// Gives out label values one after the other, over one page or many.
///
/// Values wrap around at the ends of a 32-bit integer.
class TNumbering
{
public:
    /// How the first value of a page follows from the page before. The codes are bit values, not a
    /// sequence.
    enum TMethod { Next_1X = 0, Next_10X = 1, Next_100X = 2, Next_1000X = 4 };

    /// @param first   the value that comes first.
    /// @param method  one of TMethod; any other code counts on without a gap.
    TNumbering(int first, int method);

    /// Returns the next value and steps on by one.
    int Take();

    /// Goes over a page break: from x, one past the last value given, to the next start, which with
    /// the steps 10, 100 and 1000 is (x / step + 1) * step, with division truncating toward zero.
    /// The start is always above x, so an x that is a round number itself is passed over, and a
    /// page on which nothing was taken advances the count as well.
    void Break_Page();

    /// The value that Take would return.
    int Next() const { return d_next; }

    /// The value that comes after a value.
    static int After(int value);

private:
    int d_next;
    int d_step; ///< distance of the round numbers that pages start at; 0 where they just count on
};
