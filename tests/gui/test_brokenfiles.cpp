// Damaged files opened in the window: each is loaded, refused with its message, or fails an
// assertion.

#include "support/project.h"
#include "support/support.h"
#include "support/window.h"

#include "src/pagewidget.h"
#include "src/settingswidget.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <functional>
#include <memory>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

using Support::Describe;
using Support::Describe_Appearance;

namespace {

/// What may happen when a file is opened.
enum TOutcome { Loaded, Refused, Stopped };

constexpr int memory_exit_code = 3;

QString Data_Path(const QString& name)
{
    return QStringLiteral(QUILLET_TEST_DATA "/") + name;
}

QStringList Before()
{
    return {"page 1 before 9x9", "label 5 3 '' 1 0,0"};
}

std::unique_ptr<TOpenWindow> Prepared_Window()
{
    auto window = std::make_unique<TOpenWindow>();
    Support::Add_Pages(
        window.get(),
        {{QStringLiteral("before"), Support::Picture(9, 9), {Support::Label(5, 3, {}, 1, {})}}});
    window->d_settings_widget->Set_Label_Size(77);
    return window;
}

/// Peak memory of this process in KiB.
long Peak_Memory()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

/// Limits the memory to what small files can need. Not under a sanitizer, which reserves much
/// address space: there, only Peak_Memory() is checked.
void Limit_Memory()
{
#if !defined(__SANITIZE_ADDRESS__)
    constexpr rlim_t limit = 2048LL * 1024 * 1024;
    const rlimit memory{limit, limit};
    setrlimit(RLIMIT_AS, &memory);
#endif
    const rlimit no_core{0, 0};
    setrlimit(RLIMIT_CORE, &no_core);
}

bool Is_Integer_Assertion(const Support::TChildResult& result)
{
    return result.signal == SIGABRT && result.error_output.contains("core/conversion.cpp") &&
           result.error_output.contains(
               "static int Conversion::Integer(unsigned int, const QByteArray&): Assertion "
               "`(index + sizeof(int) -1) < static_cast<unsigned int>(array.size())' failed");
}

/// Number of the next file to try, in memory that a test shares with its child processes.
class TNextFile
{
public:
    TNextFile()
        : d_next(static_cast<int*>(mmap(nullptr, sizeof(int), PROT_READ | PROT_WRITE,
                                        MAP_SHARED | MAP_ANONYMOUS, -1, 0)))
    {
        *d_next = 0;
    }
    ~TNextFile() { munmap(d_next, sizeof(int)); }
    Q_DISABLE_COPY(TNextFile)

