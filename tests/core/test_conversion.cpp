// Reading and writing typed values in byte arrays.

#include "core/conversion.h"

#include "support/support.h"

#include <QTest>

#include <functional>
#include <limits>
#include <vector>

namespace {

using TOperation = std::function<void(unsigned int index, QByteArray* array)>;

/// Reader and writer of a numeric type, with the conditions that their assertions print.
struct TNumber
{
    const char* type;
    int width;
    TOperation read;
    TOperation write;
    const char* reader;
    const char* writer;
};

const std::vector<TNumber>& Numbers()
{
    static const std::vector<TNumber> numbers{
        {"double", 8, [](unsigned int i, QByteArray* a) { Conversion::Double(i, *a); },
         [](unsigned int i, QByteArray* a) { Conversion::Set_Double(i, 1.5, a); },
         "static double Conversion::Double(unsigned int, const QByteArray&)",
         "static void Conversion::Set_Double(unsigned int, const double&, QByteArray*)"},
        {"float", 4, [](unsigned int i, QByteArray* a) { Conversion::Float(i, *a); },
         [](unsigned int i, QByteArray* a) { Conversion::Set_Float(i, 1.5F, a); },
         "static float Conversion::Float(unsigned int, const QByteArray&)",
         "static void Conversion::Set_Float(unsigned int, const float&, QByteArray*)"},
        {"short", 2, [](unsigned int i, QByteArray* a) { Conversion::Short_Integer(i, *a); },
         [](unsigned int i, QByteArray* a) { Conversion::Set_Short_Integer(i, 5, a); },
         "static short int Conversion::Short_Integer(unsigned int, const QByteArray&)",
         "static void Conversion::Set_Short_Integer(unsigned int, const short int&, QByteArray*)"},
        {"int", 4, [](unsigned int i, QByteArray* a) { Conversion::Integer(i, *a); },
         [](unsigned int i, QByteArray* a) { Conversion::Set_Integer(i, 5, a); },
         "static int Conversion::Integer(unsigned int, const QByteArray&)",
         "static void Conversion::Set_Integer(unsigned int, const int&, QByteArray*)"},
        {"qint64", 8, [](unsigned int i, QByteArray* a) { Conversion::Long_Integer(i, *a); },
         [](unsigned int i, QByteArray* a) { Conversion::Set_Long_Integer(i, 5, a); },
         "static qint64 Conversion::Long_Integer(unsigned int, const QByteArray&)",
         "static void Conversion::Set_Long_Integer(unsigned int, const qint64&, QByteArray*)"}};
    return numbers;
}

QString Reader_Bound(const char* type)
{
    return QStringLiteral("(index + sizeof(%1) -1) < static_cast<unsigned int>(array.size())")
        .arg(QLatin1String(type));
}

QString Writer_Bound(const char* type)
{
    return QStringLiteral("(index + sizeof(%1) -1) < static_cast<unsigned int>(array->size())")
        .arg(QLatin1String(type));
}

const QString source = QStringLiteral("core/conversion.cpp");

QString Set_Ascii_Failure(unsigned int index, const QByteArray& data, QByteArray array)
{
    return Support::Assertion_Failure([&] { Conversion::Set_Ascii(index, data, &array); }, source,
                                      QStringLiteral("(index + data.size() -1) < "
                                                     "static_cast<unsigned int>(array->size())"),
                                      QStringLiteral("static void Conversion::Set_Ascii(unsigned "
                                                     "int, const QByteArray&, QByteArray*)"));
}

} // namespace

class TestConversion : public QObject
{
    Q_OBJECT

private slots:
    void an_integer_is_read_lowest_byte_first();
    void numbers_are_read_from_their_raw_bytes();
    void numbers_are_written_as_their_raw_bytes();
    void extreme_values_are_read_back();
    void values_need_no_alignment();
    void numbers_must_lie_within_the_array_data();
    void numbers_must_lie_within_the_array();
    void a_huge_index_does_not_wrap_data();
    void a_huge_index_does_not_wrap();
    void number_writers_require_an_array_data();
    void number_writers_require_an_array();
    void ascii_ends_after_a_zero_byte_or_at_the_end_of_the_array_data();
    void ascii_ends_after_a_zero_byte_or_at_the_end_of_the_array();
    void ascii_requires_an_index_within_the_array();
    void set_ascii_stores_bytes_without_a_terminating_zero();
    void set_ascii_accepts_empty_data_except_at_index_zero();
    void set_ascii_stays_within_the_array();
    void set_ascii_requires_an_array();
    void writing_changes_only_the_callers_copy();
};

void TestConversion::an_integer_is_read_lowest_byte_first()
{
    QCOMPARE(Conversion::Integer(0, QByteArray::fromHex("62600100")), 90210);
}

void TestConversion::numbers_are_read_from_their_raw_bytes()
{
    QCOMPARE(Conversion::Short_Integer(1, QByteArray::fromHex("00feff00")), short(-2));
    QCOMPARE(Conversion::Integer(1, QByteArray::fromHex("00ffffffff")), -1);
    QCOMPARE(Conversion::Long_Integer(0, QByteArray::fromHex("0807060504030201")),
             Q_INT64_C(0x0102030405060708));
    QCOMPARE(Conversion::Float(0, QByteArray::fromHex("0000c03f")), 1.5F);
    QCOMPARE(Conversion::Double(2, QByteArray::fromHex("aaaa00000000000004c0")), -2.5);
}

