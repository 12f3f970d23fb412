// Draws the plots of the measured times into a folder: plots DATA FOLDER

#include "plots.h"

#include <QGuiApplication>

#include <cstdio>

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s DATA FOLDER\n", argv[0]);
        return 2;
    }
    const QString folder = QString::fromLocal8Bit(argv[2]) + u'/';

    try {
        const Measured measured = readMeasured(QString::fromLocal8Bit(argv[1]));
        for (const Plot &plot : allPlots()) {
            constexpr int resolution = 2;
            Canvas canvas(plot.size, resolution);
            plot.draw(canvas, measured);
            if (!canvas.save(folder + plot.name + ".png")) {
                std::fprintf(stderr, "%s could not be written to %s\n", plot.name, argv[2]);
                return 1;
            }
        }
    } catch (const DataError &error) {
        std::fprintf(stderr, "%s: %s\n", argv[1], error.what());
        return 1;
    }
}
