#include "support/inputfiles.h"
#include "support/project.h"
#include "support/support.h"
#include "support/tool.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using Support::TToolResult;

/// Tests that hostile input gives neither a wrong result with exit status 0 nor a lost file.
class TestCliHostile : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> d_folder;

    QString Path(const QString& name) const { return d_folder->filePath(name); }
    QByteArray Content(const QString& name) const { return Support::Read_File(Path(name)); }
    void Write(const QString& name, const QByteArray& content) const
    {
        Support::Write_File(Path(name), content);
    }

    TToolResult Run(const QStringList& arguments) const
    {
        return Support::Run_Tool(arguments, {QString(), d_folder->path(), QString(), QString()});
    }

    static QByteArray Picture(int seed = 0) { return Support::Png(Support::Picture(60, 40, seed)); }

    /// A document with one page.
    static QByteArray Project(const QByteArray& image = Picture())
    {
        return Support::Header(32, "#0a141e", "", "", 1) +
               Support::Page_Record("a", image, Support::Item_List());
    }

private slots:
    void init() { d_folder = std::make_unique<QTemporaryDir>(); }

    void the_suffix_of_an_image_is_not_guessed()
    {
        Write("page.png", Picture());
        const TToolResult result = Run({"create", "page", "--output", "page.png", "--force"});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors,
                 QString("quillet-cli: page: cannot be read: No such file or directory\n"));
        QCOMPARE(Content("page.png"), Picture());
    }

    void a_project_is_never_written_under_an_earlier_suffix_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::newRow("create") << "create image.png --output out.qld";
        QTest::newRow("recover") << "recover a.quillet --output out.QLI";
        QTest::newRow("reindex") << "reindex a.quillet --first 1 --over-page 1 --output out.qli";
        QTest::newRow("import-items") << "import-items a.quillet --csv items.csv --output out.qld";
    }
    void a_project_is_never_written_under_an_earlier_suffix()
    {
        QFETCH(const QString, arguments);
        Write("image.png", Picture());
        Write("a.quillet", Project());
        Write("items.csv", "page,value,x,y\r\n1,3,4,5\r\n");
        const QStringList before = Support::Entries(d_folder->path());
        const TToolResult result = Run(arguments.split(' ') + QStringList{"--force"});
        QCOMPARE(result.status, 1);
        QVERIFY2(result.errors.contains("has the suffix of a file of an earlier generation"),
                 qPrintable(result.errors));
        QCOMPARE(Support::Entries(d_folder->path()), before);
    }

    void one_document_does_not_replace_the_images_of_another_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::newRow("new") << QStringList();
        QTest::newRow("with --force") << QStringList{"--force"};
    }
    void one_document_does_not_replace_the_images_of_another()
    {
        QFETCH(const QStringList, options);
        Write("a.quillet", Project());
        Write("b.quillet", Project(Picture(1)));
        QDir(d_folder->path()).mkdir("out");
        const TToolResult result = Run(QStringList{"export-images", "a.quillet", "b.quillet",
                                                   "--folder", "out", "--name", "{page}"} +
                                       options);
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors, QString("quillet-cli: out/a.png: would be written twice\n"));
        QCOMPARE(Support::Entries(Path("out")), QStringList());
    }

    void one_document_does_not_replace_the_images_of_another_through_a_link()
    {
        Write("a.quillet", Project());
        Write("b.quillet", Project(Picture(1)));
        QDir(d_folder->path()).mkdir("out");
        Write("out/a.png", "old");
        QVERIFY(QFile::link("a.png", Path("out/b.png")));
        const TToolResult result = Run({"export-images", "a.quillet", "b.quillet", "--folder",
                                        "out", "--name", "{document}", "--force"});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors, QString("quillet-cli: out/b.png: would be written twice\n"));
    }

    void a_file_that_appears_during_the_work_is_kept()
    {
        Write("a.pdf", Support::Pdf({"0 0 100 50"}));
        // This page renders slowly, so that another program can write the output meanwhile.
        Write("pdftoppm", "#!/bin/sh\necho other > out\nPATH=$OLD_PATH exec pdftoppm \"$@\"\n");
        QFile::setPermissions(Path("pdftoppm"), QFile::ReadUser | QFile::ExeUser);
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        const QString programs = environment.value("PATH");
        environment.insert("OLD_PATH", programs);
        environment.insert("PATH", d_folder->path() + ':' + programs);
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(d_folder->path());
        process.start(Support::Tool_Path(), {"create", "a.pdf", "--output", "out"});
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.readAllStandardError(),
                 QByteArray("quillet-cli: out: already exists; use --force to overwrite it\n"));
        QCOMPARE(process.exitCode(), 1);
        QCOMPARE(Content("out"), QByteArray("other\n"));
    }

    void a_file_name_that_begins_with_a_hyphen_is_no_request_for_help()
    {
        const TToolResult result = Run({"create", "-photo.png", "--output", "out"});
        QCOMPARE(result.status, 2);
        QCOMPARE(result.output, QString());
        QVERIFY2(result.errors.startsWith("quillet-cli: Unknown option"),
                 qPrintable(result.errors));
    }
};

QTEST_MAIN(TestCliHostile)
#include "test_clihostile.moc"
