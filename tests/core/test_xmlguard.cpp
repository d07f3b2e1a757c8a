// Which XML documents are refused before they are parsed.

#include "core/xmlguard.h"

#include "core/xmlfile.h"

#include "support/support.h"

#include <QTest>
#include <QTextCodec>

#include <sys/resource.h>

namespace {

const QString too_far = QStringLiteral("entities expand too far");
const QString too_deep = QStringLiteral("elements nested too deeply");
const QString too_long = QStringLiteral("document type too long");
const QString attributes = QStringLiteral("too many attributes");
const QString prefixes = QStringLiteral("too many namespace prefixes");
const QString invalid = QStringLiteral("invalid character");

constexpr int many_entities = 512;
// The guard counts the bracket after the declarations, too.
constexpr int longest_declarations = XmlGuard::Document_Type_Limit - 1;

QByteArray Document(const QByteArray& declarations, const QByteArray& content)
{
    return "<!DOCTYPE R [" + declarations + "]><R>" + content + "</R>";
}

/// The entity a0, which contains the text, and further entities a1, a2, ... Each of these has ten
/// references to the previous one.
QByteArray Laughs(int levels, const QByteArray& text)
{
    QByteArray declarations = "<!ENTITY a0 '" + text + "'>";
    for (int i = 1; i < levels; ++i)
        declarations += "<!ENTITY a" + QByteArray::number(i) + " '" +
                        ("&a" + QByteArray::number(i - 1) + ";").repeated(10) + "'>";
    return declarations;
}

/// Concatenates the results of `piece` for the numbers from 0 to count - 1.
template <typename TPiece>
QByteArray Row(int count, TPiece piece)
{
    QByteArray row;
    for (int i = 0; i < count; ++i)
        row += piece(QByteArray::number(i));
    return row;
}

QByteArray Attribute(const QByteArray& number)
{
    return " a" + number + "='1'";
}

QByteArray Prefix(const QByteArray& number)
{
    return " xmlns:p" + number + "='u'";
}

QByteArray Entity(const QByteArray& number)
{
    return "<!ENTITY e" + number + " 'x'>";
}

QByteArray Nested(int depth)
{
    return QByteArray("<a>").repeated(depth) + QByteArray("</a>").repeated(depth);
}

QByteArray Model(int depth)
{
    return "<!ELEMENT R " + QByteArray(depth, '(') + 'a' + QByteArray(depth, ')') + '>';
}

/// Declarations that expand a parameter entity twice.
/// @param size  including the expansions, in characters.
QByteArray Parameter_Entity_Twice(int size)
{
    const QByteArray value(4000, 'x');
    const QByteArray declarations = "<!ENTITY % p '" + value + "'><!ENTITY e '%p;%p;'>";
    // Each expansion counts as one character more than it has.
    return declarations + QByteArray(size - declarations.size() - 2 * (value.size() + 1), ' ');
}

QString Message(const QByteArray& data, bool namespace_processing)
{
    const auto defect = XmlGuard::Find_Defect(data, namespace_processing);
    return defect ? defect->message : QString();
}

} // namespace

class TestXmlGuard : public QObject
{
    Q_OBJECT

private slots:
    void documents_that_are_too_costly_to_parse_are_refused_data();
    void documents_that_are_too_costly_to_parse_are_refused();
    void ordinary_documents_are_accepted_data();
    void ordinary_documents_are_accepted();
    void only_characters_that_xml_allows_are_text_data();
    void only_characters_that_xml_allows_are_text();
    void malformed_documents_are_left_to_the_parser_data();
    void malformed_documents_are_left_to_the_parser();
    void a_defect_has_a_line_and_a_column();
    void attributes_are_counted_per_element();
    void limits_hold_across_block_borders();
    void prefixes_matter_only_with_namespaces();
    void accepted_documents_are_cheap_to_parse_data();
    void accepted_documents_are_cheap_to_parse();
    void other_encodings_are_read();
};

