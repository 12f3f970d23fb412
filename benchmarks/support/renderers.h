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

// The width of a box that shows the whole text on one line.
constexpr int justWideEnough = 0;

struct TextCase
{
    Script script;
    int wordCount;
    int maxLineCount;
    bool hyphenationEnabled = true;
    bool centred = false;
    int width = boxWidth;
    bool endless = false; // one word, of the letters of the words
    double letterSpacing = 0;
};

// Returns a renderer that has laid out its text in the box.
std::shared_ptr<TextRenderer> makeRenderer(const TextCase &textCase);

// Returns an action that lays out the same text once more.
std::function<void()> relayoutOf(const std::shared_ptr<TextRenderer> &renderer);

// Returns an action that looks for a hyphen in each word of a text, with room for half of the word.
std::function<void()> hyphenationOf(const QString &text);

} // namespace ovelin::benchmarks

#endif
