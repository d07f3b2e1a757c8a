#include "core/conversion.h"

#include <cassert>
#include <cstring>

namespace {

/// Reads a value from an array after the caller has checked the bounds. The bytes may be unaligned,
/// so they are copied.
template <typename T>
T Load(unsigned int index, const QByteArray& array)
{
    T value;
    std::memcpy(&value, array.constData() + index, sizeof(T));
    return value;
}

/// Writes bytes to an array after the caller has checked the bounds. The element access detaches a
/// shared array.
void Store(unsigned int index, const char* bytes, int count, QByteArray* array)
{
    for (int i = 0; i < count; ++i)
        (*array)[static_cast<int>(index) + i] = bytes[i];
}

template <typename T>
void Store(unsigned int index, const T& value, QByteArray* array)
{
    char bytes[sizeof(T)];
    std::memcpy(bytes, &value, sizeof(T));
    Store(index, bytes, static_cast<int>(sizeof(T)), array);
}

/// Bytes with a 32-bit size, as an assertion needs it. Qt 6 counts with 64 bits.
struct TAscii
{
    const QByteArray& bytes;

    int size() const { return static_cast<int>(bytes.size()); }
};

} // namespace

// An assertion prints its condition verbatim, and this text must not change. So each function
// spells out its own assertions.
// clang-format off

QByteArray Conversion::Ascii(unsigned int index, const QByteArray& array)
{
    assert(index < static_cast<unsigned int>(array.size()));
    const int start = static_cast<int>(index);
    const int zero = array.indexOf('\0', start);
    return zero < 0 ? array.mid(start) : array.mid(start, zero - start + 1);
}

double Conversion::Double(unsigned int index, const QByteArray& array)
{
    assert((index + sizeof(double) -1) < static_cast<unsigned int>(array.size()));
    return Load<double>(index, array);
}

float Conversion::Float(unsigned int index, const QByteArray& array)
{
    assert((index + sizeof(float) -1) < static_cast<unsigned int>(array.size()));
    return Load<float>(index, array);
}

short Conversion::Short_Integer(unsigned int index, const QByteArray& array)
{
    assert((index + sizeof(short) -1) < static_cast<unsigned int>(array.size()));
    return Load<short>(index, array);
}

int Conversion::Integer(unsigned int index, const QByteArray& array)
{
    assert((index + sizeof(int) -1) < static_cast<unsigned int>(array.size()));
    return Load<int>(index, array);
}

qint64 Conversion::Long_Integer(unsigned int index, const QByteArray& array)
{
    assert((index + sizeof(qint64) -1) < static_cast<unsigned int>(array.size()));
    return Load<qint64>(index, array);
}

void Conversion::Set_Ascii(unsigned int index, const QByteArray& bytes, QByteArray* array)
{
    const TAscii data{bytes};
    assert(array);
    assert((index + data.size() -1) < static_cast<unsigned int>(array->size()));
    // The sum above wraps around for a very large index.
    assert(index <= static_cast<unsigned int>(array->size()));
    Store(index, bytes.constData(), bytes.size(), array);
}

void Conversion::Set_Double(unsigned int index, const double& value, QByteArray* array)
{
    assert(array);
    assert((index + sizeof(double) -1) < static_cast<unsigned int>(array->size()));
    Store(index, value, array);
}

void Conversion::Set_Float(unsigned int index, const float& value, QByteArray* array)
{
    assert(array);
    assert((index + sizeof(float) -1) < static_cast<unsigned int>(array->size()));
    Store(index, value, array);
}

void Conversion::Set_Short_Integer(unsigned int index, const short& value, QByteArray* array)
{
    assert(array);
    assert((index + sizeof(short) -1) < static_cast<unsigned int>(array->size()));
    Store(index, value, array);
}

void Conversion::Set_Integer(unsigned int index, const int& value, QByteArray* array)
{
    assert(array);
    assert((index + sizeof(int) -1) < static_cast<unsigned int>(array->size()));
    Store(index, value, array);
}

void Conversion::Set_Long_Integer(unsigned int index, const qint64& value, QByteArray* array)
{
    assert(array);
    assert((index + sizeof(qint64) -1) < static_cast<unsigned int>(array->size()));
    Store(index, value, array);
}
// clang-format on
