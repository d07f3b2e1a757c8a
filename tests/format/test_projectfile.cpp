// The project container, field by field, written and read.

#include "core/safefile.h"
#include "src/format/document.h"
#include "src/format/projectfile.h"
#include "src/model/pixelstore.h"
#include "support/project.h"
#include "support/support.h"

#include <QBuffer>
#include <QDir>
#include <QIODevice>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

namespace {

using Support::Field;
using Support::Header;
using Support::Item_Element;
using Support::Item_List;
using Support::Label;
using Support::Number;
using Support::Page_Record;

QByteArray Bytes_Of(const TProjectWriter& writer)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    return writer.Write_To(&buffer) ? buffer.data() : QByteArray("not written");
}

QString Write(const TDocument& document, TProjectWriter* writer)
{
    return ProjectFile::Write(document.appearance, document.pages, document.data, nullptr, writer);
}

/// A picture in a format other than PNG.
QByteArray Bmp(const QImage& image)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "BMP");
    return buffer.data();
}

/// A device that is full after some bytes.
class TFullDevice : public QIODevice
{
public:
    explicit TFullDevice(qint64 room)
        : d_room(room)
    {
        open(QIODevice::WriteOnly | QIODevice::Unbuffered);
    }

    qint64 Calls() const { return d_calls; }

protected:
    qint64 readData(char*, qint64) override { return -1; }
    qint64 writeData(const char*, qint64 size) override
    {
        ++d_calls;
        const qint64 taken = qMin(size, d_room);
        d_room -= taken;
        return taken;
    }

private:
    qint64 d_room;
    qint64 d_calls = 0;
};

const QByteArray magic = Support::Magic();

/// Which operation of the reader reads a field.
enum TFieldKind { Text_Field, Bytes_Field, Image_Field };

QByteArray Read_Field(TProjectReader* reader, TFieldKind kind)
{
    switch (kind) {
    case Text_Field:
        return reader->Read_Text().toLatin1();
    case Bytes_Field:
        return reader->Read_Bytes();
    case Image_Field:
        break;
    }
    return reader->Read_Image().Source_Bytes();
}

/// Reads a document field by field and describes it.
QByteArray Describe(const QByteArray& bytes)
{
    TProjectReader reader(bytes);
    if (!reader.Read_Magic())
        return "no project";
    QByteArray result = QByteArray::number(reader.Read_Integer());
    for (int text = 0; text < 3; ++text)
        result += '|' + reader.Read_Text().toLatin1();
    const int count = reader.Read_Integer();
    for (int page = 0; page < count && page < 3 && reader.Is_Valid(); ++page) {
        result += '|' + reader.Read_Text().toLatin1();
        const TPageImage image = reader.Read_Image();
        result += '|' + image.Png();
        result += '|' + reader.Read_Bytes();
    }
    return reader.Is_Valid() ? result : "invalid";
}

QByteArray Small_Document()
{
    return magic + Number(32) + Field("#fa0832") + Field("one") + Field("") + Number(1) +
           Field("page") + Field("picture") + Field("<items/>");
}

const QString integer_bound =
    QStringLiteral("(index + sizeof(int) -1) < static_cast<unsigned int>(array.size())");

} // namespace

Q_DECLARE_METATYPE(TFieldKind)

