#include "pictures.h"

#include <ovelin/throbberrenderer.h>

namespace {

// In degrees: the steps of the timer at its interval of 17 milliseconds.
constexpr int rotationPerTick = 3;
constexpr int spanPerTick = 6;

constexpr int framesPerRow = 7;
constexpr int rows = 2;
constexpr int ticksBetweenFrames = 7;

constexpr int frameSize = 64;
constexpr int column = 104;
constexpr int row = 120;
constexpr int margin = 30;

} // namespace

void drawThrobberCycle(Canvas &canvas)
{
    ovelin::ThrobberRenderer throbber;
    throbber.setPenWidth(8);

    int tick = 0;
    for (int frame = 0; frame < framesPerRow * rows; ++frame) {
        const QPoint topLeft(margin + frame % framesPerRow * column,
                             margin + frame / framesPerRow * row);
        throbber.setRenderRect({topLeft, QSize(frameSize, frameSize)});
        throbber.draw(canvas.painter());
        canvas.label(topLeft + QPoint(0, frameSize + 22), QString("tick %1").arg(tick));

        for (int i = 0; i < ticksBetweenFrames; ++i, ++tick)
            throbber.addAngles(rotationPerTick, spanPerTick);
    }
}
