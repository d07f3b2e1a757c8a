#include "src/safety/openmark.h"

#include "support/support.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <functional>
#include <memory>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace {

/// Called by the next lock.
std::function<void()> on_lock;

} // namespace

extern "C" int flock(int descriptor, int operation)
{
    if (const auto call = std::exchange(on_lock, nullptr))
        call();
    return static_cast<int>(syscall(SYS_flock, descriptor, operation));
}

/// Tests TOpenMark.
class TestOpenMark : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> d_folder;
    QString d_document;

    QString Marks() const { return d_folder->filePath("open"); }

private slots:
    void init()
    {
        d_folder = std::make_unique<QTemporaryDir>();
        d_document = d_folder->filePath("a.quillet");
        Support::Write_File(d_document, "document");
    }

    void another_mark_of_the_same_document_is_seen()
    {
        TOpenMark first(Marks());
        QVERIFY(!first.Set(d_document));
        TOpenMark second(Marks());
        QVERIFY(second.Set(d_document));
        TOpenMark third(Marks());
        QVERIFY(third.Set(d_document));
    }

    void marks_of_other_documents_do_not_matter()
    {
        const QString other = d_folder->filePath("b.quillet");
        Support::Write_File(other, "document");
        TOpenMark first(Marks());
        QVERIFY(!first.Set(d_document));
        TOpenMark second(Marks());
        QVERIFY(!second.Set(other));
    }

    void any_path_of_a_document_is_the_same()
    {
        const QString link = d_folder->filePath("link");
        QVERIFY(QFile::link(d_document, link));
        TOpenMark first(Marks());
        QVERIFY(!first.Set(link));
        TOpenMark second(Marks());
        QVERIFY(second.Set(d_document));
    }

    void a_mark_counts_until_the_last_window_is_closed()
    {
        TOpenMark first(Marks());
        QVERIFY(!first.Set(d_document));
        TOpenMark second(Marks());
        QVERIFY(second.Set(d_document));
        first.Clear();
        QVERIFY(first.Set(d_document));
        first.Clear();
        second.Clear();
        QCOMPARE(Support::Entries(Marks()), QStringList());
        QVERIFY(!first.Set(d_document));
    }

    void a_new_document_replaces_the_mark()
    {
        const QString other = d_folder->filePath("b.quillet");
        Support::Write_File(other, "document");
        TOpenMark first(Marks());
        QVERIFY(!first.Set(d_document));
        QVERIFY(!first.Set(other));
        QCOMPARE(Support::Entries(Marks()).size(), 1);
        TOpenMark second(Marks());
        QVERIFY(!second.Set(d_document));
        QVERIFY(second.Set(other));
    }

    void a_killed_window_leaves_no_mark()
    {
        const Support::TChildResult child = Support::Run_In_Child([this] {
            TOpenMark mark(Marks());
            mark.Set(d_document);
            return raise(SIGKILL);
        });
        QCOMPARE(child.signal, SIGKILL);
        QCOMPARE(Support::Entries(Marks()).size(), 1);
        TOpenMark mark(Marks());
        QVERIFY(!mark.Set(d_document));
    }

    void the_next_start_removes_the_marks_of_killed_windows()
    {
        TOpenMark running(Marks());
        running.Set(d_document);
        const QStringList used = Support::Entries(Marks());
        const QString digest(64, 'f');
        Support::Write_File(Marks() + '/' + digest, QByteArray());
        const QStringList others = {digest + ".txt", digest.toUpper()};
        Support::Write_File(Marks() + '/' + others.first(), QByteArray());
        Support::Write_File(Marks() + '/' + others.last(), "content");
        const TOpenMark next(Marks());
        QStringList left = Support::Entries(Marks());
        left.sort();
        QStringList expected = used + others;
        expected.sort();
        QCOMPARE(left, expected);
    }

    void the_next_start_leaves_no_mark_open()
    {
        QVERIFY(QDir().mkpath(Marks()));
        Support::Write_File(Marks() + '/' + QString(64, 'f'), QByteArray());
        const int open_files = Support::Entries("/proc/self/fd").size();
        const TOpenMark next(Marks());
        QCOMPARE(Support::Entries(Marks()), QStringList());
        QCOMPARE(Support::Entries("/proc/self/fd").size(), open_files);
    }

    void a_mark_that_is_removed_before_it_is_locked_is_made_again()
    {
        TOpenMark first(Marks());
        on_lock = [this] { QFile::remove(Marks() + '/' + Support::Entries(Marks()).value(0)); };
        QVERIFY(!first.Set(d_document));
        QCOMPARE(Support::Entries(Marks()).size(), 1);
        TOpenMark second(Marks());
        QVERIFY(second.Set(d_document));
    }

    void without_a_document_or_a_folder_there_is_no_mark()
    {
        TOpenMark mark(Marks());
        QVERIFY(!mark.Set(QString()));
        QVERIFY(!mark.Set(d_folder->filePath("missing.quillet")));
        QVERIFY(!QFile::exists(Marks()));
        TOpenMark homeless(d_folder->filePath("no/such/folder"));
        QVERIFY(!homeless.Set(d_document));
        TOpenMark another(d_folder->filePath("no/such/folder"));
        QVERIFY(!another.Set(d_document));
    }

    void marks_are_private()
    {
        TOpenMark mark(Marks());
        mark.Set(d_document);
        QCOMPARE(Support::Mode(Marks()), QStringLiteral("700"));
        QCOMPARE(Support::Mode(Marks() + '/' + Support::Entries(Marks()).value(0)),
                 QStringLiteral("600"));
    }
};

QTEST_GUILESS_MAIN(TestOpenMark)
#include "test_openmark.moc"
