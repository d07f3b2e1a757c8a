// The XML wrapper: values, paths, and a message for each error.

#include "core/xmlfile.h"

#include "support/support.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QTextCodec>

#include <functional>
#include <memory>
#include <sys/stat.h>

namespace {

const QString source = QStringLiteral("core/xmlfile.cpp");
constexpr int no_exception = -1;

/// The exception that a function throws; of type No_Exception if it throws none.
struct TThrown
{
    int type = no_exception;
    QString message;
};

TThrown Thrown_By(const std::function<void()>& function)
{
    try {
        function();
    } catch (const TXmlFileException& exception) {
        return {exception.Type(), exception.Message()};
    }
    return {};
}

#define COMPARE_THROWN(statement, expected_type, expected_message)                                 \
    do {                                                                                           \
        const TThrown thrown = Thrown_By([&] { statement; });                                      \
        QCOMPARE(thrown.message, QStringLiteral(expected_message));                                \
        QCOMPARE(thrown.type, static_cast<int>(TXmlFileException::expected_type));                 \
    } while (false)

#define COMPARE_ASSERTION(statement, condition, function)                                          \
    QCOMPARE(Support::Assertion_Failure([&] { statement; }, source, QStringLiteral(condition),     \
                                        QStringLiteral(function)),                                 \
             QString())

QByteArray Compact(const TXmlFile& file)
{
    QByteArray data;
    file.Write_Data(&data, true);
    return data;
}

QByteArray Indented(const TXmlFile& file)
{
    QByteArray data;
    file.Write_Data(&data, false);
    return data;
}

const QByteArray declaration = "<?xml version=\"1.0\" encoding=\"utf-8\"?>";

/// Runs a function with another locale codec, as set by another LC_ALL.
void With_Locale_Codec(const char* name, const std::function<void()>& function)
{
    QTextCodec* const before = QTextCodec::codecForLocale();
    QTextCodec::setCodecForLocale(QTextCodec::codecForName(name));
    function();
    QTextCodec::setCodecForLocale(before);
}

} // namespace

class TestXmlFile : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void an_exception_keeps_message_and_type();
    void a_new_document_is_empty();
    void invalid_data_yields_null_nodes();
    void reset_creates_a_declaration_and_a_root();
    void reset_replaces_the_document();
    void reset_with_a_doctype_writes_no_declaration();
    void clear_removes_all_nodes();

    void a_file_is_loaded();
    void line_ends_and_encodings_of_files_are_not_changed();
    void an_unreadable_file_is_a_file_error();
    void a_file_that_does_not_open_is_a_file_error();
    void a_parse_error_of_a_file_is_a_data_error();
    void data_is_loaded();
    void parse_errors_fill_message_line_and_column_in_that_order_data();
    void parse_errors_fill_message_line_and_column_in_that_order();
    void a_failed_parse_leaves_identification_and_root();
    void another_root_name_is_refused();
    void names_with_placeholders_are_inserted_literally();
    void a_missing_version_fails_only_if_requested();
    void versions_are_decimal_data();
    void versions_are_decimal();
    void identification_and_doctype_are_stored_before_a_missing_version_fails();
    void the_doctype_is_stored();
    void documents_that_are_too_costly_to_parse_are_parse_errors();
    void characters_that_xml_does_not_allow_are_parse_errors_data();
    void characters_that_xml_does_not_allow_are_parse_errors();
    void characters_beyond_16_bits_are_read_back();
    void harmless_entities_are_expanded();
    void external_entities_are_not_fetched();

    void text_is_read_data();
    void text_is_read();
    void missing_text_names_the_node();
    void the_placed_message_begins_with_line_and_column();
    void attributes_are_read();
    void missing_attributes_are_named();
    void first_child_with_a_name_is_found();
    void siblings_with_a_name_are_found_in_order();
    void first_nodes_of_any_kind_are_found();
    void siblings_of_any_kind_are_found_in_order();
    void null_nodes_cannot_be_read();
    void null_nodes_have_no_child_and_no_sibling();
    void readers_require_pointers();

    void nodes_are_appended_in_order();
    void nodes_require_a_parent_and_a_name();
    void an_invalid_name_yields_a_null_node();
    void texts_are_written();
    void numbers_are_written_as_text();
    void invalid_texts_are_refused();
    void lines_stay_in_compact_output_data();
    void lines_stay_in_compact_output();
    void the_error_about_invalid_lines_contains_all_of_them();
    void attributes_are_written();
    void attributes_require_a_name();
    void writers_require_pointers();

    void compact_output_has_no_line_breaks();
    void compact_output_drops_line_breaks_of_texts();
    void indentation_is_four_blanks();
    void write_data_replaces_the_data();
    void an_empty_document_writes_nothing();
    void output_is_utf8_in_any_locale();
    void output_has_the_declared_encoding();
    void a_file_is_written_as_the_data();
    void a_write_protected_file_is_a_file_error();
    void a_file_that_cannot_be_created_is_a_data_error();
    void a_written_document_is_read_back();

private:
    QString Path(const QString& name) const { return d_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> d_folder;
};

void TestXmlFile::init()
{
    d_folder = std::make_unique<QTemporaryDir>();
}

void TestXmlFile::an_exception_keeps_message_and_type()
{
    const TXmlFileException exception(QStringLiteral("m"), TXmlFileException::Data_Error);
    QCOMPARE(exception.Message(), QStringLiteral("m"));
    QCOMPARE(exception.Type(), TXmlFileException::Data_Error);
    QCOMPARE(static_cast<int>(TXmlFileException::File_Error), 0);
    QCOMPARE(static_cast<int>(TXmlFileException::Data_Error), 1);
}

void TestXmlFile::a_new_document_is_empty()
{
    const TXmlFile file;
    QVERIFY(file.d_root_element.isNull());
    QVERIFY(file.d_file_path.isEmpty());
    QVERIFY(file.d_identification.isEmpty());
    QVERIFY(file.d_doctype_name.isEmpty());
    QVERIFY(file.documentElement().isNull());
}

void TestXmlFile::invalid_data_yields_null_nodes()
{
    QDomImplementation::setInvalidDataPolicy(QDomImplementation::AcceptInvalidChars);
    TXmlFile file;
    QCOMPARE(QDomImplementation::invalidDataPolicy(), QDomImplementation::ReturnNullNode);
    QVERIFY(file.createElement(QStringLiteral("a b")).isNull());
    QVERIFY(file.createTextNode(QString(QChar(1))).isNull());
}

void TestXmlFile::reset_creates_a_declaration_and_a_root()
{
    TXmlFile file;
    file.Reset(QStringLiteral("R"), 1);
    QCOMPARE(Compact(file), declaration + "<R File_Version=\"1\"/>");
    QCOMPARE(file.d_root_element.tagName(), QStringLiteral("R"));
    QCOMPARE(file.documentElement(), file.d_root_element);
    QCOMPARE(file.d_root_element.attribute(QStringLiteral("File_Version")), QStringLiteral("1"));
    const QDomProcessingInstruction first = file.firstChild().toProcessingInstruction();
    QCOMPARE(first.target(), QStringLiteral("xml"));
    QCOMPARE(first.data(), QStringLiteral("version=\"1.0\" encoding=\"utf-8\""));
}

