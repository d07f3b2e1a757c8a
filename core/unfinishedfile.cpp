#include "core/unfinishedfile.h"

#include <QFile>

#include <array>
#include <atomic>
#include <climits>
#include <csignal>
#include <unistd.h>

namespace {

/// A path for the signal handler, which must neither allocate memory nor lock.
struct TSlot
{
    std::atomic<bool> is_used{false};
    char path[PATH_MAX] = {};
};

// The tool writes one file at a time.
std::array<TSlot, 4> slots_in_use;

void Delete_Registered(int signal)
{
    for (const TSlot& slot : slots_in_use) {
        if (slot.is_used)
            unlink(slot.path);
    }
    // SA_RESETHAND has restored the default action, which ends the process.
    raise(signal);
}

} // namespace

TUnfinishedFile::TUnfinishedFile(const QString& path)
{
    const QByteArray system_path = QFile::encodeName(path);
    if (system_path.size() >= PATH_MAX)
        return;
    for (int i = 0; i < static_cast<int>(slots_in_use.size()); ++i) {
        TSlot& slot = slots_in_use.at(static_cast<std::size_t>(i));
        if (slot.is_used)
            continue;
        qstrncpy(slot.path, system_path.constData(), PATH_MAX);
        slot.is_used = true;
        d_slot = i;
        return;
    }
}

TUnfinishedFile::~TUnfinishedFile()
{
    if (d_slot >= 0)
        slots_in_use.at(static_cast<std::size_t>(d_slot)).is_used = false;
}

void TUnfinishedFile::Delete_On_Signals()
{
    struct sigaction action = {};
    action.sa_handler = Delete_Registered;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
        struct sigaction present = {};
        sigaction(signal, nullptr, &present);
        // nohup ignores SIGHUP, for example.
        if (present.sa_handler != SIG_IGN)
            sigaction(signal, &action, nullptr);
    }
}
