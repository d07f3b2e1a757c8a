#pragma once

#include <QtGlobal>

#include <functional>

/// Calls a function whenever long work makes progress, for as long as this object lives.
///
/// Reading, decoding or writing one image is a single call to Qt and can take many seconds. During
/// that call, Qt only reads from a device or writes to it, block by block. A TWatchedDevice reports
/// each block. GUI thread only.
class TWorkWatch
{
public:
    using TCallback = std::function<void()>;

    /// @param callback  is called during the work, so it must not change the data in use. Replaces
    ///                  the callback of an earlier watch until this object is destroyed.
    explicit TWorkWatch(TCallback callback);
    /// Restores the watch that was active before.
    ~TWorkWatch();
    TWorkWatch(const TWorkWatch&) = delete;
    TWorkWatch& operator=(const TWorkWatch&) = delete;

    /// Reports progress to the active watch, if there is one.
    static void Notify();

private:
    TCallback d_callback;
    TWorkWatch* d_outer;
};

/// A device that notifies TWorkWatch of each block that is read or written.
template <typename TDevice>
class TWatchedDevice : public TDevice
{
public:
    using TDevice::TDevice;

protected:
    qint64 readData(char* data, qint64 length) override
    {
        TWorkWatch::Notify();
        return TDevice::readData(data, length);
    }

    qint64 writeData(const char* data, qint64 length) override
    {
        TWorkWatch::Notify();
        return TDevice::writeData(data, length);
    }
};