void TestXmlGuard::documents_that_are_too_costly_to_parse_are_refused_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("message");
    const QByteArray longest(4000, 'x');
    const QByteArray declared = "<!ENTITY e '" + longest + "'>";
    const QByteArray many = QByteArray("&e;").repeated(100000);

    QTest::newRow("references to references to nothing")
        << Document(Laughs(40, QByteArray()), "&a39;") << too_far;
    QTest::newRow("references in an attribute")
        << Document(Laughs(40, QByteArray()), "<b c='&a39;'/>") << too_far;
    QTest::newRow("one long entity, many times") << Document(declared, many) << too_far;
    QTest::newRow("the same in one attribute")
        << Document(declared, "<b c='" + many + "'/>") << too_far;
    QTest::newRow("the same in many attributes")
        << Document(declared, QByteArray("<b c='&e;'/>").repeated(100000)) << too_far;
    QTest::newRow("the same in a default")
        << Document(declared + "<!ATTLIST R a CDATA '" + many + "'>", "") << too_long;
    QTest::newRow("elements from an entity, many times")
        << Document("<!ENTITY e '" + QByteArray("<b/>").repeated(1000) + "'>", many) << too_far;
    QTest::newRow("a parameter entity in one value")
        << Document("<!ENTITY % p '" + longest + "'><!ENTITY e '" +
                        QByteArray("%p;").repeated(100) + "'>",
                    "")
        << too_long;
    QTest::newRow("a parameter entity in many values")
        << Document("<!ENTITY % p '" + longest + "'>" +
                        Row(100,
                            [](const QByteArray& number) {
                                return "<!ENTITY e" + number + " '%p;%p;'>";
                            }),
                    "")
        << too_long;
    QTest::newRow("references to entities that are declared later")
        << Document("<!ENTITY a '" + QByteArray("&b;").repeated(1000) + "'>" + "<!ENTITY b ''>",
                    QByteArray("&a;").repeated(1000))
        << too_far;
    QTest::newRow("an entity redeclared with a cheaper text")
        << Document(declared + "<!ENTITY e ''>", many) << too_far;
    QTest::newRow("a cheaper parameter entity of the same name")
        << Document(declared + "<!ENTITY % e ''>", many) << too_far;
    QTest::newRow("a reference put together from pieces")
        << Document(Laughs(40, QByteArray()) + "<!ENTITY and '&#38;'>", "&and;a39;") << too_far;

    QTest::newRow("deep") << Nested(XmlGuard::Nesting_Limit + 1) << too_deep;
    QTest::newRow("very deep") << Nested(1000000) << too_deep;
    QTest::newRow("deep and open") << QByteArray("<a>").repeated(1000000) << too_deep;
    QTest::newRow("deep by entities")
        << Document("<!ENTITY e '<a>'>", QByteArray("&e;").repeated(300)) << too_deep;
    QTest::newRow("deep within an entity")
        << Document("<!ENTITY e '" + Nested(300) + "'>", "&e;") << too_deep;
    QTest::newRow("parentheses") << Document(Model(1000000), "") << too_long;

    const QByteArray rows = Row(XmlGuard::Attribute_Limit + 1, Attribute);
    QTest::newRow("attributes") << "<R" + rows + "/>" << attributes;
    QTest::newRow("attributes after quotes in a comment")
        << "<!-- don't <a ' -->\n<R" + rows + "/>" << attributes;
    QTest::newRow("attributes after quotes in character data")
        << "<R><![CDATA[ <a ' ]]><b" + rows + "/></R>" << attributes;
    QTest::newRow("attributes after quotes in text")
        << "<R>don't<b" + rows + "/></R>" << attributes;
    QTest::newRow("attributes after quotes in an instruction")
        << "<?p <a ' ?><R" + rows + "/>" << attributes;
    QTest::newRow("attributes after quotes in a document type")
        << "<!DOCTYPE R [<!-- <a ' -->]><R" + rows + "/>" << attributes;
    QTest::newRow("attributes after a closing bracket in a value")
        << "<R x='>'" + rows + "/>" << attributes;
    QTest::newRow("attributes of a tag that an entity begins")
        << Document("<!ENTITY e '<a'>", "&e;" + rows + "/>") << attributes;
    QTest::newRow("attributes of a tag that an entity of an entity begins")
        << Document("<!ENTITY f '<a'><!ENTITY e '&f;'>", "&e;" + rows + "/>") << attributes;
    QTest::newRow("attributes of a tag that begins with a character reference")
        << Document("<!ENTITY e '&#60;a'>", "&e;" + rows + "/>") << attributes;
    QTest::newRow("attributes of a tag that a parameter entity begins")
        << Document("<!ENTITY % p '&#60;'><!ENTITY e '%p;a'>", "&e;" + rows + "/>") << attributes;
    QTest::newRow("attributes of a tag that an entity begins with a value")
        << Document("<!ENTITY e \"<a x='\">", "&e;'" + rows + "/>") << attributes;

    QTest::newRow("depth after a prefix")
        << "<R><a xmlns:p='u'/>" + Nested(XmlGuard::Nesting_Limit) + "</R>" << too_deep;
    QTest::newRow("one character too many from entities")
        << Document("<!ENTITY e '" + QByteArray(1999, 'x') + "'>",
                    QByteArray("&e;").repeated(XmlGuard::Expansion_Limit / 2000 + 1))
        << too_far;

    // The search among all entities costs as much as 128 characters.
    QTest::newRow("one reference too many to one of many entities")
        << Document(Row(many_entities, Entity),
                    QByteArray("&e511;").repeated(XmlGuard::Expansion_Limit / 130 + 1))
        << too_far;

    QTest::newRow("control character") << QByteArray("<R>a\x01</R>") << invalid;
    QTest::newRow("control character by reference") << QByteArray("<R>&#1;</R>") << invalid;
    QTest::newRow("zero by reference") << QByteArray("<R>&#0;</R>") << invalid;
    QTest::newRow("no character by reference") << QByteArray("<R>&#xffff;</R>") << invalid;
    QTest::newRow("half a character by reference") << QByteArray("<R>&#xd800;</R>") << invalid;
    QTest::newRow("control character from an entity")
        << Document("<!ENTITY e '\x01'>", "&e;") << invalid;
    QTest::newRow("control character in a comment") << QByteArray("<R><!--\x01--></R>") << invalid;
    QTest::newRow("control character in character data")
        << QByteArray("<R><![CDATA[\x01]]></R>") << invalid;
    QTest::newRow("control character in an instruction")
        << QByteArray("<R><?p \x01?></R>") << invalid;

    QTest::newRow("a document type with one character too many")
        << Document(Parameter_Entity_Twice(longest_declarations + 1), "") << too_long;
    QTest::newRow("references in a document type")
        << Document("<!ENTITY e '" + QByteArray("&#65;").repeated(10000) + "'>", "") << too_long;
    QTest::newRow("parameter references in a document type")
        << Document("<!ENTITY % p ''>" + QByteArray("%p;").repeated(5000), "") << too_long;
    QTest::newRow("entities") << Document(Row(1000, Entity), "") << too_long;
    QTest::newRow("prefixes") << "<R" + Row(XmlGuard::Prefix_Limit + 1, Prefix) + "/>" << prefixes;
}

