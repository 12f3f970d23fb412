#ifndef OVELIN_TESTS_TEXT_ODDTEXT_H
#define OVELIN_TESTS_TEXT_ODDTEXT_H

#include <QString>

#include <string>

namespace ovelin::tests {

// Decodes bytes into a text for tests. Below 0x80 a byte is its ASCII character; from 0x80 to 0xbf it is one
// of 64 characters or words that a layout treats specially; from 0xc0 on it is a Russian letter, as in
// Windows-1251. All bytes are valid, so that a fuzzer or RapidCheck can shorten and simplify them.
QString oddText(const std::string &bytes);

} // namespace ovelin::tests

#endif
