#include "support/project.h"
#include "support/support.h"
#include "support/tool.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include <unistd.h>

using Support::TToolResult;

namespace {

const QStringList command_names = {"create",       "info",          "check",      "recover",
                                   "diff",         "set",           "pages",      "merge",
                                   "reindex",      "export-images", "export-pdf", "export-html",
                                   "import-items", "export-items",  "kept",       "thumbnail"};

} // namespace

/// Tests what all commands have in common. Each test has a folder with a sound document, a damaged
/// one, a table and an image.
class TestCli : public Support::TToolTest
{
    Q_OBJECT

    /// Runs the tool as an ordinary user: root's right to ignore permissions is dropped.
    TToolResult Run_Without_Privileges(const QStringList& arguments) const
    {
        QStringList command{Support::Tool_Path()};
        if (geteuid() == 0)
            command = QStringList{"setpriv", "--inh-caps=-all", "--bounding-set=-all"} + command;
        QProcess process;
        process.setWorkingDirectory(d_folder->path());
        process.start(command.first(), command.mid(1) + arguments);
        TToolResult result;
        if (process.waitForFinished() && process.exitStatus() == QProcess::NormalExit)
            result.status = process.exitCode();
        result.errors = QString::fromUtf8(process.readAllStandardError());
        return result;
    }

    /// Adds the arguments of each command that writes a file, here "out".
    static void Add_Writing_Commands()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("create") << QStringList{"create", "image.png", "--output", "out"};
        QTest::newRow("recover") << QStringList{"recover", "damaged.quillet", "--output", "out"};
        QTest::newRow("reindex") << QStringList{
            "reindex", "sound.quillet", "--first", "1", "--over-page", "10", "--output", "out"};
        QTest::newRow("set") << QStringList{"set", "sound.quillet", "--label-size",
                                            "40",  "--output",      "out"};
        QTest::newRow("pages") << QStringList{"pages", "sound.quillet", "--rename",
                                              "1=b",   "--output",      "out"};
        QTest::newRow("merge") << QStringList{"merge", "sound.quillet", "sound.quillet", "--output",
                                              "out"};
        QTest::newRow("export-pdf")
            << QStringList{"export-pdf", "sound.quillet", "--output", "out"};
        QTest::newRow("export-html")
            << QStringList{"export-html", "sound.quillet", "--output", "out"};
        QTest::newRow("import-items") << QStringList{"import-items", "sound.quillet", "--csv",
                                                     "items.csv",    "--output",      "out"};
        QTest::newRow("export-items")
            << QStringList{"export-items", "sound.quillet", "--csv", "out"};
        QTest::newRow("thumbnail") << QStringList{"thumbnail", "sound.quillet", "--output", "out"};
    }

