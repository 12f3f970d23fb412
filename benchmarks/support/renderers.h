#ifndef OVELIN_BENCHMARKS_RENDERERS_H
#define OVELIN_BENCHMARKS_RENDERERS_H

#include "support/texts.h"

#include <ovelin/textrenderer.h>

#include <functional>
#include <memory>

namespace ovelin::benchmarks {

constexpr int boxWidth = 400;
constexpr int boxHeight = 200;
constexpr int screenWidth = 1900;

// In place of a width: the box is just wide enough for the whole text on one line.
constexpr int justWideEnough = 0;

struct TextCase
{
    Script script;
    int wordCount;
    int maxLineCount;
    bool hyphenationEnabled = true;
    bool centred = false;
    int width = boxWidth;
    bool endless = false; // true: the letters of all words as one word
    double letterSpacing = 0;
};

// Returns a renderer that has laid out the text of the case.
std::shared_ptr<TextRenderer> makeRenderer(const TextCase &textCase);

// Returns an action that lays the text out again.
std::function<void()> relayoutOf(const std::shared_ptr<TextRenderer> &renderer);

// Returns an action that searches the first half of each word of a text for a hyphenation point.
std::function<void()> hyphenationOf(const QString &text);

} // namespace ovelin::benchmarks

#endif
