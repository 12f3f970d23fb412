#ifndef OVELIN_TESTS_TEXT_HYPHENPLACES_H
#define OVELIN_TESTS_TEXT_HYPHENPLACES_H

#include <QList>
#include <QString>

#include <functional>

namespace ovelin::tests {

// The rules of hyphenation written down once more, letter by letter and as slowly as they can be read.

// How many letters stand before each hyphen, the word's own ones not counted as letters either.
QList<int> placesOf(const QString &word);

// The last place before which everything fits; 0 if not even the first one does, -1 if there is none.
int lastFittingPlace(const QList<int> &places, const std::function<bool(qsizetype place)> &fits);

} // namespace ovelin::tests

#endif
