// How a work log encodes labels.

#include "src/safety/logschema.h"

#include <QTest>

#include <cmath>
#include <limits>

class TestLogSchema : public QObject
{
    Q_OBJECT

private slots:
    void a_label_has_the_documented_bytes();
    void labels_are_read_as_they_were_written();
    void the_labels_before_damage_are_read();
};

namespace {

QByteArray Encoded(const std::vector<TDataItem>& items)
{
    return LogSchema::Encode_Labels(items.cbegin(), items.cend());
}

} // namespace

void TestLogSchema::a_label_has_the_documented_bytes()
{
    const QByteArray bytes = QByteArray::fromHex("00000102"         // id
                                                 "fffffffe"         // value
                                                 "00000003"         // border
                                                 "3ff8000000000000" // x
                                                 "c000000000000000" // y
                                                 "00000004"         // bytes of the text
                                                 "00410416");
    const TDataItem item{258, -2, QStringLiteral("A\u0416"), 3, {1.5, -2.0}, true};
    QCOMPARE(Encoded({item}).toHex(), bytes.toHex());
    QCOMPARE(Encoded({{1, 0, QString(), 0, {}, false}}).right(4).toHex(), QByteArray("ffffffff"));
}

void TestLogSchema::labels_are_read_as_they_were_written()
{
    const double infinite = std::numeric_limits<double>::infinity();
    const double not_a_number = std::numeric_limits<double>::quiet_NaN();
    const std::vector<TDataItem> items = {
        {1, 2, QString(), 0, {0.1, -1e300}, false},
        {-1, 7, QString("lone ") + QChar(0xd800) + QChar(0), 99, {infinite, not_a_number}, true},
        {3, -4, QString(5000, 'x'), -1, {-0.0, 1e-300}, false},
    };
    std::vector<TDataItem> read;
    QVERIFY(LogSchema::Decode_Labels(Encoded(items), &read));
    QCOMPARE(read.size(), items.size());
    for (std::size_t index = 0; index < items.size(); ++index)
        QVERIFY2(Has_Same_Content(read[index], items[index]), qPrintable(QString::number(index)));
}

void TestLogSchema::the_labels_before_damage_are_read()
{
    const QByteArray bytes = Encoded({{1, 1, "one", 0, {}, false}, {2, 2, "two", 0, {}, false}});
    for (int size = 0; size < bytes.size(); ++size) {
        std::vector<TDataItem> read;
        const bool is_whole = LogSchema::Decode_Labels(bytes.left(size), &read);
        QCOMPARE(is_whole, size == 0 || size == bytes.size() / 2);
        QCOMPARE(read.size(), static_cast<std::size_t>(size < bytes.size() / 2 ? 0 : 1));
    }
}

QTEST_APPLESS_MAIN(TestLogSchema)
#include "test_logschema.moc"
