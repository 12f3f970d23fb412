#ifndef OVELIN_TESTS_TEXT_REALWORDS_H
#define OVELIN_TESTS_TEXT_REALWORDS_H

#include <QObject>
#include <QStringList>

namespace ovelin::tests {

Q_NAMESPACE

enum class Script {
    Latin,
    Cyrillic,
    Greek,
    Hebrew,
    Arabic,
    Devanagari,
    Thai,
    Chinese,
    Japanese,
    Korean,
    Emoji,
};
Q_ENUM_NS(Script)

// True if people write spaces between the words of a script.
bool hasSpaces(Script script);

// The dictionaries and quotations of a script that Debian may have installed.
QStringList wordFiles(Script script);

// Words and sentences that people write: names and dates that Qt knows, and lines of the files above that are
// installed.
QStringList wordsOf(Script script);

} // namespace ovelin::tests

#endif
