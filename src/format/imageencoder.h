#pragma once

#include "src/encoding/pngencoder.h"
#include "src/model/pageimage.h"

#include <cstddef>
#include <vector>

/// Encodes images that are about to be written, several at a time.
class TImageEncoder
{
public:
    /// @param images  in the order in which they are written. Those that are encoded already, and
    ///                copies, cost nothing.
    explicit TImageEncoder(const std::vector<TPageImage>& images);

    /// Makes sure that one of the images is encoded. Starts to encode those that follow it.
    void Encode(const TPageImage& image);

private:
    void Start();

    std::vector<TPageImage> d_images; ///< to encode
    std::size_t d_started = 0;
    std::size_t d_taken = 0;
    TPngEncoder d_encoder;
};
