#ifndef OVELIN_BENCHMARKS_TEXTS_H
#define OVELIN_BENCHMARKS_TEXTS_H

#include <QFont>
#include <QString>

namespace ovelin::benchmarks {

enum class Script { Russian, Latin, Mixed, Hebrew, Arabic, Chinese };

const char *name(Script script);

// A programme's description of so many words; long ones begin anew after 60.
QString description(Script script, int wordCount);

// The letters of such a description, with nothing between them.
QString endlessWord(Script script, int wordCount);

QFont pixelFont(double letterSpacing = 0);

} // namespace ovelin::benchmarks

#endif
