// quillet-encode: reads an image from standard input and writes it to standard output as PNG.
//
// The window and the tool start it to encode several images at a time; see TEncodingJob. It exits
// with 1 if the input is no image or the output cannot be written.

#include "src/encoding/encoderinput.h"
#include "src/encoding/pngencoding.h"

#include <QFile>
#include <QImage>

#include <csignal>
#include <cstdlib>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

/// Runs at the lowest priority, and ends when the program that started this process ends.
void Lower_Priority_And_Follow_Parent()
{
    constexpr int lowest_priority = 19;
    setpriority(PRIO_PROCESS, 0, lowest_priority);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
}

/// Limits the memory, so that an error here does not take it from other programs.
/// @param image_size  of the decoded image in bytes.
void Limit_Memory(qint64 image_size)
{
#ifndef __SANITIZE_ADDRESS__ // which reserves a large part of the address space
    // The pixels, a copy in another format, the result, and the program itself.
    constexpr rlim_t copies = 4;
    constexpr rlim_t program = 512 * 1024 * 1024;
    const rlim_t size = copies * static_cast<rlim_t>(image_size) + program;
    const rlimit limit{size, size};
    setrlimit(RLIMIT_AS, &limit);
#else
    Q_UNUSED(image_size)
#endif
}

} // namespace

int main()
{
    Lower_Priority_And_Follow_Parent();
    QFile input;
    QFile output;
    if (!input.open(STDIN_FILENO, QIODevice::ReadOnly) ||
        !output.open(STDOUT_FILENO, QIODevice::WriteOnly))
        return EXIT_FAILURE;
    const TEncoderInput encoder_input = TEncoderInput::Read_From(&input);
    Limit_Memory(encoder_input.Memory());
    const QImage image = encoder_input.Image();
    if (image.isNull())
        return EXIT_FAILURE;
    const QByteArray png = PngEncoding::Encode(image);
    const bool is_written = !png.isEmpty() && output.write(png) == png.size() && output.flush();
    return is_written ? EXIT_SUCCESS : EXIT_FAILURE;
}
