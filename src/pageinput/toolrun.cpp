#include "src/pageinput/toolrun.h"

#include "core/workwatch.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QProcessEnvironment>

#include <csignal>

#include <sys/prctl.h>
#include <sys/resource.h>

namespace {

QString Tr(const char* source)
{
    return QCoreApplication::translate("ToolRun", source);
}

/// Runs in the child before the program starts.
void Limit_Child()
{
    const rlimit memory{ToolRun::Memory_Limit, ToolRun::Memory_Limit};
    setrlimit(RLIMIT_AS, &memory);
    const rlimit no_core_file{0, 0};
    setrlimit(RLIMIT_CORE, &no_core_file);
    // The child must not run on if this program is killed.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
}

class TLimitedProcess : public QProcess
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
public:
    TLimitedProcess()
    {
        setChildProcessModifier(Limit_Child);
    }
#else
protected:
    void setupChildProcess() override
    {
        Limit_Child();
    }
#endif
};

/// Waits until a process ends. Returns false if that takes too long.
bool Wait(QProcess* process, int time_limit)
{
    constexpr int pause = 100; // milliseconds
    QElapsedTimer clock;
    clock.start();
    while (!process->waitForFinished(pause)) {
        if (process->state() == QProcess::NotRunning)
            return true;
        if (clock.elapsed() > time_limit)
            return false;
        TWorkWatch::Notify();
    }
    return true;
}

/// The first error among a program's messages, or the first message.
QString Reason(const QByteArray& messages)
{
    constexpr int longest = 200;
    const QStringList lines = QString::fromUtf8(messages.trimmed()).split(QLatin1Char('\n'));
    const QStringList errors = lines.filter(QStringLiteral("Error"));
    return (errors.isEmpty() ? lines : errors).first().left(longest);
}

QString Fault(const QProcess& process, const QByteArray& messages)
{
    if (process.error() == QProcess::FailedToStart)
        return Tr("%1 is not installed (package poppler-utils)").arg(process.program());
    if (process.exitStatus() == QProcess::CrashExit)
        return Tr("%1 crashed").arg(process.program());
    if (process.exitCode() == 0)
        return QString();
    return Tr("%1 failed: %2").arg(process.program(), Reason(messages));
}

} // namespace

ToolRun::TResult ToolRun::Run(const QString& program, const QStringList& arguments, int time_limit)
{
    TLimitedProcess process;
    // The output is parsed, so it must not depend on the user's language.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    process.setProcessEnvironment(environment);
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(program, arguments);
    const bool is_in_time = Wait(&process, time_limit);
    if (!is_in_time) {
        process.kill();
        process.waitForFinished();
    }
    TResult result;
    result.output = process.readAllStandardOutput();
    result.messages = process.readAllStandardError();
    constexpr int second = 1000; // milliseconds
    result.fault = is_in_time ? Fault(process, result.messages)
                              : Tr("takes longer than %1 seconds").arg(time_limit / second);
    return result;
}
