// Pixels and results are exchanged through memory files, so that neither process waits for the
// other one to read or write.

#include "src/encoding/pngencoder.h"

#include "core/workwatch.h"
#include "src/encoding/pngencoding.h"
#include "src/encoding/rawimage.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QThread>

#include <memory>
#include <sys/mman.h>
#include <utility>

namespace {

constexpr int notify_interval = 50; // milliseconds

/// A file in memory that this process, and with it QProcess, can open by its path.
class TMemoryFile
{
public:
    TMemoryFile() { d_file.open(Create(), QIODevice::ReadWrite, QFile::AutoCloseHandle); }

    QFile* File() { return &d_file; }
    QString Path() const { return QStringLiteral("/proc/self/fd/%1").arg(d_file.handle()); }

private:
    static int Create() { return memfd_create("quillet", MFD_CLOEXEC); }

    QFile d_file;
};

} // namespace

/// An image, and the process that encodes it if there is one.
class TPngEncoder::TJob
{
public:
    explicit TJob(QImage image)
        : d_image(std::move(image))
    {
    }
    ~TJob();
    Q_DISABLE_COPY(TJob)

    void Start(const QString& program);
    /// The result of the process; empty without a process, or if it failed.
    QByteArray Wait();
    const QImage& Image() const { return d_image; }

private:
    QImage d_image;
    TMemoryFile d_input;
    TMemoryFile d_output;
    QProcess d_process;
};

TPngEncoder::TJob::~TJob()
{
    d_process.kill();
    d_process.waitForFinished();
}

void TPngEncoder::TJob::Start(const QString& program)
{
    if (!RawImage::Write(d_image, d_input.File()) || !d_input.File()->flush())
        return;
    d_process.setStandardInputFile(d_input.Path());
    d_process.setStandardOutputFile(d_output.Path());
    d_process.setStandardErrorFile(QProcess::nullDevice());
    d_process.start(program, QStringList());
}

QByteArray TPngEncoder::TJob::Wait()
{
    while (d_process.state() != QProcess::NotRunning && !d_process.waitForFinished(notify_interval))
        TWorkWatch::Notify();
    if (d_process.exitStatus() != QProcess::NormalExit || d_process.exitCode() != 0)
        return QByteArray();
    const QByteArray png = d_output.File()->readAll();
    return PngEncoding::Is_Complete(png) ? png : QByteArray();
}

TPngEncoder::TPngEncoder(int jobs, QString program)
    : d_limit(qMax(1, jobs))
    , d_program(std::move(program))
{
}

TPngEncoder::~TPngEncoder() = default;

int TPngEncoder::Processors()
{
    return QThread::idealThreadCount();
}

QString TPngEncoder::Program()
{
    return QDir(QCoreApplication::applicationDirPath())
        .filePath(QStringLiteral("../libexec/quillet/quillet-encode"));
}

void TPngEncoder::Add(const QImage& image)
{
    d_jobs.push_back(std::make_unique<TJob>(image));
    if (d_limit > 1 && qint64{image.width()} * image.height() >= Smallest_Job)
        d_jobs.back()->Start(d_program);
}

QByteArray TPngEncoder::Take()
{
    const std::unique_ptr<TJob> job = std::move(d_jobs.front());
    d_jobs.pop_front();
    const QByteArray png = job->Wait();
    return png.isEmpty() ? PngEncoding::Encode(job->Image()) : png;
}
