#include <QObject>

#include <cstdio>

/// Platform theme or style plugin of a desktop, which reports that it was loaded. The build defines
/// its interface.
class TDesktopPlugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QUILLET_PLUGIN_INTERFACE FILE "desktopplugin.json")

public:
    TDesktopPlugin() { std::fputs("desktop plugin loaded\n", stderr); }
};

#include "desktopplugin.moc"
