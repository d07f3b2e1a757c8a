// The item display format: cleaning what a user types, and the resulting rows.

#include "src/model/itemformat.h"

#include <QTest>

#include <limits>

class TestItemFormat : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void the_default_format_shows_value_and_text();
    void a_typed_format_is_cleaned_data();
    void a_typed_format_is_cleaned();
    void cleaning_a_format_twice_changes_nothing_more_data();
    void cleaning_a_format_twice_changes_nothing_more();
    void a_row_text_has_the_display_format_data();
    void a_row_text_has_the_display_format();
};

void TestItemFormat::the_default_format_shows_value_and_text()
{
    QCOMPARE(QString::fromLatin1(ItemFormat::Default_Format), QStringLiteral("Item [%1] %2"));
}

void TestItemFormat::a_typed_format_is_cleaned_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("cleaned");
    const auto add = [](const char* name, const char* typed, const char* cleaned) {
        QTest::newRow(name) << QString::fromUtf8(typed) << QString::fromUtf8(cleaned);
    };
    add("default", "Item [%1] %2", "Item [%1] %2");
    add("white space", "  Tag  %1 / %2 ", "Tag %1 / %2");
    add("tabs and line breaks", "\tTag\t\n%1\r\n", "Tag %1");
    add("empty", "", "Item [%1] %2");
    add("only white space", " \t ", "Item [%1] %2");
    add("per cent after the value", "%1%%", "%1__");
    add("per cent before the value", "100% %1", "100_ %1");
    add("doubled per cent", "%%1", "_%1");
    add("text without value", "Label %2", "Label _2");
    add("no marker", "Label", "Label");
    add("per cent signs without marker", "100 % %", "100 _ _");
    add("text before value", "%2 and %1", "%2 and %1");
    add("value twice", "%1 %1", "%1 _1");
    add("text twice", "%1 %2 %2", "%1 %2 _2");
    add("text twice without value", "%2 %2", "_2 _2");
    add("third marker", "%1 %3 %2", "%1 _3 %2");
    add("two digits", "%12 %2", "%12 %2");
    add("no text between", "%1%2", "%1%2");
    add("localised marker", "%L1 %1", "_L1 %1");
    add("underscore stays", "_1 %1", "_1 %1");
    add("per cent at the end", "%1 %", "%1 _");
    add("only the value", "%1", "%1");
    add("only a per cent", "%", "_");
}

void TestItemFormat::a_typed_format_is_cleaned()
{
    QFETCH(QString, typed);
    QFETCH(QString, cleaned);
    QCOMPARE(ItemFormat::Clean(typed), cleaned);
}

void TestItemFormat::cleaning_a_format_twice_changes_nothing_more_data()
{
    a_typed_format_is_cleaned_data();
}

void TestItemFormat::cleaning_a_format_twice_changes_nothing_more()
{
    QFETCH(QString, cleaned);
    QCOMPARE(ItemFormat::Clean(cleaned), cleaned);
}

void TestItemFormat::a_row_text_has_the_display_format_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("row_text");
    const auto add = [](const char* name, const char* format, int value, const char* text,
                        const char* row_text) {
        QTest::newRow(name) << QString::fromUtf8(format) << value << QString::fromUtf8(text)
                            << QString::fromUtf8(row_text);
    };
    add("default", "Item [%1] %2", 3, "Pump", "Item [3] Pump");
    add("default without text", "Item [%1] %2", 3, "", "Item [3] ");
    add("text first", "%2 and %1", 3, "Pump", "Pump and 3");
    add("no text marker", "No.%1", 3, "Pump", "No.3 Pump");
    add("no text marker and no text", "No.%1", 3, "", "No.3 ");
    add("no value marker", "%2 only", 3, "Pump", "Item [3] Pump");
    add("no marker", "Label", 3, "Pump", "Item [3] Pump");
    add("no marker and no text", "Label", 3, "", "Item [3] ");
    add("empty format", "", 3, "Pump", "Item [3] Pump");
    add("negative value", "Item [%1] %2", -12, "Pump", "Item [-12] Pump");
    add("zero", "Item[%1]", 0, "x", "Item[0] x");
    add("largest value", "%1:%2", std::numeric_limits<int>::max(), "x", "2147483647:x");
    add("smallest value", "%1:%2", std::numeric_limits<int>::min(), "x", "-2147483648:x");
    add("value twice", "%1 %1 %2", 3, "Pump", "3 3 Pump");
    add("text twice", "%1 %2 %2", 3, "Pump", "3 Pump Pump");
    add("markers in the text", "Item [%1] %2", 3, "%1 %2 %3", "Item [3] %1 %2 %3");
    add("markers in the appended text", "No.%1", 3, "%1 %2", "No.3 %1 %2");
    add("markers in the text of the default", "Label", 3, "%1 %2", "Item [3] %1 %2");
    add("a third marker stays", "%1 %2 %3", 3, "Pump", "3 Pump %3");
    add("a third marker stays before an appended text", "%1 %3", 3, "Pump", "3 %3 Pump");
    add("per cent stays", "100% %1 %2", 3, "Pump", "100% 3 Pump");
    add("underscored marker", "Label _2 %1", 3, "Pump", "Label _2 3 Pump");
    add("not Latin", "№ %1 %2", 3, "насос", "№ 3 насос");
}

void TestItemFormat::a_row_text_has_the_display_format()
{
    QFETCH(QString, format);
    QFETCH(int, value);
    QFETCH(QString, text);
    QFETCH(QString, row_text);
    QCOMPARE(ItemFormat::Row_Text(format, value, text), row_text);
}

QTEST_MAIN(TestItemFormat)
#include "test_itemformat.moc"
