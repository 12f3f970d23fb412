#ifndef OVELIN_TESTS_TEXT_ODDTEXT_H
#define OVELIN_TESTS_TEXT_ODDTEXT_H

#include <QString>

#include <string>

namespace ovelin::tests {

// A text in a code page of its own: ASCII, from 0x80 on whatever a layout might stumble over, from 0xc0
// on the Russian letters as in Windows-1251. Any bytes are a text, and simpler bytes a simpler one.
QString oddText(const std::string &bytes);

} // namespace ovelin::tests

#endif
