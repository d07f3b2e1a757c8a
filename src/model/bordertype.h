#pragma once

/// Border type codes as stored with a label. They are bit values, not a sequence.
enum TBorderType {
    No_Border = 0,
    Square_Border = 1,
    Ellipse_Border = 2,
    Triangle_Border = 4, ///< a square base under a pointed roof
    Diamond_Border = 8
};

/// A border type and its name in tables and on the command line.
struct TBorderName
{
    int code; ///< one of TBorderType
    const char* name;
};

/// All border types, in ascending order of their codes.
constexpr TBorderName Border_Names[] = {{No_Border, "none"},
                                        {Square_Border, "square"},
                                        {Ellipse_Border, "ellipse"},
                                        {Triangle_Border, "triangle"},
                                        {Diamond_Border, "diamond"}};

/// Whether a code is one of TBorderType. A label keeps any other code, but has no border.
constexpr bool Is_Border_Type(int code)
{
    for (const TBorderName& border : Border_Names) {
        if (border.code == code)
            return true;
    }
    return false;
}
