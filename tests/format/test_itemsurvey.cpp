// Labels and defects found in label documents, damaged or not.

#include "support/project.h"
#include "support/support.h"

#include "src/format/itemsurvey.h"

#include <QTest>

using Support::Item_Element;
using Support::Item_List;

namespace {

/// A label with an id.
QByteArray Item(int id)
{
    return Item_Element(QByteArray::number(id), "7", "t", "2", "1,2");
}

struct TResult
{
    QStringList labels;
    QStringList defects; ///< each with its offset
};

TResult Survey(const QByteArray& document)
{
    TResult result;
    const TItemSurvey survey = ItemSurvey::Survey(document);
    for (const TDataItem& item : survey.items)
        result.labels += Support::Describe_Label(item);
    for (const TProjectDefect& defect : survey.defects)
        result.defects += QStringLiteral("%1: %2").arg(defect.offset).arg(defect.what);
    return result;
}

QString Label_Line(int id)
{
    return QStringLiteral("label %1 7 't' 2 1,2").arg(id);
}

/// Offset of the root's content.
int Begin()
{
    return Item_List("x").lastIndexOf('x');
}

QString At(int offset, const QString& what)
{
    return QStringLiteral("%1: %2").arg(offset).arg(what);
}

} // namespace

class TestItemSurvey : public QObject
{
    Q_OBJECT

private slots:
    void a_sound_document_has_its_labels_and_no_defects()
    {
        const TResult result = Survey(Item_List(Item(1) + Item(2)));
        QCOMPARE(result.labels, QStringList({Label_Line(1), Label_Line(2)}));
        QCOMPARE(result.defects, QStringList());
    }

    void an_unknown_border_is_harmless()
    {
        const QByteArray bad_border = Item_Element("1", "7", "t", "3", "1,2");
        const QByteArray bad_value = Item_Element("2", "x", "t", "2", "1,2");
        const TItemSurvey survey = ItemSurvey::Survey(Item_List(bad_border + bad_value));
        QCOMPARE(survey.defects.size(), 2U);
        QVERIFY(survey.defects[0].is_harmless);
        QVERIFY(!survey.defects[1].is_harmless);
    }

    void an_empty_document_has_no_labels_and_no_defects()
    {
        const TResult result = Survey(Item_List());
        QCOMPARE(result.labels, QStringList());
        QCOMPARE(result.defects, QStringList());
    }

    void each_repeated_id_is_replaced_by_a_free_one()
    {
        const int size = Item(5).size();
        const TResult result = Survey(Item_List(Item(5) + Item(5) + Item(0) + Item(5)));
        QCOMPARE(result.labels,
                 QStringList({Label_Line(5), Label_Line(1), Label_Line(0), Label_Line(2)}));
        const QString repeated = "label %1: an earlier label has the same Id 5";
        QCOMPARE(result.defects, QStringList({At(Begin() + size, repeated.arg(2)),
                                              At(Begin() + 3 * size, repeated.arg(4))}));
    }

    void an_empty_element_is_reported_as_an_incomplete_label()
    {
        for (const QByteArray& empty : {QByteArray("<Item/>"), QByteArray("<Item />")}) {
            const TResult result = Survey(Item_List(Item(1) + empty + Item(2)));
            QCOMPARE(result.labels, QStringList({Label_Line(1), Label_Line(2)}));
            QCOMPARE(result.defects,
                     QStringList{At(Begin() + Item(1).size(),
                                    "label 2: ERR: Node 'Id' is missing from node 'Item' and not "
                                    "optional.")});
        }
    }

    void other_elements_are_ignored()
    {
        const TResult result = Survey(Item_List("<Items/><Item_Size/>" + Item(1) + "<item/>"));
        QCOMPARE(result.labels, QStringList{Label_Line(1)});
        QCOMPARE(result.defects, QStringList());
    }

    void a_label_in_a_comment_is_ignored()
    {
        const TResult result = Survey(Item_List("<!-- " + Item(9) + " -->" + Item(1)));
        QCOMPARE(result.labels, QStringList{Label_Line(1)});
        QCOMPARE(result.defects, QStringList());
    }

    void after_a_comment_with_a_label_defects_are_reported_at_the_beginning_of_the_document()
    {
        const TResult result = Survey(Item_List("<!-- <Item> -->" + Item(1) + "<Item/>"));
        QCOMPARE(result.labels, QStringList{Label_Line(1)});
        QCOMPARE(result.defects,
                 QStringList{At(0, "label 2: ERR: Node 'Id' is missing from node 'Item' and not "
                                   "optional.")});
    }

    void labels_of_a_truncated_document_are_read_up_to_its_end()
    {
        const QByteArray whole = Item_List(Item(1) + Item(2));
        const TResult result = Survey(whole.left(whole.indexOf("</Item>", Begin() + 120)));
        QCOMPARE(result.labels, QStringList{Label_Line(1)});
        QCOMPARE(result.defects.size(), 2);
        QVERIFY(result.defects[0].startsWith("0: label document, line 1, column "));
        QVERIFY(result.defects[1].startsWith(QString::number(Begin() + Item(1).size()) +
                                             ": label 2: "));
    }

    void an_incomplete_label_of_a_damaged_document_is_reported()
    {
        const TResult result = Survey(Item_List("<" + Item(1) + "<Item><Id>2</Id></Item>"));
        QCOMPARE(result.labels, QStringList{Label_Line(1)});
        QVERIFY(result.defects.last().contains("label 2: "));
    }

    void coordinates_that_are_not_finite_become_0()
    {
        const TResult result = Survey(Item_List(Item_Element("1", "7", "t", "2", "nan,inf")));
        QCOMPARE(result.labels, QStringList{"label 1 7 't' 2 0,0"});
        QCOMPARE(result.defects.size(), 1);
    }

    void a_declared_encoding_other_than_utf_8_is_accepted()
    {
        QByteArray document = Item_List(Item_Element("1", "7", "Ri\xdf", "2", "1,2"));
        QCOMPARE(Survey(document).defects.size(), 1);
        document.replace("utf-8", "iso-8859-1");
        const TResult result = Survey(document);
        QCOMPARE(result.defects, QStringList());
        QCOMPARE(result.labels, QStringList{QString::fromUtf8("label 1 7 'Ri\xc3\x9f' 2 1,2")});
    }
};

QTEST_MAIN(TestItemSurvey)
#include "test_itemsurvey.moc"
