#include "src/encoding/encodingjob.h"

#include "core/workwatch.h"
#include "src/encoding/encoderinput.h"
#include "src/encoding/pngencoding.h"

#include <csignal>
#include <sys/mman.h>

namespace {

constexpr int notify_interval = 50; // milliseconds

} // namespace

TEncodingJob::TMemoryFile::TMemoryFile()
{
    open(memfd_create("quillet", MFD_CLOEXEC), ReadWrite, AutoCloseHandle);
}

QString TEncodingJob::TMemoryFile::Path() const
{
    return QStringLiteral("/proc/self/fd/%1").arg(handle());
}

TEncodingJob::TEncodingJob()
{
    // Not finished(), which does not follow a failed start.
    connect(&d_process, &QProcess::stateChanged, this, [this](QProcess::ProcessState state) {
        if (state == QProcess::NotRunning)
            emit Ended();
    });
}

TEncodingJob::~TEncodingJob()
{
    d_process.disconnect(this);
    d_process.kill();
    d_process.waitForFinished();
}

void TEncodingJob::Start(const TEncoderInput& input, const QString& program)
{
    if (!input.Write_To(&d_input) || !d_input.flush()) {
        emit Ended();
        return;
    }
    d_process.setStandardInputFile(d_input.Path());
    d_process.setStandardOutputFile(d_output.Path());
    d_process.setStandardErrorFile(QProcess::nullDevice());
    d_process.start(program, QStringList());
    // Without a pipe, the state does not change.
    if (!Is_Running())
        emit Ended();
}

QByteArray TEncodingJob::Wait()
{
    while (Is_Running() && !d_process.waitForFinished(notify_interval)) {
        TWorkWatch::Notify();
        if (Is_Stopped())
            d_process.kill();
    }
    if (d_process.error() == QProcess::FailedToStart ||
        d_process.exitStatus() != QProcess::NormalExit || d_process.exitCode() != 0)
        return QByteArray();
    const QByteArray png = d_output.readAll();
    return PngEncoding::Is_Complete(png) ? png : QByteArray();
}

void TEncodingJob::Send(int signal) const
{
    const auto process = static_cast<pid_t>(d_process.processId());
    if (process > 0)
        kill(process, signal);
}

void TEncodingJob::Pause()
{
    Send(SIGSTOP);
}

void TEncodingJob::Resume()
{
    Send(SIGCONT);
}

/// Whether somebody has stopped the process, for example by SIGSTOP.
bool TEncodingJob::Is_Stopped() const
{
    QFile file(QStringLiteral("/proc/%1/stat").arg(d_process.processId()));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    // The state follows the name of the program, which may contain parentheses.
    const QByteArray status = file.readAll();
    return status.mid(status.lastIndexOf(')') + 1).startsWith(" T");
}
