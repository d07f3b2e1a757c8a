#pragma once

#include "src/encoding/pngencoder.h"
#include "src/model/pageimage.h"

#include <QObject>
#include <QSet>
#include <QString>

#include <list>
#include <memory>
#include <vector>

class TEncodingJob;

/// Encodes the images of a document, several at a time: in the background, or when they are about
/// to be written.
///
/// In the background, the event loop delivers the results, and the next images are started then.
/// Each image gets one process at most; if that fails, the image is encoded when it is written, as
/// are small images. GUI thread only.
class TImageEncoder : public QObject
{
    Q_OBJECT

public:
    /// @param processes  how many images are encoded at the same time.
    /// @param program    path of quillet-encode.
    explicit TImageEncoder(int processes = TPngEncoder::Processors(),
                           QString program = TPngEncoder::Program());
    /// Ends the processes.
    ~TImageEncoder() override;
    Q_DISABLE_COPY(TImageEncoder)

    /// Sets the images to encode, in this order, and ends the processes of all other images.
    /// Images that are already encoded, and copies, cost nothing.
    void Set_Images(const std::vector<TPageImage>& images);

    /// Starts to encode the images in the background. The event loop runs after each image that has
    /// to be decoded first.
    void Start();

    /// Makes sure that one of the images is encoded: waits for its process, or encodes it here.
    /// Starts to encode those that follow it, unless there is only one processor.
    void Encode(const TPageImage& image);

    /// Suspends all processes while it exists, to leave the processors to others.
    class TPause
    {
    public:
        /// @param encoder  must outlive this object.
        explicit TPause(TImageEncoder* encoder);
        ~TPause();
        Q_DISABLE_COPY(TPause)

    private:
        TImageEncoder* d_encoder;
    };

signals:
    /// An image was encoded in the background.
    void Encoded(const TPageImage& image);

private:
    struct TJob
    {
        TPageImage image;
        std::unique_ptr<TEncodingJob> process;
    };

    bool Is_Encoding(const TPageImage& image) const;
    void Start(const TPageImage& image);
    void Take_Ended();
    bool Take(std::list<TJob>::iterator job);

    int d_limit;
    QString d_program;
    std::vector<TPageImage> d_images; ///< to encode
    QSet<quint64> d_tried;            ///< ids of those that were started or are small
    std::list<TJob> d_jobs;
};