void TestConversion::numbers_are_written_as_their_raw_bytes()
{
    QByteArray array(10, 'x');
    Conversion::Set_Short_Integer(1, -2, &array);
    QCOMPARE(array.toHex(), QByteArray("78feff78787878787878"));
    Conversion::Set_Integer(3, 90210, &array);
    QCOMPARE(array.toHex(), QByteArray("78feff62600100787878"));
    Conversion::Set_Long_Integer(2, Q_INT64_C(0x0102030405060708), &array);
    QCOMPARE(array.toHex(), QByteArray("78fe0807060504030201"));
    Conversion::Set_Float(0, 1.5F, &array);
    QCOMPARE(array.toHex(), QByteArray("0000c03f060504030201"));
    Conversion::Set_Double(1, -2.5, &array);
    QCOMPARE(array.toHex(), QByteArray("0000000000000004c001"));
}

void TestConversion::extreme_values_are_read_back()
{
    QByteArray array(9, '\0');
    for (const int value : {std::numeric_limits<int>::min(), std::numeric_limits<int>::max(), 0}) {
        Conversion::Set_Integer(5, value, &array);
        QCOMPARE(Conversion::Integer(5, array), value);
    }
    for (const qint64 value :
         {std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max()}) {
        Conversion::Set_Long_Integer(1, value, &array);
        QCOMPARE(Conversion::Long_Integer(1, array), value);
    }
    for (const short value :
         {std::numeric_limits<short>::min(), std::numeric_limits<short>::max()}) {
        Conversion::Set_Short_Integer(7, value, &array);
        QCOMPARE(Conversion::Short_Integer(7, array), value);
    }
    Conversion::Set_Double(0, std::numeric_limits<double>::infinity(), &array);
    QVERIFY(qIsInf(Conversion::Double(0, array)));
    Conversion::Set_Float(0, std::numeric_limits<float>::quiet_NaN(), &array);
    QVERIFY(qIsNaN(Conversion::Float(0, array)));
}

void TestConversion::values_need_no_alignment()
{
    QByteArray array(24, '\0');
    for (unsigned int index = 0; index <= 16; ++index) {
        Conversion::Set_Double(index, 0.1 + index, &array);
        QCOMPARE(Conversion::Double(index, array), 0.1 + index);
        Conversion::Set_Long_Integer(index, -static_cast<qint64>(index), &array);
        QCOMPARE(Conversion::Long_Integer(index, array), -static_cast<qint64>(index));
    }
}

void TestConversion::numbers_must_lie_within_the_array_data()
{
    QTest::addColumn<int>("number");
    for (int i = 0; i < static_cast<int>(Numbers().size()); ++i)
        QTest::newRow(Numbers().at(static_cast<std::size_t>(i)).type) << i;
}

void TestConversion::numbers_must_lie_within_the_array()
{
    QFETCH(int, number);
    const TNumber& type = Numbers().at(static_cast<std::size_t>(number));
    QByteArray array(11, 'x');
    const unsigned int last = 11 - static_cast<unsigned int>(type.width);
    type.read(last, &array);
    type.write(last, &array);
    for (const unsigned int index : {last + 1, 10U, 11U, 12U}) {
        const auto read = [&] { type.read(index, &array); };
        QCOMPARE(Support::Assertion_Failure(read, source, Reader_Bound(type.type),
                                            QLatin1String(type.reader)),
                 QString());
        const auto write = [&] { type.write(index, &array); };
        QCOMPARE(Support::Assertion_Failure(write, source, Writer_Bound(type.type),
                                            QLatin1String(type.writer)),
                 QString());
    }
    QByteArray empty;
    QCOMPARE(
        Support::Assertion_Failure([&] { type.read(0, &empty); }, source, Reader_Bound(type.type)),
        QString());
    QByteArray short_array(type.width - 1, 'x');
    QCOMPARE(Support::Assertion_Failure([&] { type.write(0, &short_array); }, source,
                                        Writer_Bound(type.type)),
             QString());
}

void TestConversion::a_huge_index_does_not_wrap_data()
{
    numbers_must_lie_within_the_array_data();
}

void TestConversion::a_huge_index_does_not_wrap()
{
    QFETCH(int, number);
    const TNumber& type = Numbers().at(static_cast<std::size_t>(number));
    QByteArray array(11, 'x');
    // In 32 bits, index plus width minus one would be 0 for the second of these indexes.
    const unsigned int highest = std::numeric_limits<unsigned int>::max();
    for (const unsigned int index :
         {highest, highest - static_cast<unsigned int>(type.width) + 2}) {
        QCOMPARE(Support::Assertion_Failure([&] { type.read(index, &array); }, source,
                                            Reader_Bound(type.type)),
                 QString());
        QCOMPARE(Support::Assertion_Failure([&] { type.write(index, &array); }, source,
                                            Writer_Bound(type.type)),
                 QString());
    }
}

