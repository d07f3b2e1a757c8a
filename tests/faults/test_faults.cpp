// Injects a fault at every system call of a save, a change and an export, one call at a
// time. After each fault, at least one complete file has to hold the document.
//
// Needs tests/faults/faultlibrary.cpp preloaded. QUILLET_FAULT_TABLE names a file that gets a line
// for each kind of fault: operation, fault, tries and losses, separated by tabs. QUILLET_SMALL_DISK
// names a folder on a file system that the test may fill up; without it, a limit on the size of
// files simulates a full disk.

#include "faultlibrary.h"

#include "support/support.h"
#include "support/window.h"
#include "support/worklogs.h"

#include "core/bytesource.h"
#include "src/export/printedpdf.h"
#include "src/pagewidget.h"
#include "src/safety/safetynet.h"

#include <QApplication>
#include <QFile>
#include <QIODevice>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <csignal>
#include <dlfcn.h>
#include <unistd.h>

namespace {

using namespace Faults;

struct TFaultKind
{
    const char* name;
    TCall call;
    TKind kind;
};

const TFaultKind fault_kinds[] = {
    {"opening fails", Open, Fail},
    {"kill before opening", Open, Kill},
    {"kill after opening", Open, Kill_After},
    {"writing fails", Write, Fail},
    {"disk full half-way", Write, Short},
    {"kill half-way through a write", Write, Kill},
    {"kill after a write", Write, Kill_After},
    {"renaming fails", Rename, Fail},
    {"kill before renaming", Rename, Kill},
    {"kill after renaming", Rename, Kill_After},
    {"syncing fails", Sync, Fail},
    {"kill before syncing", Sync, Kill},
    {"kill after syncing", Sync, Kill_After},
    {"deleting fails", Remove, Fail},
    {"kill before deleting", Remove, Kill},
    {"kill after deleting", Remove, Kill_After},
    {"reading fails", Read, Fail},
    {"reading fails half-way", Read, Short},
    {"kill half-way through a read", Read, Kill},
    {"copying from file to file fails", Clone, Fail},
    {"copying from file to file stops half-way", Clone, Short},
    {"kill half-way through a copy", Clone, Kill},
    {"kill after a copy", Clone, Kill_After},
};

/// Of a document whose images are read from its file.
constexpr char large_save[] = "save of a large document";
constexpr char large_copy[] = "save of a large document under another name";
constexpr char large_overwriting[] = "save of a large document with two names";

/// An operation, and the least number of its calls of each kind. Linking counts as renaming. Only
/// images of large documents are copied and read from file to file.
struct TOperation
{
    const char* name;
    int opens;
    int writes;
    int renames;
    int syncs;
    int deletions;
    int reads = 0;
    int copies = 0;

    int Calls(TCall call) const
    {
        switch (call) {
        case Open:
            return opens;
        case Write:
            return writes;
        case Rename:
            return renames;
        case Sync:
            return syncs;
        case Read:
            return reads;
        case Clone:
            return copies;
        default:
            return deletions;
        }
    }
};

const TOperation operations[] = {
    {"save", 5, 1, 2, 1, 3},           {"save without unsaved work", 5, 1, 2, 1, 1},
    {"change", 1, 1, 0, 3, 0},         {"first change", 5, 1, 1, 0, 0},
    {"recovery", 5, 1, 2, 2, 2},       {"PDF export", 5, 1, 2, 1, 0},
    {"image export", 5, 1, 2, 1, 0},   {large_save, 5, 1, 2, 1, 1, 1, 1},
    {large_copy, 1, 1, 0, 1, 1, 1, 1}, {large_overwriting, 5, 1, 1, 1, 1, 1, 2},
};

template <typename TFunction>
TFunction From_Library(const char* name)
{
    return reinterpret_cast<TFunction>(dlsym(RTLD_DEFAULT, name));
}

constexpr int labels_before = 3;

QString Small_Disk()
{
    return QFile::decodeName(qgetenv("QUILLET_SMALL_DISK"));
}

/// Fills up the file system of a file, except for some bytes.
void Fill_Disk(const QString& path, qint64 room)
{
    QFile filling(path);
    filling.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
    const QByteArray block(4096, 'f');
    while (filling.write(block) == block.size()) {
    }
    filling.resize(qMax<qint64>(0, filling.size() - room));
}

} // namespace

class TestFaults : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void the_document_survives_data();
    void the_document_survives();
    void a_full_disk_leaves_the_document_data();
    void a_full_disk_leaves_the_document();

private:
    QString In(const QString& name) const { return d_folder->filePath(name); }
    static QString Settings() { return QDir::homePath() + "/.quillet"; }
    QString Document() const { return In("documents/a.quillet"); }
    void Restore_Files();
    void Edit(const QString& operation);
    void Run(const QString& operation);
    int Count_Labels(const QString& path) const;
    int Best_Copy() const;
    QString Loss(const QString& operation) const;
    static void Add_To_Table(const QString& operation, const QString& fault, int tries, int losses);

    std::unique_ptr<QTemporaryDir> d_folder;
    std::unique_ptr<TOpenWindow> d_window;
    QByteArray d_first_version;
    QByteArray d_old_report;
    QByteArray d_picture; ///< of the page, as PNG
};

