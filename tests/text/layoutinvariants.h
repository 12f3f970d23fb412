#ifndef OVELIN_TESTS_TEXT_LAYOUTINVARIANTS_H
#define OVELIN_TESTS_TEXT_LAYOUTINVARIANTS_H

#include <ovelin/textrenderer.h>

#include <QString>

namespace ovelin::tests {

struct ReferenceLayout;

// What holds for every text however it is set up, right after a relayout() that laid it out. Each
// function tells how the renderer breaks the rule; an empty answer means that it does not.

// The text shown is the source with nothing in between but line breaks and hyphens right before them.
// An elided one is the beginning of the source, up to a character that is neither a space nor
// punctuation, and the ellipsis; or nothing, where not even the ellipsis fits. Rich text, and text
// without a width, is the source itself.
QString sourceViolation(const TextRenderer &renderer);

// The library has made no more lines than allowed, or, if there is no limit, cut nothing. The lines that Qt
// makes of these, where it wraps at a space, are compared with the plain formulation.
QString lineLimitViolation(const TextRenderer &renderer);

// Laying out again changes nothing.
QString repetitionViolation(TextRenderer &renderer);

// A copy shows the same at once, and when it is laid out itself.
QString copyViolation(const TextRenderer &renderer);

// What the renderer knows of its geometry is what a new one finds that is set up in the same way. The
// height for vertical alignment cannot be asked for.
QString geometryViolation(TextRenderer &renderer, int availableHeight);

// Moves the renderer, which measures nothing: what it shows stays, at a place as far from the old one as the
// new corner.
QString moveViolation(TextRenderer &renderer, const QPoint &topLeft);

// Sets the width: where the layout is kept nothing is measured, and the whole text is in the box, aligned in
// it; without a box, it stays where it is.
QString widthViolation(TextRenderer &renderer, int width);

// Laying out has Qt shape texts at most so often for each line end that is shown, however long the text
// is; a text in several scripts or fonts as often for each of their runs. Only some texts, of letters that
// have to be measured one by one, take as much for each character. Not for what Qt reads as a document.
QString shapingViolation(TextRenderer &renderer);

// The renderer shows what the plain formulation shows.
QString referenceViolation(const TextRenderer &renderer, const ReferenceLayout &expected);

// The first violation of the above that leave the renderer as it is, but for the last one.
QString layoutViolation(TextRenderer &renderer, int availableHeight);

// Whether `shown` is `source`, or its beginning, with line breaks put in and hyphens right before them.
enum class Extent { All, Beginning };
bool isSourceWithBreaks(const QString &shown, const QString &source, Extent extent);

// Lays the text out though nothing has changed.
void layOutAgain(TextRenderer &renderer);

} // namespace ovelin::tests

#endif