    int Next() const { return *d_next; }
    void Advance() { ++*d_next; }

private:
    int* d_next;
};

/// Under a sanitizer, tries the files that fail no assertion again in this process: leaks in child
/// processes are not detected.
void Try_Here(int count, const QSet<int>& stopped, const std::function<void(int)>& try_file)
{
#if defined(__SANITIZE_ADDRESS__)
    for (int number = 0; number < count; ++number) {
        if (!stopped.contains(number))
            try_file(number);
    }
#else
    Q_UNUSED(count)
    Q_UNUSED(stopped)
    Q_UNUSED(try_file)
#endif
}

/// Tries files one after the other in child processes, with a new one after each failed assertion.
/// @param try_file  loads the file with a number.
/// @return the first outcome that is not allowed; empty when there is none.
QString Try_All(int count, const std::function<void(int)>& try_file, bool may_stop)
{
    constexpr int seconds = 60;
    constexpr long most_memory = 192 * 1024;
    TNextFile next_file;
    QSet<int> stopped;
    while (next_file.Next() < count) {
        const Support::TChildResult result = Support::Run_In_Child(
            [&] {
                Limit_Memory();
                const long before = Peak_Memory();
                while (next_file.Next() < count) {
                    const int number = next_file.Next();
                    next_file.Advance();
                    try_file(number);
                    if (Peak_Memory() - before > most_memory)
                        return memory_exit_code;
                }
                return 0;
            },
            seconds);
        const bool is_allowed =
            (result.exited && result.exit_code == 0) || (may_stop && Is_Integer_Assertion(result));
        if (!is_allowed)
            return QStringLiteral("file %1: exit code %2, signal %3%4, output: %5")
                .arg(next_file.Next() - 1)
                .arg(result.exit_code)
                .arg(result.signal)
                .arg(result.timed_out ? QStringLiteral(", hangs") : QString(),
                     QString::fromUtf8(result.error_output));
        if (result.signal != 0)
            stopped.insert(next_file.Next() - 1);
    }
    Try_Here(count, stopped, try_file);
    return QString();
}

/// A file with one byte changed in several ways.
QList<QByteArray> Changed_At(const QByteArray& whole, int offset)
{
    const char original = whole.at(offset);
    QList<QByteArray> variants;
    for (const char value : {'\x00', '\x01', '\x7f', '\x80', '\xff',
                             static_cast<char>(original + 1), static_cast<char>(original - 1)}) {
        if (value == original)
            continue;
        variants.append(whole);
        variants.last()[offset] = value;
    }
    return variants;
}

QList<QByteArray> Truncations(const QByteArray& whole)
{
    QList<QByteArray> variants;
    for (int size = 0; size < whole.size(); ++size)
        variants.append(whole.left(size));
    return variants;
}

/// A small document with a complete page and an empty one.
QByteArray Small_Project()
{
    return Support::Header(32, "#fa0832", "one", "", 2) +
           Support::Page_Record(
               "a", Support::Png(Support::Picture(3, 2)),
               Support::Item_List(Support::Item_Element("1", "7", "t", "2", "1.00,2.00"))) +
           Support::Page_Record("", "", Support::Item_List());
}

/// Offsets of a project's lengths, counts, numbers and texts: everything but images and labels.
QList<int> Structural_Offsets(const QByteArray& project)
{
    const int image_begin = project.indexOf("\x89PNG");
    const int image_end = project.indexOf("IEND") + 8;
    QList<int> offsets;
    bool in_labels = false;
    for (int offset = 0; offset < project.size(); ++offset) {
        if (project.mid(offset).startsWith("<?xml"))
            in_labels = true;
        if (!in_labels && (offset < image_begin || offset >= image_end))
            offsets.append(offset);
        if (in_labels && (project.mid(0, offset + 1).endsWith("</Quillet_Data>")))
            in_labels = false;
    }
    return offsets;
}

const QByteArray legacy_document =
    "<Quillet_Data File_Version=\"2\"><Item_Size><Width>48</Width></Item_Size>"
    "<Colors><Foreground>blue</Foreground></Colors><Item><ID>3</ID><ID_Text>A</ID_Text>"
    "<Border_Type>3</Border_Type><Position>1,2</Position></Item></Quillet_Data>";

QString Missing(const char* name, const char* parent)
{
    return QStringLiteral("ERR: Node '%1' is missing from node '%2' and not optional.")
        .arg(QLatin1String(name), QLatin1String(parent));
}

QString Missing_Text(const char* name)
{
    return QStringLiteral("ERR: Node Text for '%1' is not optional.").arg(QLatin1String(name));
}

const char* const entity_too_large = "The XML entity \"e3\" expands to a string that is too large "
                                     "to process (10000 characters > 4096).";

QString Parse_Error(const char* source, const char* reason, const char* line, int column)
{
    return QStringLiteral("ERR: Reference %1 XML parse error at line %2 column %3: %4")
        .arg(QLatin1String(source), QLatin1String(reason), QLatin1String(line))
        .arg(column);
}

/// The expected outcome of opening a broken file.
struct TRow
{
    const char* file;
    TOutcome outcome;
    QString reason;
    QString appearance;
    QStringList document;
};

/// Broken containers.
QVector<TRow> Container_Rows()
{
    QVector<TRow> rows;
    const QString invalid = QStringLiteral("Invalid file.");
    const QString old_look = QStringLiteral("77 #f79741 no headers");
    const QString new_size = QStringLiteral("40 #f79741 no headers");
    const QString new_look = QStringLiteral("40 #0a141e no headers");
    const QStringList first{"page 1 first 4x3", "label 1 5 't' 2 1,2"};
    const QStringList second = first + QStringList{"page 2 second 0x0"};
    const QStringList second_label = second + QStringList{"label 1 5 't' 2 1,2"};
    const QStringList none;

    for (const char* file : {"empty", "seven_bytes", "other_magic", "magic_in_the_other_order"})
        rows.append({file, Refused, invalid, old_look, Before()});
    for (const char* file :
         {"ends_after_label_size", "ends_in_colour_length", "ends_in_colour",
          "ends_in_header_length", "ends_in_page_count", "ends_before_the_page",
          "ends_in_image_length", "ends_in_image", "ends_in_items_length",
          "more_pages_than_records", "page_count_of_2_to_the_31", "colour_length_past_the_end",
          "name_length_past_the_end", "image_length_past_the_end"})
        rows.append({file, Stopped, QString(), QString(), none});
    rows.append({"ends_in_items",
                 Refused,
                 Parse_Error("data", "unexpected end of file", "1", 57),
                 new_look,
                 {"page 1 first 4x3"}});
    rows.append({"page_count_negative", Loaded, QString(), new_look, none});
    rows.append({"colour_length_negative", Refused, invalid, new_size, Before()});
    rows.append({"header_1_length_negative", Refused, invalid, new_look, Before()});
    rows.append({"header_2_length_negative", Refused, invalid, new_look, Before()});
    rows.append(
        {"colour_unknown", Loaded, QString(), QStringLiteral("40 invalid no headers"), first});
    for (const char* file :
         {"name_length_negative", "image_length_negative", "items_length_negative"})
        rows.append({file, Refused, invalid, new_look, first});
    rows.append({"name_with_zero_byte", Loaded, QString(), new_look,
                 first + QStringList{"page 2 sec 0x0", "label 1 5 't' 2 1,2"}});
    for (const char* file : {"image_no_picture", "image_header_alone", "image_of_900_megapixels",
                             "items_length_past_the_end", "items_id_twice"})
        rows.append({file, Loaded, QString(), new_look, second_label});

    return rows;
}

/// Broken label documents in the second page.
QVector<TRow> Item_Rows()
{
    QVector<TRow> rows;
    const QString new_look = QStringLiteral("40 #0a141e no headers");
    const QStringList first{"page 1 first 4x3", "label 1 5 't' 2 1,2"};
    const QStringList second = first + QStringList{"page 2 second 0x0"};
    const QStringList second_label = second + QStringList{"label 1 5 't' 2 1,2"};
    rows.append({"items_empty", Refused, Parse_Error("data", "unexpected end of file", "1", 1),
                 new_look, second});
    rows.append({"items_no_xml", Refused,
                 Parse_Error("data", "error occurred while parsing element", "1", 1), new_look,
                 second});
    rows.append({"items_not_closed", Refused,
                 Parse_Error("data", "unexpected end of file", "1", 191), new_look, second});
    rows.append(
        {"items_other_root", Refused,
         QStringLiteral("ERR:  Identification 'Quillet_Data' does not match 'quillet_data'"),
         new_look, second});
    rows.append({"items_without_version", Refused,
                 QStringLiteral("ERR: The 'File_Version' attribute is missing."), new_look,
                 second});
    for (const char* file : {"items_version_2", "items_version_no_number"})
        rows.append(
            {file, Refused, QStringLiteral("XML Version not recognized"), new_look, second});
    const QString bad_position = QStringLiteral("XML Item position invalid");
    rows.append({"items_without_id", Refused, Missing("Id", "Item"), new_look, second_label});
    rows.append({"items_without_value", Refused, Missing("Value", "Item"), new_look, second_label});
    rows.append({"items_without_border_type", Refused, Missing("Border_Type", "Item"), new_look,
                 second_label});
    rows.append(
        {"items_without_position", Refused, Missing("Position", "Item"), new_look, second_label});
    rows.append({"items_empty_id", Refused, Missing_Text("Id"), new_look, second_label});
    rows.append({"items_empty_value", Refused, Missing_Text("Value"), new_look, second_label});
    rows.append(
        {"items_empty_border_type", Refused, Missing_Text("Border_Type"), new_look, second_label});
    rows.append({"items_empty_position", Refused, bad_position, new_look, second_label});
    for (const char* file : {"items_position_three_parts", "items_position_one_part"})
        rows.append({file, Refused, bad_position, new_look, second});
    rows.append({"items_without_text", Loaded, QString(), new_look,
                 second + QStringList{"label 1 5 '' 2 1,2"}});
    rows.append({"items_numbers_no_numbers", Loaded, QString(), new_look,
                 second + QStringList{"label 1 0 't' 2 1,2"}});
    rows.append({"items_entity_bomb", Refused, Parse_Error("data", entity_too_large, "1", 258),
                 new_look, second});
    rows.append({"items_nested_10000_deep", Refused,
                 Parse_Error("data", "elements nested too deeply", "1", 837), new_look, second});
    rows.append({"items_control_character", Refused,
                 Parse_Error("data", "invalid character", "1", 113), new_look, second});
    return rows;
}

QVector<TRow> Project_Rows()
{
    return Container_Rows() + Item_Rows();
}

QVector<TRow> Legacy_Rows()
{
    QVector<TRow> rows;
    const QString no_image = QStringLiteral("Background image not found");
    const QString old_look = QStringLiteral("77 #f79741 no headers");
    const QString new_size = QStringLiteral("48 #f79741 no headers");
    const QString new_look = QStringLiteral("48 #0000ff no headers");
    rows.append({"legacy_list_empty", Refused,
                 Parse_Error("file", "unexpected end of file", "1", 1), old_look, Before()});
    rows.append({"legacy_list_not_closed", Refused,
                 Parse_Error("file", "unexpected end of file", "1", 272), old_look, Before()});
    rows.append({"legacy_other_root", Refused,
                 QStringLiteral("ERR:  Identification 'Quillet_Data' does not match 'Data'"),
                 old_look, Before()});
    rows.append({"legacy_without_version", Refused,
                 QStringLiteral("ERR: The 'File_Version' attribute is missing."), old_look,
                 Before()});
    rows.append({"legacy_version_3", Loaded, QString(), old_look, {"page 1 Page 1 6x5"}});
    rows.append(
        {"legacy_without_size", Refused, Missing("Item_Size", "Quillet_Data"), old_look, Before()});
    rows.append(
        {"legacy_without_colour", Refused, Missing("Colors", "Quillet_Data"), new_size, Before()});
    rows.append({"legacy_without_id", Refused, Missing("ID", "Item"), new_look, Before()});
    rows.append({"legacy_without_text", Refused, Missing("ID_Text", "Item"), new_look, Before()});
    rows.append({"legacy_empty_position", Refused, Missing_Text("Position"), new_look, Before()});
    rows.append(
        {"legacy_position_three_parts", Loaded, QString(), new_look, {"page 1 Page 1 6x5"}});
    rows.append({"legacy_entity_bomb", Refused, Parse_Error("file", entity_too_large, "1", 258),
                 old_look, Before()});
    for (const char* file :
         {"legacy_image_missing", "legacy_image_no_picture", "legacy_image_of_900_megapixels"})
        rows.append({file, Refused, no_image, old_look, Before()});
    return rows;
}

} // namespace