void TestXmlFile::reset_replaces_the_document()
{
    TXmlFile file;
    file.Reset(QStringLiteral("Old"), 1);
    file.Create_Node(&file.d_root_element, QStringLiteral("Child"));
    file.Reset(QStringLiteral("New"), -12);
    QCOMPARE(Compact(file), declaration + "<New File_Version=\"-12\"/>");
    file.Reset(QStringLiteral("D"), QStringLiteral("Again"), 3);
    QCOMPARE(Compact(file), QByteArray("<!DOCTYPE D><Again File_Version=\"3\"/>"));
    file.Reset(QStringLiteral("New"), 4);
    QCOMPARE(Compact(file), declaration + "<New File_Version=\"4\"/>");
}

void TestXmlFile::reset_with_a_doctype_writes_no_declaration()
{
    TXmlFile file;
    file.Reset(QStringLiteral("Kind"), QStringLiteral("R"), 7);
    QCOMPARE(file.doctype().name(), QStringLiteral("Kind"));
    QCOMPARE(file.documentElement(), file.d_root_element);
    QCOMPARE(Indented(file), QByteArray("<!DOCTYPE Kind>\n<R File_Version=\"7\"/>\n"));
    QCOMPARE(Compact(file), QByteArray("<!DOCTYPE Kind><R File_Version=\"7\"/>"));
}

void TestXmlFile::clear_removes_all_nodes()
{
    TXmlFile file;
    file.Reset(QStringLiteral("R"), 1);
    file.Clear();
    QVERIFY(!file.hasChildNodes());
    QVERIFY(file.documentElement().isNull());
    QVERIFY(file.d_root_element.isNull());
    COMPARE_THROWN(file.Create_Node(&file.d_root_element, "A"), Data_Error,
                   "ERR:  Cannot create node from a NULL node");
}

void TestXmlFile::a_file_is_loaded()
{
    Support::Write_File(Path("a.xml"), "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
                                       "<R File_Version=\"5\"><T>\xc3\xa4</T></R>\n");
    TXmlFile file;
    file.d_file_path = Path("a.xml");
    int version = 0;
    file.Open(QStringLiteral("R"), &version, true);
    QCOMPARE(version, 5);
    QCOMPARE(file.d_identification, QStringLiteral("R"));
    QCOMPARE(file.d_root_element, file.documentElement());
    const QDomElement text = file.Get_Node(&file.d_root_element, QStringLiteral("T"), false);
    QCOMPARE(file.Read_Text_Node(&text, false), QString::fromUtf8("\xc3\xa4"));
}

void TestXmlFile::line_ends_and_encodings_of_files_are_not_changed()
{
    Support::Write_File(Path("crlf.xml"), "<R>\r\n<T>a\r\nb</T>\r\n</R>\r\n");
    TXmlFile file;
    file.d_file_path = Path("crlf.xml");
    file.Open(QStringLiteral("R"), nullptr, true);
    QCOMPARE(file.d_root_element.text(), QStringLiteral("a\r\nb"));

    // U+0D0A in UTF-16: its bytes are a carriage return and a line feed.
    const QString text = QStringLiteral("<R>\u0d0a\u0d0b</R>");
    const std::unique_ptr<QTextEncoder> encoder(
        QTextCodec::codecForName("UTF-16BE")->makeEncoder(QTextCodec::DefaultConversion));
    Support::Write_File(Path("wide.xml"), encoder->fromUnicode(text));
    file.d_file_path = Path("wide.xml");
    file.Open(QStringLiteral("R"), nullptr, true);
    QCOMPARE(file.d_root_element.text(), QStringLiteral("\u0d0a\u0d0b"));
}

void TestXmlFile::an_unreadable_file_is_a_file_error()
{
    TXmlFile file;
    file.d_file_path = QStringLiteral("no/such/../file %1.xml");
    COMPARE_THROWN(file.Open("R", nullptr, true), File_Error,
                   "ERR:  Cannot open file 'no/such/../file %1.xml' for reading.");
    file.d_file_path.clear();
    COMPARE_THROWN(file.Open("R", nullptr, true), File_Error,
                   "ERR:  Cannot open file '' for reading.");

    const QString path = Path("secret.xml");
    Support::Write_File(path, "<R/>");
    QCOMPARE(chmod(QFile::encodeName(path).constData(), 0), 0);
    const Support::TChildResult child = Support::Run_In_Child([&] {
        Support::Obey_File_Permissions();
        file.d_file_path = path;
        const TThrown thrown = Thrown_By([&] { file.Open("R", nullptr, true); });
        return thrown.type == TXmlFileException::File_Error &&
                       thrown.message ==
                           QStringLiteral("ERR:  Cannot open file '%1' for reading.").arg(path)
                   ? 0
                   : 1;
    });
    QCOMPARE(child.exit_code, 0);
}

void TestXmlFile::a_file_that_does_not_open_is_a_file_error()
{
    TXmlFile file;
    file.d_file_path = d_folder->path();
    QFile folder(d_folder->path());
    QVERIFY(!folder.open(QIODevice::ReadOnly));
    const TThrown thrown = Thrown_By([&] { file.Open("R", nullptr, true); });
    QCOMPARE(thrown.type, static_cast<int>(TXmlFileException::File_Error));
    QCOMPARE(thrown.message, QString("ERR:  Cannot open file: '" + d_folder->path() +
                                     "'.  Reason: " + folder.errorString()));
}

void TestXmlFile::a_parse_error_of_a_file_is_a_data_error()
{
    Support::Write_File(Path("bad.xml"), "<R>\n <T></U></R>");
    TXmlFile file;
    file.d_file_path = Path("bad.xml");
    COMPARE_THROWN(file.Open("R", nullptr, true), Data_Error,
                   "ERR: Reference file XML parse error at line tag mismatch column 2: 8");
}

void TestXmlFile::data_is_loaded()
{
    TXmlFile file;
    int version = 0;
    file.Open_Data("<R File_Version=\"2\"><A/></R>", QStringLiteral("R"), &version, false);
    QCOMPARE(version, 2);
    QCOMPARE(file.d_identification, QStringLiteral("R"));
    QVERIFY(file.d_doctype_name.isEmpty());
    QCOMPARE(file.d_root_element, file.documentElement());
    QCOMPARE(file.d_root_element.firstChildElement().tagName(), QStringLiteral("A"));
    file.Open_Data("<S/>", QStringLiteral("S"), nullptr, false);
    QCOMPARE(file.d_identification, QStringLiteral("S"));
    QVERIFY(!file.d_root_element.hasChildNodes());
}

