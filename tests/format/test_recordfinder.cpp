// Page records found in damaged project files.

#include "support/project.h"
#include "support/support.h"

#include "src/format/recordfinder.h"

#include <QTest>

using Support::Field;
using Support::Item_List;
using Support::Number;
using Support::Page_Record;

namespace {

constexpr int integer_size = 4;
const QByteArray negative = Number(0xffffffff);
const QByteArray png = "\x89PNG\r\n\x1a\n and more";

/// A field of a record as "begin+length", or "lost".
QString Describe(const std::optional<TFileField>& field)
{
    return field ? QStringLiteral("%1+%2").arg(field->begin).arg(field->length)
                 : QStringLiteral("lost");
}

QString Describe(const TPageRecord& record)
{
    return QStringLiteral("%1 | %2 | %3 | %4..%5")
        .arg(Describe(record.name), Describe(record.image), Describe(record.items))
        .arg(record.begin)
        .arg(record.end);
}

/// A record whose fields follow each other without damage.
QString Sound(qint64 begin, const QByteArray& name, const QByteArray& image,
              const QByteArray& items)
{
    TPageRecord record;
    record.begin = begin;
    record.name = TFileField{begin + integer_size, name.size()};
    record.image = TFileField{record.name->End() + integer_size, image.size()};
    record.items = TFileField{record.image->End() + integer_size, items.size()};
    record.end = record.items->End();
    return Describe(record);
}

} // namespace

class TestRecordFinder : public QObject
{
    Q_OBJECT

private slots:
    void an_integer_must_be_complete()
    {
        const TRecordFinder finder("x" + Number(7));
        QCOMPARE(finder.Size(), qint64(5));
        QCOMPARE(finder.Integer_At(1).value(), 7);
        QVERIFY(!finder.Integer_At(2));
        QVERIFY(!finder.Integer_At(-1));
        QVERIFY(!finder.Integer_At(100));
    }

    void a_field_lies_within_the_file()
    {
        const TRecordFinder finder("x" + Field("abc"));
        QCOMPARE(Describe(finder.Field_At(1)), QStringLiteral("5+3"));
        QCOMPARE(finder.Field_At(1)->Length_Offset(), qint64(1));
        QCOMPARE(finder.Field_At(1)->End(), qint64(8));
        QVERIFY(!TRecordFinder(Number(4) + "abc").Field_At(0));
        QVERIFY(!TRecordFinder(negative + "abc").Field_At(0));
        QVERIFY(TRecordFinder(Number(0)).Field_At(0));
    }

    void a_record_with_sound_lengths_is_found_unchanged_data()
    {
        QTest::addColumn<QByteArray>("image");
        QTest::addColumn<QByteArray>("items");
        QTest::newRow("image and labels") << png << Item_List();
        QTest::newRow("no image") << QByteArray() << Item_List();
        QTest::newRow("labels lost") << png << QByteArray();
        QTest::newRow("no document") << png << QByteArray("abc");
    }
    void a_record_with_sound_lengths_is_found_unchanged()
    {
        QFETCH(const QByteArray, image);
        QFETCH(const QByteArray, items);
        const QByteArray before = "before";
        const TRecordFinder finder(before + Page_Record("name", image, items));
        const TPageRecord record = finder.Find(before.size());
        QCOMPARE(Describe(record), Sound(before.size(), "name", image, items));
        QVERIFY(record.is_end_sure);
    }

    void the_end_and_the_beginning_of_a_record_are_boundaries()
    {
        const QByteArray labels = Page_Record("a", "", Item_List());
        const QByteArray picture = Page_Record("a", png, "");
        QVERIFY(TRecordFinder(labels).Is_Boundary(0));
        QVERIFY(TRecordFinder(labels).Is_Boundary(labels.size()));
        QVERIFY(!TRecordFinder(labels).Is_Boundary(1));
        QVERIFY(TRecordFinder(picture).Is_Boundary(0));
        QVERIFY(!TRecordFinder(Page_Record("a", "", "")).Is_Boundary(0));
        QVERIFY(!TRecordFinder(Page_Record("a", "junk", "")).Is_Boundary(0));
        QVERIFY(!TRecordFinder(Page_Record("a", "", "") + "<").Is_Boundary(0));
    }

    void a_damaged_name_length_is_derived_from_the_image()
    {
        const QByteArray name = "name";
        const QByteArray file = negative + name + Field(png) + Field(Item_List());
        QCOMPARE(Describe(TRecordFinder(file).Find(0)), Sound(0, name, png, Item_List()));
        QCOMPARE(Describe(TRecordFinder("before" + file).Find(6)),
                 Sound(6, name, png, Item_List()));
    }

    void without_a_later_document_the_lengths_are_right()
    {
        const QByteArray file = Page_Record("name", png, "abc") + "trailing";
        QCOMPARE(Describe(TRecordFinder(file).Find(0)), Sound(0, "name", png, "abc"));
    }

    void a_document_is_found_at_the_offset_of_its_root()
    {
        const QByteArray file = "before" + Item_List();
        const int root = file.indexOf("<Quillet_Data");
        const TRecordFinder finder(file);
        QVERIFY(finder.Has_Record_After(root));
        QVERIFY(!finder.Has_Record_After(root + 1));
        QCOMPARE(Describe(finder.Find_After(root).items),
                 QStringLiteral("%1+%2").arg(root).arg(file.size() - root));
    }

