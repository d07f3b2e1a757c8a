#pragma once

#include <QColor>
#include <QString>

/// What a document has besides its pages: how its labels look, and the header lines of its report.
/// A plain value; a new one is what a document starts with.
struct TAppearance
{
    static constexpr int Smallest_Label = 16; ///< edge of a label that users can choose, in pixels
    static constexpr int Largest_Label = 128; ///< see Smallest_Label

    int label_size = 32; ///< edge of a label in page-image pixels
    QString color_name = QStringLiteral("#f79741");
    QString header_1; ///< may be empty
    QString header_2; ///< may be empty

    /// Size in points of the font on labels with an edge in pixels: four tenths of it, rounded half
    /// up.
    static int Font_Size(int label_size) { return static_cast<int>(label_size * 0.4 + 0.5); }

    /// The colour with a name, as QColor::setNamedColor takes it; invalid for any other text.
    static QColor Color(const QString& name)
    {
        return QColor::isValidColor(name) ? QColor(name) : QColor();
    }
};