void TestXmlFile::parse_errors_fill_message_line_and_column_in_that_order_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("error");
    QTest::newRow("nothing") << QByteArray() << "unexpected end of file column 1: 1";
    QTest::newRow("text") << QByteArray("abc")
                          << "error occurred while parsing element column 1: 1";
    QTest::newRow("unfinished") << QByteArray("<R File_Version=\"1\">\n <A>")
                                << "unexpected end of file column 2: 5";
    QTest::newRow("mismatch") << QByteArray("<R>\n\n</S>") << "tag mismatch column 3: 4";
    QTest::newRow("two roots") << QByteArray("<R/><S/>") << "unexpected character column 1: 6";
    QTest::newRow("entity that the parser finds too long")
        << QByteArray("<!DOCTYPE R [<!ENTITY a '0123456789'><!ENTITY b '" +
                      QByteArray("&a;").repeated(500) + "'><!ENTITY c '&b;'>]>\n<R>&c;</R>")
        << "The XML entity \"b\" expands to a string that is too large to process (5000 "
           "characters > 4096). column 1: 1568";
}

void TestXmlFile::parse_errors_fill_message_line_and_column_in_that_order()
{
    QFETCH(QByteArray, data);
    QFETCH(QString, error);
    for (const bool namespaces : {false, true}) {
        TXmlFile file;
        const TThrown thrown = Thrown_By([&] { file.Open_Data(data, "R", nullptr, namespaces); });
        QCOMPARE(thrown.type, static_cast<int>(TXmlFileException::Data_Error));
        QCOMPARE(thrown.message, QString("ERR: Reference data XML parse error at line " + error));
    }
}

void TestXmlFile::a_failed_parse_leaves_identification_and_root()
{
    TXmlFile file;
    file.Open_Data("<!DOCTYPE D><R/>", QStringLiteral("R"), nullptr, true);
    QVERIFY(Thrown_By([&] { file.Open_Data("<S", "S", nullptr, true); }).type != no_exception);
    QCOMPARE(file.d_identification, QStringLiteral("R"));
    QCOMPARE(file.d_doctype_name, QStringLiteral("D"));
    QCOMPARE(file.d_root_element.tagName(), QStringLiteral("R"));
    QVERIFY(Thrown_By([&] { file.Open_Data("<S/>", "T", nullptr, true); }).type != no_exception);
    QCOMPARE(file.d_identification, QStringLiteral("R"));
    QCOMPARE(file.d_doctype_name, QStringLiteral("D"));
    QCOMPARE(file.d_root_element.tagName(), QStringLiteral("S"));
    QCOMPARE(file.documentElement().tagName(), QStringLiteral("S"));
}

void TestXmlFile::another_root_name_is_refused()
{
    TXmlFile file;
    COMPARE_THROWN(file.Open_Data("<Other/>", "Wanted", nullptr, true), Data_Error,
                   "ERR:  Identification 'Wanted' does not match 'Other'");
    COMPARE_THROWN(file.Open_Data("<wanted/>", "Wanted", nullptr, true), Data_Error,
                   "ERR:  Identification 'Wanted' does not match 'wanted'");
    Support::Write_File(Path("a.xml"), "<Other/>");
    file.d_file_path = Path("a.xml");
    COMPARE_THROWN(file.Open("Wanted", nullptr, true), Data_Error,
                   "ERR:  Identification 'Wanted' does not match 'Other'");
}

void TestXmlFile::names_with_placeholders_are_inserted_literally()
{
    TXmlFile file;
    COMPARE_THROWN(file.Open_Data("<Other/>", "%2 %1", nullptr, true), Data_Error,
                   "ERR:  Identification '%2 %1' does not match 'Other'");
    file.Reset(QStringLiteral("R"), 1);
    COMPARE_THROWN(file.Get_Node(&file.d_root_element, "%2", false), Data_Error,
                   "ERR: Node '%2' is missing from node 'R' and not optional.");
    COMPARE_THROWN(file.Write_Text_Node(&file.d_root_element, "%1\x01"), Data_Error,
                   "ERR:  Cannot write node 'R' with data '%1\x01'");
    file.d_file_path = Path("missing") + QStringLiteral("/%2");
    const TThrown thrown = Thrown_By([&] { file.Write_File(true); });
    QVERIFY(thrown.message.startsWith(
        QString("ERR:  Cannot write file '" + file.d_file_path + "'.  Reason: ")));
}

void TestXmlFile::a_missing_version_fails_only_if_requested()
{
    TXmlFile file;
    int version = 99;
    COMPARE_THROWN(file.Open_Data("<R file_version='1'/>", "R", &version, true), Data_Error,
                   "ERR: The 'File_Version' attribute is missing.");
    QCOMPARE(version, 99);
    COMPARE_THROWN(file.Open_Data("<R/>", "R", &version, false), Data_Error,
                   "ERR: The 'File_Version' attribute is missing.");
    file.Open_Data("<R/>", QStringLiteral("R"), nullptr, true);
    QCOMPARE(file.d_root_element.tagName(), QStringLiteral("R"));
}

void TestXmlFile::versions_are_decimal_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("expected");
    QTest::newRow("number") << QByteArray("12") << 12;
    QTest::newRow("negative") << QByteArray("-3") << -3;
    QTest::newRow("leading zero") << QByteArray("010") << 10;
    QTest::newRow("word") << QByteArray("one") << 0;
    QTest::newRow("hexadecimal") << QByteArray("0x10") << 0;
    QTest::newRow("fraction") << QByteArray("1.5") << 0;
    QTest::newRow("empty") << QByteArray() << 0;
    QTest::newRow("too large") << QByteArray("99999999999") << 0;
}

void TestXmlFile::versions_are_decimal()
{
    QFETCH(QByteArray, text);
    QFETCH(int, expected);
    for (const bool namespaces : {false, true}) {
        TXmlFile file;
        int version = 99;
        file.Open_Data("<R File_Version=\"" + text + "\"/>", QStringLiteral("R"), &version,
                       namespaces);
        QCOMPARE(version, expected);
    }
}

void TestXmlFile::identification_and_doctype_are_stored_before_a_missing_version_fails()
{
    TXmlFile file;
    int version = 0;
    QVERIFY(Thrown_By([&] { file.Open_Data("<!DOCTYPE D><R/>", "R", &version, true); }).type ==
            TXmlFileException::Data_Error);
    QCOMPARE(file.d_identification, QStringLiteral("R"));
    QCOMPARE(file.d_doctype_name, QStringLiteral("D"));
}

void TestXmlFile::the_doctype_is_stored()
{
    TXmlFile file;
    file.Open_Data("<!DOCTYPE Kind><R/>", QStringLiteral("R"), nullptr, true);
    QCOMPARE(file.d_doctype_name, QStringLiteral("Kind"));
    file.Open_Data("<R/>", QStringLiteral("R"), nullptr, true);
    QVERIFY(file.d_doctype_name.isEmpty());
    file.Reset(QStringLiteral("Kind"), QStringLiteral("R"), 1);
    file.Open_Data(Compact(file), QStringLiteral("R"), nullptr, true);
    QCOMPARE(file.d_doctype_name, QStringLiteral("Kind"));
}

