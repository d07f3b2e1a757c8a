#pragma once

#include <QColor>
#include <QString>

/// The part of a document besides its pages: the look of its labels and the header lines of its
/// report. A default-constructed value is the appearance of a new document.
struct TAppearance
{
    static constexpr int Smallest_Label = 16; ///< limit of label_size
    static constexpr int Largest_Label = 128; ///< limit of label_size

    int label_size = 32; ///< edge of a label in page-image pixels
    QString color_name = QStringLiteral("#f79741");
    QString header_1; ///< may be empty
    QString header_2; ///< may be empty

    friend bool operator==(const TAppearance& left, const TAppearance& right)
    {
        return left.label_size == right.label_size && left.color_name == right.color_name &&
               left.header_1 == right.header_1 && left.header_2 == right.header_2;
    }

    /// Colour of labels before settings or a document are read.
    static QColor Initial_Color() { return {250, 8, 50}; }

    /// Font size in points for a label size: 40 % of it, rounded half up.
    static int Font_Size(int label_size) { return static_cast<int>(label_size * 0.4 + 0.5); }

    /// The colour with a name that QColor::setNamedColor accepts; otherwise an invalid colour.
    static QColor Color(const QString& name)
    {
        return QColor::isValidColor(name) ? QColor(name) : QColor();
    }
};
