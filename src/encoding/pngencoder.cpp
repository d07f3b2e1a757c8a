#include "src/encoding/pngencoder.h"

#include "src/encoding/encoderinput.h"
#include "src/encoding/encodingjob.h"
#include "src/encoding/pngencoding.h"

#include <QCoreApplication>
#include <QDir>
#include <QImage>
#include <QThread>

#include <memory>
#include <utility>

/// An image, and the process that encodes it if there is one.
struct TPngEncoder::TJob
{
    QImage image;
    TEncodingJob process;
};

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
    d_jobs.push_back(std::make_unique<TJob>());
    d_jobs.back()->image = image;
    const TEncoderInput input{image};
    if (d_limit > 1 && input.Pixel_Count() >= Smallest_Job)
        d_jobs.back()->process.Start(input, d_program);
}

QByteArray TPngEncoder::Take()
{
    const std::unique_ptr<TJob> job = std::move(d_jobs.front());
    d_jobs.pop_front();
    const QByteArray png = job->process.Wait();
    return png.isEmpty() ? PngEncoding::Encode(job->image) : png;
}