void TestXmlFile::documents_that_are_too_costly_to_parse_are_parse_errors()
{
    const QByteArray deep = QByteArray("<R>").repeated(1000000);
    TXmlFile file;
    file.Open_Data("<R/>", QStringLiteral("R"), nullptr, true);
    COMPARE_THROWN(file.Open_Data(deep, "R", nullptr, true), Data_Error,
                   "ERR: Reference data XML parse error at line elements nested too deeply column "
                   "1: 771");
    QVERIFY(!file.hasChildNodes());
    Support::Write_File(Path("deep.xml"), deep);
    file.d_file_path = Path("deep.xml");
    COMPARE_THROWN(file.Open("R", nullptr, false), Data_Error,
                   "ERR: Reference file XML parse error at line elements nested too deeply column "
                   "1: 771");
    // The document can be used again.
    file.Reset(QStringLiteral("R"), 1);
    QCOMPARE(Compact(file), declaration + "<R File_Version=\"1\"/>");
}

void TestXmlFile::characters_that_xml_does_not_allow_are_parse_errors_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::newRow("text") << QByteArray("<R>a\x01z</R>");
    QTest::newRow("reference") << QByteArray("<R>&#1;</R>");
    QTest::newRow("comment") << QByteArray("<R><!--\x01--></R>");
    QTest::newRow("character data") << QByteArray("<R><![CDATA[\x01]]></R>");
}

/// Without the check, the DOM parser would crash.
void TestXmlFile::characters_that_xml_does_not_allow_are_parse_errors()
{
    QFETCH(QByteArray, data);
    for (const bool namespaces : {false, true}) {
        TXmlFile file;
        const TThrown thrown = Thrown_By([&] { file.Open_Data(data, "R", nullptr, namespaces); });
        QCOMPARE(thrown.type, static_cast<int>(TXmlFileException::Data_Error));
        QVERIFY(thrown.message.startsWith(QLatin1String(
            "ERR: Reference data XML parse error at line invalid character column 1: ")));
        QVERIFY(!file.hasChildNodes());
    }
}

void TestXmlFile::characters_beyond_16_bits_are_read_back()
{
    const QString text = QString::fromUtf8("\xf0\x9f\x98\x80 \xf0\x90\x80\x80");
    TXmlFile file;
    file.Reset(QStringLiteral("R"), 1);
    file.Write_Text_Node(&file.d_root_element, text);
    QCOMPARE(QDomImplementation::invalidDataPolicy(), QDomImplementation::ReturnNullNode);
    const QByteArray data = Compact(file);
    QCOMPARE(data, declaration + "<R File_Version=\"1\">" + text.toUtf8() + "</R>");
    for (const bool namespaces : {false, true}) {
        TXmlFile read;
        read.Open_Data(data, QStringLiteral("R"), nullptr, namespaces);
        QCOMPARE(read.Read_Text_Node(&read.d_root_element, false), text);
        QCOMPARE(QDomImplementation::invalidDataPolicy(), QDomImplementation::ReturnNullNode);
    }
}

void TestXmlFile::harmless_entities_are_expanded()
{
    TXmlFile file;
    file.Open_Data("<!DOCTYPE R [<!ENTITY a 'x'><!ENTITY b '&a;y'>]>"
                   "<R t='&b;'>&lt;&b;&#65;&amp;</R>",
                   QStringLiteral("R"), nullptr, true);
    QCOMPARE(file.Read_Attribute(&file.d_root_element, QStringLiteral("t"), false),
             QStringLiteral("xy"));
    QCOMPARE(file.Read_Text_Node(&file.d_root_element, false), QStringLiteral("<xyA&"));
}

void TestXmlFile::external_entities_are_not_fetched()
{
    Support::Write_File(Path("secret.txt"), "secret");
    const QByteArray url = QUrl::fromLocalFile(Path("secret.txt")).toEncoded();
    TXmlFile file;
    file.Open_Data("<!DOCTYPE R [<!ENTITY a SYSTEM '" + url + "'>]><R>&a;</R>", QStringLiteral("R"),
                   nullptr, true);
    QVERIFY(file.d_root_element.text().isEmpty());
    file.Open_Data("<!DOCTYPE R SYSTEM 'file:///dev/zero' ["
                   "<!ENTITY % p SYSTEM 'file:///dev/zero'> %p;]><R>t</R>",
                   QStringLiteral("R"), nullptr, true);
    QCOMPARE(file.d_root_element.text(), QStringLiteral("t"));
}

void TestXmlFile::text_is_read_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("present");
    QTest::addColumn<QString>("expected");
    QTest::newRow("text") << QByteArray("some text") << true << "some text";
    QTest::newRow("escaped") << QByteArray("&lt;&#228;") << true << QString::fromUtf8("<\xc3\xa4");
    QTest::newRow("text before an element") << QByteArray("a<b/>c") << true << "a";
    QTest::newRow("element before the text") << QByteArray("<b/>c") << false << QString();
    QTest::newRow("comment before the text") << QByteArray("<!--x-->c") << false << QString();
    QTest::newRow("nothing") << QByteArray() << false << QString();
    QTest::newRow("white space, dropped by the parser") << QByteArray(" \n ") << false << QString();
    QTest::newRow("only an element") << QByteArray("<b>c</b>") << false << QString();
}

void TestXmlFile::text_is_read()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, present);
    QFETCH(QString, expected);
    TXmlFile file;
    file.Open_Data("<R><Name>" + content + "</Name></R>", QStringLiteral("R"), nullptr, true);
    const QDomElement element = file.Get_Node(&file.d_root_element, "Name", false);
    const QDomNode node = element;
    QCOMPARE(file.Read_Text_Node(&element, true), expected);
    QCOMPARE(file.Read_Text_Node(&node, true), expected);
    if (present) {
        QCOMPARE(file.Read_Text_Node(&element, false), expected);
        QCOMPARE(file.Read_Text_Node(&node, false), expected);
    } else {
        COMPARE_THROWN(file.Read_Text_Node(&element, false), Data_Error,
                       "ERR: Node Text for 'Name' is not optional.");
        COMPARE_THROWN(file.Read_Text_Node(&node, false), Data_Error,
                       "ERR: Node Text for 'Name' is not optional.");
    }
}

void TestXmlFile::missing_text_names_the_node()
{
    TXmlFile file;
    file.Open_Data("<R xmlns:p='u'><p:E/></R>", QStringLiteral("R"), nullptr, true);
    const QDomElement element = file.d_root_element.firstChildElement();
    const QDomNode node = element;
    COMPARE_THROWN(file.Read_Text_Node(&element, false), Data_Error,
                   "ERR: Node Text for 'E' is not optional.");
    COMPARE_THROWN(file.Read_Text_Node(&node, false), Data_Error,
                   "ERR: Node Text for 'E' is not optional.");
    // Without namespace processing there are no local names.
    file.Open_Data("<R><E/></R>", QStringLiteral("R"), nullptr, false);
    const QDomNode plain = file.d_root_element.firstChild();
    COMPARE_THROWN(file.Read_Text_Node(&plain, false), Data_Error,
                   "ERR: Node Text for '' is not optional.");
}