Q_DECLARE_METATYPE(TOutcome)

class TestBrokenFiles : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir d_folder;

    QString Path(const char* name) const { return d_folder.filePath(QString::fromLatin1(name)); }

    static void Add_Rows(const QVector<TRow>& rows)
    {
        QTest::addColumn<TOutcome>("outcome");
        QTest::addColumn<QString>("reason");
        QTest::addColumn<QString>("appearance");
        QTest::addColumn<QStringList>("document");
        for (const TRow& row : rows)
            QTest::newRow(row.file) << row.outcome << row.reason << row.appearance << row.document;
    }

    /// Loads variants of a file in child processes.
    QString Try_Variants(const QList<QByteArray>& variants, const char* name,
                         const std::function<void(TOpenWindow*)>& load, bool may_stop) const
    {
        const auto window = Prepared_Window();
        return Try_All(
            variants.size(),
            [&](int number) {
                Support::Write_File(Path(name), variants.at(number));
                load(window.get());
            },
            may_stop);
    }

    QString Try_Projects(const QList<QByteArray>& variants) const
    {
        return Try_Variants(
            variants, "file.quillet",
            [this](TOpenWindow* window) { window->Load_Data(Path("file.quillet")); }, true);
    }

    QString Try_Legacy(const QList<QByteArray>& variants, const char* name) const
    {
        Support::Write_File(Path("old.qld"), legacy_document);
        Support::Write_File(Path("old.qli"), Support::Png(Support::Picture(3, 2)));
        return Try_Variants(
            variants, name, [this](TOpenWindow* window) { window->Load_Legacy_Data(Path("old")); },
            false);
    }

