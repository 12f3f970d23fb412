#include "pictures.h"

QList<Picture> allPictures()
{
    return {
        {"resource-road", {760, 560}, drawResourceRoad},
        {"text-lines", {760, 150}, drawLineLimits},
        {"text-hyphenation", {760, 180}, drawHyphenation},
        {"text-alignment", {760, 210}, drawAlignments},
        {"throbber-cycle", {760, 250}, drawThrobberCycle},
        {"textures", {760, 250}, drawTextures},
    };
}
