// Encoding of imported images in the background: what starts and ends it, and what it leaves to do
// for a save and after a crash.

#include "support/modal.h"
#include "support/processes.h"
#include "support/support.h"
#include "support/window.h"
#include "support/worklogs.h"

#include "src/format/projectfile.h"
#include "src/pagewidget.h"
#include "src/safety/safetynet.h"
#include "src/undo/undohistory.h"

#include <QFile>
#include <QMessageBox>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

using Support::Children;
using Support::Read_File;
using Support::Run_Answering;

namespace {

/// For processes of low priority on a busy machine, in milliseconds.
constexpr int patience = 100'000;

constexpr int pages = 3;

using TCommand = std::function<void(TOpenWindow*)>;

/// Enough pixels for a process that runs while a test looks at it.
QImage Picture(int seed)
{
    return Support::Picture(1600, 1200, seed);
}

} // namespace

Q_DECLARE_METATYPE(TCommand)

class TestBackgroundEncoding : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void new_pages_are_encoded_data();
    void new_pages_are_encoded();
    void a_legacy_document_is_encoded();
    void nothing_runs_when_no_image_waits();
    void a_save_at_any_moment_writes_the_same_bytes_data();
    void a_save_at_any_moment_writes_the_same_bytes();
    void a_save_with_killed_processes_writes_the_same_bytes();
    void a_save_after_a_pause_starts_no_process();
    void what_ends_the_work_on_pages_ends_their_processes_data();
    void what_ends_the_work_on_pages_ends_their_processes();
    void a_window_that_stays_open_goes_on();
    void pages_restored_by_redo_are_encoded();
    void an_image_that_was_replaced_gets_no_result();
    void the_work_log_gets_the_results();
    void recovered_work_need_not_be_encoded();
    void recovered_work_is_saved_as_without_a_crash();
    void an_image_export_has_the_processors_for_itself();

private:
    QString In(const QString& name) const { return d_folder.filePath(name); }
    QStringList Photographs() const;
    void Import() const { d_window->Import_Files(Photographs()); }
    int Waiting() const;
    QByteArray Saved() const;
    static QString Only_Log();

    QTemporaryDir d_folder;
    QByteArray d_expected; ///< what a save after an import writes
    std::unique_ptr<TOpenWindow> d_window;
};

void TestBackgroundEncoding::initTestCase()
{
    for (int page = 0; page < pages; ++page)
        QVERIFY(Picture(page).save(Photographs().at(page)));
    TDocument document;
    document.appearance = {32, "#f79741", QString(), QString()};
    for (int page = 0; page < pages; ++page)
        document.Add_Page(QString("Page %1").arg(page + 1),
                          TPageImage::From_Bytes(Support::Png(QImage(Photographs().at(page)))));
    TFilePlaces places;
    d_expected = Support::Saved(document, &places);
}

void TestBackgroundEncoding::init()
{
    QDir(QDir::homePath() + "/.quillet").removeRecursively();
    d_window = std::make_unique<TOpenWindow>();
    d_window->show();
    QVERIFY(QTest::qWaitForWindowActive(d_window.get()));
}

void TestBackgroundEncoding::cleanup()
{
    d_window.reset();
    QCOMPARE(Children(), QList<pid_t>());
}

QStringList TestBackgroundEncoding::Photographs() const
{
    QStringList paths;
    for (int page = 0; page < pages; ++page)
        paths += In(QString("photograph-%1.jpg").arg(page));
    return paths;
}

int TestBackgroundEncoding::Waiting() const
{
    const std::vector<TPageItem>& items = d_window->d_data.Pages();
    return static_cast<int>(std::count_if(items.cbegin(), items.cend(), [](const TPageItem& page) {
        return page.image.Needs_Encoding();
    }));
}

QByteArray TestBackgroundEncoding::Saved() const
{
    const QString path = In("saved.quillet");
    QFile::remove(path);
    return d_window->Save_Data(path) ? Read_File(path) : QByteArray();
}

QString TestBackgroundEncoding::Only_Log()
{
    const QDir folder(QDir::homePath() + "/.quillet/recovery");
    const QStringList logs = folder.entryList({"*.log"});
    return logs.size() == 1 ? folder.filePath(logs.first()) : QString();
}

void TestBackgroundEncoding::new_pages_are_encoded_data()
{
    QTest::addColumn<bool>("is_import");
    QTest::newRow("imported") << true;
    QTest::newRow("dropped") << false;
}

