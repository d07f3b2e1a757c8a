// The label document of a page, written and read.

#include "core/xmlfile.h"
#include "src/format/itemlist.h"
#include "support/support.h"

#include <QTest>

namespace {

const QByteArray declaration = "<?xml version=\"1.0\" encoding=\"utf-8\"?>";

QByteArray Document(const QByteArray& items, const QByteArray& version = "1")
{
    return declaration + "<Quillet_Data File_Version=\"" + version + "\">" + items +
           "</Quillet_Data>";
}

QByteArray Element(const QByteArray& name, const QByteArray& content)
{
    return '<' + name + '>' + content + "</" + name + '>';
}

/// An item with well-formed children. The child `name`, if any, is replaced with `replacement`.
QByteArray Item_With(const QByteArray& name = QByteArray(),
                     const QByteArray& replacement = QByteArray())
{
    const QVector<QPair<QByteArray, QByteArray>> children{
        {"Id", "5"},          {"Value", "10"},           {"Text", "five"},
        {"Border_Type", "4"}, {"Position", "1.50,2.25"},
    };
    QByteArray result;
    for (const auto& child : children)
        result += child.first == name ? replacement : Element(child.first, child.second);
    return Element("Item", result);
}

using TItems = std::vector<TDataItem>;

int Count(const TItems& items)
{
    return static_cast<int>(items.size());
}

/// Appends the labels of a document.
void Read(const QByteArray& document, TItems* items)
{
    ItemList::Read(document, [items](const TDataItem& item) { items->push_back(item); });
}

/// The message of the exception that ends the reading, marked if it is a file error; empty without
/// an exception.
QString Failure(const QByteArray& document, TItems* items)
{
    try {
        Read(document, items);
    } catch (const TXmlFileException& exception) {
        return exception.Message() + (exception.Type() == TXmlFileException::Data_Error
                                          ? QString()
                                          : QStringLiteral(" (file)"));
    }
    return QString();
}

} // namespace

Q_DECLARE_METATYPE(TDataItem)

class TestItemList : public QObject
{
    Q_OBJECT

private slots:
    void labels_are_written_without_blanks_in_their_order()
    {
        TItems items;
        items.push_back(
            {77, 12, QStringLiteral("A <b> & \u00e9\u4e2d"), 8, QPointF(120.5, 33), true});
        items.push_back({-5, -1, QString(), 0, QPointF(-0.127, 1e7), false});
        QCOMPARE(ItemList::Write(items),
                 Document(Element("Item", Element("Id", "77") + Element("Value", "12") +
                                              "<Text>A &lt;b> &amp; \xc3\xa9\xe4\xb8\xad</Text>" +
                                              Element("Border_Type", "8") +
                                              Element("Position", "120.50,33.00")) +
                          Element("Item", Element("Id", "-5") + Element("Value", "-1") +
                                              Element("Text", "") + Element("Border_Type", "0") +
                                              Element("Position", "-0.13,10000000.00"))));
    }

    void a_document_gets_other_texts()
    {
        const QByteArray items = Item_With();
        const QString omega(QChar(0x3a9));
        const TPageTexts none{"plain", QString(), QString()};
        const TPageTexts other{omega, QString(), QString()};
        // Without texts before and after, no byte changes.
        const QByteArray plain = Document(items + "<!-- comment -->");
        QCOMPARE(ItemList::With_Texts(plain, none), plain);
        const auto with_name = [](QByteArray document) {
            return document.insert(document.indexOf(" File_Version"), " Page_Name=\"\xce\xa9\"");
        };
        QCOMPARE(ItemList::With_Texts(plain, other), with_name(Document(items)));
        QCOMPARE(ItemList::With_Texts(with_name(plain), none), Document(items));
        QCOMPARE(ItemList::With_Texts(with_name(plain), other), with_name(Document(items)));
    }

    void an_empty_page_is_an_empty_root()
    {
        QCOMPARE(ItemList::Write({}), declaration + "<Quillet_Data File_Version=\"1\"/>");
    }

    void a_control_character_in_a_text_is_refused()
    {
        TItems items;
        const QString text = QStringLiteral("a\u0001b");
        items.push_back({1, 1, text, 0, QPointF(), false});
        QString message;
        try {
            ItemList::Write(items);
        } catch (const TXmlFileException& exception) {
            message = exception.Message();
        }
        QCOMPARE(message,
                 QStringLiteral("ERR:  Cannot write node 'Text' with data '%1'").arg(text));
    }