void TestConversion::number_writers_require_an_array_data()
{
    numbers_must_lie_within_the_array_data();
}

void TestConversion::number_writers_require_an_array()
{
    QFETCH(int, number);
    const TNumber& type = Numbers().at(static_cast<std::size_t>(number));
    QCOMPARE(Support::Assertion_Failure([&] { type.write(0, nullptr); }, source,
                                        QStringLiteral("array"), QLatin1String(type.writer)),
             QString());
}

void TestConversion::ascii_ends_after_a_zero_byte_or_at_the_end_of_the_array_data()
{
    QTest::addColumn<unsigned int>("index");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("up to the zero byte, which belongs to it") << 0U << QByteArray("AB\0", 3);
    QTest::newRow("within the first") << 1U << QByteArray("B\0", 2);
    QTest::newRow("at the zero byte") << 2U << QByteArray("\0", 1);
    QTest::newRow("up to the end") << 3U << QByteArray("CD");
    QTest::newRow("the last byte") << 4U << QByteArray("D");
}

void TestConversion::ascii_ends_after_a_zero_byte_or_at_the_end_of_the_array()
{
    QFETCH(unsigned int, index);
    QFETCH(QByteArray, expected);
    QCOMPARE(Conversion::Ascii(index, QByteArray("AB\0CD", 5)), expected);
    QCOMPARE(Conversion::Ascii(0, QByteArray("\0A", 2)), QByteArray("\0", 1));
}

void TestConversion::ascii_requires_an_index_within_the_array()
{
    const QString condition = QStringLiteral("index < static_cast<unsigned int>(array.size())");
    const QString function =
        QStringLiteral("static QByteArray Conversion::Ascii(unsigned int, const QByteArray&)");
    for (const unsigned int index : {5U, 6U, std::numeric_limits<unsigned int>::max()}) {
        const auto read = [index] { Conversion::Ascii(index, QByteArray("AB\0CD", 5)); };
        QCOMPARE(Support::Assertion_Failure(read, source, condition, function), QString());
    }
    QCOMPARE(Support::Assertion_Failure([] { Conversion::Ascii(0, QByteArray()); }, source,
                                        condition, function),
             QString());
}

void TestConversion::set_ascii_stores_bytes_without_a_terminating_zero()
{
    QByteArray array("abcdef");
    Conversion::Set_Ascii(1, QByteArray("X\0Y", 3), &array);
    QCOMPARE(array, QByteArray("aX\0Yef", 6));
    Conversion::Set_Ascii(4, "ZZ", &array);
    QCOMPARE(array, QByteArray("aX\0YZZ", 6));
    Conversion::Set_Ascii(0, "123456", &array);
    QCOMPARE(array, QByteArray("123456"));
}

void TestConversion::set_ascii_accepts_empty_data_except_at_index_zero()
{
    QByteArray array("abc");
    for (const unsigned int index : {1U, 2U, 3U}) {
        Conversion::Set_Ascii(index, QByteArray(), &array);
        QCOMPARE(array, QByteArray("abc"));
    }
    QCOMPARE(Set_Ascii_Failure(0, QByteArray(), array), QString());
    QCOMPARE(Set_Ascii_Failure(4, QByteArray(), array), QString());
    QCOMPARE(Set_Ascii_Failure(0, QByteArray(), QByteArray()), QString());
}

void TestConversion::set_ascii_stays_within_the_array()
{
    QCOMPARE(Set_Ascii_Failure(2, "XY", "abc"), QString());
    QCOMPARE(Set_Ascii_Failure(3, "X", "abc"), QString());
    QCOMPARE(Set_Ascii_Failure(0, "WXYZ", "abc"), QString());
    // The sum wraps around here, but nothing may be written.
    QByteArray array("abc");
    const auto wrap = [&array] {
        Conversion::Set_Ascii(std::numeric_limits<unsigned int>::max(), "XY", &array);
    };
    QCOMPARE(Support::Assertion_Failure(
                 wrap, source, QStringLiteral("index <= static_cast<unsigned int>(array->size())")),
             QString());
}

void TestConversion::set_ascii_requires_an_array()
{
    QCOMPARE(Support::Assertion_Failure([] { Conversion::Set_Ascii(0, "X", nullptr); }, source,
                                        QStringLiteral("array")),
             QString());
}

void TestConversion::writing_changes_only_the_callers_copy()
{
    const QByteArray original("abcdefgh");
    for (const TNumber& type : Numbers()) {
        QByteArray copy = original;
        type.write(0, &copy);
        QCOMPARE(original, QByteArray("abcdefgh"));
        QVERIFY2(copy != original, type.type);
        QCOMPARE(copy.mid(type.width), original.mid(type.width));
        QCOMPARE(copy.size(), original.size());
    }
    QByteArray copy = original;
    Conversion::Set_Ascii(0, "X", &copy);
    QCOMPARE(original, QByteArray("abcdefgh"));
    QCOMPARE(copy, QByteArray("Xbcdefgh"));
}

QTEST_MAIN(TestConversion)
#include "test_conversion.moc"