void TestXmlFile::the_placed_message_begins_with_line_and_column()
{
    const auto placed_message = [](const TXmlFile& file) {
        const QDomElement element = file.d_root_element.firstChildElement();
        try {
            file.Read_Text_Node(&element, false);
        } catch (const TXmlFileException& exception) {
            return exception.Placed_Message();
        }
        return QString();
    };
    TXmlFile file;
    file.Open_Data("<R><E/></R>", QStringLiteral("R"), nullptr, true);
    QCOMPARE(placed_message(file),
             QStringLiteral("line 1, column 6: Node Text for 'E' is not optional."));
    file.Open_Data("<R>\n\n<E/></R>", QStringLiteral("R"), nullptr, true);
    QCOMPARE(placed_message(file),
             QStringLiteral("line 3, column 3: Node Text for 'E' is not optional."));
    // A node that was not read from a document has no place.
    file.Reset(QStringLiteral("R"), 1);
    file.Create_Node(&file.d_root_element, QStringLiteral("E"));
    QCOMPARE(placed_message(file), QStringLiteral("ERR: Node Text for 'E' is not optional."));
}

void TestXmlFile::attributes_are_read()
{
    for (const bool namespaces : {false, true}) {
        TXmlFile file;
        file.Open_Data("<R a='1' empty=''/>", QStringLiteral("R"), nullptr, namespaces);
        const QDomNode node = file.d_root_element;
        for (const bool optional : {false, true}) {
            QCOMPARE(file.Read_Attribute(&file.d_root_element, QStringLiteral("a"), optional),
                     QStringLiteral("1"));
            QCOMPARE(file.Read_Attribute(&node, QStringLiteral("a"), optional),
                     QStringLiteral("1"));
            QCOMPARE(file.Read_Attribute(&file.d_root_element, QStringLiteral("empty"), optional),
                     QString());
            QCOMPARE(file.Read_Attribute(&node, QStringLiteral("empty"), optional), QString());
        }
    }
}

void TestXmlFile::missing_attributes_are_named()
{
    TXmlFile file;
    file.Open_Data("<R a='1'>text</R>", QStringLiteral("R"), nullptr, true);
    const QDomNode node = file.d_root_element;
    const QDomNode text = file.d_root_element.firstChild();
    QCOMPARE(file.Read_Attribute(&file.d_root_element, QStringLiteral("b"), true), QString());
    QCOMPARE(file.Read_Attribute(&node, QStringLiteral("b"), true), QString());
    QCOMPARE(file.Read_Attribute(&text, QStringLiteral("a"), true), QString());
    COMPARE_THROWN(file.Read_Attribute(&file.d_root_element, "b", false), Data_Error,
                   "ERR: Node attribute 'b' missing and not optional.");
    COMPARE_THROWN(file.Read_Attribute(&node, "A", false), Data_Error,
                   "ERR: Node attribute 'A' missing and not optional.");
    COMPARE_THROWN(file.Read_Attribute(&text, "a", false), Data_Error,
                   "ERR: Node attribute 'a' missing and not optional.");
}

void TestXmlFile::first_child_with_a_name_is_found()
{
    for (const bool namespaces : {false, true}) {
        TXmlFile file;
        file.Open_Data("<R>t<X n='0'/><A n='1'><B n='2'/></A><A n='3'/></R>", QStringLiteral("R"),
                       nullptr, namespaces);
        const QDomNode document = file;
        const QDomNode root = file.d_root_element;
        QCOMPARE(file.Get_Node(&file.d_root_element, "A", false).attribute("n"),
                 QStringLiteral("1"));
        QCOMPARE(file.Get_Node(&root, "A", true).attribute("n"), QStringLiteral("1"));
        QCOMPARE(file.Get_Node(&document, "R", false), file.d_root_element);
        // Only children count, and their names are case-sensitive.
        QVERIFY(file.Get_Node(&file.d_root_element, "B", true).isNull());
        QVERIFY(file.Get_Node(&root, "a", true).isNull());
        COMPARE_THROWN(file.Get_Node(&file.d_root_element, "B", false), Data_Error,
                       "ERR: Node 'B' is missing from node 'R' and not optional.");
        COMPARE_THROWN(file.Get_Node(&root, "B", false), Data_Error,
                       "ERR: Node 'B' is missing from node 'R' and not optional.");
        COMPARE_THROWN(file.Get_Node(&document, "B", false), Data_Error,
                       "ERR: Node 'B' is missing from node '#document' and not optional.");
    }
}

void TestXmlFile::siblings_with_a_name_are_found_in_order()
{
    TXmlFile file;
    file.Open_Data("<R><A>1</A>t<B/><A>2</A><A>3</A><B/></R>", QStringLiteral("R"), nullptr, true);
    QStringList found;
    QDomElement element = file.Get_Node(&file.d_root_element, "A", true);
    QDomElement last;
    while (!element.isNull()) {
        found += file.Read_Text_Node(&element, false);
        last = element;
        element = file.Get_Sibling_Node(&element, QStringLiteral("A"), true);
    }
    QCOMPARE(found, QStringList({"1", "2", "3"}));
    QCOMPARE(file.Get_Sibling_Node(&last, "B", false).tagName(), QStringLiteral("B"));
    COMPARE_THROWN(file.Get_Sibling_Node(&last, "C", false), Data_Error,
                   "ERR: Node 'C' is missing from node 'A' and not optional.");
}

void TestXmlFile::first_nodes_of_any_kind_are_found()
{
    TXmlFile file;
    file.Open_Data("<R xmlns:p='u'><!--c--><p:A>t</p:A></R>", QStringLiteral("R"), nullptr, true);
    const QDomNode root = file.d_root_element;
    QVERIFY(file.Get_First_Node(&file.d_root_element, false).isComment());
    QVERIFY(file.Get_First_Node(&root, false).isComment());
    const QDomElement element = file.d_root_element.firstChildElement();
    QVERIFY(file.Get_First_Node(&element, false).isText());

    file.Open_Data("<R xmlns:p='u'><p:A/></R>", QStringLiteral("R"), nullptr, true);
    const QDomElement empty = file.d_root_element.firstChildElement();
    const QDomNode empty_node = empty;
    QVERIFY(file.Get_First_Node(&empty, true).isNull());
    QVERIFY(file.Get_First_Node(&empty_node, true).isNull());
    COMPARE_THROWN(file.Get_First_Node(&empty, false), Data_Error,
                   "ERR: Parent 'A' does not have nodes and they are not optional.");
    COMPARE_THROWN(file.Get_First_Node(&empty_node, false), Data_Error,
                   "ERR: Parent 'A' does not have nodes and they are not optional.");
}

void TestXmlFile::siblings_of_any_kind_are_found_in_order()
{
    TXmlFile file;
    file.Open_Data("<R><A/>t<!--c--><B/></R>", QStringLiteral("R"), nullptr, true);
    QStringList found;
    QDomNode last;
    for (QDomNode node = file.Get_First_Node(&file.d_root_element, true); !node.isNull();
         node = file.Get_Sibling_Node(&node, true)) {
        found += node.nodeName();
        last = node;
    }
    QCOMPARE(found, QStringList({"A", "#text", "#comment", "B"}));
    const QDomNode first = file.Get_First_Node(&file.d_root_element, false);
    QVERIFY(file.Get_Sibling_Node(&first, false).isText());
    COMPARE_THROWN(file.Get_Sibling_Node(&last, false), Data_Error,
                   "ERR: Node 'B' does not have siblings and they are not optional.");
}

