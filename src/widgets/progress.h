#pragma once

#include "core/progressreport.h"
#include "core/workwatch.h"

#include <QRect>
#include <QString>

#include <functional>
#include <optional>

class QProgressBar;
class QStatusBar;

/// Shows the progress of a long operation with a busy cursor and a bar in the status bar. Both
/// appear after half a second and disappear when this object is destroyed.
///
/// No event loop runs, so that users cannot click anything during the operation. The bar is painted
/// directly, whenever the operation calls Begin_Part or Update or notifies TWorkWatch. It covers
/// other widgets in the status bar and changes no layout, so the window keeps its size. GUI thread
/// only.
class TProgress
{
public:
    /// Returns the time in milliseconds since any fixed moment.
    using TClock = std::function<qint64()>;

    /// The system's monotonic clock.
    static qint64 Machine_Time();

    /// Starts the operation.
    /// @param status_bar  parent of the bar; must outlive this object.
    /// @param area        of the bar, in coordinates of the status bar.
    /// @param pattern     text of the bar, in which "%1" stands for the number of the part and "%2"
    ///                    for the number of all parts.
    TProgress(QStatusBar* status_bar, const QRect& area, const QString& pattern,
              const TClock& clock = Machine_Time);
    /// Ends the operation.
    ~TProgress();
    TProgress(const TProgress&) = delete;
    TProgress& operator=(const TProgress&) = delete;

    /// Begins a part.
    /// @param number  of the part, counted from 1.
    /// @param total   number of all parts, at least 1.
    void Begin_Part(int number, int total);
    /// Returns a function that calls Begin_Part. It must not outlive this object.
    TProgressReport Report();

    /// Shows that the current part continues.
    void Update();

    /// How long an operation runs before its progress is shown.
    static constexpr qint64 Delay = 500; ///< milliseconds
    /// Minimum time between two updates of the bar, so that painting does not slow down quick
    /// parts.
    static constexpr qint64 Pause = 100; ///< milliseconds

private:
    bool Is_Due(qint64 time) const;
    void Appear();

    QStatusBar* d_status_bar;
    QRect d_area;
    QString d_pattern;
    TClock d_clock;
    qint64 d_start_time;
    QProgressBar* d_bar = nullptr; ///< null until it is shown; owned by the status bar
    std::optional<qint64> d_painted_time;
    int d_number = 0; ///< of the current part; 0 before the first
    int d_total = 0;
    TWorkWatch d_watch;
};
