#include "core/errorcapture.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/common_interface_defs.h>
#endif

namespace {

bool is_capturing = false;

/// Keeps the reports of the sanitizers visible.
void Set_Report_Descriptor([[maybe_unused]] int descriptor)
{
#if defined(__SANITIZE_ADDRESS__)
    __sanitizer_set_report_fd(reinterpret_cast<void*>(std::intptr_t{descriptor}));
#endif
}

} // namespace

TErrorCapture::TErrorCapture()
{
    std::array<int, 2> ends{};
    // Without O_NONBLOCK, a library that prints more than the pipe holds would wait forever.
    if (is_capturing || pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    d_pipe = ends[0];
    d_standard_error = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (d_standard_error < 0) {
        close(ends[0]);
    } else {
        is_capturing = true;
        Set_Report_Descriptor(d_standard_error);
        dup2(ends[1], STDERR_FILENO);
    }
    close(ends[1]);
}

TErrorCapture::~TErrorCapture()
{
    if (d_standard_error < 0)
        return;
    dup2(d_standard_error, STDERR_FILENO);
    Set_Report_Descriptor(STDERR_FILENO);
    // A full pipe is an error of the stream.
    std::clearerr(stderr);
    close(d_standard_error);
    close(d_pipe);
    is_capturing = false;
}

QByteArray TErrorCapture::Text() const
{
    QByteArray text;
    if (d_standard_error < 0)
        return text;
    std::array<char, 4096> block{};
    ssize_t size = 0;
    while ((size = read(d_pipe, block.data(), block.size())) > 0)
        text.append(block.data(), static_cast<int>(size));
    return text;
}
