#ifndef OVELIN_TESTS_TEXT_LAYOUTINVARIANTS_H
#define OVELIN_TESTS_TEXT_LAYOUTINVARIANTS_H

#include <ovelin/textrenderer.h>

#include <QString>

namespace ovelin::tests {

struct ReferenceLayout;

// Rules that hold for every text and every setup of a renderer, right after a relayout() that laid the text
// out. Each function returns a description of how the renderer breaks its rule; an empty string if the
// renderer keeps the rule.

// The text shown is the source with inserted line breaks. A hyphen may be inserted before an inserted break.
// An elided text is a prefix of the source with these breaks, and an ellipsis. The prefix does not end with a
// space or punctuation. If the ellipsis does not fit, nothing is shown. Rich text and text without a width
// show the source itself.
QString sourceViolation(const TextRenderer &renderer);

// The library makes no more lines than the line limit. Without a limit it elides nothing. Only newlines of
// the text shown count here; lines that Qt breaks at a space are compared with the reference layout.
QString lineLimitViolation(const TextRenderer &renderer);

// A second layout changes nothing.
QString repetitionViolation(TextRenderer &renderer);

// A copy shows what the original shows, before and after the copy is laid out.
QString copyViolation(const TextRenderer &renderer);

// The geometry is that of a new renderer with the same setup. The caller gives the available height, which a
// renderer does not return.
QString geometryViolation(TextRenderer &renderer, int availableHeight);

// A move shifts the aligned position by the same distance, changes nothing else, and measures nothing.
QString moveViolation(TextRenderer &renderer, const QPoint &topLeft);

// If setting the width keeps the layout, nothing is measured, and the whole text is aligned in the box. A
// width of 0 does not move the text.
QString widthViolation(TextRenderer &renderer, int width);

// A layout measures at most a fixed number of ranges for each space, newline and hyphen shown, because a line
// may end there. If the characters must be measured one by one, each character shown counts. If nothing is
// shown, each character of the source counts. A measurement takes one call of the shaper for each script,
// direction and font in the text. Texts that Qt reads as a document have no bound.
QString shapingViolation(TextRenderer &renderer);

// The renderer shows the reference layout.
QString referenceViolation(const TextRenderer &renderer, const ReferenceLayout &expected);

// Returns the first violation of the rules for the source, the line limit, copies, repetition, geometry and
// shaping. The renderer stays as it is, apart from being laid out again.
QString layoutViolation(TextRenderer &renderer, int availableHeight);

// True if `shown` is `source` with inserted line breaks; a hyphen may be inserted before each of them. With
// Extent::Prefix, `shown` may be a prefix of `source` with such insertions.
enum class Extent { All, Prefix };
bool isSourceWithBreaks(const QString &shown, const QString &source, Extent extent);

// Lays the text out although nothing has changed.
void layOutAgain(TextRenderer &renderer);

} // namespace ovelin::tests

#endif
