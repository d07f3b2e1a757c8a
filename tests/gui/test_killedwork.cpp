// What is recovered after SIGKILL, when something happened to the document while it was open.

#include "src/format/projectfile.h"
#include "src/pagewidget.h"
#include "src/safety/safetynet.h"
#include "support/support.h"
#include "support/window.h"
#include "support/worklogs.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <sys/stat.h>

using Support::Read_File;
using Support::Write_File;

namespace {

constexpr int page_count = 6;
constexpr int labels_per_page = 3;
constexpr int all_labels = page_count * labels_per_page;

/// The image of a page as a file. Large enough to differ at its beginning and its end.
QByteArray Image(int page)
{
    return Support::Png(Support::Picture(60, 40, page));
}

QString Settings()
{
    return QDir::homePath() + "/.quillet";
}

void Edit(TOpenWindow* window, int edits = 1)
{
    for (int edit = 0; edit < edits; ++edit)
        window->Add_Item(QPointF(30 + edit, 20));
}

void Rename_Over(const QByteArray& content, const QString& path)
{
    Write_File(path + ".new", content);
    if (std::rename(QFile::encodeName(path + ".new").constData(),
                    QFile::encodeName(path).constData()) != 0)
        qFatal("cannot rename");
}

} // namespace

class TestKilledWork : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void without_an_edit_nothing_is_recovered();
    void two_programs_on_one_document_both_recover_their_work();
    void two_programs_on_one_document_recover_work_after_the_other_one_saved();
    void a_document_on_another_file_system_is_recovered_data();
    void a_document_on_another_file_system_is_recovered();
    void a_document_that_was_lost_while_open_is_recovered_data();
    void a_document_that_was_lost_while_open_is_recovered();
    void a_document_that_was_overwritten_while_open_is_recovered_after_a_pause();
    void a_document_that_was_lost_with_its_protection_keeps_the_labels();
    void the_backup_that_unsaved_work_refers_to_may_be_deleted();

private:
    QString In(const QString& name) const { return d_folder->filePath(name); }
    QString Document() const { return In("documents/a.quillet"); }
    void Killed(const QString& document, const std::function<void(TOpenWindow*)>& edit) const;
    static std::vector<TKeptFile> Recover();
    static QString Difference(const TKeptFile& file, int labels, int images = page_count);

    std::unique_ptr<QTemporaryDir> d_folder;
    QByteArray d_first_version;
};

void TestKilledWork::init()
{
    QDir(Settings()).removeRecursively();
    d_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir(d_folder->path()).mkdir("documents"));
    TDocument document;
    for (int page = 0; page < page_count; ++page)
        Support::Add_Page(&document, QString("Page %1").arg(page),
                          TPageImage::From_Bytes(Image(page)), labels_per_page);
    TFilePlaces places;
    d_first_version = Support::Saved(document, &places);
    Write_File(Document(), d_first_version);
}

/// Opens a document in another process, edits it and kills the process.
void TestKilledWork::Killed(const QString& document,
                            const std::function<void(TOpenWindow*)>& edit) const
{
    const Support::TChildResult result = Support::Run_In_Child([&] {
        TOpenWindow window;
        window.show();
        window.Open_File(document);
        edit(&window);
        raise(SIGKILL);
        return 0;
    });
    QVERIFY2(result.signal == SIGKILL, result.error_output.constData());
}

/// The recovered documents, newest first.
std::vector<TKeptFile> TestKilledWork::Recover()
{
    TSafetyNet net(Settings(), nullptr);
    net.Convert_Abandoned_Logs(nullptr);
    return net.Abandoned();
}

/// How a recovered document differs from what it should be; empty if it does not.
QString TestKilledWork::Difference(const TKeptFile& file, int labels, int images)
{
    const TFileContent content = ProjectFile::Read(Read_File(file.path));
    if (!content.fault.isEmpty() || content.pages->size() != page_count)
        return "it is no project of six pages";
    int found_labels = 0;
    int found_images = 0;
    for (int page = 0; page < page_count; ++page) {
        const TFilePage& read = content.pages->at(static_cast<std::size_t>(page));
        found_labels += static_cast<int>(read.items.size());
        found_images += read.image.Source_Bytes() == Image(page) ? 1 : 0;
    }
    if (found_labels != labels || found_images != images ||
        file.missing_images != page_count - images)
        return QString("%1 labels, %2 images, %3 missing")
            .arg(found_labels)
            .arg(found_images)
            .arg(file.missing_images);
    return QString();
}

void TestKilledWork::without_an_edit_nothing_is_recovered()
{
    Killed(Document(), [](TOpenWindow*) {});
    QCOMPARE(Recover().size(), std::size_t{0});
}

void TestKilledWork::two_programs_on_one_document_both_recover_their_work()
{
    Killed(Document(), [this](TOpenWindow* window) {
        Edit(window, 1);
        Killed(Document(), [](TOpenWindow* other) { Edit(other, 5); });
        Edit(window, 1);
        // The other program's work is recovered while this one runs.
        const std::vector<TKeptFile> recovered = Recover();
        if (recovered.size() != 1 || !Difference(recovered.front(), all_labels + 5).isEmpty())
            qFatal("the other program's work is not recovered");
    });
    QVERIFY(QFile::remove(Document()));
    std::vector<TKeptFile> recovered = Recover();
    QCOMPARE(recovered.size(), std::size_t{2});
    std::sort(recovered.begin(), recovered.end(),
              [](const TKeptFile& left, const TKeptFile& right) { return left.size < right.size; });
    QCOMPARE(Difference(recovered[0], all_labels + 2), QString());
    QCOMPARE(Difference(recovered[1], all_labels + 5), QString());
    for (const TKeptFile& file : recovered)
        QCOMPARE(file.document, Document());
}

