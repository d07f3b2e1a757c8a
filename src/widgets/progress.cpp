#include "src/widgets/progress.h"

#include <QApplication>
#include <QBackingStore>
#include <QProgressBar>
#include <QStatusBar>

#include <chrono>

qint64 TProgress::Machine_Time()
{
    const auto time = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(time).count();
}

TProgress::TProgress(QStatusBar* status_bar, const QRect& area, const QString& pattern,
                     const TClock& clock)
    : d_status_bar(status_bar)
    , d_area(area)
    , d_pattern(pattern)
    , d_clock(clock)
    , d_start_time(clock())
    , d_watch([this] { Update(); })
{
}

TProgress::~TProgress()
{
    if (!d_bar)
        return;
    delete d_bar;
    QApplication::restoreOverrideCursor();
}

void TProgress::Begin_Part(int number, int total)
{
    d_number = number;
    d_total = total;
    Update();
}

TProgressReport TProgress::Report()
{
    return [this](int number, int total) { Begin_Part(number, total); };
}

void TProgress::Update()
{
    const qint64 time = d_clock();
    if (d_number == 0 || !Is_Due(time))
        return;
    d_painted_time = time;
    if (!d_bar)
        Appear();
    d_bar->setFormat(d_pattern.arg(d_number).arg(d_total));
    d_bar->setRange(0, d_total);
    // The current part is not done yet.
    d_bar->setValue(d_number - 1);
    d_bar->repaint();
    // Without an event loop, the window does not repaint areas that another window uncovers, such
    // as the dialog that started the operation. So copy its last contents to the screen again.
    const QWidget* const window = d_status_bar->window();
    if (QBackingStore* const store = window->backingStore())
        store->flush(window->rect());
}

bool TProgress::Is_Due(qint64 time) const
{
    return d_painted_time ? time - *d_painted_time >= Pause : time - d_start_time >= Delay;
}

void TProgress::Appear()
{
    QApplication::setOverrideCursor(Qt::WaitCursor);
    d_bar = new QProgressBar(d_status_bar);
    d_bar->setAccessibleName(QApplication::translate("TProgress", "Progress"));
    d_bar->setGeometry(d_area);
    d_bar->show();
}
