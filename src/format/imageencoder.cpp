#include "src/format/imageencoder.h"

#include <QSet>

namespace {

std::vector<TPageImage> Images_To_Encode(const std::vector<TPageImage>& images)
{
    std::vector<TPageImage> result;
    QSet<quint64> ids;
    for (const TPageImage& image : images) {
        if (!image.Needs_Encoding() || ids.contains(image.Id()))
            continue;
        ids.insert(image.Id());
        result.push_back(image);
    }
    return result;
}

} // namespace

TImageEncoder::TImageEncoder(const std::vector<TPageImage>& images)
    : d_images(Images_To_Encode(images))
    , d_encoder(qMin(TPngEncoder::Processors(), static_cast<int>(d_images.size())))
{
}

void TImageEncoder::Encode(const TPageImage& image)
{
    while (image.Needs_Encoding() && d_taken < d_images.size()) {
        Start();
        d_images[d_taken++].Set_Png(d_encoder.Take());
    }
    Start();
}

void TImageEncoder::Start()
{
    while (!d_encoder.Is_Full() && d_started < d_images.size())
        d_encoder.Add(d_images[d_started++].Pixels_Once());
}