void TestKilledWork::two_programs_on_one_document_recover_work_after_the_other_one_saved()
{
    Killed(Document(), [this](TOpenWindow* window) {
        Edit(window, 1);
        Killed(Document(), [](TOpenWindow* other) {
            Edit(other, 5);
            other->File_Save();
            Edit(other, 1);
            other->File_Save();
        });
        Edit(window, 1);
    });
    const std::vector<TKeptFile> recovered = Recover();
    QCOMPARE(recovered.size(), std::size_t{1});
    QCOMPARE(Difference(recovered.front(), all_labels + 2), QString());
}

void TestKilledWork::a_document_on_another_file_system_is_recovered_data()
{
    QTest::addColumn<bool>("is_deleted");
    QTest::newRow("the document is there") << false;
    QTest::newRow("the document was deleted") << true;
}

void TestKilledWork::a_document_on_another_file_system_is_recovered()
{
    QFETCH(bool, is_deleted);
    const QTemporaryDir other("/dev/shm/quillet-XXXXXX");
    const QString document = other.filePath("a.quillet");
    Write_File(document, d_first_version);
    struct stat here = {};
    struct stat there = {};
    QVERIFY(stat(QFile::encodeName(Document()).constData(), &here) == 0);
    QVERIFY(stat(QFile::encodeName(document).constData(), &there) == 0);
    QVERIFY2(here.st_dev != there.st_dev, "the temporary folder must not be in /dev/shm");
    Killed(document, [](TOpenWindow* window) {
        for (int edit = 0; edit < 2; ++edit) {
            Edit(window);
            // After a pause, the program copies the document, because it cannot link it.
            QTest::qWait(400);
        }
    });
    QCOMPARE(QDir(Settings() + "/recovery").entryList({"*.base"}), QStringList());
    if (is_deleted)
        QVERIFY(QFile::remove(document));
    const std::vector<TKeptFile> recovered = Recover();
    QCOMPARE(recovered.size(), std::size_t{1});
    QCOMPARE(Difference(recovered.front(), all_labels + 2), QString());
}

void TestKilledWork::a_document_that_was_lost_while_open_is_recovered_data()
{
    QTest::addColumn<QString>("loss");
    QTest::addColumn<bool>("is_first");
    for (const char* const loss : {"deleted", "replaced", "unreachable"}) {
        QTest::addRow("%s before the first edit", loss) << loss << true;
        QTest::addRow("%s after the first edit", loss) << loss << false;
    }
}

void TestKilledWork::a_document_that_was_lost_while_open_is_recovered()
{
    QFETCH(QString, loss);
    QFETCH(bool, is_first);
    Killed(Document(), [&](TOpenWindow* window) {
        if (!is_first)
            Edit(window);
        if (loss == "deleted")
            QFile::remove(Document());
        else if (loss == "replaced")
            Rename_Over(Support::Empty_Project(77), Document());
        else
            QDir(d_folder->path()).rename("documents", "unmounted");
        if (is_first)
            Edit(window);
        QTest::qWait(400);
        Edit(window);
    });
    const std::vector<TKeptFile> recovered = Recover();
    QCOMPARE(recovered.size(), std::size_t{1});
    QCOMPARE(Difference(recovered.front(), all_labels + 2), QString());
}

void TestKilledWork::a_document_that_was_overwritten_while_open_is_recovered_after_a_pause()
{
    Killed(Document(), [this](TOpenWindow* window) {
        Edit(window);
        Write_File(Document(), Support::Empty_Project(77));
        // The program sees that the file changed when it syncs its work.
        window->Flush_Work();
        Edit(window);
    });
    const std::vector<TKeptFile> recovered = Recover();
    QCOMPARE(recovered.size(), std::size_t{1});
    QCOMPARE(Difference(recovered.front(), all_labels + 2), QString());
}

void TestKilledWork::a_document_that_was_lost_with_its_protection_keeps_the_labels()
{
    Killed(Document(), [](TOpenWindow* window) {
        // A change on each page, so that the log contains all labels.
        for (const int page_id : window->d_page_widget->Page_Ids()) {
            window->d_page_widget->Set_Active_Page(page_id);
            Edit(window);
        }
    });
    QVERIFY(QFile::remove(Document()));
    const QDir recovery(Settings() + "/recovery");
    const QStringList bases = recovery.entryList({"*.base"});
    QCOMPARE(bases.size(), 1);
    QVERIFY(QFile::remove(recovery.filePath(bases.front())));
    const std::vector<TKeptFile> recovered = Recover();
    QCOMPARE(recovered.size(), std::size_t{1});
    QCOMPARE(Difference(recovered.front(), all_labels + page_count, 0), QString());
}

void TestKilledWork::the_backup_that_unsaved_work_refers_to_may_be_deleted()
{
    Killed(Document(), [this](TOpenWindow* window) {
        Edit(window);
        // The save turns the opened file into the backup. Then it fails, because the file size is
        // limited.
        Support::Limit_File_Size(100);
        window->File_Save();
        const QString backup = TBackup(Settings() + "/backup").Path_For(Document());
        if (Read_File(backup) != d_first_version || !QFile::remove(backup))
            qFatal("the document is not the backup");
    });
    const std::vector<TKeptFile> recovered = Recover();
    QCOMPARE(recovered.size(), std::size_t{1});
    QCOMPARE(Difference(recovered.front(), all_labels + 1), QString());
}

QTEST_MAIN(TestKilledWork)
#include "test_killedwork.moc"
