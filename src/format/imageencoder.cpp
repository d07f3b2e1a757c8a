#include "src/format/imageencoder.h"

#include "src/encoding/encoderinput.h"
#include "src/encoding/encodingjob.h"

#include <algorithm>
#include <iterator>
#include <utility>

TImageEncoder::TImageEncoder(int processes, QString program)
    : d_limit(processes)
    , d_program(std::move(program))
{
}

TImageEncoder::~TImageEncoder() = default;

void TImageEncoder::Set_Images(const std::vector<TPageImage>& images)
{
    d_images.clear();
    std::copy_if(
        images.cbegin(), images.cend(), std::back_inserter(d_images),
        // A lost image does not need encoding, but may still get a result.
        [this](const TPageImage& image) { return image.Needs_Encoding() || Is_Encoding(image); });
    QSet<quint64> ids;
    for (const TPageImage& image : d_images)
        ids.insert(image.Id());
    d_jobs.remove_if([&ids](const TJob& job) { return !ids.contains(job.image.Id()); });
    d_tried.intersect(ids);
}

bool TImageEncoder::Is_Encoding(const TPageImage& image) const
{
    return std::any_of(d_jobs.cbegin(), d_jobs.cend(),
                       [&image](const TJob& job) { return job.image.Id() == image.Id(); });
}

void TImageEncoder::Start()
{
    for (const TPageImage& image : d_images) {
        if (static_cast<int>(d_jobs.size()) >= d_limit)
            return;
        if (d_tried.contains(image.Id()) || !image.Needs_Encoding())
            continue;
        const bool was_decoded = image.Is_Decoded();
        Start(image);
        if (!was_decoded) {
            QMetaObject::invokeMethod(
                this, [this] { Start(); }, Qt::QueuedConnection);
            return;
        }
    }
}

void TImageEncoder::Start(const TPageImage& image)
{
    d_tried.insert(image.Id());
    const TEncoderInput input = image.Encoder_Input();
    if (input.Pixel_Count() < TPngEncoder::Smallest_Job)
        return;
    d_jobs.push_back({image, std::make_unique<TEncodingJob>()});
    TEncodingJob* const process = d_jobs.back().process.get();
    // Queued, since the job is deleted.
    connect(process, &TEncodingJob::Ended, this, &TImageEncoder::Take_Ended, Qt::QueuedConnection);
    process->Start(input, d_program);
}

void TImageEncoder::Take_Ended()
{
    for (auto job = d_jobs.begin(); job != d_jobs.end();) {
        const auto ended = job++;
        if (ended->process->Is_Running())
            continue;
        const TPageImage image = ended->image;
        if (Take(ended))
            emit Encoded(image);
    }
    Start();
}

/// Waits for the result of a job and removes the job.
/// @return whether it succeeded.
bool TImageEncoder::Take(std::list<TJob>::iterator job)
{
    const QByteArray png = job->process->Wait();
    const quint64 id = job->image.Id();
    d_jobs.erase(job);
    if (png.isEmpty())
        return false;
    for (const TPageImage& image : d_images) {
        if (image.Id() == id)
            image.Set_Png(png);
    }
    return true;
}

void TImageEncoder::Encode(const TPageImage& image)
{
    const auto start_others = [this] {
        if (d_limit > 1)
            Start();
    };
    start_others();
    const auto job = std::find_if(d_jobs.begin(), d_jobs.end(), [&image](const TJob& running) {
        return running.image.Id() == image.Id();
    });
    if (job != d_jobs.end())
        Take(job);
    start_others();
    if (image.Needs_Encoding())
        image.Stored_Png();
}

TImageEncoder::TPause::TPause(TImageEncoder* encoder)
    : d_encoder(encoder)
{
    for (const TJob& job : d_encoder->d_jobs)
        job.process->Pause();
}

TImageEncoder::TPause::~TPause()
{
    for (const TJob& job : d_encoder->d_jobs)
        job.process->Resume();
}
