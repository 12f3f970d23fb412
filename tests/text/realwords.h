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

// The paths of Debian's dictionaries and quotations in a script. The files may be missing.
QStringList wordFiles(Script script);

// Returns words and sentences that people write: Qt's names and dates, and lines of the files above.
QStringList wordsOf(Script script);

} // namespace ovelin::tests

#endif