void TestXmlFile::null_nodes_cannot_be_read()
{
    const TXmlFile file;
    const QDomElement element;
    const QDomNode node;
    for (const bool optional : {false, true}) {
        COMPARE_THROWN(file.Read_Text_Node(&element, optional), Data_Error,
                       "ERR:  Cannot read data from a NULL node");
        COMPARE_THROWN(file.Read_Text_Node(&node, optional), Data_Error,
                       "ERR:  Cannot read data from a NULL node");
        COMPARE_THROWN(file.Read_Attribute(&element, "a", optional), Data_Error,
                       "ERR:  Cannot read attribute from a NULL node");
        COMPARE_THROWN(file.Read_Attribute(&node, "a", optional), Data_Error,
                       "ERR:  Cannot read attribute from a NULL node");
        COMPARE_THROWN(file.Get_Node(&element, "a", optional), Data_Error,
                       "ERR:  Cannot get child from a NULL node");
        COMPARE_THROWN(file.Get_Node(&node, "a", optional), Data_Error,
                       "ERR:  Cannot get child from a NULL node");
        COMPARE_THROWN(file.Get_Sibling_Node(&element, "a", optional), Data_Error,
                       "ERR:  Cannot get sibling from a NULL node");
    }
}

void TestXmlFile::null_nodes_have_no_child_and_no_sibling()
{
    const TXmlFile file;
    const QDomElement element;
    const QDomNode node;
    QVERIFY(file.Get_First_Node(&element, true).isNull());
    QVERIFY(file.Get_First_Node(&node, true).isNull());
    QVERIFY(file.Get_Sibling_Node(&node, true).isNull());
    COMPARE_THROWN(file.Get_First_Node(&element, false), Data_Error,
                   "ERR: Parent '' does not have nodes and they are not optional.");
    COMPARE_THROWN(file.Get_First_Node(&node, false), Data_Error,
                   "ERR: Parent '' does not have nodes and they are not optional.");
    COMPARE_THROWN(file.Get_Sibling_Node(&node, false), Data_Error,
                   "ERR: Node '' does not have siblings and they are not optional.");
}

void TestXmlFile::readers_require_pointers()
{
    const TXmlFile file;
    const QDomElement* const element = nullptr;
    const QDomNode* const node = nullptr;
    COMPARE_ASSERTION(file.Read_Text_Node(element, true), "node",
                      "QString TXmlFile::Read_Text_Node(const QDomElement*, bool) const");
    COMPARE_ASSERTION(file.Read_Text_Node(node, true), "node",
                      "QString TXmlFile::Read_Text_Node(const QDomNode*, bool) const");
    COMPARE_ASSERTION(
        file.Read_Attribute(element, "a", true), "node",
        "QString TXmlFile::Read_Attribute(const QDomElement*, const QString&, bool) const");
    COMPARE_ASSERTION(
        file.Read_Attribute(node, "a", true), "node",
        "QString TXmlFile::Read_Attribute(const QDomNode*, const QString&, bool) const");
    COMPARE_ASSERTION(
        file.Get_Node(element, "a", true), "node",
        "QDomElement TXmlFile::Get_Node(const QDomElement*, const QString&, bool) const");
    COMPARE_ASSERTION(
        file.Get_Node(node, "a", true), "node",
        "QDomElement TXmlFile::Get_Node(const QDomNode*, const QString&, bool) const");
    COMPARE_ASSERTION(
        file.Get_Sibling_Node(element, "a", true), "current_node",
        "QDomElement TXmlFile::Get_Sibling_Node(const QDomElement*, const QString&, bool) const");
    COMPARE_ASSERTION(file.Get_Sibling_Node(node, true), "current_node",
                      "QDomNode TXmlFile::Get_Sibling_Node(const QDomNode*, bool) const");
    COMPARE_ASSERTION(file.Get_First_Node(element, true), "parent",
                      "QDomNode TXmlFile::Get_First_Node(const QDomElement*, bool) const");
    COMPARE_ASSERTION(file.Get_First_Node(node, true), "parent",
                      "QDomNode TXmlFile::Get_First_Node(const QDomNode*, bool) const");
}

void TestXmlFile::nodes_are_appended_in_order()
{
    TXmlFile file;
    file.Reset(QStringLiteral("R"), 1);
    QDomElement first = file.Create_Node(&file.d_root_element, QStringLiteral("A"));
    file.Create_Node(&file.d_root_element, QStringLiteral("B"));
    file.Create_Node(&first, QStringLiteral("C"));
    QCOMPARE(Compact(file), declaration + "<R File_Version=\"1\"><A><C/></A><B/></R>");
}

void TestXmlFile::nodes_require_a_parent_and_a_name()
{
    TXmlFile file;
    file.Reset(QStringLiteral("R"), 1);
    QDomElement null;
    COMPARE_THROWN(file.Create_Node(&null, "A"), Data_Error,
                   "ERR:  Cannot create node from a NULL node");
    COMPARE_THROWN(file.Create_Node(&null, QString()), Data_Error,
                   "ERR:  Cannot create node from a NULL node");
    COMPARE_THROWN(file.Create_Node(&file.d_root_element, QString()), Data_Error,
                   "ERR:  Cannot create an unnamed node");
    QCOMPARE(Compact(file), declaration + "<R File_Version=\"1\"/>");
}

void TestXmlFile::an_invalid_name_yields_a_null_node()
{
    TXmlFile file;
    file.Reset(QStringLiteral("R"), 1);
    QDomElement element = file.Create_Node(&file.d_root_element, QStringLiteral("1 <"));
    QVERIFY(element.isNull());
    COMPARE_THROWN(file.Write_Text_Node(&element, "t"), Data_Error,
                   "ERR:  Cannot append data to a NULL node");
    QCOMPARE(Compact(file), declaration + "<R File_Version=\"1\"/>");
}

void TestXmlFile::texts_are_written()
{
    TXmlFile file;
    file.Reset(QStringLiteral("R"), 1);
    QDomElement element = file.Create_Node(&file.d_root_element, QStringLiteral("A"));
    file.Write_Text_Node(&element, QStringLiteral("<&> \u00e4"));
    element = file.Create_Node(&file.d_root_element, QStringLiteral("B"));
    file.Write_Text_Node(&element, QString());
    element = file.Create_Node(&file.d_root_element, QStringLiteral("C"));
    file.Write_Text_Node(&element, QStringLiteral("1"));
    file.Write_Text_Node(&element, QStringLiteral("2"));
    QCOMPARE(Compact(file),
             declaration + "<R File_Version=\"1\"><A>&lt;&amp;> \xc3\xa4</A><B></B><C>12</C></R>");
    QDomElement null;
    COMPARE_THROWN(file.Write_Text_Node(&null, "t"), Data_Error,
                   "ERR:  Cannot append data to a NULL node");
}

