// The DOM that is built from the events of the SAX reader.

#include "core/xmlbuilder.h"

#include <QTest>

namespace {

/// A node in one line: its type or name, its text, and what it contains.
QString In_Words(const QDomNode& node)
{
    QStringList parts;
    for (QDomNode child = node.firstChild(); !child.isNull(); child = child.nextSibling())
        parts += In_Words(child);
    const QString content = parts.isEmpty() ? QString() : '(' + parts.join(' ') + ')';
    if (node.isDocument())
        return parts.join(' ');
    if (node.isElement())
        return node.nodeName() + content;
    const QString kind = node.isCDATASection()            ? "cdata"
                         : node.isText()                  ? "text"
                         : node.isComment()               ? "comment"
                         : node.isProcessingInstruction() ? "instruction"
                         : node.isEntityReference()       ? "entity"
                                                          : "other";
    return kind + ':' + (node.nodeValue().isEmpty() ? node.nodeName() : node.nodeValue());
}

} // namespace

class TestXmlBuilder : public QObject
{
    Q_OBJECT

private slots:
    void each_event_becomes_a_node_data();
    void each_event_becomes_a_node();
    void what_precedes_an_error_is_kept();
    void elements_have_the_places_of_their_tags();
    void attributes_keep_their_names_with_and_without_namespaces();
    void another_document_replaces_content_and_places();
};

void TestXmlBuilder::each_event_becomes_a_node_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("content");
    const auto row = [](const char* name, const char* data, const char* content) {
        QTest::newRow(name) << QByteArray(data) << QString(content);
    };
    row("elements", "<a><b/><c><d/></c></a>", "a(b c(d))");
    row("text", "<a>x<b>y</b>z</a>", "a(text:x b(text:y) text:z)");
    row("indentation", "<a>\n  <b> </b>\n</a>", "a(b)");
    row("line ends", "<a>x\r\ny</a>", "a(text:x\r\ny)");
    row("character references", "<a>&lt;&#65;</a>", "a(text:<A)");
    row("character data", "<a><![CDATA[<x>]]></a>", "a(cdata:<x>)");
    row("comments", "<!--x--><a><!--y--></a><!--z-->", "comment:x a(comment:y) comment:z");
    row("instruction", "<?x y?><a/>", "instruction:y a");
    row("document type", "<!--x--><!DOCTYPE t><a/>", "comment:x a");
    row("entity in a text", "<!DOCTYPE t [<!ENTITY e 'x'>]><a>&e;</a>", "a(text:x)");
    row("unknown entity in an attribute of the root", "<a b=\"&e;\"/>", "a");
}

void TestXmlBuilder::each_event_becomes_a_node()
{
    QFETCH(const QByteArray, data);
    QFETCH(const QString, content);
    for (const bool namespace_processing : {false, true}) {
        QDomDocument document;
        XmlBuilder::TPlaces places;
        QVERIFY(!XmlBuilder::Build(data, namespace_processing, &document, &places));
        QCOMPARE(In_Words(document), content);
        QCOMPARE(document.doctype().name(), QString(data.contains("DOCTYPE") ? "t" : ""));
    }
}

void TestXmlBuilder::what_precedes_an_error_is_kept()
{
    QDomDocument document;
    XmlBuilder::TPlaces places;
    const auto error = XmlBuilder::Build("<a>\n<b/></c>", false, &document, &places);
    QVERIFY(error);
    QCOMPARE(error->message, QString("tag mismatch"));
    QCOMPARE(error->line, 2);
    QCOMPARE(error->column, 8);
    QCOMPARE(In_Words(document), QString("a(b)"));
}

void TestXmlBuilder::elements_have_the_places_of_their_tags()
{
    QDomDocument document;
    XmlBuilder::TPlaces places;
    QVERIFY(!XmlBuilder::Build("<a>\n <b/>\n</a>", false, &document, &places));
    const QDomElement root = document.documentElement();
    QCOMPARE(places.Find(root).line, 1);
    QCOMPARE(places.Find(root).column, 3);
    QCOMPARE(places.Find(root.firstChildElement()).line, 2);
    // The reader reports an empty element at its slash.
    QCOMPARE(places.Find(root.firstChildElement()).column, 4);
    QCOMPARE(places.Find(QDomNode()).line, 0);
}

void TestXmlBuilder::attributes_keep_their_names_with_and_without_namespaces()
{
    for (const bool namespace_processing : {false, true}) {
        QDomDocument document;
        XmlBuilder::TPlaces places;
        QVERIFY(!XmlBuilder::Build("<n:a xmlns:n=\"u\" n:b=\"1\" c=\"2\"/>", namespace_processing,
                                   &document, &places));
        const QDomElement root = document.documentElement();
        QCOMPARE(root.nodeName(), QString("n:a"));
        QCOMPARE(namespace_processing ? root.attributeNS("u", "b") : root.attribute("n:b"),
                 QString("1"));
        QCOMPARE(root.attribute("c"), QString("2"));
        QCOMPARE(root.namespaceURI(), namespace_processing ? QString("u") : QString());
        QCOMPARE(root.localName(), namespace_processing ? QString("a") : QString());
    }
}

void TestXmlBuilder::another_document_replaces_content_and_places()
{
    QDomDocument document;
    XmlBuilder::TPlaces places;
    QVERIFY(!XmlBuilder::Build("<a/>", false, &document, &places));
    const QDomElement first = document.documentElement();
    QVERIFY(!XmlBuilder::Build("<b/>", false, &document, &places));
    QCOMPARE(In_Words(document), QString("b"));
    QCOMPARE(places.Find(first).line, 0);
}

QTEST_MAIN(TestXmlBuilder)
#include "test_xmlbuilder.moc"
