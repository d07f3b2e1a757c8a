#pragma once

#include <QByteArray>
#include <QtGlobal>

/// Typed values at a byte index inside a byte array.
///
/// Values are the raw bytes of the machine's own representation, in its byte order (little-endian
/// on the supported platform): no alignment, no length prefix. Widths in bytes: short 2, int 4,
/// qint64 8, float 4, double 8.
///
/// Access past the end of an array is a programming error and fails an assertion, so readers of
/// files must check the bounds first. No function resizes an array.
class Conversion
{
public:
    Conversion() = delete;

    /// The bytes from index up to and including the first zero byte; up to the end of the array
    /// when there is none.
    static QByteArray Ascii(unsigned int index, const QByteArray& array);
    static double Double(unsigned int index, const QByteArray& array);
    static float Float(unsigned int index, const QByteArray& array);
    static short Short_Integer(unsigned int index, const QByteArray& array);
    static int Integer(unsigned int index, const QByteArray& array);
    static qint64 Long_Integer(unsigned int index, const QByteArray& array);

    /// Stores data without a terminating zero byte. Empty data changes nothing at an index from 1
    /// to the array's size. At index 0 it fails the assertion, which uses 32-bit unsigned
    /// arithmetic.
    static void Set_Ascii(unsigned int index, const QByteArray& data, QByteArray* array);
    static void Set_Double(unsigned int index, const double& value, QByteArray* array);
    static void Set_Float(unsigned int index, const float& value, QByteArray* array);
    static void Set_Short_Integer(unsigned int index, const short& value, QByteArray* array);
    static void Set_Integer(unsigned int index, const int& value, QByteArray* array);
    static void Set_Long_Integer(unsigned int index, const qint64& value, QByteArray* array);
};
