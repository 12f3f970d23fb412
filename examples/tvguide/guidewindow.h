#ifndef TVGUIDE_GUIDEWINDOW_H
#define TVGUIDE_GUIDEWINDOW_H

#include "times.h"

#include <QRasterWindow>
#include <QTimer>

#include <chrono>

namespace tvguide {

class Presentation;
class TrackerLog;

// Shows a presentation. The keys of a remote control or a keyboard move the focus.
class GuideWindow : public QRasterWindow
{
    Q_OBJECT

public:
    GuideWindow(Presentation &presentation, const TrackerLog &log);

    bool isLogShown() const { return m_isLogShown; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void paintLog(QPainter &painter) const;
    void advanceClock();

    Presentation &m_presentation;
    const TrackerLog &m_log;
    QTimer m_clock;
    const Instant m_startTime;
    const std::chrono::steady_clock::time_point m_shownSince;
    bool m_isLogShown = false;
};

} // namespace tvguide

#endif
