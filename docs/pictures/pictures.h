#ifndef PICTURES_PICTURES_H
#define PICTURES_PICTURES_H

#include "canvas.h"

#include <QList>

struct Picture
{
    const char *name;
    QSize size;
    void (*draw)(Canvas &canvas);
    int resolution = 2; // of Canvas; 1 if the content must not be scaled
};

QList<Picture> allPictures();

void drawResourceRoad(Canvas &canvas);
void drawStatuses(Canvas &canvas);
void drawLineLimits(Canvas &canvas);
void drawHyphenation(Canvas &canvas);
void drawAlignments(Canvas &canvas);
void drawGeometry(Canvas &canvas);
void drawThrobberCycle(Canvas &canvas);
void drawTextures(Canvas &canvas);
void drawCardList(Canvas &canvas);
void drawFocusedCard(Canvas &canvas);
void drawTicker(Canvas &canvas);
void drawLanguages(Canvas &canvas);
void drawPosters(Canvas &canvas);
void drawBudget(Canvas &canvas);
void drawOnScreen(Canvas &canvas);
void drawLog(Canvas &canvas);

#endif
