#include "core/unfinishedfile.h"

#include <QFile>

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <unistd.h>

namespace {

/// Room for a message that contains two paths.
constexpr int slot_size = 3 * PATH_MAX;

/// A path or a message for the signal handler, which must neither allocate memory nor lock.
struct TSlot
{
    std::atomic<bool> is_used{false};
    bool is_message = false; ///< to print; otherwise the path of a file to delete
    char text[slot_size] = {};
};

// The tool writes one file at a time.
std::array<TSlot, 4> slots_in_use;

/// Returns the number of the slot; negative if all are in use, or if the text is too long.
int Fill_Slot(const QByteArray& text, bool is_message)
{
    if (text.size() >= (is_message ? slot_size : PATH_MAX))
        return -1;
    for (int i = 0; i < static_cast<int>(slots_in_use.size()); ++i) {
        TSlot& slot = slots_in_use.at(static_cast<std::size_t>(i));
        if (slot.is_used)
            continue;
        qstrncpy(slot.text, text.constData(), slot_size);
        slot.is_message = is_message;
        slot.is_used = true;
        return i;
    }
    return -1;
}

void Handle_Signal(int signal)
{
    for (const TSlot& slot : slots_in_use) {
        if (!slot.is_used)
            continue;
        if (!slot.is_message) {
            unlink(slot.text);
            continue;
        }
        [[maybe_unused]] const ssize_t written =
            write(STDERR_FILENO, slot.text, std::strlen(slot.text));
    }
    // SA_RESETHAND has restored the default action, which ends the process.
    raise(signal);
}

} // namespace

TUnfinishedFile::TUnfinishedFile(const QString& path)
    : d_slot(Fill_Slot(QFile::encodeName(path), false))
{
}

TUnfinishedFile::TUnfinishedFile(const TMessage& message)
    : d_slot(Fill_Slot(
          QByteArray(program_invocation_short_name) + ": " + message.text.toUtf8() + '\n', true))
{
}

TUnfinishedFile::~TUnfinishedFile()
{
    if (d_slot >= 0)
        slots_in_use.at(static_cast<std::size_t>(d_slot)).is_used = false;
}

void TUnfinishedFile::Handle_Signals()
{
    struct sigaction action = {};
    action.sa_handler = Handle_Signal;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
        struct sigaction present = {};
        sigaction(signal, nullptr, &present);
        // nohup ignores SIGHUP, for example.
        if (present.sa_handler != SIG_IGN)
            sigaction(signal, &action, nullptr);
    }
}