void TestXmlGuard::documents_that_are_too_costly_to_parse_are_refused()
{
    QFETCH(QByteArray, data);
    QFETCH(QString, message);
    QCOMPARE(Message(data, true), message);
    if (message != prefixes)
        QCOMPARE(Message(data, false), message);
}

void TestXmlGuard::ordinary_documents_are_accepted_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::newRow("one element") << QByteArray("<R/>");
    QTest::newRow("everything") << QByteArray(
        "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<!-- don't -->\n<!DOCTYPE R [<!ENTITY a 'b'>"
        "<!ELEMENT R (a, (b | c)*)><!ATTLIST R x CDATA 'a=b'><!-- (( -->]>\n"
        "<?p <a ' ?><R x='>' y=\"'\"><![CDATA[<a ' &a; ]]>text &a; &amp; &#65; "
        "&other;<!--c--></R>");
    QTest::newRow("as deep as allowed") << "<R>" + Nested(XmlGuard::Nesting_Limit - 1) + "</R>";
    QTest::newRow("side by side") << "<R>" + Nested(XmlGuard::Nesting_Limit - 1).repeated(50) +
                                         "</R>";
    QTest::newRow("as many attributes as allowed")
        << "<R" + Row(XmlGuard::Attribute_Limit, Attribute) + "/>";
    QTest::newRow("as many prefixes as allowed")
        << "<R" + Row(XmlGuard::Prefix_Limit, Prefix) + "/>";
    QTest::newRow("prefixes side by side") << "<R>" + Row(2000, [](const QByteArray& number) {
                                                  return "<a" + Prefix(number) + "/>";
                                              }) + "</R>";
    QTest::newRow("nested parentheses") << Document(Model(longest_declarations / 3), "");
    QTest::newRow("many entities") << Document(Row(many_entities, Entity), "&e0;&e511;");
    QTest::newRow("many references in a document type")
        << Document("<!ENTITY e '" + QByteArray("&#65;").repeated(3000) + "'>", "");
    QTest::newRow("a document type as long as allowed")
        << Document(Parameter_Entity_Twice(longest_declarations), "");
    QTest::newRow("entities of entities") << Document(Laughs(3, "ha"), "&a2;");
    QTest::newRow("a reference to an entity that is declared later")
        << Document("<!ENTITY a '&b;'><!ENTITY b 'x'>", "&a;");
    QTest::newRow("an entity redeclared with an expensive text")
        << Document("<!ENTITY e ''><!ENTITY e '" + QByteArray(4000, 'x') + "'>",
                    QByteArray("&e;").repeated(100000));
    QTest::newRow("a name that is used often") << Document(
        "<!ENTITY us 'The Company of Us &amp; Them'>", QByteArray("&us; ").repeated(20000));
    QTest::newRow("characters that are escaped often")
        << Document("<!ENTITY licence '" + QByteArray(4000, 'x') + "'>",
                    "&licence;" + QByteArray("&lt;&#228;").repeated(100000));
    QTest::newRow("characters beyond 16 bits")
        << QByteArray("<R>\xf0\x9f\x98\x80<!--\xf0\x9f\x98\x80--></R>");
    QTest::newRow("signs in text, with quotes")
        << "<R>" + QByteArray("= ' &lt; > ( ) % ").repeated(10000) + "</R>";
    QTest::newRow("equals signs in text, with entities that hold text")
        << Document("<!ENTITY e 'a = b'>", "&e;" + QByteArray(10000, '=') + "<!--" +
                                               QByteArray(10000, '=') + "--><b c='&e;'/>");
    QTest::newRow("equals signs after an end tag")
        << "<R><a></a>" + QByteArray(XmlGuard::Attribute_Limit + 1, '=') + "</R>";
    QTest::newRow("equals signs in an instruction")
        << "<?p " + QByteArray(XmlGuard::Attribute_Limit + 1, '=') + "?><R/>";
    QTest::newRow("equals signs in comments, with entities that hold elements") << Document(
        "<!ENTITY e '<b/>'>", QByteArray("<!-- = -->").repeated(XmlGuard::Attribute_Limit + 1));
    QTest::newRow("equals signs between references to elements") << Document(
        "<!ENTITY e '<b/>'>", QByteArray("= &e;").repeated(XmlGuard::Attribute_Limit + 1));
    QTest::newRow("equals signs after a reference to an element")
        << Document("<!ENTITY e '<b/>'>", "x&e;" + QByteArray(XmlGuard::Attribute_Limit, '='));
    QTest::newRow("as many characters from entities as allowed")
        << Document("<!ENTITY e '" + QByteArray(1999, 'x') + "'>",
                    QByteArray("&e;").repeated(XmlGuard::Expansion_Limit / 2000));
    QTest::newRow("as many references to one of many entities as allowed") << Document(
        Row(many_entities, Entity), QByteArray("&e511;").repeated(XmlGuard::Expansion_Limit / 130));
    QTest::newRow("a long list")
        << "<R>" +
               QByteArray("<Item><Id>1</Id><Value>1</Value><Text>a = b</Text></Item>")
                   .repeated(10000) +
               "</R>";
}

