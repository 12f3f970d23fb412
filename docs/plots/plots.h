#ifndef PLOTS_PLOTS_H
#define PLOTS_PLOTS_H

#include "measured.h"

#include "pictures/canvas.h"

#include <QList>

struct Plot
{
    const char *name;
    QSize size;
    void (*draw)(Canvas &canvas, const Measured &measured);
};

QList<Plot> allPlots();

#endif