class TestProjectFile : public QObject
{
    Q_OBJECT

private:
    static void Add_Field_Kinds()
    {
        QTest::addColumn<TFieldKind>("kind");
        QTest::newRow("text") << Text_Field;
        QTest::newRow("bytes") << Bytes_Field;
        QTest::newRow("image") << Image_Field;
    }

private slots:
    void a_document_equals_one_assembled_by_hand()
    {
        const QImage picture = Support::Picture(30, 20);
        TProjectWriter writer;
        writer.Write_Integer(32);
        writer.Write_Text(QStringLiteral("#fa0832"));
        writer.Write_Text(QStringLiteral("Stra\u00dfe"));
        writer.Write_Text(QString());
        writer.Write_Integer(2);
        writer.Write_Text(QStringLiteral("First"));
        writer.Write_Image(picture);
        writer.Write_Bytes("<a/>");
        writer.Write_Text(QStringLiteral("Second"));
        writer.Write_Image(TPageImage());
        writer.Write_Bytes("<b/>");

        const QByteArray expected = magic + Number(32) + Field("#fa0832") +
                                    Field("Stra\xdf"
                                          "e") +
                                    Field("") + Number(2) + Field("First") +
                                    Field(Support::Png(picture)) + Field("<a/>") + Field("Second") +
                                    Field("") + Field("<b/>");
        QCOMPARE(Bytes_Of(writer), expected);
        QCOMPARE(writer.Size(), qint64(expected.size()));
    }

    void a_new_writer_contains_the_magic_number()
    {
        const TProjectWriter writer;
        QCOMPARE(Bytes_Of(writer), magic);
        QCOMPARE(writer.Size(), qint64(4));
    }

    void integers_are_written_lowest_byte_first_data()
    {
        QTest::addColumn<int>("value");
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("0") << 0 << QByteArray::fromHex("00000000");
        QTest::newRow("90210") << 90210 << QByteArray::fromHex("62600100");
        QTest::newRow("-1") << -1 << QByteArray::fromHex("ffffffff");
        QTest::newRow("largest") << 2147483647 << QByteArray::fromHex("ffffff7f");
    }

    void integers_are_written_lowest_byte_first()
    {
        QFETCH(const int, value);
        QFETCH(const QByteArray, bytes);
        TProjectWriter writer;
        writer.Write_Integer(value);
        QCOMPARE(Bytes_Of(writer), magic + bytes);
        TProjectReader reader(bytes);
        QCOMPARE(reader.Read_Integer(), value);
        QVERIFY(reader.Is_Valid());
    }

