#include "pictures.h"

QList<Picture> allPictures()
{
    return {
        {"resource-road", {760, 560}, drawResourceRoad},
        {"resource-statuses", {760, 330}, drawStatuses},
        {"text-lines", {760, 150}, drawLineLimits},
        {"text-hyphenation", {760, 180}, drawHyphenation},
        {"text-alignment", {760, 210}, drawAlignments},
        {"text-geometry", {860, 270}, drawGeometry},
        {"throbber-cycle", {760, 250}, drawThrobberCycle},
        {"textures", {760, 396}, drawTextures},
        {"recipe-list", {760, 170}, drawCardList, 1},
        {"recipe-focus", {760, 190}, drawFocusedCard, 1},
        {"recipe-ticker", {760, 110}, drawTicker, 1},
        {"recipe-languages", {760, 170}, drawLanguages},
        {"recipe-posters", {760, 190}, drawPosters},
        {"recipe-budget", {760, 232}, drawBudget},
        {"recipe-onscreen", {760, 170}, drawOnScreen},
        {"recipe-log", {760, 250}, drawLog},
    };
}
