// Draws the pictures of the documentation into a folder: pictures FOLDER

#include "pictures.h"

#include <QGuiApplication>

#include <cstdio>

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
        return 2;
    }
    const QString folder = QString::fromLocal8Bit(argv[1]) + u'/';

    for (const Picture &picture : allPictures()) {
        Canvas canvas(picture.size, picture.resolution);
        picture.draw(canvas);
        if (!canvas.save(folder + picture.name + ".png")) {
            std::fprintf(stderr, "%s could not be written to %s\n", picture.name, argv[1]);
            return 1;
        }
    }
}