void TestXmlGuard::ordinary_documents_are_accepted()
{
    QFETCH(QByteArray, data);
    QCOMPARE(Message(data, true), QString());
    QCOMPARE(Message(data, false), QString());
    for (const bool namespaces : {false, true}) {
        TXmlFile file;
        file.Open_Data(data, QStringLiteral("R"), nullptr, namespaces);
        QVERIFY(!file.d_root_element.isNull());
    }
}

void TestXmlGuard::only_characters_that_xml_allows_are_text_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("expected");
    QTest::newRow("nothing") << QString() << true;
    QTest::newRow("letters") << QStringLiteral("a\u00e4\u20ac\ud7ff\ue000\ufffd") << true;
    QTest::newRow("white space") << QStringLiteral("\t\n\r ") << true;
    QTest::newRow("beyond 16 bits") << QString::fromUtf8("\xf0\x9f\x98\x80") << true;
    for (const int code :
         {0x00, 0x01, 0x08, 0x0b, 0x0c, 0x0e, 0x1f, 0xd800, 0xdbff, 0xdc00, 0xdfff, 0xfffe, 0xffff})
        QTest::newRow(QByteArray::number(code, 16).constData())
            << QStringLiteral("a") + QChar(static_cast<ushort>(code)) + QStringLiteral("b")
            << false;
    QTest::newRow("half at the end") << QStringLiteral("a") + QChar(0xd83d) << false;
    QTest::newRow("halves the wrong way round") << QString(QChar(0xde00)) + QChar(0xd83d) << false;
    QTest::newRow("two first halves") << QString(2, QChar(0xd83d)) + QChar(0xde00) << false;
}

