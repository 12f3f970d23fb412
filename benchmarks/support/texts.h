#ifndef OVELIN_BENCHMARKS_TEXTS_H
#define OVELIN_BENCHMARKS_TEXTS_H

#include <QFont>
#include <QString>

namespace ovelin::benchmarks {

enum class Script { Russian, Latin, Mixed, Hebrew, Arabic, Chinese };

const char *name(Script script);

// Returns a programme's description of `wordCount` words. A text longer than the
// sample of the script repeats the sample.
QString description(Script script, int wordCount);

// Returns the letters of the same description as one word.
QString endlessWord(Script script, int wordCount);

QFont pixelFont(double letterSpacing = 0);

} // namespace ovelin::benchmarks

#endif