private slots:
    void initTestCase() { QVERIFY(d_folder.isValid()); }

    void the_script_generates_the_broken_files()
    {
        const QDir made(d_folder.filePath(QStringLiteral("made")));
        QVERIFY(made.mkpath(QStringLiteral(".")));
        QCOMPARE(QProcess::execute(QStringLiteral("python3"),
                                   {Data_Path(QStringLiteral("make_broken.py")), made.path()}),
                 0);
        const QDir kept(Data_Path(QStringLiteral("broken")));
        QCOMPARE(made.entryList(QDir::Files), kept.entryList(QDir::Files));
        for (const QString& name : kept.entryList(QDir::Files))
            QVERIFY2(Support::Read_File(made.filePath(name)) ==
                         Support::Read_File(kept.filePath(name)),
                     qPrintable(name));
    }

    void every_broken_file_is_in_a_table()
    {
        QStringList listed;
        for (const TRow& row : Project_Rows())
            listed += QString::fromLatin1(row.file) + QStringLiteral(".quillet");
        for (const TRow& row : Legacy_Rows())
            listed += QString::fromLatin1(row.file) + QStringLiteral(".qld");
        listed.sort();
        QStringList files = QDir(Data_Path(QStringLiteral("broken")))
                                .entryList({QStringLiteral("*.quillet"), QStringLiteral("*.qld")});
        files.sort();
        QCOMPARE(listed, files);
    }

    void a_broken_project_has_the_outcome_in_the_table_data() { Add_Rows(Project_Rows()); }

    void a_broken_project_has_the_outcome_in_the_table()
    {
        QFETCH(const TOutcome, outcome);
        const QString path = Data_Path(
            QStringLiteral("broken/%1.quillet").arg(QString::fromLatin1(QTest::currentDataTag())));
        QVERIFY2(QFile::exists(path), qPrintable(path));
        const auto window = Prepared_Window();
        if (outcome == Stopped) {
            const Support::TChildResult result = Support::Run_In_Child([&] {
                Limit_Memory();
                window->Load_Data(path);
                return 0;
            });
            QVERIFY2(Is_Integer_Assertion(result), result.error_output.constData());
            return;
        }
        const long memory = Peak_Memory();
        QCOMPARE(window->Load_Data(path), outcome == Loaded);
        QTEST(window->d_error_text, "reason");
        QTEST(Describe_Appearance(*window), "appearance");
        QTEST(Describe(window.get()), "document");
        constexpr long most_memory = 64 * 1024;
        QVERIFY(Peak_Memory() - memory < most_memory);
    }

    void a_broken_legacy_pair_has_the_outcome_in_the_table_data() { Add_Rows(Legacy_Rows()); }

    void a_broken_legacy_pair_has_the_outcome_in_the_table()
    {
        QFETCH(const TOutcome, outcome);
        const QString base =
            Data_Path(QStringLiteral("broken/") + QString::fromLatin1(QTest::currentDataTag()));
        QVERIFY2(QFile::exists(base + QStringLiteral(".qld")), qPrintable(base));
        const auto window = Prepared_Window();
        QCOMPARE(window->Load_Legacy_Data(base), outcome == Loaded);
        QTEST(window->d_error_text, "reason");
        QTEST(Describe_Appearance(*window), "appearance");
        QTEST(Describe(window.get()), "document");
    }

    void a_project_cut_anywhere_has_an_allowed_outcome()
    {
        QCOMPARE(Try_Projects(Truncations(Small_Project())), QString());
    }

    void a_project_with_a_changed_structure_has_an_allowed_outcome()
    {
        const QByteArray whole = Small_Project();
        QList<QByteArray> variants;
        for (const int offset : Structural_Offsets(whole))
            variants += Changed_At(whole, offset);
        QCOMPARE(Try_Projects(variants), QString());
    }

    void a_project_with_changed_content_has_an_allowed_outcome()
    {
        const QByteArray whole = Small_Project();
        const QList<int> structure = Structural_Offsets(whole);
        QList<QByteArray> variants;
        for (int offset = 0; offset < whole.size(); ++offset) {
            if (!structure.contains(offset))
                variants += Changed_At(whole, offset);
        }
        QCOMPARE(Try_Projects(variants), QString());
    }

    void a_legacy_list_cut_or_changed_anywhere_is_loaded_or_refused()
    {
        QList<QByteArray> variants = Truncations(legacy_document);
        for (int offset = 0; offset < legacy_document.size(); ++offset)
            variants += Changed_At(legacy_document, offset);
        QCOMPARE(Try_Legacy(variants, "old.qld"), QString());
    }

    void a_legacy_image_cut_or_changed_anywhere_is_loaded_or_refused()
    {
        const QByteArray whole = Support::Png(Support::Picture(3, 2));
        QList<QByteArray> variants = Truncations(whole);
        for (int offset = 0; offset < whole.size(); ++offset)
            variants += Changed_At(whole, offset);
        QCOMPARE(Try_Legacy(variants, "old.qli"), QString());
    }
};

QTEST_MAIN(TestBrokenFiles)
#include "test_brokenfiles.moc"