void TestBackgroundEncoding::new_pages_are_encoded()
{
    QFETCH(bool, is_import);
    if (is_import)
        Import();
    else
        d_window->Insert_Dropped_Files(Photographs());
    QCOMPARE(d_window->d_data.Page_Count(), pages);
    QVERIFY(!Children().isEmpty());
    QVERIFY(Waiting() > 0);
    QTRY_VERIFY_WITH_TIMEOUT(Waiting() == 0, patience);
    for (int page = 0; page < pages; ++page)
        QCOMPARE(d_window->d_data.Pages()[static_cast<std::size_t>(page)].image.Png(),
                 Support::Png(QImage(Photographs().at(page))));
}

void TestBackgroundEncoding::a_legacy_document_is_encoded()
{
    Support::Write_File(In("old.qld"),
                        "<?xml version=\"1.0\"?><Quillet_Data File_Version=\"2\"><Item_Size>"
                        "<Width>48</Width></Item_Size><Colors><Foreground>blue</Foreground>"
                        "</Colors></Quillet_Data>");
    Support::Write_File(In("old.qli"), Support::Png(Picture(0)));
    Run_Answering([this] { d_window->Open_File(In("old.qld")); }, {});
    QCOMPARE(d_window->d_error_text, QString());
    QCOMPARE(d_window->d_data.Page_Count(), 1);
    QVERIFY(!Children().isEmpty());
    QTRY_VERIFY_WITH_TIMEOUT(Waiting() == 0, patience);
}

void TestBackgroundEncoding::nothing_runs_when_no_image_waits()
{
    QCOMPARE(Children(), QList<pid_t>());
    QVERIFY(Picture(0).save(In("page.png")));
    d_window->Import_Files({In("page.png")});
    QCOMPARE(Children(), QList<pid_t>());
    Import();
    QVERIFY(!Children().isEmpty());
    QTRY_VERIFY_WITH_TIMEOUT(Waiting() == 0, patience);
    QCOMPARE(Children(), QList<pid_t>());
    d_window->Add_Item(QPointF(10, 10));
    QCOMPARE(Children(), QList<pid_t>());
}

void TestBackgroundEncoding::a_save_at_any_moment_writes_the_same_bytes_data()
{
    QTest::addColumn<int>("results"); // before the save
    QTest::newRow("right after the import") << 0;
    QTest::newRow("in between") << 1;
    QTest::newRow("after a pause") << pages;
}

void TestBackgroundEncoding::a_save_at_any_moment_writes_the_same_bytes()
{
    QFETCH(int, results);
    Import();
    QTRY_VERIFY_WITH_TIMEOUT(pages - Waiting() >= results, patience);
    QCOMPARE(Support::Byte_Difference(Saved(), d_expected), QString());
    QVERIFY(Waiting() == 0);
    QCOMPARE(Children(), QList<pid_t>());
}

void TestBackgroundEncoding::a_save_with_killed_processes_writes_the_same_bytes()
{
    Import();
    QTest::qWait(QRandomGenerator::global()->bounded(100));
    for (const pid_t child : Children())
        kill(child, SIGKILL);
    QCOMPARE(Support::Byte_Difference(Saved(), d_expected), QString());
    QVERIFY(d_window->d_error_text.isEmpty());
}

void TestBackgroundEncoding::a_save_after_a_pause_starts_no_process()
{
    Import();
    QTRY_VERIFY_WITH_TIMEOUT(Waiting() == 0, patience);
    QList<pid_t> started;
    // Called before each page, and while images are encoded.
    d_window->d_progress_clock = [&started] {
        started += Children();
        return qint64{0};
    };
    QCOMPARE(Saved(), d_expected);
    QCOMPARE(started, QList<pid_t>());
}

void TestBackgroundEncoding::what_ends_the_work_on_pages_ends_their_processes_data()
{
    QTest::addColumn<TCommand>("command");
    QTest::newRow("remove") << TCommand([](TOpenWindow* window) {
        Run_Answering([window] { window->Remove_Pages(window->d_page_widget->Page_Ids()); },
                      {Support::Press(QMessageBox::Yes)});
    });
    QTest::newRow("undo") << TCommand(
        [](TOpenWindow* window) { QTest::keyClick(window, Qt::Key_Z, Qt::ControlModifier); });
    QTest::newRow("new document") << TCommand([](TOpenWindow* window) {
        Run_Answering([window] { window->File_New(); }, {Support::Press(QMessageBox::Yes)});
    });
    QTest::newRow("open another document") << TCommand([this](TOpenWindow* window) {
        Support::Write_File(In("other.quillet"), Support::Empty_Project());
        window->Open_File(In("other.quillet"));
    });
    QTest::newRow("close") << TCommand([](TOpenWindow* window) {
        Run_Answering([window] { window->close(); }, {Support::Press(QMessageBox::No)});
    });
}