void TestFaults::initTestCase()
{
    QVERIFY2(dlsym(RTLD_DEFAULT, "Quillet_Arm_Fault"), "the fault library is not preloaded");
}

void TestFaults::init()
{
    d_folder = Small_Disk().isEmpty()
                   ? std::make_unique<QTemporaryDir>()
                   : std::make_unique<QTemporaryDir>(Small_Disk() + "/faults-XXXXXX");
    QVERIFY(QDir(d_folder->path()).mkpath("documents"));
    TOpenWindow window;
    Support::Write_File(In("page.png"), Support::Png(Support::Picture(200, 150)));
    window.Load_Image(In("page.png"));
    window.d_page_widget->Set_Active_Page(window.d_page_widget->Page_Ids().first());
    for (int i = 0; i < labels_before; ++i)
        window.Add_Item(QPointF(20 + 40 * i, 30));
    QVERIFY(window.Save_Data(Document()));
    QVERIFY(window.Export_PDF(In("report.pdf"), window.d_page_widget->Page_Ids(), {0, 1, "", ""}));
    d_first_version = Support::Read_File(Document());
    d_old_report = Support::Read_File(In("report.pdf"));
    d_picture = Support::Read_File(In("page.png"));
    qputenv("TMPDIR", QFile::encodeName(In("temporary")));
    QVERIFY(QDir(d_folder->path()).mkdir("temporary"));
    QVERIFY(PrintedPdf::Is_Complete(In("report.pdf")));
}

void TestFaults::cleanup()
{
    d_folder.reset();
    qunsetenv("TMPDIR");
}

/// Restores the files to their state before a try.
void TestFaults::Restore_Files()
{
    QDir(Settings()).removeRecursively();
    for (const QString& folder : {In("out"), In("documents")}) {
        QDir(folder).removeRecursively();
        QDir().mkdir(folder);
    }
    Support::Write_File(Document(), d_first_version);
    Support::Write_File(In("out/report.pdf"), d_old_report);
}

/// Opens the document and adds one label, which is stored at once, except before the first change.
/// Before a recovery, a child process does this and is killed.
void TestFaults::Edit(const QString& operation)
{
    if (operation == "recovery") {
        Support::Run_In_Child([this] {
            Edit("change");
            raise(SIGKILL);
            return 0;
        });
        return;
    }
    if (operation == large_overwriting)
        link(qPrintable(Document()), qPrintable(In("documents/second.quillet")));
    if (operation == large_save || operation == large_copy || operation == large_overwriting)
        TByteSource::Smallest_Open_File = 0;
    d_window = std::make_unique<TOpenWindow>();
    d_window->Open_File(Document());
    if (operation != "first change")
        d_window->Add_Item(QPointF(30, 100));
}

void TestFaults::Run(const QString& operation)
{
    // A refused save shows a message, which is answered here.
    QTimer::singleShot(0, [] {
        if (QWidget* box = QApplication::activeModalWidget())
            box->close();
    });
    if (operation == "save" || operation == large_save || operation == large_overwriting) {
        d_window->File_Save();
    } else if (operation == large_copy) {
        d_window->Save_To(In("documents/b.quillet"));
    } else if (operation == "save without unsaved work") {
        d_window->d_safety_net->Discard();
        d_window->File_Save();
    } else if (operation == "change") {
        d_window->Add_Item(QPointF(60, 100));
        d_window->Flush_Work();
    } else if (operation == "first change") {
        d_window->Add_Item(QPointF(60, 100));
    } else if (operation == "recovery") {
        TSafetyNet(Settings(), nullptr).Convert_Abandoned_Logs(nullptr);
    } else if (operation == "PDF export") {
        d_window->Export_PDF(In("out/report.pdf"), d_window->d_page_widget->Page_Ids(),
                             {0, 2, "Header", ""});
    } else {
        d_window->Export_Images(In("out"), d_window->d_page_widget->Page_Ids());
    }
}

/// Number of labels in a project file; -1 if the file is incomplete or has no picture.
int TestFaults::Count_Labels(const QString& path) const
{
    const QByteArray bytes = Support::Read_File(path);
    return ProjectFile::Is_Whole(path) && bytes.contains(d_picture) ? bytes.count("<Item>") : -1;
}

/// The largest number of labels in any file: a document, its previous version, a recovery copy or a
/// work log.
int TestFaults::Best_Copy() const
{
    int best = -1;
    for (const QString& folder :
         {In("documents"), Settings() + "/recovery", Settings() + "/backup"}) {
        for (const QString& name : QDir(folder).entryList({"*.quillet"}))
            best = qMax(best, Count_Labels(folder + '/' + name));
    }
    for (const QString& name : QDir(Settings() + "/recovery").entryList({"*.log"})) {
        int missing_images = 0;
        Support::Write_File(In("recovered.quillet"),
                            Support::Recovered(Settings() + "/recovery/" + name, &missing_images));
        if (missing_images == 0)
            best = qMax(best, Count_Labels(In("recovered.quillet")));
    }
    return best;
}

