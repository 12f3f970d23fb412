#ifndef PICTURES_PICTURES_H
#define PICTURES_PICTURES_H

#include "canvas.h"

#include <QList>

struct Picture
{
    const char *name;
    QSize size;
    void (*draw)(Canvas &canvas);
};

QList<Picture> allPictures();

void drawResourceRoad(Canvas &canvas);
void drawLineLimits(Canvas &canvas);
void drawHyphenation(Canvas &canvas);
void drawAlignments(Canvas &canvas);
void drawThrobberCycle(Canvas &canvas);
void drawTextures(Canvas &canvas);

#endif
