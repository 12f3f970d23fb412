#ifndef OVELIN_TEXTRENDERER_P_H
#define OVELIN_TEXTRENDERER_P_H

#include "textlayout_p.h"

#include <ovelin/textrenderer.h>

#include <QStaticText>

#include <optional>

namespace ovelin {

struct TextRendererPrivate
{
    explicit TextRendererPrivate(TextRenderer *renderer);

    bool canBeLaidOut() const;
    std::optional<int> widthLimit() const;
    int effectiveTextWidth();

    void markDirty();
    void applyLineSeparators();
    void performLayout();
    void breakAtWidthLimit();
    BrokenText breakText(double limit) const;
    void updateAlignedTextTopLeft();

    QSize computeBoundingSize(const QMargins &margins) const;

    TextRenderer *owner;
    bool needRelayout = false;
    QStaticText staticText;
    QString text;
    QFont font;
    QPoint textTopLeft;
    QPoint alignedTextTopLeft;
    qint32 maxLineCount = 1;
    qint32 availableHeight = 0;
    qint32 textWidth = 0;
    qint32 maxTextWidth = 0;
    bool hyphenationEnabled = true;
    bool textElided = false;
    bool lineSeparatorsApplied = false;
    bool textIsWellFormed = true;
    std::optional<qint32> effectiveWidth;
    // The fine width of the text. If the text is wider than the width limit, this can be a smaller width that
    // is still greater than the limit.
    std::optional<qint32> fineWidth;
};

} // namespace ovelin

#endif
