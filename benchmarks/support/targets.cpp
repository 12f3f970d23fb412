#include "support/targets.h"

#include "support/comparison.h"

#include <algorithm>

namespace ovelin::benchmarks {

namespace {

constexpr Target targets[] = {
    {"relayout: Russian, 20 words in 4 lines", "QStaticText alone (floor)", 2.8, 2.2},
    {"relayout: Russian, 20 words in 4 lines", "Pango", 0.98, 0.9},
    {"relayout: Russian, 60 words in 100 lines", "QStaticText alone (floor)", 2.5, 2.0},
    {"relayout: Russian, 20000 words in 4 lines", "the same with 60 words", 1.3, 1.1},
    {"draw", "setFont and drawStaticText", 1.02},
    {"setters: equal values", shaperCallsCounter, 0},
    {"setters: setTextWidth that keeps the layout", shaperCallsCounter, 0},
    {"setters: move", shaperCallsCounter, 0},
    {"tracker: re-registration among 1024", "bare walk", 1.1},
    {"throbber: frame", "the same two painter calls", 1.02},
    {gridName, "worst against the floor", 5, 4},
    {gridName, "median against the floor", 2.6, 2.2},
    {gridName, "cells not ahead of Pango", 45},
    {gridName, "worst growth from 200 to 2000 words", 1.5, 1.2},
    {gridName, "worst growth of an endless word", 2, 1.2},
};

} // namespace

const Target *findTarget(std::string_view operation, std::string_view against)
{
    const auto found = std::ranges::find_if(targets, [&](const Target &target) {
        return target.operation == operation && target.against == against;
    });
    return found == std::end(targets) ? nullptr : found;
}

} // namespace ovelin::benchmarks