void TestXmlFile::numbers_are_written_as_text()
{
    TXmlFile file;
    file.Reset(QStringLiteral("R"), 1);
    const auto add = [&file](const char* name) {
        return file.Create_Node(&file.d_root_element, QLatin1String(name));
    };
    QDomElement element = add("I");
    file.Write_Text_Node(&element, -2147483647 - 1);
    element = add("D");
    file.Write_Text_Node(&element, 120.5, 2);
    element = add("E");
    file.Write_Text_Node(&element, 1e9, 0);
    element = add("F");
    file.Write_Text_Node(&element, -0.28, 1);
    QCOMPARE(Compact(file),
             declaration + "<R File_Version=\"1\"><I>-2147483648</I><D>120.50</D><E>1000000000</E>"
                           "<F>-0.3</F></R>");
    QDomElement null;
    COMPARE_THROWN(file.Write_Text_Node(&null, 1), Data_Error,
                   "ERR:  Cannot append data to a NULL node");
    COMPARE_THROWN(file.Write_Text_Node(&null, 1.0, 2), Data_Error,
                   "ERR:  Cannot append data to a NULL node");
}

void TestXmlFile::invalid_texts_are_refused()
{
    TXmlFile file;
    file.Reset(QStringLiteral("R"), 1);
    COMPARE_THROWN(file.Write_Text_Node(&file.d_root_element, "a\x01z"), Data_Error,
                   "ERR:  Cannot write node 'R' with data 'a\x01z'");
    QCOMPARE(Compact(file), declaration + "<R File_Version=\"1\"/>");
}

void TestXmlFile::lines_stay_in_compact_output_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("none") << QString() << QByteArray();
    QTest::newRow("one") << "one" << QByteArray("one");
    QTest::newRow("three") << "one\ntwo\nthree" << QByteArray("one&#10;two&#10;three");
    QTest::newRow("an empty one at each end") << "\none\n" << QByteArray("&#10;one&#10;");
    QTest::newRow("blanks around a text") << " one " << QByteArray(" one ");
    QTest::newRow("blanks alone") << " \t" << QByteArray("<![CDATA[ \t]]>");
    QTest::newRow("beyond 16 bits")
        << QString::fromUtf8("\xf0\x9f\x98\x80\n") << QByteArray("\xf0\x9f\x98\x80&#10;");
    QTest::newRow("a blank beside it")
        << QString::fromUtf8("\xf0\x9f\x98\x80 ") << QByteArray("\xf0\x9f\x98\x80 ");
}

void TestXmlFile::lines_stay_in_compact_output()
{
    QFETCH(const QString, text);
    QFETCH(const QByteArray, content);
    TXmlFile file;
    file.Reset(QStringLiteral("R"), 1);
    file.Write_Lines(&file.d_root_element, text);
    QCOMPARE(Compact(file), declaration + "<R File_Version=\"1\">" + content + "</R>");
}

void TestXmlFile::the_error_about_invalid_lines_contains_all_of_them()
{
    TXmlFile file;
    file.Reset(QStringLiteral("R"), 1);
    const QString controls = QStringLiteral("\n\x01");
    for (const QString& text : {QStringLiteral("one") + controls, controls}) {
        const TThrown thrown = Thrown_By([&] { file.Write_Lines(&file.d_root_element, text); });
        QCOMPARE(thrown.message, "ERR:  Cannot write node 'R' with data '" + text + '\'');
        QCOMPARE(thrown.type, static_cast<int>(TXmlFileException::Data_Error));
    }
    QVERIFY(!file.d_root_element.hasChildNodes());
}

void TestXmlFile::attributes_are_written()
{
    TXmlFile file;
    file.Reset(QStringLiteral("R"), 1);
    const auto add = [&file] { return file.Create_Node(&file.d_root_element, "A"); };
    QDomElement element = add();
    file.Write_Attribute(&element, QStringLiteral("s"), QStringLiteral("<\"&"));
    element = add();
    file.Write_Attribute(&element, QStringLiteral("i"), -12);
    element = add();
    file.Write_Attribute(&element, QStringLiteral("d"), 2.0 / 3.0, 4);
    element = add();
    file.Write_Attribute(&element, QStringLiteral("x"), QStringLiteral("1"));
    file.Write_Attribute(&element, QStringLiteral("x"), QStringLiteral("2"));
    QCOMPARE(Compact(file),
             declaration +
                 "<R File_Version=\"1\"><A s=\"&lt;&quot;&amp;\"/><A i=\"-12\"/><A d=\"0.6667\"/>"
                 "<A x=\"2\"/></R>");
}

void TestXmlFile::attributes_require_a_name()
{
    TXmlFile file;
    file.Reset(QStringLiteral("R"), 1);
    QDomElement* const root = &file.d_root_element;
    COMPARE_THROWN(file.Write_Attribute(root, QString(), QString("v")), Data_Error,
                   "ERR:  Cannot create an unnamed attribute");
    COMPARE_THROWN(file.Write_Attribute(root, QString(), 1), Data_Error,
                   "ERR:  Cannot create an unnamed attribute");
    COMPARE_THROWN(file.Write_Attribute(root, QString(), 1.0, 2), Data_Error,
                   "ERR:  Cannot create an unnamed attribute");
}

void TestXmlFile::writers_require_pointers()
{
    TXmlFile file;
    file.Reset(QStringLiteral("R"), 1);
    COMPARE_ASSERTION(file.Create_Node(nullptr, "A"), "parent",
                      "QDomElement TXmlFile::Create_Node(QDomElement*, const QString&)");
    COMPARE_ASSERTION(file.Write_Text_Node(nullptr, QString()), "node",
                      "void TXmlFile::Write_Text_Node(QDomElement*, const QString&)");
    COMPARE_ASSERTION(file.Write_Text_Node(nullptr, 1), "node",
                      "void TXmlFile::Write_Text_Node(QDomElement*, int)");
    COMPARE_ASSERTION(file.Write_Text_Node(nullptr, 1.0, 1), "node",
                      "void TXmlFile::Write_Text_Node(QDomElement*, const double&, int)");
    COMPARE_ASSERTION(
        file.Write_Attribute(nullptr, "a", QString()), "node",
        "void TXmlFile::Write_Attribute(QDomElement*, const QString&, const QString&)");
    COMPARE_ASSERTION(file.Write_Attribute(nullptr, "a", 1), "node",
                      "void TXmlFile::Write_Attribute(QDomElement*, const QString&, int)");
    COMPARE_ASSERTION(
        file.Write_Attribute(nullptr, "a", 1.0, 1), "node",
        "void TXmlFile::Write_Attribute(QDomElement*, const QString&, const double&, int)");
    COMPARE_ASSERTION(file.Write_Data(nullptr, true), "data",
                      "void TXmlFile::Write_Data(QByteArray*, bool) const");
}

void TestXmlFile::compact_output_has_no_line_breaks()
{
    TXmlFile file;
    file.Reset(QStringLiteral("R"), 1);
    QDomElement parent = file.Create_Node(&file.d_root_element, QStringLiteral("A"));
    file.Create_Node(&parent, QStringLiteral("B"));
    file.d_root_element.appendChild(file.createComment(QStringLiteral("c")));
    QCOMPARE(Compact(file), declaration + "<R File_Version=\"1\"><A><B/></A><!--c--></R>");
}