void TestXmlGuard::only_characters_that_xml_allows_are_text()
{
    QFETCH(QString, text);
    QFETCH(bool, expected);
    QCOMPARE(XmlGuard::Is_Text(text), expected);
}

void TestXmlGuard::malformed_documents_are_left_to_the_parser_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("text") << QByteArray("abc");
    QTest::newRow("unfinished") << QByteArray("<R><A");
    QTest::newRow("mismatch") << QByteArray("<R></S>");
    QTest::newRow("zeroes") << QByteArray(1000, '\0');
    QTest::newRow("an error before the depth") << "<R></S>" + Nested(1000);
    QTest::newRow("an entity that the parser finds too long")
        << Document(Laughs(4, "0123456789") + "<!ENTITY b '&a3;'>", "&b;");
    QTest::newRow("entities that refer to each other")
        << Document("<!ENTITY a '&b;'><!ENTITY b '&a;'>", "&a;");
    QTest::newRow("an entity to itself") << Document("<!ENTITY % a '%a;'>", "&b");
}

void TestXmlGuard::malformed_documents_are_left_to_the_parser()
{
    QFETCH(QByteArray, data);
    QCOMPARE(Message(data, true), QString());
    bool is_refused = false;
    try {
        TXmlFile().Open_Data(data, QStringLiteral("R"), nullptr, true);
    } catch (const TXmlFileException&) {
        is_refused = true;
    }
    QVERIFY(is_refused);
}

