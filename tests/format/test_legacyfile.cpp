// Readers for the documents of the two earlier generations.

#include "core/xmlfile.h"
#include "src/format/legacyfile.h"
#include "support/support.h"

#include <QTemporaryDir>
#include <QTest>

#include <functional>

namespace {

using TReader = std::function<void(const TXmlFile&, std::vector<TDataItem>*)>;

const QByteArray size_node = "<Item_Size><Width>48</Width></Item_Size>";
const QByteArray color_node = "<Colors><Foreground>#0000ff</Foreground></Colors>";

/// An opened document with this content below its root.
TXmlFile Opened(const QByteArray& content)
{
    TXmlFile xml_file;
    int version = 0;
    xml_file.Open_Data("<Quillet_Data File_Version=\"1\">\n" + content + "\n</Quillet_Data>",
                       QStringLiteral("Quillet_Data"), &version, true);
    return xml_file;
}

QByteArray Element(const QByteArray& name, const QByteArray& content)
{
    return '<' + name + '>' + content + "</" + name + '>';
}

/// A well-formed item of version 2, which is also valid in version 1, with one child replaced.
QByteArray Item_With(const QByteArray& name = QByteArray(),
                     const QByteArray& replacement = QByteArray())
{
    const QVector<QPair<QByteArray, QByteArray>> children{
        {"ID", "7"}, {"ID_Text", "A"}, {"Border_Type", "3"}, {"Position", "10.5,-20"}};
    QByteArray result;
    for (const auto& child : children)
        result += child.first == name ? replacement : Element(child.first, child.second);
    return Element("Item", result);
}

/// A reader of the labels of one version.
TReader Reader(int version)
{
    return [version](const TXmlFile& xml_file, std::vector<TDataItem>* items) {
        LegacyFile::Read_Items(xml_file, version, items);
    };
}

std::vector<TDataItem> Items_Of(const TReader& reader, const QByteArray& content)
{
    std::vector<TDataItem> items;
    reader(Opened(content), &items);
    return items;
}

QString Failure(const std::function<void()>& function)
{
    try {
        function();
    } catch (const TXmlFileException& exception) {
        return exception.Message();
    }
    return QString();
}

QString Missing(const char* name, const char* parent)
{
    return QStringLiteral("ERR: Node '%1' is missing from node '%2' and not optional.")
        .arg(QLatin1String(name), QLatin1String(parent));
}

QString Missing_Text(const char* name)
{
    return QStringLiteral("ERR: Node Text for '%1' is not optional.").arg(QLatin1String(name));
}

} // namespace

Q_DECLARE_METATYPE(TReader)

class TestLegacyFile : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir d_folder;

    /// Writes a pair of files; returns the path of its list.
    QString Write_Pair(int version, const QByteArray& content) const
    {
        Support::Write_File(d_folder.filePath("old.qli"), Support::Png(Support::Picture(12, 10)));
        Support::Write_File(d_folder.filePath("old.qld"), "<Quillet_Data File_Version=\"" +
                                                              QByteArray::number(version) + "\">" +
                                                              content + "</Quillet_Data>");
        return d_folder.filePath("old.qld");
    }

    static void Add_Versions()
    {
        QTest::addColumn<TReader>("reader");
        QTest::newRow("version 1") << Reader(1);
        QTest::newRow("version 2") << Reader(2);
    }

