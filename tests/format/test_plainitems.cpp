// Label documents in plain form, which are read without a DOM but with the same result.

#include "core/xmlfile.h"
#include "src/format/itemlist.h"
#include "src/format/plainitems.h"
#include "support/project.h"

#include <QTest>

#include <random>

using Support::Describe_Label;
using Support::Item_Element;
using Support::Item_List;

namespace {

const QByteArray start = Item_List().replace("/>", ">").replace("</Quillet_Data>", "");

QStringList Described(const std::vector<TDataItem>& items)
{
    QStringList labels;
    for (const TDataItem& item : items)
        labels += Describe_Label(item);
    return labels;
}

/// The labels of a document as the DOM has them: a comment is not plain.
QStringList Read_With_Dom(const QByteArray& document)
{
    std::vector<TDataItem> items;
    ItemList::Read(document + "<!-- -->",
                   [&items](const TDataItem& item) { items.push_back(item); });
    return Described(items);
}

} // namespace

class TestPlainItems : public QObject
{
    Q_OBJECT

private slots:
    void documents_that_the_program_writes_are_plain_data();
    void documents_that_the_program_writes_are_plain();
    void other_documents_are_not_plain_data();
    void other_documents_are_not_plain();
    void changed_documents_are_read_as_with_a_dom();
};

void TestPlainItems::documents_that_the_program_writes_are_plain_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("without text") << QString();
    QTest::newRow("ASCII") << "Pump 2 (left), 50 % > 4";
    QTest::newRow("blanks at its ends") << "  a  ";
    QTest::newRow("other letters") << QString::fromUtf8("Gr\xc3\xb6\xc3\x9f"
                                                        "e \xf0\x9f\x98\x80");
    QTest::newRow("long") << QString(100'000, 'x');
}

void TestPlainItems::documents_that_the_program_writes_are_plain()
{
    QFETCH(const QString, text);
    const QByteArray document =
        ItemList::Write({{5, -7, text, 4, QPointF(-1.5, 1e7), false}, {6, 8, text, 0, {}, true}});
    const auto items = PlainItems::Read(document, start);
    QVERIFY(items);
    QCOMPARE(items->size(), std::size_t(2));
    QCOMPARE(items->front().text, text);
    QCOMPARE(Described(*items), Read_With_Dom(document));
}

void TestPlainItems::other_documents_are_not_plain_data()
{
    QTest::addColumn<QByteArray>("document");
    const auto with_text = [](const QByteArray& text) {
        return Item_List(Item_Element("5", "7", text, "1", "10.00,20.00"));
    };
    QTest::newRow("no document") << QByteArray();
    QTest::newRow("a reference") << with_text("a &amp; b");
    QTest::newRow("a line break") << with_text("a\nb");
    QTest::newRow("a control character") << with_text("a\001b");
    QTest::newRow("only blanks") << with_text("  ");
    QTest::newRow("the end of a CDATA section") << with_text("a]]>");
    QTest::newRow("not UTF-8") << with_text("a\xff");
    QTest::newRow("an attribute of the root") << Item_List("", " Page_Name=\"a\"");
    QTest::newRow("an element in a text") << with_text("a<b/>");
    QTest::newRow("no value") << Item_List(Item_Element("5", "", "", "1", "10.00,20.00"));
    QTest::newRow("three coordinates") << Item_List(Item_Element("5", "7", "", "1", "1,2,3"));
    QTest::newRow("something after the root") << with_text("a") + "x";
    QTest::newRow("cut off") << with_text("a").chopped(1);
}

void TestPlainItems::other_documents_are_not_plain()
{
    QFETCH(const QByteArray, document);
    QVERIFY(!PlainItems::Read(document, start));
}

void TestPlainItems::changed_documents_are_read_as_with_a_dom()
{
    const QByteArray original = Item_List(Item_Element("5", "7", "one + two", "1", "10.00,20.00") +
                                          Item_Element("-6", "8", "", "2", "-1.50,.5") +
                                          Item_Element("7", "9",
                                                       "Gr\xc3\xb6\xc3\x9f"
                                                       "e",
                                                       "4", "0.00,0.00"));
    const QList<QByteArray> pieces{
        "&amp;", "]]>",  "\r",           "\n",       " ",    "\t",  "<Text/>",
        "&",     "\001", "\xff",         "\xc3",     ">",    "1e3", "99999999999",
        "-",     "+",    "\xef\xbb\xbf", "\xc2\xa0", "<Id>", ",",   "x"};
    std::mt19937 random(20240229);
    const auto below = [&random](int limit) {
        return static_cast<int>(random() % unsigned(limit));
    };
    int plain = 0;
    for (int round = 0; round < 50'000; ++round) {
        QByteArray document = original;
        for (int change = 1 + below(2); change > 0; --change)
            document.replace(below(document.size()), below(3), pieces[below(pieces.size())]);
        const auto items = PlainItems::Read(document, start);
        if (!items)
            continue;
        ++plain;
        QStringList expected;
        try {
            expected = Read_With_Dom(document);
        } catch (const TXmlFileException&) {
            expected = QStringList("an error");
        }
        QVERIFY2(Described(*items) == expected, document.constData());
    }
    QVERIFY2(plain > 500, qPrintable(QString::number(plain)));
}

QTEST_MAIN(TestPlainItems)
#include "test_plainitems.moc"
