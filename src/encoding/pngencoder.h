#pragma once

#include <QByteArray>
#include <QString>

#include <deque>
#include <memory>

class QImage;

/// Encodes images as PNG, several at a time.
///
/// Each image goes to a process of its own, quillet-encode, whose result is what this process would
/// write. If the program is missing or a process fails, the image is encoded here. So is a small
/// image, since starting a process would take longer. GUI thread only; no event loop is needed.
class TPngEncoder
{
public:
    /// @param jobs     how many images are encoded at the same time. With 1, no process is started.
    /// @param program  path of quillet-encode.
    explicit TPngEncoder(int jobs, QString program = Program());
    /// Ends the processes.
    ~TPngEncoder();
    TPngEncoder(const TPngEncoder&) = delete;
    TPngEncoder& operator=(const TPngEncoder&) = delete;

    /// The number of processors that this process may use.
    static int Processors();

    /// Path of quillet-encode, relative to the running program.
    static QString Program();

    /// Images with fewer pixels are encoded in this process.
    static constexpr qint64 Smallest_Job = 500'000;

    /// Starts to encode an image.
    void Add(const QImage& image);

    /// Whether the oldest result should be taken before another image is added.
    bool Is_Full() const { return static_cast<int>(d_jobs.size()) >= d_limit; }
    bool Is_Empty() const { return d_jobs.empty(); }

    /// Waits for the result of the oldest image, which must exist; empty if it cannot be encoded.
    /// Notifies TWorkWatch.
    QByteArray Take();

private:
    struct TJob;

    std::deque<std::unique_ptr<TJob>> d_jobs;
    int d_limit;
    QString d_program;
};