    void a_text_is_written_in_latin_1_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("null") << QString() << QByteArray();
        QTest::newRow("ascii") << QStringLiteral("Cover") << QByteArray("Cover");
        QTest::newRow("latin 1") << QStringLiteral("\u00e9\u00ff") << QByteArray("\xe9\xff");
        QTest::newRow("other scripts") << QStringLiteral("a\u0416\u4e2db")
                                       << QByteArray("a?"
                                                     "?b");
        QTest::newRow("beyond the first plane") << QString::fromUtf8("\xf0\x9f\x98\x80")
                                                << QByteArray("?"
                                                              "?");
        QTest::newRow("zero character")
            << QString(QChar(0)) + QLatin1Char('x') << QByteArray("\0x", 2);
    }

    void a_text_is_written_in_latin_1()
    {
        QFETCH(const QString, text);
        QFETCH(const QByteArray, bytes);
        TProjectWriter writer;
        writer.Write_Text(text);
        QCOMPARE(Bytes_Of(writer), magic + Field(bytes));
        QCOMPARE(bytes.size(), text.size());
    }

    void an_image_is_written_as_png_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QByteArray>("expected");
        const QImage picture = Support::Picture(12, 9);
        const QByteArray png = Support::Png(picture);
        QTest::newRow("png") << png << png;
        QTest::newRow("another format") << Bmp(picture) << png;
        QTest::newRow("no image") << QByteArray("junk") << QByteArray("junk");
        QTest::newRow("nothing") << QByteArray() << QByteArray();
    }

    void an_image_is_written_as_png()
    {
        QFETCH(const QByteArray, bytes);
        QFETCH(const QByteArray, expected);
        TProjectWriter writer;
        writer.Write_Image(TPageImage::From_Bytes(bytes));
        QCOMPARE(Bytes_Of(writer), magic + Field(expected));
    }

    void the_writer_keeps_the_bytes_of_an_image_alive()
    {
        const QByteArray content = Field(Support::Png(Support::Picture(60, 40)));
        TProjectWriter writer;
        {
            // A deep copy that is not shared.
            QByteArray file(content.constData(), content.size());
            TProjectReader reader(file);
            writer.Write_Image(reader.Read_Image());
        }
        QCOMPARE(Bytes_Of(writer), magic + content);
    }

    void a_large_field_is_not_copied()
    {
        const QByteArray bytes(1000000, 'x');
        TProjectWriter writer;
        writer.Write_Bytes(bytes);
        QVERIFY(!bytes.isDetached());
        QCOMPARE(writer.Size(), qint64(1000008));
    }

    void writing_stops_when_the_device_is_full_data()
    {
        QTest::addColumn<int>("room");
        for (const int room : {0, 3, 4, 7, 8, 10, 16})
            QTest::addRow("%d bytes", room) << room;
    }

    void writing_stops_when_the_device_is_full()
    {
        QFETCH(const int, room);
        TProjectWriter writer;
        writer.Write_Bytes("12345");
        writer.Write_Integer(1);
        QCOMPARE(writer.Size(), qint64(17));
        TFullDevice device(room);
        QVERIFY(!writer.Write_To(&device));
        QVERIFY(device.Calls() <= 4);
        TFullDevice large_enough(17);
        QVERIFY(writer.Write_To(&large_enough));
    }

    void writing_to_a_closed_device_fails()
    {
        QBuffer buffer;
        QTest::ignoreMessage(QtWarningMsg, "QIODevice::write (QBuffer): device not open");
        QVERIFY(!TProjectWriter().Write_To(&buffer));
    }

    void the_beginning_of_the_file_is_checked_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("expected");
        QTest::newRow("empty") << QByteArray() << false;
        QTest::newRow("magic alone") << magic << false;
        QTest::newRow("7 bytes") << magic + "abc" << false;
        QTest::newRow("8 bytes") << magic + Number(32) << true;
        QTest::newRow("longer") << magic + "123456789" << true;
        QTest::newRow("other magic") << Number(90211) + Number(32) << false;
        QTest::newRow("highest byte first") << QByteArray::fromHex("0001606200000020") << false;
        QTest::newRow("highest bit") << QByteArray::fromHex("6260018020000000") << false;
    }

    void the_beginning_of_the_file_is_checked()
    {
        QFETCH(const QByteArray, bytes);
        QFETCH(const bool, expected);
        QCOMPARE(TProjectReader(bytes).Read_Magic(), expected);
    }

    void fields_are_read_one_after_the_other()
    {
        const QImage picture = Support::Picture(30, 20);
        TProjectReader reader(magic + Number(48) + Field("#00ff00") + Field("") + Number(0) +
                              Field(Support::Png(picture)) + Field("<b/>") + Number(7));
        QVERIFY(reader.Read_Magic());
        QCOMPARE(reader.Read_Integer(), 48);
        QCOMPARE(reader.Read_Text(), QStringLiteral("#00ff00"));
        QCOMPARE(reader.Read_Text(), QString());
        QCOMPARE(reader.Read_Integer(), 0);
        const TPageImage image = reader.Read_Image();
        QCOMPARE(QImage(image), picture);
        QCOMPARE(image.Png(), Support::Png(picture));
        QCOMPARE(reader.Read_Bytes(), QByteArray("<b/>"));
        QCOMPARE(reader.Read_Integer(), 7);
        QVERIFY(reader.Is_Valid());
    }

    void an_image_shares_the_bytes_of_the_file_and_is_not_decoded()
    {
        const QByteArray png = Support::Png(Support::Picture(30, 20));
        const QByteArray file = Field("x") + Field(png);
        TProjectReader reader(file);
        reader.Read_Bytes();
        const TPageImage image = reader.Read_Image();
        QCOMPARE(static_cast<const void*>(image.Png().constData()),
                 static_cast<const void*>(file.constData() + 9));
        QCOMPARE(image.Png(), png);
        QCOMPARE(TPixelStore::Shared().Bytes(), qint64(0));
    }

    void a_text_is_cut_at_its_first_zero_byte_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("text");
        QTest::newRow("none") << QByteArray("ab\xe9") << QStringLiteral("ab\u00e9");
        QTest::newRow("inside") << QByteArray("ab\0cd\0e", 7) << QStringLiteral("ab");
        QTest::newRow("first") << QByteArray("\0ab", 3) << QString();
        QTest::newRow("last") << QByteArray("ab\0", 3) << QStringLiteral("ab");
    }

    void a_text_is_cut_at_its_first_zero_byte()
    {
        QFETCH(const QByteArray, bytes);
        QFETCH(const QString, text);
        TProjectReader reader(Field(bytes) + Number(5));
        QCOMPARE(reader.Read_Text(), text);
        QCOMPARE(reader.Read_Integer(), 5);
    }

    void bytes_keep_their_zero_bytes()
    {
        const QByteArray bytes("\0a\0", 3);
        TProjectReader reader(Field(bytes));
        QCOMPARE(reader.Read_Bytes(), bytes);
    }

    void a_length_past_the_end_is_clipped_data() { Add_Field_Kinds(); }

    void a_length_past_the_end_is_clipped()
    {
        QFETCH(const TFieldKind, kind);
        for (const quint32 length : {4u, 100u, 0x7fffffffu}) {
            TProjectReader reader(Number(length) + "abc");
            QCOMPARE(Read_Field(&reader, kind), QByteArray("abc"));
            QVERIFY(reader.Is_Valid());
            QCOMPARE(reader.Last_Field().offset, qint64{4});
            QCOMPARE(reader.Last_Field().length, qint64{3});
        }
        TProjectReader at_the_end(Number(12));
        QVERIFY(Read_Field(&at_the_end, kind).isEmpty());
        QVERIFY(at_the_end.Is_Valid());
    }

    void reading_after_a_clipped_field_fails_an_assertion_data() { Add_Field_Kinds(); }

    void reading_after_a_clipped_field_fails_an_assertion()
    {
        QFETCH(const TFieldKind, kind);
        for (const quint32 length : {4u, 0x7fffffffu}) {
            const QString difference = Support::Assertion_Failure(
                [kind, length] {
                    TProjectReader reader(Number(length) + "abc");
                    Read_Field(&reader, kind);
                    Read_Field(&reader, kind);
                },
                QStringLiteral("core/conversion"), integer_bound,
                QStringLiteral("static int Conversion::Integer(unsigned int, const QByteArray&)"));
            QVERIFY2(difference.isEmpty(), qPrintable(difference));
        }
    }

    void a_negative_length_makes_the_reader_invalid_data() { Add_Field_Kinds(); }

    void a_negative_length_makes_the_reader_invalid()
    {
        QFETCH(const TFieldKind, kind);
        for (const quint32 length : {0xffffffffu, 0x80000000u, 0xfffffffcu}) {
            TProjectReader reader(Number(length) + Field("abc") + Number(5));
            QVERIFY(reader.Is_Valid());
            QVERIFY(Read_Field(&reader, kind).isEmpty());
            QVERIFY(!reader.Is_Valid());
            // More often than there are fields: the reader must not read past the end.
            for (int count = 0; count < 10; ++count) {
                QVERIFY(reader.Read_Text().isEmpty());
                QVERIFY(reader.Read_Bytes().isEmpty());
                QVERIFY(reader.Read_Image().isNull());
                QCOMPARE(reader.Read_Integer(), 0);
            }
            QVERIFY(!reader.Is_Valid());
        }
    }

    void a_negative_integer_that_is_not_a_length_is_valid()
    {
        TProjectReader reader(Number(0xfffffffe));
        QCOMPARE(reader.Read_Integer(), -2);
        QVERIFY(reader.Is_Valid());
    }

    void reading_the_colour_of_a_file_of_8_bytes_fails_an_assertion()
    {
        const QString difference = Support::Assertion_Failure(
            [] {
                TProjectReader reader(magic + Number(32));
                if (reader.Read_Magic() && reader.Read_Integer() == 32)
                    reader.Read_Text();
            },
            QStringLiteral("core/conversion"), integer_bound,
            QStringLiteral("static int Conversion::Integer(unsigned int, const QByteArray&)"));
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
    }

    void a_complete_file_is_read_field_by_field()
    {
        QCOMPARE(Describe(Small_Document()), QByteArray("32|#fa0832|one||page|picture|<items/>"));
    }

    // A cut within the last field shortens it; any other cut fails the assertion on integers.
    void every_truncated_file_is_clipped_or_fails_an_assertion()
    {
        const QByteArray whole = Small_Document();
        const int last_field = whole.size() - QByteArray("<items/>").size();
        for (int size = 0; size < whole.size(); ++size) {
            const QByteArray bytes = whole.left(size);
            if (size < 8) {
                QCOMPARE(Describe(bytes), QByteArray("no project"));
            } else if (size >= last_field) {
                QCOMPARE(Describe(bytes), "32|#fa0832|one||page|picture|" +
                                              whole.mid(last_field, size - last_field));
            } else {
                const QString difference =
                    Support::Assertion_Failure([&bytes] { Describe(bytes); },
                                               QStringLiteral("core/conversion"), integer_bound);
                QVERIFY2(difference.isEmpty(),
                         qPrintable(QString::number(size) + QLatin1Char(' ') + difference));
            }
        }
    }

    void every_changed_byte_has_an_allowed_outcome()
    {
        const QByteArray whole = Small_Document();
        for (int offset = 0; offset < whole.size(); ++offset) {
            for (const char value : {'\0', '\x01', '\x7f', '\x80', '\xff'}) {
                QByteArray bytes = whole;
                bytes[offset] = value;
                const Support::TChildResult result = Support::Run_In_Child([&bytes] {
                    Describe(bytes);
                    return 0;
                });
                const bool is_allowed =
                    (result.exited && result.exit_code == 0) ||
                    (result.signal == SIGABRT && result.error_output.contains("core/conversion"));
                QVERIFY2(is_allowed, qPrintable(QString::number(offset) + QLatin1Char(' ') +
                                                QString::fromUtf8(result.error_output)));
            }
        }
    }

    void a_document_is_written_field_by_field()
    {
        TDocument document;
        document.appearance = {40, "#0a141e", "one", "two"};
        const QImage picture = Support::Picture(6, 4);
        document.Add_Page({"first", picture, {Label(5, 7, "Pump", 2, {1, 2.5})}});
        document.Add_Page("second", TPageImage());
        TProjectWriter writer;
        QCOMPARE(Write(document, &writer), QString());
        const QByteArray expected =
            Header(40, "#0a141e", "one", "two", 2) +
            Page_Record("first", Support::Png(picture),
                        Item_List(Item_Element("5", "7", "Pump", "2", "1.00,2.50"))) +
            Page_Record("second", QByteArray(), Item_List());
        QCOMPARE(Support::Byte_Difference(Bytes_Of(writer), expected), QString());
    }

    void pages_are_written_in_the_order_of_the_list()
    {
        TDocument document;
        document.Add_Page("a", TPageImage());
        document.Add_Page("b", TPageImage());
        std::swap(document.pages[0], document.pages[1]);
        QCOMPARE(document.Page_Ids(), QList<int>({2, 1}));
        TProjectWriter writer;
        Write(document, &writer);
        const QByteArray expected = Header(32, "#f79741", "", "", 2) +
                                    Page_Record("b", QByteArray(), Item_List()) +
                                    Page_Record("a", QByteArray(), Item_List());
        QCOMPARE(Support::Byte_Difference(Bytes_Of(writer), expected), QString());
    }

    void progress_is_reported_before_each_page_is_written()
    {
        TDocument document;
        document.Add_Page("a", TPageImage());
        document.Add_Page("b", TPageImage());
        QStringList reports;
        TProjectWriter writer;
        const auto note = [&reports](int number, int total) {
            reports += QStringLiteral("%1 of %2").arg(number).arg(total);
        };
        ProjectFile::Write({}, document.pages, document.data, note, &writer);
        QCOMPARE(reports, QStringList({"1 of 2", "2 of 2"}));
    }

    void a_text_that_cannot_be_written_is_a_fault()
    {
        const QString bad_text = QStringLiteral("a") + QChar(1) + QStringLiteral("b");
        TDocument document;
        document.Add_Page({"a", {}, {Label(5, 7, bad_text, 2, {1, 2})}});
        TProjectWriter refused;
        QVERIFY(!Write(document, &refused).isEmpty());
    }

    void images_become_png()
    {
        const QImage picture = Support::Picture(6, 4);
        TDocument document;
        document.Add_Page("a", TPageImage::From_Bytes(Bmp(picture)));
        TProjectWriter saved;
        Write(document, &saved);
        QCOMPARE(Bytes_Of(saved), Header(32, "#f79741", "", "", 1) +
                                      Page_Record("a", Support::Png(picture), Item_List()));
    }

    void pages_are_written_one_by_one()
    {
        const TPageItem page{1, TPageImage::From_Bytes("image"), {}};
        TProjectWriter together;
        TProjectWriter flushed;
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        for (int number = 0; number < 3; ++number) {
            for (TProjectWriter* const writer : {&together, &flushed})
                writer->Write_Page("a", page, TProjectWriter::TImageBytes::Source, "items");
            QVERIFY(flushed.Flush_To(&buffer));
        }
        QCOMPARE(buffer.data(), Bytes_Of(together));
        QCOMPARE(flushed.Size(), together.Size());
        buffer.close();
        flushed.Write_Integer(1);
        QVERIFY(!flushed.Flush_To(&buffer));
    }

    void a_document_is_read_as_it_was_written()
    {
        TDocument document;
        document.appearance = {40, "#0a141e", "one", "two"};
        const QImage picture = Support::Picture(6, 4);
        document.Add_Page({"first", picture, {Label(5, 7, "Pump", 2, {1, 2.5})}});
        document.Add_Page("second", TPageImage());
        TProjectWriter writer;
        Write(document, &writer);
        const TFileContent content = ProjectFile::Read(Bytes_Of(writer));
        QCOMPARE(content.fault, QString());
        QCOMPARE(content.label_size.value(), 40);
        QCOMPARE(content.color_name.value(), QStringLiteral("#0a141e"));
        QCOMPARE(content.header_1, QStringLiteral("one"));
        QCOMPARE(content.header_2, QStringLiteral("two"));
        QCOMPARE(content.pages.value().size(), std::size_t{2});
        const TFilePage& first = content.pages->front();
        QCOMPARE(first.name, QStringLiteral("first"));
        QCOMPARE(QImage(first.image), picture);
        QCOMPARE(first.items.size(), std::size_t{1});
        QCOMPARE(first.items[0].id, 5);
        QCOMPARE(first.items[0].text, QStringLiteral("Pump"));
        QCOMPARE(content.pages->back().name, QStringLiteral("second"));
        QVERIFY(content.pages->back().image.isNull());
        QVERIFY(content.pages->back().items.empty());
    }

    void places_of_pages_locate_their_images_and_labels()
    {
        TDocument document;
        document.appearance.header_1 = QStringLiteral("one");
        const QImage picture = Support::Picture(60, 40);
        document.Add_Page({"first", picture, {Label(5, 7, "Pump", 2, {1, 2.5})}, {}});
        document.Add_Page("second", TPageImage());
        document.Add_Page({"third", picture, {}, {}});
        TProjectWriter writer;
        Write(document, &writer);
        const QByteArray file = Bytes_Of(writer);
        const auto part = [&file](const TFilePart& place) {
            return file.mid(static_cast<int>(place.offset), static_cast<int>(place.length));
        };
        const QByteArray png = Support::Png(picture);
        const TFilePlaces& written = writer.Places();
        QCOMPARE(written.size(), std::size_t{3});
        QCOMPARE(part(written[0].image), png);
        QCOMPARE(part(written[0].items),
                 Item_List(Item_Element("5", "7", "Pump", "2", "1.00,2.50")));
        QCOMPARE(written[0].image_ends, png.left(32) + png.right(32));
        for (std::size_t i = 0; i < written.size(); ++i)
            QCOMPARE(written[i].image_id, document.Content(document.pages[i]).image.Id());
        // By sha1sum.
        QCOMPARE(written[2].items_digest.toHex(),
                 QByteArray("08fa37145627b43a8f35b7d0d7351bc1a2e74405"));
        QVERIFY(written[1].image.offset > 0);
        QCOMPARE(written[1].image.length, qint64{0});
        QCOMPARE(written[1].image_ends, QByteArray());
        QCOMPARE(part(written[2].image), png);
        QCOMPARE(part(written[2].items), Item_List());

        const TFileContent content = ProjectFile::Read(file);
        QCOMPARE(content.pages.value().size(), written.size());
        for (std::size_t i = 0; i < written.size(); ++i) {
            const TPagePlace& read = content.pages->at(i).place;
            QCOMPARE(read.image.offset, written[i].image.offset);
            QCOMPARE(read.image.length, written[i].image.length);
            QCOMPARE(read.image_ends, written[i].image_ends);
            QCOMPARE(read.items_digest, written[i].items_digest);
            QCOMPARE(read.items.offset, written[i].items.offset);
            QCOMPARE(read.items.length, written[i].items.length);
        }
    }

    void a_document_without_pages_is_read()
    {
        for (const quint32 count : {0u, 0xffffffffu}) {
            const TFileContent content = ProjectFile::Read(Header(32, "#fa0832", "", "", count));
            QCOMPARE(content.fault, QString());
            QVERIFY(content.pages.value().empty());
        }
    }

    void progress_is_reported_before_each_page_is_read()
    {
        QStringList reports;
        ProjectFile::Read(Header(32, "#fa0832", "", "", 2) + Page_Record("a", "", Item_List()) +
                              Page_Record("b", "", Item_List()),
                          [&reports](int number, int total) {
                              reports += QStringLiteral("%1 of %2").arg(number).arg(total);
                          });
        QCOMPARE(reports, QStringList({"1 of 2", "2 of 2"}));
    }

    void everything_before_a_fault_is_read_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("fault");
        QTest::addColumn<QString>("read");
        const QByteArray start = magic + Number(40);
        const QByteArray header = Header(40, "red", "one", "", 2);
        const QByteArray negative = Number(0xffffffff);
        const QByteArray item = Item_Element("5", "7", "", "2", "1,2");
        const QByteArray page = Page_Record("a", "", Item_List(item));
        const QString invalid = QStringLiteral("Invalid file.");
        QTest::newRow("too short") << magic + "abc" << invalid << "";
        QTest::newRow("other magic") << Number(90211) + Number(32) << invalid << "";
        QTest::newRow("colour") << start + negative << invalid << "40";
        QTest::newRow("first header line")
            << start + Field("red") + negative + Field("x") << invalid << "40 red";
        QTest::newRow("second header line")
            << start + Field("red") + Field("one") + negative << invalid << "40 red";
        QTest::newRow("name") << header + page + negative << invalid << "40 red one [a 1]";
        QTest::newRow("image") << header + page + Field("b") + negative << invalid
                               << "40 red one [a 1]";
        QTest::newRow("labels") << header + page + Field("b") + Field("") + negative << invalid
                                << "40 red one [a 1]";
        QTest::newRow("label document")
            << header + Page_Record("a", "", Item_List(item + "<Item/>")) + page
            << QStringLiteral("ERR: Node 'Id' is missing from node 'Item' and not optional.")
            << "40 red one [a 1]";
        QTest::newRow("label document of the second page")
            << header + page + Page_Record("b", "", "<Quillet_Data/>")
            << QStringLiteral("ERR: The 'File_Version' attribute is missing.")
            << "40 red one [a 1] [b 0]";
    }

    void everything_before_a_fault_is_read()
    {
        QFETCH(const QByteArray, bytes);
        const TFileContent content = ProjectFile::Read(bytes);
        QStringList read;
        if (content.label_size)
            read += QString::number(*content.label_size);
        if (content.color_name)
            read += *content.color_name;
        if (content.pages) {
            read += content.header_1;
            for (const TFilePage& page : *content.pages)
                read += QStringLiteral("[%1 %2]").arg(page.name).arg(page.items.size());
        } else {
            QCOMPARE(content.header_1 + content.header_2, QString());
        }
        QTEST(content.fault, "fault");
        QTEST(read.join(QLatin1Char(' ')), "read");
    }

    void bytes_after_the_last_page_are_not_read()
    {
        const TFileContent content =
            ProjectFile::Read(Header(32, "red", "", "", 1) + Page_Record("a", "", Item_List()) +
                              Page_Record("b", "", Item_List()) + "rest");
        QCOMPARE(content.fault, QString());
        QCOMPARE(content.pages.value().size(), std::size_t{1});
    }

    void a_field_of_negative_length_is_empty()
    {
        const QByteArray bytes = Number(0xffffffff) + "bytes";
        TProjectReader reader(bytes);
        QCOMPARE(reader.Read_Bytes(), QByteArray());
        QVERIFY(!reader.Is_Valid());
        QCOMPARE(reader.Read_Image().Source_Bytes(), QByteArray());
    }

    void a_file_is_whole_if_it_ends_with_its_last_page_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("is_whole");
        const QByteArray header = Header(32, "red", "one", "two", 2);
        const QByteArray page = Page_Record("a", "image", Item_List());
        const QByteArray whole = header + page + page;
        const auto row = [](const char* name, const QByteArray& bytes, bool is_whole) {
            QTest::newRow(name) << bytes << is_whole;
        };
        row("whole", whole, true);
        row("no pages", Header(32, "red", "", "", 0), true);
        row("empty fields", Header(32, "", "", "", 1) + Page_Record("", "", ""), true);
        row("empty file", QByteArray(), false);
        row("another magic number", Number(90211) + whole.mid(4), false);
        row("magic number alone", whole.left(4), false);
        row("no page count", Header(32, "red", "", "", 0).chopped(4), false);
        row("a page missing", header + page, false);
        row("last byte missing", whole.chopped(1), false);
        row("another byte", whole + 'x', false);
        row("negative length", header + page + Number(0xffffffff) + page.mid(4), false);
        row("negative length that leads back to a length",
            header + Page_Record("a", "", Number(4)) + Number(0xfffffff8) + Number(0), false);
        row("length beyond the end", header + page + Number(1000) + page.mid(4), false);
    }
    void a_file_is_whole_if_it_ends_with_its_last_page()
    {
        QFETCH(const QByteArray, bytes);
        const QTemporaryDir folder;
        Support::Write_File(folder.filePath("a"), bytes);
        QTEST(ProjectFile::Is_Whole(folder.filePath("a")), "is_whole");
        QVERIFY(!ProjectFile::Is_Whole(folder.filePath("missing")));
    }

    void only_a_complete_project_replaces_a_file()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath("a.quillet");
        TProjectWriter writer;
        writer.Write_Bytes(QByteArray(1000, 'x'));
        const auto commit = [&] {
            TSafeFile target(path);
            return ProjectFile::Commit(writer, &target);
        };
        Support::Write_File(path, "old");
        const Support::TChildResult full = Support::Run_In_Child([&] {
            Support::Limit_File_Size(500);
            return commit() ? 1 : 0;
        });
        QCOMPARE(full.exit_code, 0);
        QCOMPARE(Support::Read_File(path), QByteArray("old"));
        QVERIFY(commit());
        QCOMPARE(Support::Read_File(path), Bytes_Of(writer));
        QVERIFY(QFile::remove(path) && QDir(folder.path()).mkdir("a.quillet"));
        QVERIFY(!commit());
    }
};

QTEST_MAIN(TestProjectFile)
#include "test_projectfile.moc"
