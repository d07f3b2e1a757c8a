#include "support/project.h"
#include "support/support.h"
#include "support/tool.h"

#include <QFile>
#include <QTest>

using Support::TScriptResult;

namespace {

const QByteArray page_name = "a\x1b[31m\n\xad";

} // namespace

/// Tests standard streams, pipes, and what is printed where. Each test has a folder with a
/// document, a table and an image.
class TestCliStreams : public Support::TToolTest
{
    Q_OBJECT

private slots:
    void init()
    {
        TToolTest::init();
        Write("a.quillet", Support::One_Label_Project(page_name));
        Write("items.csv", "page,value,x,y\r\n1,3,4,5\r\n");
        Write("image.png", Support::Png(Support::Picture(60, 40)));
    }

    void a_hyphen_stands_for_standard_input_data()
    {
        QTest::addColumn<QString>("streamed");
        QTest::addColumn<QString>("named");
        const auto row = [](const char* name, const QString& streamed, const QString& named) {
            QTest::newRow(name) << streamed << named;
        };
        row("image", "create - -o x <image.png", "create image.png -o y");
        row("document", "reindex - --first 4 --over-page 1 -o x <a.quillet",
            "reindex a.quillet --first 4 --over-page 1 -o y");
        row("table", "import-items a.quillet --csv - -o x <items.csv",
            "import-items a.quillet --csv items.csv -o y");
        row("damaged document", "recover - -o x <a.quillet", "recover a.quillet -o y");
        row("pipe for an image", "create <(cat image.png) -o x", "create image.png -o y");
        row("pipe for a document", "export-items <(cat a.quillet) --csv x",
            "export-items a.quillet --csv y");
        row("pipe for a table", "import-items a.quillet --csv <(cat items.csv) -o x",
            "import-items a.quillet --csv items.csv -o y");
    }
    void a_hyphen_stands_for_standard_input()
    {
        QFETCH(const QString, streamed);
        QFETCH(const QString, named);
        const TScriptResult result = Shell("$tool " + streamed);
        QCOMPARE(result.errors, QByteArray());
        QCOMPARE(result.status, 0);
        QCOMPARE(Shell("$tool " + named).status, 0);
        QCOMPARE(Support::Byte_Difference(Content("x"), Content("y")), QString());
        QVERIFY(!Content("x").isEmpty());
    }

    void a_hyphen_stands_for_standard_output_data()
    {
        QTest::addColumn<QString>("command");
        QTest::newRow("create") << "create image.png --output";
        QTest::newRow("recover") << "recover a.quillet --output";
        QTest::newRow("reindex") << "reindex a.quillet --first 4 --over-page 1 --output";
        QTest::newRow("import-items") << "import-items a.quillet --csv items.csv --output";
        QTest::newRow("export-items") << "export-items a.quillet --csv";
        QTest::newRow("export-html") << "export-html a.quillet --output";
        QTest::newRow("thumbnail") << "thumbnail a.quillet --output";
        QTest::newRow("export-pdf") << "export-pdf a.quillet --output";
    }
    void a_hyphen_stands_for_standard_output()
    {
        QFETCH(const QString, command);
        QCOMPARE(Shell("$tool " + command + " named").status, 0);
        const TScriptResult result = Shell("$tool " + command + " -");
        QCOMPARE(result.status, 0);
        const auto timeless = [this](const QByteArray& content) {
            Write("pdf", content);
            return content.startsWith("%PDF") ? Support::Timeless_Pdf(Path("pdf")) : content;
        };
        QCOMPARE(Support::Byte_Difference(timeless(result.output), timeless(Content("named"))),
                 QString());
        QVERIFY(!QFile::exists(Path("-")));
    }

    void reports_go_to_standard_error_if_a_file_goes_to_standard_output()
    {
        QCOMPARE(Shell("$tool recover a.quillet -o x").errors, QByteArray());
        QCOMPARE(Shell("$tool recover a.quillet -o - >y").errors,
                 QByteArray("-: pages: 1, undamaged pages: 1, labels: 1, defects: 0\n"));
        QCOMPARE(Content("y"), Content("x"));
    }

