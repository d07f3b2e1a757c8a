// Properties of labels in item lists of all generations.

#include "src/format/itemxml.h"

#include "core/xmlfile.h"

#include <QDomElement>
#include <QTest>

class TestItemXml : public QObject
{
    Q_OBJECT

private slots:
    void a_text_is_read();
    void an_empty_text_is_allowed_if_it_is_optional();
    void a_missing_element_is_an_error();
    void an_integer_that_is_no_number_is_0();
    void a_position_has_two_parts_data();
    void a_position_has_two_parts();
};

namespace {

/// An item list with one label of these properties.
class TList : public TXmlFile
{
public:
    explicit TList(const QByteArray& properties)
    {
        int version = 0;
        Open_Data("<Quillet_Data File_Version=\"1\"><Item>" + properties + "</Item></Quillet_Data>",
                  ItemXml::Root_Name, &version, false);
        d_item = Get_Node(&d_root_element, ItemXml::Item_Name, false);
    }

    QDomElement d_item;
};

} // namespace

void TestItemXml::a_text_is_read()
{
    const TList list("<Text>door &amp; key</Text><Value>-12</Value>");
    QCOMPARE(ItemXml::Read_Text(list, list.d_item, "Text"), QString("door & key"));
    QCOMPARE(ItemXml::Read_Integer(list, list.d_item, ItemXml::Value_Name), -12);
}

void TestItemXml::an_empty_text_is_allowed_if_it_is_optional()
{
    const TList list("<Text></Text>");
    QCOMPARE(ItemXml::Read_Text(list, list.d_item, "Text", true), QString());
    QVERIFY_EXCEPTION_THROWN(ItemXml::Read_Text(list, list.d_item, "Text"), TXmlFileException);
}

void TestItemXml::a_missing_element_is_an_error()
{
    const TList list("<Value>1</Value>");
    QVERIFY_EXCEPTION_THROWN(ItemXml::Read_Text(list, list.d_item, "Text", true),
                             TXmlFileException);
    QVERIFY_EXCEPTION_THROWN(ItemXml::Read_Integer(list, list.d_item, ItemXml::Id_Name),
                             TXmlFileException);
}

void TestItemXml::an_integer_that_is_no_number_is_0()
{
    const TList list("<Value>1.5</Value><Id>one</Id>");
    QCOMPARE(ItemXml::Read_Integer(list, list.d_item, ItemXml::Value_Name), 0);
    QCOMPARE(ItemXml::Read_Integer(list, list.d_item, ItemXml::Id_Name), 0);
}

void TestItemXml::a_position_has_two_parts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("is_position");
    QTest::addColumn<QPointF>("position");
    const QPointF unchanged(7, 7);
    QTest::newRow("two") << "1.25,-3" << true << QPointF(1.25, -3);
    QTest::newRow("an empty one") << ",3" << true << QPointF(0, 3);
    QTest::newRow("no number") << "left,3" << true << QPointF(0, 3);
    QTest::newRow("one") << "1" << false << unchanged;
    QTest::newRow("three") << "1,2,3" << false << unchanged;
    QTest::newRow("none") << "" << false << unchanged;
}

void TestItemXml::a_position_has_two_parts()
{
    QFETCH(QString, text);
    QPointF position(7, 7);
    QTEST(ItemXml::To_Position(text, &position), "is_position");
    QTEST(position, "position");
}

QTEST_APPLESS_MAIN(TestItemXml)
#include "test_itemxml.moc"