private slots:
    void the_suffixes_of_both_files_are_legacy_in_any_case()
    {
        for (const char* const name : {"a.qld", "a.qli", "A.QLD", "A.Qli"})
            QVERIFY2(LegacyFile::Has_Suffix(name), name);
        for (const char* const name : {"a.quillet", "a.qld.png", "qld", "aqli"})
            QVERIFY2(!LegacyFile::Has_Suffix(name), name);
        QVERIFY(LegacyFile::Is_Legacy("a.qld"));
        QVERIFY(!LegacyFile::Is_Legacy("a.qli"));
    }

    void border_numbers_become_border_types_data()
    {
        QTest::addColumn<int>("legacy_border");
        QTest::addColumn<int>("border_type");
        QTest::newRow("0") << 0 << 0;
        QTest::newRow("1") << 1 << 1;
        QTest::newRow("2") << 2 << 2;
        QTest::newRow("3") << 3 << 4;
        QTest::newRow("4") << 4 << 0;
        QTest::newRow("8") << 8 << 0;
        QTest::newRow("-1") << -1 << 0;
    }

    void border_numbers_become_border_types()
    {
        QFETCH(const int, legacy_border);
        QFETCH(const int, border_type);
        QCOMPARE(LegacyFile::Border_Type(legacy_border), border_type);
        const QByteArray border = Element("Border_Type", QByteArray::number(legacy_border));
        const std::vector<TDataItem> items = Items_Of(Reader(1), Item_With("Border_Type", border));
        QCOMPARE(items.front().border_type, border_type);
    }

    void label_settings_are_read()
    {
        const TXmlFile xml_file = Opened(size_node + color_node);
        QCOMPARE(LegacyFile::Read_Label_Size(xml_file), 48);
        QCOMPARE(LegacyFile::Read_Color_Name(xml_file), QStringLiteral("#0000ff"));
    }

    void a_label_size_that_is_not_a_number_is_read_as_0()
    {
        QCOMPARE(LegacyFile::Read_Label_Size(Opened("<Item_Size><Width>big</Width></Item_Size>")),
                 0);
    }

    void the_message_names_the_missing_setting_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("size_message");
        QTest::addColumn<QString>("color_message");
        QTest::newRow("nothing") << QByteArray() << Missing("Item_Size", "Quillet_Data")
                                 << Missing("Colors", "Quillet_Data");
        QTest::newRow("no children")
            << QByteArray("<Item_Size/><Colors/>") << Missing("Width", "Item_Size")
            << Missing("Foreground", "Colors");
        QTest::newRow("no texts")
            << QByteArray("<Item_Size><Width/></Item_Size><Colors><Foreground/></Colors>")
            << Missing_Text("Width") << Missing_Text("Foreground");
    }

    void the_message_names_the_missing_setting()
    {
        QFETCH(const QByteArray, content);
        QFETCH(const QString, size_message);
        QFETCH(const QString, color_message);
        const TXmlFile xml_file = Opened(content);
        QCOMPARE(Failure([&xml_file] { LegacyFile::Read_Label_Size(xml_file); }), size_message);
        QCOMPARE(Failure([&xml_file] { LegacyFile::Read_Color_Name(xml_file); }), color_message);
    }

    void labels_of_version_1_have_no_text()
    {
        const std::vector<TDataItem> items =
            Items_Of(Reader(1), Item_With() + Item_With("ID_Text"));
        QCOMPARE(static_cast<int>(items.size()), 2);
        for (const TDataItem& item : items) {
            QCOMPARE(item.id, 7);
            QCOMPARE(item.value, 7);
            QVERIFY(item.text.isEmpty());
            QCOMPARE(item.border_type, 4);
            QCOMPARE(item.position, QPointF(10.5, -20));
            QVERIFY(!item.selected);
        }
    }

    void texts_of_version_2_that_are_numbers_are_dropped_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("text");
        QTest::newRow("letter") << QByteArray("A") << QStringLiteral("A");
        QTest::newRow("number") << QByteArray("12") << QString();
        QTest::newRow("negative number") << QByteArray("-3") << QString();
        QTest::newRow("number and letter") << QByteArray("12a") << QStringLiteral("12a");
        QTest::newRow("fraction") << QByteArray("1.5") << QStringLiteral("1.5");
        QTest::newRow("beyond an integer")
            << QByteArray("2147483648") << QStringLiteral("2147483648");
    }

    void texts_of_version_2_that_are_numbers_are_dropped()
    {
        QFETCH(const QByteArray, content);
        QFETCH(const QString, text);
        const std::vector<TDataItem> items =
            Items_Of(Reader(2), Item_With("ID_Text", Element("ID_Text", content)));
        QCOMPARE(static_cast<int>(items.size()), 1);
        QCOMPARE(items.front().id, 7);
        QCOMPARE(items.front().value, 7);
        QCOMPARE(items.front().text, text);
        QCOMPARE(items.front().border_type, 4);
        QCOMPARE(items.front().position, QPointF(10.5, -20));
        QVERIFY(!items.front().selected);
    }

    void a_document_without_labels_has_none_data() { Add_Versions(); }

    void a_document_without_labels_has_none()
    {
        QFETCH(const TReader, reader);
        QVERIFY(Items_Of(reader, size_node + color_node).empty());
    }

    void labels_are_read_in_document_order_even_with_repeated_ids_data() { Add_Versions(); }

    void labels_are_read_in_document_order_even_with_repeated_ids()
    {
        QFETCH(const TReader, reader);
        const std::vector<TDataItem> items = Items_Of(
            reader, Item_With("ID", "<ID>3</ID>") + "<Other/>\n" + Item_With("ID", "<ID>1</ID>") +
                        "<!-- note -->" + Item_With("ID", "<ID>3</ID>"));
        QVector<int> ids;
        for (const TDataItem& item : items)
            ids.append(item.id);
        QCOMPARE(ids, (QVector<int>{3, 1, 3}));
    }

    void labels_are_appended_to_those_already_collected()
    {
        std::vector<TDataItem> items(1);
        LegacyFile::Read_Items(Opened(Item_With()), 1, &items);
        QCOMPARE(static_cast<int>(items.size()), 2);
    }

    void text_that_is_not_a_number_is_read_as_0_data() { Add_Versions(); }

    void text_that_is_not_a_number_is_read_as_0()
    {
        QFETCH(const TReader, reader);
        const TDataItem no_id = Items_Of(reader, Item_With("ID", "<ID>x</ID>")).front();
        QCOMPARE(no_id.id, 0);
        QCOMPARE(no_id.value, 0);
        const QByteArray border = "<Border_Type>square</Border_Type>";
        QCOMPARE(Items_Of(reader, Item_With("Border_Type", border)).front().border_type, 0);
        const QByteArray position = "<Position>a,</Position>";
        QCOMPARE(Items_Of(reader, Item_With("Position", position)).front().position, QPointF());
    }

    void a_malformed_position_drops_only_its_label_data()
    {
        QTest::addColumn<QByteArray>("position");
        QTest::newRow("one part") << QByteArray("12");
        QTest::newRow("three parts") << QByteArray("1,2,3");
        QTest::newRow("empty third part") << QByteArray("1,2,");
    }

    void a_malformed_position_drops_only_its_label()
    {
        QFETCH(const QByteArray, position);
        const QByteArray content = Item_With("ID", "<ID>1</ID>") +
                                   Item_With("Position", Element("Position", position)) +
                                   Item_With("ID", "<ID>2</ID>");
        for (const TReader& reader : {Reader(1), Reader(2)}) {
            const std::vector<TDataItem> items = Items_Of(reader, content);
            QCOMPARE(static_cast<int>(items.size()), 2);
            QCOMPARE(items.front().id, 1);
            QCOMPARE(items.back().id, 2);
        }
    }

    void the_message_names_the_missing_element_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<bool>("in_version_1");
        for (const char* const name : {"ID", "Border_Type", "Position"})
            QTest::newRow(name) << QByteArray(name) << true;
        QTest::newRow("ID_Text") << QByteArray("ID_Text") << false;
    }

    void the_message_names_the_missing_element()
    {
        QFETCH(const QByteArray, name);
        QFETCH(const bool, in_version_1);
        const QByteArray empty = Element(name, "");
        const auto failure = [&name](const TReader& reader, const QByteArray& replacement) {
            return Failure([&] { Items_Of(reader, Item_With(name, replacement)); });
        };
        QCOMPARE(failure(Reader(2), QByteArray()), Missing(name, "Item"));
        QCOMPARE(failure(Reader(2), empty), Missing_Text(name));
        QCOMPARE(failure(Reader(1), QByteArray()),
                 in_version_1 ? Missing(name, "Item") : QString());
        QCOMPARE(failure(Reader(1), empty), in_version_1 ? Missing_Text(name) : QString());
    }

    void a_pair_is_a_document_of_one_page_data()
    {
        QTest::addColumn<int>("version");
        QTest::addColumn<QString>("text");
        QTest::newRow("version 1 has no texts") << 1 << QString();
        QTest::newRow("version 2 has texts") << 2 << QStringLiteral("A");
    }

    void a_pair_is_a_document_of_one_page()
    {
        QFETCH(const int, version);
        QFETCH(const QString, text);
        const TFileContent content =
            LegacyFile::Read(Write_Pair(version, size_node + color_node + Item_With()));
        QVERIFY(content.fault.isEmpty());
        QCOMPARE(content.label_size.value(), 48);
        QCOMPARE(content.color_name.value(), QStringLiteral("#0000ff"));
        QCOMPARE(content.pages.value().size(), std::size_t{1});
        const TFilePage page = content.pages->front();
        QCOMPARE(page.name, QStringLiteral("Page 1"));
        QCOMPARE(page.image.size(), QSize(12, 10));
        QCOMPARE(page.items.size(), std::size_t{1});
        QCOMPARE(page.items.front().text, text);
    }

    void another_version_has_only_the_image()
    {
        for (const int version : {0, 3}) {
            const TFileContent content =
                LegacyFile::Read(Write_Pair(version, size_node + color_node + Item_With()));
            QVERIFY(!content.label_size);
            QVERIFY(!content.color_name);
            QCOMPARE(content.pages.value().front().image.size(), QSize(12, 10));
            QVERIFY(content.pages->front().items.empty());
        }
    }

    void a_list_without_an_image_is_refused()
    {
        const QString path = Write_Pair(2, size_node + color_node);
        QVERIFY(QFile::remove(d_folder.filePath("old.qli")));
        QCOMPARE(Failure([&path] { LegacyFile::Read(path); }),
                 QStringLiteral("Background image not found"));
        Support::Write_File(d_folder.filePath("old.qli"), "no picture");
        QCOMPARE(Failure([&path] { LegacyFile::Read(path); }),
                 QStringLiteral("Background image not found"));
    }

    void a_damaged_list_is_refused()
    {
        QCOMPARE(Failure([this] { LegacyFile::Read(Write_Pair(2, Item_With())); }),
                 Missing("Item_Size", "Quillet_Data"));
        const QString path = Write_Pair(1, size_node + color_node);
        Support::Write_File(path, "<Quillet_Data");
        QVERIFY(Failure([&path] { LegacyFile::Read(path); }).contains("XML parse error"));
    }
};

QTEST_MAIN(TestLegacyFile)
#include "test_legacyfile.moc"