void TestXmlFile::compact_output_drops_line_breaks_of_texts()
{
    TXmlFile file;
    file.Reset(QStringLiteral("R"), 1);
    file.Write_Text_Node(&file.d_root_element, QStringLiteral("one\ntwo"));
    QCOMPARE(Compact(file), declaration + "<R File_Version=\"1\">onetwo</R>");
    QCOMPARE(Indented(file), declaration + "\n<R File_Version=\"1\">one\ntwo</R>\n");
}

void TestXmlFile::indentation_is_four_blanks()
{
    TXmlFile file;
    file.Reset(QStringLiteral("R"), 1);
    QDomElement parent = file.Create_Node(&file.d_root_element, QStringLiteral("A"));
    QDomElement child = file.Create_Node(&parent, QStringLiteral("B"));
    file.Write_Text_Node(&child, QStringLiteral("t"));
    QCOMPARE(Indented(file),
             declaration + "\n<R File_Version=\"1\">\n    <A>\n        <B>t</B>\n    </A>\n</R>\n");
}

void TestXmlFile::write_data_replaces_the_data()
{
    TXmlFile file;
    file.Reset(QStringLiteral("R"), 1);
    for (const bool compact : {false, true}) {
        QByteArray data(1000, 'x');
        const QByteArray shared = data;
        file.Write_Data(&data, compact);
        QVERIFY(data.startsWith(declaration));
        QVERIFY(!data.contains("xx"));
        QCOMPARE(shared, QByteArray(1000, 'x'));
    }
}

void TestXmlFile::an_empty_document_writes_nothing()
{
    TXmlFile file;
    QCOMPARE(Compact(file), QByteArray());
    QCOMPARE(Indented(file), QByteArray());
    file.Reset(QStringLiteral("R"), 1);
    file.Clear();
    QCOMPARE(Compact(file), QByteArray());
}

void TestXmlFile::output_is_utf8_in_any_locale()
{
    const QString text = QStringLiteral("\u00e4\u20ac\u4e2d");
    for (const char* codec : {"UTF-8", "ISO-8859-1", "US-ASCII", "UTF-16"}) {
        With_Locale_Codec(codec, [&] {
            TXmlFile file;
            file.Reset(QStringLiteral("R"), 1);
            file.Write_Text_Node(&file.d_root_element, text);
            const QByteArray root = "<R File_Version=\"1\">" + text.toUtf8() + "</R>";
            QCOMPARE(Compact(file), declaration + root);
            QCOMPARE(Indented(file), declaration + '\n' + root + '\n');
            file.Reset(QStringLiteral("D"), QStringLiteral("R"), 1);
            file.Write_Text_Node(&file.d_root_element, text);
            QCOMPARE(Compact(file), "<!DOCTYPE D>" + root);
            QCOMPARE(Indented(file), "<!DOCTYPE D>\n" + root + '\n');
        });
    }
}

void TestXmlFile::output_has_the_declared_encoding()
{
    TXmlFile file;
    file.Open_Data("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><R>\xe4</R>",
                   QStringLiteral("R"), nullptr, true);
    QCOMPARE(file.d_root_element.text(), QStringLiteral("\u00e4"));
    QVERIFY(Compact(file).endsWith("<R>\xe4</R>"));
    QVERIFY(Indented(file).endsWith("<R>\xe4</R>\n"));
}

void TestXmlFile::a_file_is_written_as_the_data()
{
    TXmlFile file;
    file.Reset(QStringLiteral("R"), 1);
    QDomElement child = file.Create_Node(&file.d_root_element, QStringLiteral("A"));
    file.Write_Text_Node(&child, QStringLiteral("\u00e4"));
    file.d_file_path = Path("a.xml");
    Support::Write_File(file.d_file_path, QByteArray(1000, 'x'));
    file.Write_File(false);
    QCOMPARE(Support::Read_File(file.d_file_path), Indented(file));
    QCOMPARE(Indented(file), declaration + "\n<R File_Version=\"1\">\n    <A>\xc3\xa4</A>\n</R>\n");
    file.Write_File(true);
    QCOMPARE(Support::Read_File(file.d_file_path), Compact(file));
}

void TestXmlFile::a_write_protected_file_is_a_file_error()
{
    const QString path = Path("fixed.xml");
    Support::Write_File(path, "before");
    QCOMPARE(chmod(QFile::encodeName(path).constData(), 0444), 0);
    const Support::TChildResult child = Support::Run_In_Child([&] {
        Support::Obey_File_Permissions();
        TXmlFile file;
        file.Reset(QStringLiteral("R"), 1);
        file.d_file_path = path;
        const TThrown thrown = Thrown_By([&] { file.Write_File(true); });
        return thrown.type == TXmlFileException::File_Error &&
                       thrown.message ==
                           QStringLiteral("ERR:  Cannot open file '%1' for writing").arg(path)
                   ? 0
                   : 1;
    });
    QCOMPARE(child.exit_code, 0);
    QCOMPARE(Support::Read_File(path), QByteArray("before"));
}

void TestXmlFile::a_file_that_cannot_be_created_is_a_data_error()
{
    TXmlFile file;
    file.Reset(QStringLiteral("R"), 1);
    for (const QString& path : {Path("missing/a.xml"), d_folder->path()}) {
        file.d_file_path = path;
        QFile device(path);
        QVERIFY(!device.open(QIODevice::WriteOnly | QIODevice::Text));
        const TThrown thrown = Thrown_By([&] { file.Write_File(false); });
        QCOMPARE(thrown.type, static_cast<int>(TXmlFileException::Data_Error));
        QCOMPARE(thrown.message, QString("ERR:  Cannot write file '" + path +
                                         "'.  Reason: " + device.errorString()));
    }
}

void TestXmlFile::a_written_document_is_read_back()
{
    TXmlFile written;
    written.Reset(QStringLiteral("R"), 3);
    QDomElement child = written.Create_Node(&written.d_root_element, QStringLiteral("A"));
    written.Write_Text_Node(&child, QStringLiteral("a <b> & \"c\" \u20ac"));
    written.Write_Attribute(&child, QStringLiteral("n"), QStringLiteral("'<&>\""));
    written.d_file_path = Path("a.xml");
    for (const bool compact : {false, true}) {
        written.Write_File(compact);
        TXmlFile read;
        read.d_file_path = written.d_file_path;
        int version = 0;
        read.Open(QStringLiteral("R"), &version, true);
        QCOMPARE(version, 3);
        const QDomElement found = read.Get_Node(&read.d_root_element, QStringLiteral("A"), false);
        QCOMPARE(read.Read_Text_Node(&found, false), QStringLiteral("a <b> & \"c\" \u20ac"));
        QCOMPARE(read.Read_Attribute(&found, QStringLiteral("n"), false), QStringLiteral("'<&>\""));
    }
}

QTEST_MAIN(TestXmlFile)
#include "test_xmlfile.moc"
