// Collecting what libraries print.

#include "core/errorcapture.h"

#include "support/support.h"

#include <QTest>

#include <cstdio>
#include <unistd.h>

using Support::Run_In_Child;
using Support::TChildResult;

class TestErrorCapture : public QObject
{
    Q_OBJECT

private slots:
    void the_text_is_collected_instead_of_printed()
    {
        const TChildResult result = Run_In_Child([] {
            std::fputs("before\n", stderr);
            QByteArray text;
            {
                const TErrorCapture capture;
                std::fputs("one\n", stderr);
                write(STDERR_FILENO, "two\n", 4) == 4 || std::fputs("failed", stderr);
                text = capture.Text();
            }
            std::fputs("after\n", stderr);
            return text == "one\ntwo\n" ? 0 : 1;
        });
        QCOMPARE(result.exit_code, 0);
        QCOMPARE(result.error_output, QByteArray("before\nafter\n"));
    }

    void an_inner_capture_leaves_the_text_to_the_outer_one()
    {
        const TChildResult result = Run_In_Child([] {
            const TErrorCapture outer;
            {
                const TErrorCapture inner;
                std::fputs("text", stderr);
                if (!inner.Text().isEmpty())
                    return 1;
            }
            std::fputs(" and more", stderr);
            return outer.Text() == "text and more" ? 0 : 2;
        });
        QCOMPARE(result.exit_code, 0);
        QCOMPARE(result.error_output, QByteArray());
    }

    void more_text_than_a_pipe_holds_is_dropped()
    {
        const TChildResult result = Run_In_Child([] {
            int size = 0;
            {
                const TErrorCapture capture;
                for (int line = 0; line < 100'000; ++line)
                    std::fputs("a line of a library\n", stderr);
                size = capture.Text().size();
            }
            std::fputs("after\n", stderr);
            return size > 1000 && size < 2'000'000 && std::ferror(stderr) == 0 ? 0 : 1;
        });
        QVERIFY(!result.timed_out);
        QCOMPARE(result.exit_code, 0);
        QCOMPARE(result.error_output, QByteArray("after\n"));
    }

    void no_standard_error_is_needed()
    {
        const TChildResult result = Run_In_Child([] {
            close(STDERR_FILENO);
            const TErrorCapture capture;
            std::fputs("text", stderr);
            return capture.Text().isEmpty() ? 0 : 1;
        });
        QCOMPARE(result.exit_code, 0);
    }
};

QTEST_GUILESS_MAIN(TestErrorCapture)
#include "test_errorcapture.moc"