    void a_label_is_read_unselected()
    {
        TItems items;
        Read(Document(Item_With()), &items);
        QCOMPARE(Count(items), 1);
        const TDataItem item = items[0];
        QCOMPARE(item.id, 5);
        QCOMPARE(item.value, 10);
        QCOMPARE(item.text, QStringLiteral("five"));
        QCOMPARE(item.border_type, 4);
        QCOMPARE(item.position, QPointF(1.5, 2.25));
        QVERIFY(!item.selected);
    }

    void the_message_names_the_missing_element_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArray>("replacement");
        QTest::addColumn<QString>("message");
        const QString missing_node =
            QStringLiteral("ERR: Node '%1' is missing from node 'Item' and not optional.");
        const QString missing_text = QStringLiteral("ERR: Node Text for '%1' is not optional.");
        for (const char* const name : {"Id", "Value", "Border_Type"}) {
            const QByteArray tag = name;
            const QString tag_name = QString::fromLatin1(tag);
            QTest::addRow("no %s", name) << tag << QByteArray() << missing_node.arg(tag_name);
            QTest::addRow("empty %s", name)
                << tag << Element(tag, "") << missing_text.arg(tag_name);
            QTest::addRow("element in %s", name)
                << tag << Element(tag, "<x/>") << missing_text.arg(tag_name);
            QTest::addRow("blank %s", name)
                << tag << Element(tag, "  ") << missing_text.arg(tag_name);
        }
        const QByteArray position = "Position";
        const QString invalid = QStringLiteral("XML Item position invalid");
        QTest::newRow("no Position")
            << position << QByteArray() << missing_node.arg(QStringLiteral("Position"));
        QTest::newRow("empty Position") << position << Element(position, "") << invalid;
        QTest::newRow("blank Position") << position << Element(position, " ") << invalid;
        QTest::newRow("element in Position") << position << Element(position, "<x/>") << invalid;
        QTest::newRow("no comma") << position << Element(position, "12") << invalid;
        QTest::newRow("three parts") << position << Element(position, "1,2,3") << invalid;
        QTest::newRow("empty third part") << position << Element(position, "1,2,") << invalid;
    }

    void the_message_names_the_missing_element()
    {
        QFETCH(const QByteArray, name);
        QFETCH(const QByteArray, replacement);
        QFETCH(const QString, message);
        TItems items;
        QCOMPARE(Failure(Document(Item_With(name, replacement)), &items), message);
        QCOMPARE(Count(items), 0);
    }

    void a_text_may_be_missing_data()
    {
        QTest::addColumn<QByteArray>("replacement");
        QTest::newRow("no element") << QByteArray();
        QTest::newRow("empty element") << QByteArray("<Text/>");
        QTest::newRow("element instead of text") << QByteArray("<Text><b>x</b></Text>");
        QTest::newRow("blank") << QByteArray("<Text>  </Text>");
    }

    void a_text_may_be_missing()
    {
        QFETCH(const QByteArray, replacement);
        TItems items;
        QCOMPARE(Failure(Document(Item_With("Text", replacement)), &items), QString());
        QCOMPARE(Count(items), 1);
        QVERIFY(items[0].text.isEmpty());
    }

    void text_that_is_not_a_number_is_read_as_0_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<TDataItem>("expected");
        const auto label = [](int id, int value, int border, double x, double y) {
            return TDataItem{id, value, QStringLiteral("five"), border, QPointF(x, y), false};
        };
        QTest::newRow("id") << QByteArray("Id") << QByteArray("x") << label(0, 10, 4, 1.5, 2.25);
        QTest::newRow("id with a fraction")
            << QByteArray("Id") << QByteArray("5.0") << label(0, 10, 4, 1.5, 2.25);
        QTest::newRow("value too large")
            << QByteArray("Value") << QByteArray("2147483648") << label(5, 0, 4, 1.5, 2.25);
        QTest::newRow("border") << QByteArray("Border_Type") << QByteArray("square")
                                << label(5, 10, 0, 1.5, 2.25);
        QTest::newRow("any border code")
            << QByteArray("Border_Type") << QByteArray("-3") << label(5, 10, -3, 1.5, 2.25);
        QTest::newRow("empty first part")
            << QByteArray("Position") << QByteArray(",5") << label(5, 10, 4, 0, 5);
        QTest::newRow("comma alone")
            << QByteArray("Position") << QByteArray(",") << label(5, 10, 4, 0, 0);
        QTest::newRow("x is no number")
            << QByteArray("Position") << QByteArray("a,-7.5") << label(5, 10, 4, 0, -7.5);
        QTest::newRow("blanks") << QByteArray("Position") << QByteArray(" 3 , 4 ")
                                << label(5, 10, 4, 3, 4);
    }

    void text_that_is_not_a_number_is_read_as_0()
    {
        QFETCH(const QByteArray, name);
        QFETCH(const QByteArray, content);
        QFETCH(const TDataItem, expected);
        TItems items;
        Read(Document(Item_With(name, Element(name, content))), &items);
        const TDataItem item = items[0];
        QCOMPARE(item.id, expected.id);
        QCOMPARE(item.value, expected.value);
        QCOMPARE(item.text, expected.text);
        QCOMPARE(item.border_type, expected.border_type);
        QCOMPARE(item.position, expected.position);
    }

    void other_documents_are_refused_data()
    {
        QTest::addColumn<QByteArray>("document");
        QTest::addColumn<QString>("message");
        const QString version = QStringLiteral("XML Version not recognized");
        QTest::newRow("version 2") << Document(Item_With(), "2") << version;
        QTest::newRow("version 0") << Document(Item_With(), "0") << version;
        QTest::newRow("version that is no number") << Document(Item_With(), "one") << version;
        QTest::newRow("no version")
            << QByteArray("<Quillet_Data/>")
            << QStringLiteral("ERR: The 'File_Version' attribute is missing.");
        QTest::newRow("another root")
            << QByteArray("<quillet_data File_Version=\"1\"/>")
            << QStringLiteral("ERR:  Identification 'Quillet_Data' does not match 'quillet_data'");
    }

    void other_documents_are_refused()
    {
        QFETCH(const QByteArray, document);
        QFETCH(const QString, message);
        TItems items;
        QCOMPARE(Failure(document, &items), message);
        QCOMPARE(Count(items), 0);
    }

    void malformed_xml_is_refused_data()
    {
        QTest::addColumn<QByteArray>("document");
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("text") << QByteArray("abc");
        QTest::newRow("cut short") << Document(Item_With()).chopped(10);
    }

    void malformed_xml_is_refused()
    {
        QFETCH(const QByteArray, document);
        TItems items;
        const QString message = Failure(document, &items);
        QVERIFY2(message.startsWith(QStringLiteral("ERR: Reference data XML parse error at line ")),
                 qPrintable(message));
        QCOMPARE(Count(items), 0);
    }

    void labels_before_a_fault_stay()
    {
        TItems items;
        const QByteArray bad = Item_With("Position", Element("Position", "1"));
        const QByteArray third = Item_With("Id", Element("Id", "6"));
        QCOMPARE(Failure(Document(Item_With() + bad + third), &items),
                 QStringLiteral("XML Item position invalid"));
        QCOMPARE(Count(items), 1);
        QCOMPARE(items[0].id, 5);
    }

    void only_items_below_the_root_are_read()
    {
        TItems items;
        Read(Document("<Other>" + Item_With() + "</Other>text<!-- note -->" +
                      Item_With("Id", Element("Id", "1")) + "<item/>" +
                      Item_With("Id", Element("Id", "2")) + "<Other/>"),
             &items);
        QCOMPARE(Count(items), 2);
        QCOMPARE(items[0].id, 1);
        QCOMPARE(items[1].id, 2);
    }

    void labels_are_appended_even_with_repeated_ids()
    {
        TItems items{{5, 1, QStringLiteral("first"), 0, QPointF(), true}};
        Read(Document(Item_With() + Item_With()), &items);
        QCOMPARE(Count(items), 3);
        QCOMPARE(items[0].text, QStringLiteral("first"));
        QCOMPARE(items[1].id, 5);
        QCOMPARE(items[2].id, 5);
    }

    void a_page_is_the_same_after_writing_and_reading()
    {
        const TItems items{
            {2147483647, -2147483647 - 1, QStringLiteral("  <&>\"'  \u00df\u4e2d"), 8,
             QPointF(1.004, 2.996), true},
            {0, 0, QString(), 0, QPointF(-3.5, 123456.78), false},
            {-9, 7, QStringLiteral("%1,%2"), 2, QPointF(0, 0), true},
        };
        const QByteArray document = ItemList::Write(items);
        TItems copy;
        Read(document, &copy);
        QCOMPARE(copy.size(), items.size());
        for (std::size_t index = 0; index < items.size(); ++index) {
            const TDataItem& item = copy[index];
            QCOMPARE(item.id, items[index].id);
            QCOMPARE(item.value, items[index].value);
            QCOMPARE(item.text, items[index].text);
            QCOMPARE(item.border_type, items[index].border_type);
            QVERIFY(!item.selected);
        }
        QCOMPARE(copy[0].position, QPointF(1.0, 3.0));
        QCOMPARE(copy[1].position, QPointF(-3.5, 123456.78));
        QCOMPARE(ItemList::Write(copy), document);
    }

    void white_space_in_a_text_is_kept_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("written");
        QTest::newRow("repeated blanks") << "  a   b  " << QByteArray("  a   b  ");
        QTest::newRow("line break") << "a\nb" << QByteArray("a&#10;b");
        QTest::newRow("line breaks at both ends") << "\n\na\n" << QByteArray("&#10;&#10;a&#10;");
        QTest::newRow("carriage return") << "a\r\nb" << QByteArray("a&#xd;&#10;b");
        QTest::newRow("tab") << "a\tb" << QByteArray("a\tb");
        QTest::newRow("line break and markup") << "<\n&" << QByteArray("&lt;&#10;&amp;");
        QTest::newRow("nothing but blanks") << "  " << QByteArray("<![CDATA[  ]]>");
        QTest::newRow("no-break space")
            << QString(QChar(0xa0)) << QByteArray("<![CDATA[\xc2\xa0]]>");
        QTest::newRow("surrogate pairs") << QString::fromUtf8("\xf0\x9f\x98\x80\n\xf0\x9f\x98\x80")
                                         << QByteArray("\xf0\x9f\x98\x80&#10;\xf0\x9f\x98\x80");
    }

    void white_space_in_a_text_is_kept()
    {
        QFETCH(const QString, text);
        QFETCH(const QByteArray, written);
        const QByteArray document = ItemList::Write({{1, 2, text, 4, QPointF(3, 4), false}});
        QVERIFY2(document.contains("<Text>" + written + "</Text>"), document.constData());
        TItems copy;
        Read(document, &copy);
        QCOMPARE(copy.at(0).text, text);
    }

    void line_breaks_of_a_text_without_other_characters_are_lost()
    {
        TItems copy;
        Read(ItemList::Write({{1, 2, QStringLiteral("\n"), 4, QPointF(3, 4), false}}), &copy);
        QCOMPARE(copy.at(0).text, QString());
    }

    void thousands_of_labels_are_written_and_read()
    {
        constexpr int count = 20000;
        TItems items;
        for (int id = 0; id < count; ++id)
            items.push_back({id, count - id, QString::number(id), 1, QPointF(id, 1), false});
        TItems copy;
        Read(ItemList::Write(items), &copy);
        QCOMPARE(Count(copy), count);
        QCOMPARE(copy[count - 1].text, QString::number(count - 1));
    }

    void characters_that_xml_cannot_represent_can_be_left_out_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("left");
        const QString face = QString::fromUtf8("\xf0\x9f\x98\x80");
        QTest::newRow("control character") << "be" + QString(QChar(1)) + "fore"
                                           << "before";
        QTest::newRow("nothing but them") << QString(3, QChar(2)) << QString();
        QTest::newRow("halves of characters")
            << QChar(0xd800) + QString("a") + QChar(0xdc00) + QChar(0xd800) << "a";
        QTest::newRow("a half before a whole one") << QChar(0xd800) + face << face;
        QTest::newRow("a pair before one") << face + QChar(1) << face;
        QTest::newRow("not a character") << "a" + QString(QChar(0xffff)) << "a";
        QTest::newRow("all fine") << face + " <&>\t" << face + " <&>\t";
    }

    void characters_that_xml_cannot_represent_can_be_left_out()
    {
        QFETCH(const QString, text);
        QFETCH(const QString, left);
        TItems items;
        items.push_back({1, 2, text, 4, QPointF(3, 4), false});
        items.push_back({2, 3, QStringLiteral("next"), 4, QPointF(5, 6), false});
        TItems copy;
        Read(ItemList::Write(items, ItemList::TBadText::Leave_Out), &copy);
        QCOMPARE(Count(copy), 2);
        QCOMPARE(copy[0].text, left);
        QCOMPARE(copy[0].position, QPointF(3, 4));
        QCOMPARE(copy[1].text, QStringLiteral("next"));
        // By default such a text is refused.
        bool refused = false;
        try {
            ItemList::Write(items);
        } catch (const TXmlFileException&) {
            refused = true;
        }
        QCOMPARE(refused, text != left);
    }
};

QTEST_MAIN(TestItemList)
#include "test_itemlist.moc"