void TestBackgroundEncoding::what_ends_the_work_on_pages_ends_their_processes()
{
    QFETCH(TCommand, command);
    Import();
    QVERIFY(!Children().isEmpty());
    command(d_window.get());
    QCOMPARE(Children(), QList<pid_t>());
    // Results that were on their way start nothing.
    QTest::qWait(20);
    QCOMPARE(Children(), QList<pid_t>());
}

void TestBackgroundEncoding::a_window_that_stays_open_goes_on()
{
    Import();
    QCOMPARE(Run_Answering([this] { d_window->close(); }, {Support::Press(QMessageBox::Cancel)}),
             QString());
    QVERIFY(d_window->isVisible());
    QTRY_VERIFY_WITH_TIMEOUT(Waiting() == 0, patience);
}

void TestBackgroundEncoding::pages_restored_by_redo_are_encoded()
{
    Import();
    QTest::keyClick(d_window.get(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(d_window->d_data.Page_Count(), 0);
    QTest::keyClick(d_window.get(), Qt::Key_Y, Qt::ControlModifier);
    QCOMPARE(d_window->d_data.Page_Count(), pages);
    QVERIFY(!Children().isEmpty());
    QTRY_VERIFY_WITH_TIMEOUT(Waiting() == 0, patience);
    QCOMPARE(Support::Byte_Difference(Saved(), d_expected), QString());
}

void TestBackgroundEncoding::an_image_that_was_replaced_gets_no_result()
{
    d_window->Import_Files({Photographs().first()});
    d_window->d_page_widget->Set_Active_Page(d_window->d_page_widget->Page_Ids().first());
    QCOMPARE(Children().size(), 1);
    const pid_t first = Children().first();
    // The active page has no labels, so it gets the other image.
    d_window->Import_Files({Photographs().last()});
    QVERIFY(!Children().contains(first));
    QTRY_VERIFY_WITH_TIMEOUT(Waiting() == 0, patience);
    QCOMPARE(d_window->d_data.Page_Count(), 1);
    QCOMPARE(d_window->d_data.Pages().front().image.Png(),
             Support::Png(QImage(Photographs().last())));
}

void TestBackgroundEncoding::the_work_log_gets_the_results()
{
    Import();
    const QString log = Only_Log();
    QVERIFY(!log.isEmpty());
    const TFileContent before = ProjectFile::Read(Support::Recovered(log));
    QCOMPARE(before.pages->front().image.Source_Bytes(), Read_File(Photographs().first()));
    QTRY_VERIFY_WITH_TIMEOUT(Waiting() == 0, patience);
    QCOMPARE(Only_Log(), log);
    const TFileContent after = ProjectFile::Read(Support::Recovered(log));
    QCOMPARE(after.pages->size(), std::size_t{pages});
    for (int page = 0; page < pages; ++page)
        QCOMPARE(after.pages->at(static_cast<std::size_t>(page)).image.Source_Bytes(),
                 Support::Png(QImage(Photographs().at(page))));
}

void TestBackgroundEncoding::recovered_work_need_not_be_encoded()
{
    Import();
    QTRY_VERIFY_WITH_TIMEOUT(Waiting() == 0, patience);
    const QString copy = In("recovered.quillet");
    Support::Write_File(copy, Support::Recovered(Only_Log()));
    d_window->Open_File(copy);
    QCOMPARE(d_window->d_data.Page_Count(), pages);
    QVERIFY(Waiting() == 0);
    QCOMPARE(Children(), QList<pid_t>());
}

void TestBackgroundEncoding::recovered_work_is_saved_as_without_a_crash()
{
    for (const int results : {0, 1, pages}) {
        d_window->File_New();
        Import();
        QTRY_VERIFY_WITH_TIMEOUT(pages - Waiting() >= results, patience);
        const QString copy = In("recovered.quillet");
        Support::Write_File(copy, Support::Recovered(Only_Log()));
        d_window->Open_File(copy);
        QCOMPARE(Support::Byte_Difference(Saved(), d_expected), QString());
    }
}

void TestBackgroundEncoding::an_image_export_has_the_processors_for_itself()
{
    Import();
    const QList<pid_t> children = Children();
    QVERIFY(!children.isEmpty());
    QByteArrayList states;
    d_window->d_progress_clock = [&] {
        for (const pid_t child : children)
            states += Support::Process_Field(child, Support::State_Field);
        return qint64{0};
    };
    QVERIFY(d_window->Export_Images(d_folder.path(), d_window->d_page_widget->Page_Ids()));
    // A signal arrives some time after it was sent.
    QVERIFY(states.contains("T"));
    QTRY_VERIFY_WITH_TIMEOUT(Waiting() == 0, patience);
}

QTEST_MAIN(TestBackgroundEncoding)
#include "test_backgroundencoding.moc"