private slots:
    void init()
    {
        TToolTest::init();
        const QByteArray project = Support::One_Label_Project();
        Write("sound.quillet", project);
        Write("damaged.quillet", project.left(project.size() - 9));
        Write("items.csv", "page,value,x,y\r\n1,3,4,5\r\n");
        Write("image.png", Support::Png(Support::Picture(60, 40)));
    }

    void help_lists_every_command_data()
    {
        QTest::addColumn<QString>("option");
        QTest::newRow("long") << "--help";
        QTest::newRow("short") << "-h";
    }
    void help_lists_every_command()
    {
        QFETCH(const QString, option);
        const TToolResult result = Run({option});
        QCOMPARE(result.status, 0);
        QCOMPARE(result.errors, QString());
        const int column =
            result.output.indexOf("Show this help.") - result.output.indexOf("  -h, --help");
        for (const QString& name : command_names) {
            // The summaries of commands and options begin in the same column.
            const QString summary = Run({name, "--help"}).output.section('\n', 1, 1);
            const QString line = QString("  " + name).leftJustified(column) + summary;
            QVERIFY2(result.output.contains('\n' + line + '\n'), qPrintable(name));
        }
    }

    void version_prints_the_project_version_data()
    {
        QTest::addColumn<QString>("option");
        QTest::newRow("long") << "--version";
        QTest::newRow("short") << "-v";
    }
    void version_prints_the_project_version()
    {
        QFETCH(const QString, option);
        const TToolResult result = Run({option});
        QCOMPARE(result.status, 0);
        QCOMPARE(result.output, QStringLiteral("quillet-cli 3.0\n"));
        QCOMPARE(result.errors, QString());
    }

    void each_command_prints_its_help_data()
    {
        QTest::addColumn<QString>("name");
        for (const QString& name : command_names)
            QTest::newRow(qPrintable(name)) << name;
    }
    void each_command_prints_its_help()
    {
        QFETCH(const QString, name);
        const TToolResult result = Run({name, "--help"});
        QCOMPARE(result.status, 0);
        QCOMPARE(result.errors, QString());
        QVERIFY2(result.output.startsWith("Usage: quillet-cli " + name + " [options]"),
                 qPrintable(result.output));
        const QString summary = result.output.section('\n', 1, 1);
        QVERIFY(!summary.isEmpty());
        QVERIFY(Run({"--help"}).output.contains(summary));
        QCOMPARE(result.output.contains("\nArguments:\n"), name != "kept");
        // Qt's own options are not listed.
        QVERIFY(!result.output.contains("--help-all"));
        QCOMPARE(Run({name, "-h"}).output, result.output);
        // Help is printed despite other mistakes.
        for (const char* const option : {"-h", "--help"})
            QCOMPARE(Run({name, "--paint", option}).output, result.output);
    }

    void invalid_usage_exits_with_status_2_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("complaint");
        const auto row = [](const QString& arguments, const QString& complaint) {
            QTest::newRow(qPrintable(arguments))
                << arguments.split(' ', Qt::SkipEmptyParts) << complaint;
        };
        row("", "Missing command.");
        row("paint", "Unknown command 'paint'.");
        row("--paint", "Unknown command '--paint'.");
        row("--help create", "Unexpected argument 'create'.");
        row("-v info", "Unexpected argument 'info'.");
        row("info", "Missing argument 'FILE'.");
        row("info a b", "Unexpected argument 'b'.");
        row("info sound.quillet --paint", "Unknown option 'paint'.");
        row("info sound.quillet --json=1", "Unexpected value after '--json'.");
        QTest::newRow("info with an empty name")
            << QStringList{"info", ""} << "Missing argument 'FILE'.";
        QTest::newRow("check with an empty second name")
            << QStringList{"check", "sound.quillet", ""} << "Missing argument 'FILE'.";
        QTest::newRow("kept with an empty name")
            << QStringList{"kept", ""} << "Unexpected argument ''.";
        row("check", "Missing argument 'FILE'.");
        row("create --output out", "Missing argument 'FILE'.");
        for (const QString value : {"35", "1201", "150dpi", "-1"})
            row("create image.png --output out --dpi=" + value,
                "Invalid value '" + value +
                    "' for option 'dpi': expected a whole number from 36 to 1200.");
        for (const QString value : {"", "0", "3-1", "1,,2", "all"})
            row("create image.png --output out --pdf-pages=" + value,
                "Invalid value '" + value +
                    "' for option 'pdf-pages': expected page numbers and ranges such as 1-3,7.");
        row("create image.png", "Missing option 'output'.");
        row("create image.png --output", "Missing value after '--output'.");
        row("create image.png --output=",
            "Invalid value '' for option 'output': expected a text that is not empty.");
        row("recover damaged.quillet", "Missing option 'output'.");
        row("reindex sound.quillet --first 1 --output out", "Missing option 'over-page'.");
        row("reindex sound.quillet --over-page 1 --output out", "Missing option 'first'.");
        row("reindex sound.quillet --first 1 --over-page 1", "Missing option 'output'.");
        row("reindex sound.quillet --first x --over-page 1 --output out",
            "Invalid value 'x' for option 'first': expected a whole number from -2147483648 to "
            "2147483647.");
        row("reindex sound.quillet --first 2147483648 --over-page 1 --output out",
            "Invalid value '2147483648' for option 'first': expected a whole number from "
            "-2147483648 to 2147483647.");
        row("reindex sound.quillet --first 1 --over-page 5 --output out",
            "Invalid value '5' for option 'over-page': expected one of 1, 10, 100, 1000.");
        row("export-images sound.quillet", "Missing option 'folder'.");
        row("export-images sound.quillet --folder=",
            "Invalid value '' for option 'folder': expected a text that is not empty.");
        row("export-pdf sound.quillet", "Missing option 'output' or 'folder'.");
        row("export-pdf sound.quillet --output out --orientation upright",
            "Invalid value 'upright' for option 'orientation': expected one of portrait, "
            "landscape, 0, 1.");
        row("export-pdf sound.quillet --output out --resolution 100",
            "Invalid value '100' for option 'resolution': expected one of 96, 180, 276, 372, "
            "96 DPI, 180 DPI, 276 DPI, 372 DPI, 1, 2, 3, 4.");
        row("export-pdf sound.quillet --output out --resolution 5",
            "Invalid value '5' for option 'resolution': expected one of 96, 180, 276, 372, "
            "96 DPI, 180 DPI, 276 DPI, 372 DPI, 1, 2, 3, 4.");
        row("import-items sound.quillet --output out", "Missing option 'csv'.");
        row("import-items sound.quillet --csv items.csv", "Missing option 'output'.");
        row("export-items sound.quillet", "Missing option 'csv' or 'json'.");
        row("thumbnail sound.quillet", "Missing option 'output'.");
        row("thumbnail sound.quillet --output out --size 0",
            "Invalid value '0' for option 'size': expected a whole number from 1 to 8192.");
        row("thumbnail sound.quillet --output out --size 8193",
            "Invalid value '8193' for option 'size': expected a whole number from 1 to 8192.");
        row("thumbnail sound.quillet --output out --size big",
            "Invalid value 'big' for option 'size': expected a whole number from 1 to 8192.");
        row("kept 1", "Unexpected argument '1'.");
        row("kept --copy 1", "Options 'copy' and 'output' must be used together.");
        row("kept --output out", "Options 'copy' and 'output' must be used together.");
        row("kept --copy x --output out",
            "Invalid value 'x' for option 'copy': expected a whole number from 1 to 2147483647.");
        row("kept --copy 0 --output out",
            "Invalid value '0' for option 'copy': expected a whole number from 1 to 2147483647.");
    }
    void invalid_usage_exits_with_status_2()
    {
        QFETCH(const QStringList, arguments);
        QFETCH(const QString, complaint);
        const QStringList before = Support::Entries(d_folder->path());
        const TToolResult result = Run(arguments);
        QCOMPARE(result.status, 2);
        QCOMPARE(result.output, QString());
        QCOMPARE(result.errors.section('\n', 0, 0), "quillet-cli: " + complaint);
        QVERIFY(result.errors.section('\n', 1, 1).endsWith(" --help'."));
        QCOMPARE(Support::Entries(d_folder->path()), before);
        QCOMPARE(result.home, QStringList());
    }

    void an_argument_that_is_not_utf_8_is_refused_data()
    {
        QTest::addColumn<QString>("command");
        QTest::newRow("read") << "$tool check $'b\\xff'";
        QTest::newRow("written") << "$tool create image.png --output $'b\\xff'";
    }
    void an_argument_that_is_not_utf_8_is_refused()
    {
        QFETCH(const QString, command);
        const QStringList before = Support::Entries(d_folder->path());
        const Support::TScriptResult result = Shell(command);
        QCOMPARE(result.status, 2);
        QCOMPARE(result.errors.split('\n').first(),
                 QByteArray("quillet-cli: Argument 'b\xef\xbf\xbd' is not valid UTF-8."));
        QCOMPARE(Support::Entries(d_folder->path()), before);
    }

    void an_input_is_never_overwritten_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<QString>("name");
        QTest::newRow("create") << "create image.png --output image.png"
                                << "image.png";
        QTest::newRow("export-pdf") << "export-pdf sound.quillet --output sound.quillet"
                                    << "sound.quillet";
        QTest::newRow("thumbnail") << "thumbnail sound.quillet --output ./sound.quillet"
                                   << "./sound.quillet";
        QTest::newRow("export-items") << "export-items sound.quillet --csv link"
                                      << "link";
        QTest::newRow("import-items")
            << "import-items sound.quillet --csv items.csv --output items.csv"
            << "items.csv";
    }
    void an_input_is_never_overwritten()
    {
        QFETCH(const QString, arguments);
        QFETCH(const QString, name);
        QVERIFY(QFile::link("sound.quillet", Path("link")));
        const QByteArray before = Content(name);
        const TToolResult result = Run(arguments.split(' ') + QStringList{"--force"});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors,
                 "quillet-cli: " + name + ": is an input and cannot be overwritten\n");
        QCOMPARE(Content(name), before);
    }

    void a_hard_link_to_an_input_is_not_overwritten()
    {
        QCOMPARE(link(QFile::encodeName(Path("sound.quillet")).constData(),
                      QFile::encodeName(Path("hard.quillet")).constData()),
                 0);
        const TToolResult result =
            Run({"export-pdf", "sound.quillet", "--output", "hard.quillet", "--force"});
        QCOMPARE(result.status, 1);
        QCOMPARE(
            result.errors,
            QStringLiteral("quillet-cli: hard.quillet: is an input and cannot be overwritten\n"));
        QCOMPARE(Content("sound.quillet"), Support::One_Label_Project());
    }

    void neither_file_of_a_legacy_document_is_overwritten_data()
    {
        QTest::addColumn<QString>("command");
        QTest::newRow("export-html") << "export-html";
        QTest::newRow("reindex") << "reindex --first 5 --over-page 10";
        QTest::newRow("set") << "set --label-size 40";
        QTest::newRow("pages") << "pages --rename 1=b";
        QTest::newRow("merge") << "merge";
        QTest::newRow("import-items") << "import-items --csv items.csv";
    }
    void neither_file_of_a_legacy_document_is_overwritten()
    {
        QFETCH(const QString, command);
        const QByteArray image = Content("image.png");
        const QByteArray list = "<Quillet_Data File_Version=\"3\"/>";
        Write("a.qli", image);
        Write("a.qld", list);
        QCOMPARE(link(QFile::encodeName(Path("a.qli")).constData(),
                      QFile::encodeName(Path("hard.qli")).constData()),
                 0);
        QVERIFY(QFile::link("a.qld", Path("soft.qld")));
        for (const char* const output : {"a.qld", "./a.qli", "hard.qli", "soft.qld"}) {
            const TToolResult result =
                Run(command.split(' ') + QStringList{"a.qld", "--output", output, "--force"});
            QCOMPARE(result.status, 1);
            QCOMPARE(result.errors,
                     QStringLiteral("quillet-cli: %1: is an input and cannot be overwritten\n")
                         .arg(output));
            QCOMPARE(Content("a.qld"), list);
            QCOMPARE(Content("a.qli"), image);
        }
    }

    void an_existing_file_is_kept_without_force_data() { Add_Writing_Commands(); }
    void an_existing_file_is_kept_without_force()
    {
        QFETCH(const QStringList, arguments);
        Write("out", "old");
        const QStringList before = Support::Entries(d_folder->path());
        const TToolResult result = Run(arguments);
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors,
                 QStringLiteral("quillet-cli: out: already exists; use --force to overwrite it\n"));
        QCOMPARE(Content("out"), QByteArray("old"));
        QCOMPARE(Support::Entries(d_folder->path()), before);
    }

    void force_overwrites_an_existing_file_data() { Add_Writing_Commands(); }
    void force_overwrites_an_existing_file()
    {
        QFETCH(const QStringList, arguments);
        Write("out", "old");
        const QStringList before = Support::Entries(d_folder->path());
        const TToolResult result = Run(arguments + QStringList{"--force"});
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.status, 0);
        QVERIFY(Content("out").size() > 3);
        QCOMPARE(Support::Entries(d_folder->path()), before);
    }

    void a_full_disk_keeps_the_existing_file_data() { Add_Writing_Commands(); }
    void a_full_disk_keeps_the_existing_file()
    {
        QFETCH(const QStringList, arguments);
        Write("out", "old");
        const QStringList before = Support::Entries(d_folder->path());
        d_options.file_size = "0";
        const TToolResult result = Run(arguments + QStringList{"--force"});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors,
                 QStringLiteral("quillet-cli: out: cannot be written: File too large\n"));
        QCOMPARE(Content("out"), QByteArray("old"));
        QCOMPARE(Support::Entries(d_folder->path()), before);
    }

    void a_failed_overwrite_names_the_complete_new_file()
    {
        // A file with two hard links is overwritten, which the system refuses while it runs as a
        // program.
        const QString out = QDir(QDir(d_folder->path()).canonicalPath()).filePath("out");
        QVERIFY(QFile::copy("/bin/sleep", out));
        QCOMPARE(
            link(QFile::encodeName(out).constData(), QFile::encodeName(Path("other")).constData()),
            0);
        QProcess program;
        program.start(out, {"60"});
        QVERIFY(program.waitForStarted());
        const TToolResult result =
            Run({"export-items", "sound.quillet", "--csv", "out", "--force"});
        program.kill();
        QVERIFY(program.waitForFinished());
        QCOMPARE(
            result.errors,
            QString("quillet-cli: '%1' is incomplete; the complete new version is in '%1.new'\n"
                    "quillet-cli: out: cannot be written\n")
                .arg(out));
        QCOMPARE(result.status, 1);
        QVERIFY(Content("out.new").startsWith("page,"));
    }

    void a_missing_output_folder_is_refused_data() { Add_Writing_Commands(); }
    void a_missing_output_folder_is_refused()
    {
        QFETCH(QStringList, arguments);
        arguments.replaceInStrings(QRegularExpression("^out$"), "missing/out");
        const TToolResult result = Run(arguments);
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors,
                 QStringLiteral(
                     "quillet-cli: missing/out: cannot be written: No such file or directory\n"));
    }

    void a_folder_is_not_a_valid_output_data() { Add_Writing_Commands(); }
    void a_folder_is_not_a_valid_output()
    {
        QFETCH(const QStringList, arguments);
        QVERIFY(QDir(d_folder->path()).mkdir("out"));
        const TToolResult result = Run(arguments + QStringList{"--force"});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors,
                 QStringLiteral("quillet-cli: out: cannot be written: Is a directory\n"));
        QCOMPARE(Support::Entries(Path("out")), QStringList());
    }

    void a_device_is_not_a_valid_output_data() { Add_Writing_Commands(); }
    void a_device_is_not_a_valid_output()
    {
        QFETCH(QStringList, arguments);
        arguments.replaceInStrings(QRegularExpression("^out$"), "/dev/null");
        const TToolResult result = Run(arguments + QStringList{"--force"});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors,
                 QStringLiteral("quillet-cli: /dev/null: is not a regular file; \"-\" stands for "
                                "standard output\n"));
    }

    void write_protection_is_respected_data()
    {
        QTest::addColumn<bool>("has_file");
        QTest::addColumn<bool>("is_folder_writable");
        QTest::newRow("folder") << false << false;
        QTest::newRow("file") << true << true;
        QTest::newRow("folder of a writable file") << true << false;
    }
    void write_protection_is_respected()
    {
        QFETCH(const bool, has_file);
        QFETCH(const bool, is_folder_writable);
        QVERIFY(QDir(d_folder->path()).mkdir("locked"));
        if (has_file)
            Write("locked/out", "old");
        const QFile::Permissions read_only = QFile::ReadOwner | QFile::ExeOwner;
        const QString locked = is_folder_writable ? "locked/out" : "locked";
        QVERIFY(QFile::setPermissions(Path(locked), read_only));
        const QStringList before = Support::Entries(Path("locked"));
        const TToolResult result = Run_Without_Privileges(
            {"thumbnail", "sound.quillet", "--output", "locked/out", "--force"});
        QVERIFY(QFile::setPermissions(Path(locked), read_only | QFile::WriteOwner));
        QCOMPARE(result.errors,
                 QStringLiteral("quillet-cli: locked/out: cannot be written: Permission denied\n"));
        QCOMPARE(result.status, 1);
        QCOMPARE(Support::Entries(Path("locked")), before);
        QCOMPARE(Content("locked/out"), QByteArray(has_file ? "old" : ""));
    }

    void a_folder_of_images_that_cannot_be_read_is_refused()
    {
        QVERIFY(QDir(d_folder->path()).mkdir("locked"));
        const QString locked = Path("locked");
        QVERIFY(QFile::setPermissions(locked, QFile::WriteOwner | QFile::ExeOwner));
        const TToolResult result =
            Run_Without_Privileges({"create", "locked", "--output", "new.quillet"});
        QVERIFY(QFile::setPermissions(locked, QFile::ReadOwner | QFile::ExeOwner));
        QCOMPARE(result.errors,
                 QStringLiteral("quillet-cli: locked: cannot be read: Permission denied\n"));
        QCOMPARE(result.status, 1);
    }

    void a_damaged_document_is_refused_with_its_first_defect_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("info") << QStringList{"info", "damaged.quillet"};
        QTest::newRow("set") << QStringList{"set", "damaged.quillet", "--label-size",
                                            "40",  "--output",        "out"};
        QTest::newRow("pages") << QStringList{"pages", "damaged.quillet"};
        QTest::newRow("merge") << QStringList{"merge", "sound.quillet", "damaged.quillet",
                                              "--output", "out"};
        QTest::newRow("reindex") << QStringList{
            "reindex", "damaged.quillet", "--first", "1", "--over-page", "10", "--output", "out"};
        QTest::newRow("export-images")
            << QStringList{"export-images", "damaged.quillet", "--folder", "."};
        QTest::newRow("export-pdf")
            << QStringList{"export-pdf", "damaged.quillet", "--output", "out"};
        QTest::newRow("import-items") << QStringList{"import-items", "damaged.quillet", "--csv",
                                                     "items.csv",    "--output",        "out"};
        QTest::newRow("export-items")
            << QStringList{"export-items", "damaged.quillet", "--csv", "out"};
        QTest::newRow("thumbnail")
            << QStringList{"thumbnail", "damaged.quillet", "--output", "out"};
    }
    void a_damaged_document_is_refused_with_its_first_defect()
    {
        QFETCH(const QStringList, arguments);
        const QStringList before = Support::Entries(d_folder->path());
        const TToolResult result = Run(arguments);
        QCOMPARE(result.status, 1);
        QCOMPARE(result.output, QString());
        // The file ends within the labels, so the length field of the labels is the first defect.
        const int offset = Support::One_Label_Project().indexOf("<?xml") - 4;
        QVERIFY2(result.errors.startsWith(
                     QString("quillet-cli: damaged.quillet: byte %1: ").arg(offset)),
                 qPrintable(result.errors));
        QCOMPARE(result.errors.count('\n'), 1);
        QCOMPARE(Support::Entries(d_folder->path()), before);
    }

    void a_document_beyond_2_gib_is_read()
    {
        // The file becomes larger by zeros that take no space on the disk.
        QFile file(d_folder->filePath("sound.quillet"));
        const qint64 size = file.size();
        constexpr qint64 large = 5'000'000'000;
        QVERIFY(file.resize(large));
        const TToolResult result = Run({"info", "sound.quillet"});
        QCOMPARE(result.errors, QString("quillet-cli: sound.quillet: warning: byte %1: %2 bytes "
                                        "follow the last page\n")
                                    .arg(size)
                                    .arg(large - size));
        QCOMPARE(result.status, 0);
        QCOMPARE(Run({"info", "sound.quillet", "--quiet"}).output, result.output);
    }

    void a_missing_document_is_reported_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("defect");
        QTest::newRow("missing") << "nothing"
                                 << "cannot be read: No such file or directory";
        QTest::newRow("folder") << "."
                                << "cannot be read: Is a directory";
        QTest::newRow("legacy") << "nothing.qld"
                                << "Background image not found";
    }
    void a_missing_document_is_reported()
    {
        QFETCH(const QString, path);
        QFETCH(const QString, defect);
        const TToolResult result = Run({"info", path});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors, "quillet-cli: " + path + ": " + defect + '\n');
    }

    void no_display_is_needed_data()
    {
        Add_Writing_Commands();
        QTest::newRow("export-images")
            << QStringList{"export-images", "sound.quillet", "--folder", "."};
    }
    void no_display_is_needed()
    {
        QFETCH(const QStringList, arguments);
        for (const char* const display : {"", ":7654", "nonsense"}) {
            d_options.display = display;
            const TToolResult result = Run(arguments + QStringList{"--force"});
            QCOMPARE(result.errors, QString());
            QCOMPARE(result.status, 0);
            // The home folder stays empty.
            QCOMPARE(result.home, QStringList());
        }
    }

    void options_of_qt_are_refused()
    {
        QCOMPARE(Run({"thumbnail", "sound.quillet", "--output", "out", "-platform", "xcb"}).status,
                 2);
        QCOMPARE(Run({"-platform", "xcb"}).status, 2);
    }

    void a_full_standard_output_is_an_error()
    {
        const Support::TScriptResult result = Shell("$tool info sound.quillet >/dev/full");
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors,
                 QByteArray(
                     "quillet-cli: standard output: cannot be written: No space left on device\n"));
    }

    void progress_is_only_shown_on_terminals_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<QByteArray>("output");
        const QByteArray erase = "\r\033[K";
        const QByteArray looking = erase + "Checking page 1 of 1" + erase;
        const QByteArray saving = erase + "Saving page 1 of 1" + erase;
        QTest::newRow("create") << "create image.png --output b"
                                << erase + "Reading page 1 of 1" + erase + saving;
        QTest::newRow("reindex") << "reindex sound.quillet --first 1 --over-page 1 --output b"
                                 << saving;
        QTest::newRow("check") << "check sound.quillet"
                               << looking + "sound.quillet: no defects\r\n";
        QTest::newRow("recover")
            << "recover sound.quillet --output b"
            << looking + saving + "b: pages: 1, undamaged pages: 1, labels: 1, defects: 0\r\n";
    }
    void progress_is_only_shown_on_terminals()
    {
        QFETCH(const QString, arguments);
        QFETCH(const QByteArray, output);
        QCOMPARE(Run(arguments.split(' ')).errors, QString());
        QFile::remove(Path("b"));
        const Support::TScriptResult shown = On_Terminal("$tool " + arguments);
        QCOMPARE(shown.status, 0);
        QCOMPARE(shown.output, output);
    }

    void file_names_are_utf_8_in_any_locale()
    {
        const QString name = QString::fromUtf8("Prüfung Ω.quillet");
        Write(name, Support::One_Label_Project());
        const Support::TScriptResult result = Shell("LC_ALL=C $tool info '" + name + '\'');
        QCOMPARE(result.status, 0);
        QVERIFY(QString::fromUtf8(result.output).contains(name));
    }
};

QTEST_MAIN(TestCli)
#include "test_cli.moc"