void TestXmlGuard::a_defect_has_a_line_and_a_column()
{
    const auto defect = XmlGuard::Find_Defect("<R>\n<S>\n" + Nested(1000), true);
    QVERIFY(defect);
    QCOMPARE(defect->line, 3);
    // 254 more tags of 3 characters are accepted. The next one ends in this column.
    const int last = 3 * (XmlGuard::Nesting_Limit - 2 + 1);
    QVERIFY2(defect->column == last || defect->column == last + 1,
             qPrintable(QString::number(defect->column)));
}

void TestXmlGuard::attributes_are_counted_per_element()
{
    const QByteArray tag = "<b" + Row(XmlGuard::Attribute_Limit - 1, Attribute) + "/>";
    QCOMPARE(Message("<R>" + tag.repeated(50) + "</R>", true), QString());
    QCOMPARE(Message(Document("<!ENTITY e 'x'>", tag.repeated(50)), true), QString());
}

/// The reader receives a document in blocks, which may end anywhere.
void TestXmlGuard::limits_hold_across_block_borders()
{
    const QByteArray allowed = "<R" + Row(XmlGuard::Attribute_Limit, Attribute) + "/>";
    const QByteArray too_many = "<R" + Row(XmlGuard::Attribute_Limit + 1, Attribute) + "/>";
    for (int shift = 0; shift < 2 * 1024; ++shift) {
        const QByteArray blanks = "<!--" + QByteArray(shift, ' ') + "-->";
        QCOMPARE(Message(blanks + allowed, true), QString());
        QCOMPARE(Message(blanks + too_many, true), attributes);
    }
}

void TestXmlGuard::prefixes_matter_only_with_namespaces()
{
    const QByteArray data = "<R" + Row(XmlGuard::Prefix_Limit + 1, Prefix) + "/>";
    QCOMPARE(Message(data, true), prefixes);
    QCOMPARE(Message(data, false), QString());
}

void TestXmlGuard::accepted_documents_are_cheap_to_parse_data()
{
    QTest::addColumn<QByteArray>("data");
    const QByteArray value(4000, 'x');
    QTest::newRow("expansion up to the limit")
        << Document("<!ENTITY e '" + value + "'>", QByteArray("&e;").repeated(990));
    QTest::newRow("expansion in an attribute up to the limit") << Document(
        "<!ENTITY e '" + value + "'>", "<b c='" + QByteArray("&e;").repeated(990) + "'/>");
    QTest::newRow("empty entities up to the limit")
        << Document(Laughs(4, QByteArray()), QByteArray("&a3;").repeated(600));
    QTest::newRow("entities up to their limit, used often")
        << Document(Row(many_entities, Entity), QByteArray("&e511;").repeated(15000));
    QTest::newRow("depth in an entity")
        << Document("<!ENTITY e '" + Nested(XmlGuard::Nesting_Limit - 1) + "'>", "&e;&e;");
}

/// Within the limits, a document of some kilobytes takes little time and memory.
void TestXmlGuard::accepted_documents_are_cheap_to_parse()
{
    QFETCH(QByteArray, data);
    QCOMPARE(Message(data, true), QString());
    const Support::TChildResult child = Support::Run_In_Child([&data] {
        rusage before{};
        getrusage(RUSAGE_SELF, &before);
        TXmlFile file;
        file.Open_Data(data, QStringLiteral("R"), nullptr, true);
        rusage after{};
        getrusage(RUSAGE_SELF, &after);
        const long kilobytes = after.ru_maxrss - before.ru_maxrss;
        return kilobytes < 100 * 1024 ? 0 : 1;
    });
    QVERIFY2(!child.timed_out, "hangs");
    QCOMPARE(child.exit_code, 0);
}

void TestXmlGuard::other_encodings_are_read()
{
    for (const char* codec : {"UTF-16", "UTF-16BE", "UTF-16LE"}) {
        QTextCodec* const encoder = QTextCodec::codecForName(codec);
        const QString text = QString::fromLatin1(Nested(1000));
        QCOMPARE(Message(QByteArray(encoder->fromUnicode(text)), true), too_deep);
    }
}

QTEST_MAIN(TestXmlGuard)
#include "test_xmlguard.moc"
