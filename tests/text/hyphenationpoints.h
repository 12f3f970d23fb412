#ifndef OVELIN_TESTS_TEXT_HYPHENATIONPOINTS_H
#define OVELIN_TESTS_TEXT_HYPHENATIONPOINTS_H

#include <QList>
#include <QString>

#include <functional>

namespace ovelin::tests {

// A second, simple implementation of the hyphenation rules, to compare with.

// Returns the hyphenation points of a word: for each, the number of letters before it. Hyphens of the word
// count as points, not as letters.
QList<int> hyphenationPoints(const QString &word);

// Returns the last point up to which all points fit; 0 if the first one does not fit, -1 without points.
int lastPointThatFits(const QList<int> &points, const std::function<bool(qsizetype point)> &fits);

} // namespace ovelin::tests

#endif
