#pragma once

#include "core/stepreport.h"
#include "core/workwatch.h"

#include <QRect>
#include <QString>

#include <functional>
#include <optional>

class QProgressBar;
class QStatusBar;

/// Shows that a long work is going on, and how far it is: a busy cursor, and a bar in the status
/// bar. Both come as soon as the work has taken half a second and go with this object, also when
/// the work ends by an exception.
///
/// No event loop runs meanwhile, so that nothing can be clicked between two steps of the work: the
/// bar is painted directly. That also means that the clock is looked at only where the work calls
/// in: before each of its steps, between long pieces of one step, and with each block of an image
/// that is read or written. The bar lies above what else
/// is in the status bar and changes no layout: the window keeps its size, and what was covered is
/// there again afterwards. GUI thread only.
class TProgress
{
public:
    /// Tells the time in milliseconds since any moment that stays the same.
    using TClock = std::function<qint64()>;

    /// The machine's clock, which is never set back.
    static qint64 Machine_Time();

    /// The work begins.
    /// @param status_bar  gets the bar as a child; has to outlive this object.
    /// @param area        where in the status bar the bar is shown, in its pixels.
    /// @param pattern     text of the bar, in which "%1" stands for the step and "%2" for their
    ///                    number.
    TProgress(QStatusBar* status_bar, const QRect& area, const QString& pattern,
              const TClock& clock = Machine_Time);
    /// The work has ended.
    ~TProgress();
    TProgress(const TProgress&) = delete;
    TProgress& operator=(const TProgress&) = delete;

    /// A step is about to begin.
    /// @param number  of the step, counted from 1.
    /// @param total   number of all steps, at least 1.
    void Step(int number, int total);
    /// Returns a function that calls Step. It must not outlive this object.
    TStepReport Steps();

    /// Another piece of the step is about to begin.
    void Go_On();

    /// How long a work takes before it is shown.
    static constexpr qint64 Delay = 500; ///< milliseconds
    /// How long what is shown stays at the least: work that goes fast is not slowed down by
    /// painting each step.
    static constexpr qint64 Pause = 100; ///< milliseconds

private:
    bool Is_Due(qint64 time) const;
    void Appear();

    QStatusBar* d_status_bar;
    QRect d_area;
    QString d_pattern;
    TClock d_clock;
    qint64 d_start_time;
    QProgressBar* d_bar = nullptr; ///< null until the work is shown; owned by the status bar
    std::optional<qint64> d_painted_time;
    int d_number = 0; ///< of the step that goes on; 0 before the first
    int d_total = 0;
    TWorkWatch d_watch;
};