    void standard_streams_can_be_used_once_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QByteArray>("complaint");
        QTest::newRow("two inputs") << "import-items - --csv - -o x <a.quillet"
                                    << QByteArray("Standard input can be used only once.");
        QTest::newRow("the same input twice")
            << "export-images - - --folder . <a.quillet"
            << QByteArray("Standard input can be used only once.");
        QTest::newRow("table and list") << "export-items a.quillet --csv - --json"
                                        << QByteArray("Standard output can be used only once.");
        QTest::newRow("report and list") << "export-pdf a.quillet -o - --json"
                                         << QByteArray("Standard output can be used only once.");
    }
    void standard_streams_can_be_used_once()
    {
        QFETCH(const QString, command);
        QFETCH(const QByteArray, complaint);
        const TScriptResult result = Shell("$tool " + command);
        QCOMPARE(result.errors.split('\n').first(), "quillet-cli: " + complaint);
        QCOMPARE(result.status, 2);
        QCOMPARE(result.output, QByteArray());
    }

    void the_file_behind_a_standard_stream_is_not_overwritten_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QByteArray>("output");
        QTest::newRow("input") << "thumbnail - -o a.quillet -f <a.quillet"
                               << QByteArray("a.quillet");
        QTest::newRow("image") << "create - -o a.quillet -f <a.quillet" << QByteArray("a.quillet");
        QTest::newRow("output") << "export-items a.quillet --csv - >>a.quillet"
                                << QByteArray("standard output");
        QTest::newRow("both") << "export-html - -o - <a.quillet >>a.quillet"
                              << QByteArray("standard output");
    }
    void the_file_behind_a_standard_stream_is_not_overwritten()
    {
        QFETCH(const QString, command);
        QFETCH(const QByteArray, output);
        const QByteArray before = Content("a.quillet");
        const TScriptResult result = Shell("$tool " + command);
        QCOMPARE(result.errors,
                 "quillet-cli: " + output + ": is an input and cannot be overwritten\n");
        QCOMPARE(result.status, 1);
        QCOMPARE(Content("a.quillet"), before);
    }

    void the_document_behind_standard_input_can_be_edited()
    {
        QCOMPARE(Shell("$tool set - --label-size 40 -o a.quillet -f <a.quillet").errors,
                 QByteArray());
        QVERIFY(Shell("$tool info a.quillet").output.contains("\nLabel size: 40\n"));
    }

    void the_same_device_may_be_input_and_output()
    {
        QVERIFY(!Shell("$tool create - -o - </dev/null >/dev/null").errors.contains("overwritten"));
    }

    void a_closed_stream_is_an_error_only_if_it_is_used()
    {
        const QByteArray reason = ": Bad file descriptor\n";
        QCOMPARE(Shell("$tool info - <&-").errors,
                 "quillet-cli: standard input: cannot be read" + reason);
        QCOMPARE(Shell("$tool info a.quillet >&-").errors,
                 "quillet-cli: standard output: cannot be written" + reason);
        QCOMPARE(Shell("$tool create image.png -o out <&- >&- 2>&-").status, 0);
        QCOMPARE(Shell("$tool check out").status, 0);
    }

    void a_file_named_hyphen_is_reached_by_its_path()
    {
        QCOMPARE(Shell("$tool export-items a.quillet --csv ./-").status, 0);
        QVERIFY(Content("-").startsWith("page,"));
        QVERIFY(Shell("$tool info - <a.quillet").output.startsWith("File: -\n"));
    }

    void standard_input_is_named_in_errors()
    {
        QCOMPARE(Shell("echo no project | $tool info -").errors,
                 QByteArray("quillet-cli: standard input: byte 0: the file does not begin with the "
                            "magic number of a project file\n"));
    }

    void an_endless_pipe_is_refused()
    {
        // The sanitizer reserves more address space than any limit of use.
#if defined(__SANITIZE_ADDRESS__)
        const TScriptResult result = Shell("$tool info /dev/zero");
#else
        const TScriptResult result = Shell("ulimit -v 8000000; $tool info /dev/zero");
#endif
        QCOMPARE(result.errors,
                 QByteArray("quillet-cli: /dev/zero: cannot be read: it is larger than 2 GiB\n"));
        QCOMPARE(result.status, 1);
    }

    void binary_files_are_printed_on_a_terminal_only_with_force()
    {
        QCOMPARE(On_Terminal("$tool thumbnail a.quillet -o -").output,
                 QByteArray("quillet-cli: standard output: is a terminal; redirect it, or use "
                            "--force to write to it\r\n"));
        QVERIFY(On_Terminal("$tool thumbnail a.quillet -o - -f").output.contains("PNG"));
        QVERIFY(On_Terminal("$tool export-items a.quillet --csv -").output.startsWith("page,"));
    }

    void control_characters_are_escaped_on_terminals()
    {
        // The soft hyphen is invisible, as are the characters that reverse texts.
        const QByteArray name = "a\x1b[31m\n\xc2\xad";
        const QByteArray shown = "a\\x1b[31m\\n\\xad";
        QVERIFY(Shell("$tool info a.quillet").output.endsWith(", " + name + '\n'));
        QVERIFY(On_Terminal("$tool info a.quillet").output.endsWith(", " + shown + "\r\n"));
        QCOMPARE(
            On_Terminal("$tool info $'b\\e\\u202e\\u2028\\u2029'").output,
            QByteArray("quillet-cli: b\\x1b\\u202e\\u2028\\u2029: cannot be read: No such file or "
                       "directory\r\n"));
        Write("items.csv", "page,value,x,y,text\r\n1,3,4,5,\"a\tb\x7f\"\r\n");
        QCOMPARE(Shell("$tool import-items a.quillet --csv items.csv -o b").errors, QByteArray());
        QVERIFY(On_Terminal("$tool export-items b --csv -").output.contains("a\\tb\\x7f"));
    }

    void errors_and_results_are_in_the_order_in_which_they_are_printed()
    {
        const TScriptResult result = Shell("$tool check a.quillet missing a.quillet 2>&1");
        QCOMPARE(result.output,
                 QByteArray("a.quillet: no defects\n"
                            "quillet-cli: missing: cannot be read: No such file or directory\n"
                            "a.quillet: no defects\n"));
    }

    void quiet_prints_neither_reports_nor_warnings_nor_progress_data()
    {
        QTest::addColumn<QString>("command");
        QTest::newRow("list of files") << "export-pdf a.quillet -o out";
        QTest::newRow("report") << "recover a.quillet -o out";
        QTest::newRow("warning") << "export-html a.quillet -o out --findings items.csv";
        QTest::newRow("no defects") << "check a.quillet";
    }
    void quiet_prints_neither_reports_nor_warnings_nor_progress()
    {
        QFETCH(QString, command);
        QVERIFY(!On_Terminal("$tool " + command).output.isEmpty());
        QCOMPARE(On_Terminal("$tool " + command.replace("out", "other") + " -q").output,
                 QByteArray());
        // What a command is asked for is printed.
        QVERIFY(!Shell("$tool info -q a.quillet").output.isEmpty());
        QVERIFY(!Shell("$tool check -q missing").errors.isEmpty());
    }

    void verbose_prints_the_files_that_are_read_and_written()
    {
        const TScriptResult result =
            Shell("$tool import-items -v a.quillet --csv items.csv -o out");
        QCOMPARE(result.output, QByteArray());
        QCOMPARE(result.errors, QByteArray("quillet-cli: a.quillet: read, %1 bytes\n"
                                           "quillet-cli: items.csv: read, 25 bytes\n"
                                           "quillet-cli: out: written, %2 bytes\n")
                                    .replace("%1", QByteArray::number(Content("a.quillet").size()))
                                    .replace("%2", QByteArray::number(Content("out").size())));
        QCOMPARE(Shell("$tool info -qv a.quillet").errors.split('\n').first(),
                 QByteArray("quillet-cli: Options 'quiet' and 'verbose' exclude each other."));
    }

    void short_options_can_be_combined()
    {
        Write("out", "old");
        QCOMPARE(Shell("$tool create -qfoout image.png").status, 0);
        QVERIFY(Content("out").startsWith(Support::Magic()));
    }
};

QTEST_MAIN(TestCliStreams)
#include "test_clistreams.moc"