    void a_name_with_a_damaged_length_has_at_most_1024_bytes_data()
    {
        QTest::addColumn<int>("length");
        QTest::addColumn<bool>("is_found");
        QTest::newRow("1,024 bytes") << 1024 << true;
        QTest::newRow("1,025 bytes") << 1025 << false;
    }
    void a_name_with_a_damaged_length_has_at_most_1024_bytes()
    {
        QFETCH(const int, length);
        QFETCH(const bool, is_found);
        const QByteArray name(length, 'n');
        const QByteArray file = negative + name + Field(png) + Field(Item_List());
        const TPageRecord record = TRecordFinder(file).Find(0);
        QCOMPARE(Describe(record.name),
                 is_found ? QStringLiteral("4+%1").arg(length) : QStringLiteral("lost"));
        QCOMPARE(record.image->length, qint64(png.size()));
    }

    void a_name_is_found_within_1024_bytes_before_the_image_data()
    {
        QTest::addColumn<int>("length");
        QTest::addColumn<bool>("is_found");
        QTest::newRow("empty") << 0 << true;
        QTest::newRow("1,024 bytes") << 1024 << true;
        QTest::newRow("1,025 bytes") << 1025 << false;
    }
    void a_name_is_found_within_1024_bytes_before_the_image()
    {
        QFETCH(const int, length);
        QFETCH(const bool, is_found);
        const QByteArray junk = "junk before the record";
        const QByteArray name(length, 'n');
        const TRecordFinder finder(junk + Page_Record(name, png, Item_List()));
        const TPageRecord record = finder.Find_After(0);
        QCOMPARE(record.name.has_value(), is_found);
        if (is_found)
            QCOMPARE(Describe(record), Sound(junk.size(), name, png, Item_List()));
    }

    void a_declaration_belongs_to_a_root_up_to_128_bytes_after_it_data()
    {
        QTest::addColumn<int>("distance");
        QTest::addColumn<bool>("belongs");
        QTest::newRow("128 bytes") << 128 << true;
        QTest::newRow("129 bytes") << 129 << false;
    }
    void a_declaration_belongs_to_a_root_up_to_128_bytes_after_it()
    {
        QFETCH(const int, distance);
        QFETCH(const bool, belongs);
        const QByteArray declaration = QByteArray("<?xml").leftJustified(distance, ' ');
        const QByteArray junk(200, 'x');
        const TPageRecord record =
            TRecordFinder(junk + declaration + "<Quillet_Data></Quillet_Data>").Find_After(0);
        QCOMPARE(record.items->begin, qint64(junk.size() + (belongs ? 0 : distance)));
    }

    void an_empty_root_is_closed_by_a_tag_of_up_to_16384_bytes_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<bool>("is_closed");
        QTest::newRow("16384 bytes") << 16384 << true;
        QTest::newRow("16385 bytes") << 16385 << false;
    }
    void an_empty_root_is_closed_by_a_tag_of_up_to_16384_bytes()
    {
        QFETCH(const int, size);
        QFETCH(const bool, is_closed);
        const QByteArray root = QByteArray("<Quillet_Data").leftJustified(size - 2, ' ') + "/>";
        const TPageRecord record = TRecordFinder(negative + root + "trailing bytes").Find_After(0);
        QCOMPARE(record.items->begin, qint64(integer_size));
        QCOMPARE(record.end,
                 is_closed ? qint64(integer_size + size) : qint64(integer_size + size + 14));
    }

    void trailing_bytes_belong_to_no_record()
    {
        const QByteArray page = Page_Record("a", png, Item_List());
        for (const QByteArray& rest : {QByteArray("x"), QByteArray(500, '\xff')}) {
            const TRecordFinder finder(page + rest);
            QCOMPARE(Describe(finder.Find(0)), Sound(0, "a", png, Item_List()));
            QVERIFY(!finder.Is_Boundary(page.size()));
            QVERIFY(!finder.Has_Record_After(page.size()));
        }
    }

    void a_label_document_ends_where_its_root_is_closed()
    {
        const QByteArray items = Item_List("x");
        const QByteArray next = Page_Record("b", "", Item_List());
        for (const int error : {-3, 3}) {
            const QByteArray file = Field("a") + Field(png) +
                                    Number(static_cast<quint32>(items.size() + error)) + items +
                                    next;
            const TPageRecord record = TRecordFinder(file).Find(0);
            QCOMPARE(Describe(record), Sound(0, "a", png, items));
            QVERIFY(record.is_end_sure);
        }
    }

    void a_lost_page_ends_where_the_next_record_begins()
    {
        const QByteArray lost(200, '\xff');
        const TPageRecord record = TRecordFinder(lost + Page_Record("b", png, Item_List())).Find(0);
        QCOMPARE(Describe(record), QStringLiteral("lost | lost | lost | 0..200"));
    }

    void without_another_label_document_the_rest_of_the_file_is_the_record()
    {
        const QByteArray file = Field("a") + Number(100) + png;
        QCOMPARE(Describe(TRecordFinder(file).Find(0)),
                 QStringLiteral("4+1 | 9+%1 | lost | 0..%2").arg(png.size()).arg(file.size()));
    }
};

QTEST_MAIN(TestRecordFinder)
#include "test_recordfinder.moc"
