#include "src/pageinput/toolrun.h"

#include "core/workwatch.h"
#include "support/support.h"

#include <QTemporaryDir>
#include <QTest>

#include <csignal>

#include <sys/resource.h>

namespace {

ToolRun::TResult Run_Script(const QString& script, int time_limit = ToolRun::Time_Limit)
{
    return ToolRun::Run("bash", {"-c", script}, time_limit);
}

} // namespace

/// Running external programs with limits.
class TestToolRun : public QObject
{
    Q_OBJECT

private slots:
    void output_and_messages_are_returned()
    {
        const ToolRun::TResult result = Run_Script("echo result; echo message >&2");
        QCOMPARE(result.output, QByteArray("result\n"));
        QCOMPARE(result.messages, QByteArray("message\n"));
        QCOMPARE(result.fault, QString());
    }

    void much_output_is_returned_completely()
    {
        const ToolRun::TResult result = Run_Script("head -c 10000000 /dev/zero");
        QCOMPARE(result.output.size(), 10'000'000);
        QCOMPARE(result.fault, QString());
    }

    void the_program_reads_no_input() { QCOMPARE(Run_Script("cat").fault, QString()); }

    void messages_do_not_depend_on_the_language()
    {
        qputenv("LC_ALL", "de_DE.UTF-8");
        QCOMPARE(Run_Script("echo $LC_ALL").output, QByteArray("C\n"));
        qunsetenv("LC_ALL");
    }

    void memory_is_limited_to_2_gib()
    {
        QCOMPARE(Run_Script("ulimit -v").output, QByteArray("2097152\n"));
        QCOMPARE(Run_Script("ulimit -Hv").output, QByteArray("2097152\n"));
    }

    void no_core_files_are_written()
    {
        rlimit limit = {};
        QCOMPARE(getrlimit(RLIMIT_CORE, &limit), 0);
        const rlim_t before = limit.rlim_cur;
        limit.rlim_cur = limit.rlim_max;
        QCOMPARE(setrlimit(RLIMIT_CORE, &limit), 0);
        QCOMPARE(Run_Script("ulimit -c").output, QByteArray("0\n"));
        limit.rlim_cur = before;
        setrlimit(RLIMIT_CORE, &limit);
    }

    void the_time_is_limited()
    {
        QElapsedTimer clock;
        clock.start();
        const ToolRun::TResult result = Run_Script("exec sleep 1000", 1100);
        QCOMPARE(result.fault, QStringLiteral("takes longer than 1 seconds"));
        QVERIFY(clock.elapsed() >= 1100);
    }

    void the_time_limit_is_a_minute() { QCOMPARE(ToolRun::Time_Limit, 60'000); }

    void waiting_notifies_the_watch()
    {
        int notifications = 0;
        const TWorkWatch watch([&notifications] { ++notifications; });
        Run_Script("exec sleep 1");
        QVERIFY(notifications > 0);
    }

    void a_failure_is_explained_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<QString>("fault");
        QTest::newRow("crash") << "kill -SEGV $$"
                               << "bash crashed";
        QTest::newRow("killed") << "kill -KILL $$"
                                << "bash crashed";
        QTest::newRow("message") << "echo Nothing works >&2; exit 1"
                                 << "bash failed: Nothing works";
        QTest::newRow("first error") << "printf 'Warning: a\\nError: b\\nError: c\\n' >&2; exit 1"
                                     << "bash failed: Error: b";
        QTest::newRow("long message") << "printf 'x%.0s' {1..1000} >&2; exit 1"
                                      << "bash failed: " + QString(200, 'x');
        QTest::newRow("no message") << "exit 3"
                                    << "bash failed: ";
    }
    void a_failure_is_explained()
    {
        QFETCH(const QString, script);
        QFETCH(const QString, fault);
        QCOMPARE(Run_Script(script).fault, fault);
    }

    void a_missing_program_is_named()
    {
        QCOMPARE(ToolRun::Run("no-such-program", {}).fault,
                 QStringLiteral("no-such-program is not installed (package poppler-utils)"));
    }

    void the_program_ends_when_its_caller_is_killed()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath("pid");
        // The child is killed after its time limit of some seconds.
        const Support::TChildResult child = Support::Run_In_Child(
            [&path] {
                Run_Script("echo $$ >" + path + "; exec sleep 1000");
                return 0;
            },
            3);
        QVERIFY(child.timed_out);
        const pid_t program = Support::Read_File(path).trimmed().toInt();
        QVERIFY(program > 0);
        QTRY_VERIFY(kill(program, 0) != 0);
    }
};

QTEST_GUILESS_MAIN(TestToolRun)
#include "test_toolrun.moc"