/// What was lost in a try; empty if nothing was.
QString TestFaults::Loss(const QString& operation) const
{
    // The work log has the label that was added before the fault. Without one there is only the
    // saved document.
    const bool has_log = operation != "save without unsaved work" && operation != "first change";
    const int wanted = has_log ? labels_before + 1 : labels_before;
    if (Best_Copy() < wanted)
        return QString("%1 labels are left").arg(Best_Copy());
    for (const QString& name : QDir(In("out")).entryList(QDir::Files)) {
        const QString path = In("out/" + name);
        if (name.endsWith(".pdf") && !PrintedPdf::Is_Complete(path))
            return name + " is incomplete";
        if (name.endsWith(".png") && QImage(path).isNull())
            return name + " is incomplete";
    }
    return QFile::exists(In("out/report.pdf")) ? QString() : QString("the report is gone");
}

void TestFaults::Add_To_Table(const QString& operation, const QString& fault, int tries, int losses)
{
    QFile table(QFile::decodeName(qgetenv("QUILLET_FAULT_TABLE")));
    if (table.open(QIODevice::WriteOnly | QIODevice::Append))
        table.write(
            QString("%1\t%2\t%3\t%4\n").arg(operation, fault).arg(tries).arg(losses).toUtf8());
}

void TestFaults::the_document_survives_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("minimum_tries");
    for (const TOperation& operation : operations) {
        for (const TFaultKind& fault : fault_kinds) {
            if (operation.Calls(fault.call) == 0 && (fault.call == Read || fault.call == Clone))
                continue;
            QTest::addRow("%s, %s", operation.name, fault.name)
                << operation.name << fault.name << static_cast<int>(fault.call)
                << static_cast<int>(fault.kind) << operation.Calls(fault.call);
        }
    }
}

void TestFaults::the_document_survives()
{
    QFETCH(QString, operation);
    QFETCH(QString, name);
    QFETCH(int, call);
    QFETCH(int, kind);
    QFETCH(int, minimum_tries);
    const auto arm = From_Library<void (*)(const char*, int, int, int)>("Quillet_Arm_Fault");
    const auto disarm = From_Library<int (*)()>("Quillet_Disarm_Fault");
    const QByteArray folders = QFile::encodeName(d_folder->path() + ':' + Settings() +
                                                 "/recovery:" + Settings() + "/backup");
    constexpr int maximum_calls = 200;
    int tries = 0;
    int losses = 0;
    bool reached = true;
    while (reached && tries < maximum_calls) {
        const int at = tries + 1;
        Restore_Files();
        const Support::TChildResult result = Support::Run_In_Child([&] {
            Edit(operation);
            arm(folders.constData(), call, kind, at);
            Run(operation);
            return disarm() >= at ? 1 : 0;
        });
        QVERIFY2(result.signal == SIGKILL || result.exited, result.error_output.constData());
        reached = result.signal == SIGKILL || result.exit_code == 1;
        tries += reached ? 1 : 0;
        const QString loss = Loss(operation);
        losses += loss.isEmpty() ? 0 : 1;
        if (!loss.isEmpty())
            qWarning("call %d: %s", at, qPrintable(loss));
    }
    Add_To_Table(operation, name, tries, losses);
    QCOMPARE(losses, 0);
    QVERIFY2(tries >= minimum_tries, qPrintable(QString("only %1 tries").arg(tries)));
    QVERIFY(tries < maximum_calls);
}

void TestFaults::a_full_disk_leaves_the_document_data()
{
    QTest::addColumn<QString>("operation");
    for (const TOperation& operation : operations)
        QTest::newRow(operation.name) << operation.name;
}

void TestFaults::a_full_disk_leaves_the_document()
{
    QFETCH(QString, operation);
    constexpr int rounds = 12;
    int losses = 0;
    for (int round = 0; round < rounds; ++round) {
        Restore_Files();
        const Support::TChildResult result = Support::Run_In_Child([&] {
            Edit(operation);
            const qint64 room = qint64{d_first_version.size()} * round / (rounds - 2);
            if (Small_Disk().isEmpty())
                Support::Limit_File_Size(room);
            else
                Fill_Disk(In("filling"), room);
            Run(operation);
            return 0;
        });
        QVERIFY2(result.exited, result.error_output.constData());
        QFile::remove(In("filling"));
        const QString loss = Loss(operation);
        losses += loss.isEmpty() ? 0 : 1;
        if (!loss.isEmpty())
            qWarning("round %d: %s", round, qPrintable(loss));
    }
    const QString disk =
        Settings().startsWith(Small_Disk()) ? "full disk" : "full disk, settings elsewhere";
    Add_To_Table(operation, Small_Disk().isEmpty() ? "files cannot grow" : disk, rounds, losses);
    QCOMPARE(losses, 0);
}

QTEST_MAIN(TestFaults)
#include "test_faults.moc"
