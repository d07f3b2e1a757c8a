#pragma once

#include <QtGlobal>

#include <functional>

/// Is told, as long as it lives, whenever a long piece of work has got on a little.
///
/// Reading, decoding and writing one image can take many seconds within a single call into the
/// toolkit. The only thing by which they show that they go on is that they come back to their
/// device for the next block; a TWatchedDevice tells of that. GUI thread only.
class TWorkWatch
{
public:
    using TUse = std::function<void()>;

    /// @param use  is called from the middle of the work, and so must not touch what is worked on.
    explicit TWorkWatch(TUse use);
    /// The watch before this one, if there was any, is told again.
    ~TWorkWatch();
    TWorkWatch(const TWorkWatch&) = delete;
    TWorkWatch& operator=(const TWorkWatch&) = delete;

    /// Work has got on. Nothing happens when nobody watches.
    static void Tell();

private:
    TUse d_use;
    TWorkWatch* d_outer;
};

/// A device that tells of each block that is read from it or written to it.
template <typename TDevice>
class TWatchedDevice : public TDevice
{
public:
    using TDevice::TDevice;

protected:
    qint64 readData(char* data, qint64 length) override
    {
        TWorkWatch::Tell();
        return TDevice::readData(data, length);
    }

    qint64 writeData(const char* data, qint64 length) override
    {
        TWorkWatch::Tell();
        return TDevice::writeData(data, length);
    }
};
