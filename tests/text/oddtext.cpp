#include "oddtext.h"

#include <array>
#include <string_view>

namespace ovelin::tests {

namespace {

// clang-format off: one a line, in groups of eight
constexpr std::array<std::u16string_view, 0x40> oddities = {
    // 0x80: breaks and spaces
    u"\u2028",
    u"\u2029",
    u"\u0085",
    u"\r\n",
    u"\u00a0",
    u"\u2009",
    u"\u3000",
    u"\u200b",
    // 0x88: joiners, soft hyphen, other hyphens and dashes
    u"\u00ad",
    u"\u200d",
    u"\u200c",
    u"\u2060",
    u"\u2010",
    u"\u2011",
    u"\u2014",
    u"\ufeff",
    // 0x90: combining marks
    u"\u0301",
    u"\u0300",
    u"\u0306",
    u"\u20dd",
    u"\u0483",
    u"\u05b7",
    u"\u0e33",
    u"\ufe0f",
    // 0x98: surrogates, alone and in pairs
    u"\xd83d",
    u"\xde00",
    u"\xdbff",
    u"\xdc00",
    u"\xd83d\xde00",
    u"\xd83c\xdff4",
    u"\xd835\xdc9c",
    u"\xd83d\xdc68\u200d\xd83d\xdc67",
    // 0xa0: right to left, and controls of the direction
    u"\u05e9",
    u"\u05dc",
    u"\u0644",
    u"\u0627",
    u"\u0661",
    u"\u202e",
    u"\u202c",
    u"\u2067",
    // 0xa8: letters whose case changes their length, ligatures, other scripts
    u"ё",
    u"Ё",
    u"İ",
    u"ß",
    u"ﬁ",
    u"日",
    u"テ",
    u"ก",
    // 0xb0: characters that Qt treats in its own way
    u"\ufffc",
    u"\ufffd",
    u"\ufffe",
    u"\uffff",
    u"\u2026",
    u"\u001f",
    u"\u007f",
    u"\ufdd0",
    // 0xb8: words
    u"программа ",
    u"сообщение ",
    u"подъезд-",
    u"телеканала\n",
    u"eggs ",
    u"<b>",
    u"&shy;",
    u"1-2",
};
// clang-format on
constexpr uchar firstOddity = 0x80;
constexpr uchar firstRussianLetter = 0xc0;

} // namespace

QString oddText(const std::string &bytes)
{
    QString text;
    for (const char byte : bytes) {
        const auto code = static_cast<uchar>(byte);
        if (code >= firstRussianLetter)
            text += QChar(u'А' + (code - firstRussianLetter));
        else if (code >= firstOddity)
            text += oddities[code - firstOddity];
        else
            text += QLatin1Char(byte);
    }
    return text;
}

} // namespace ovelin::tests
