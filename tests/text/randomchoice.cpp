#include "randomchoice.h"

#include "textsupport.h"

#include <algorithm>
#include <cmath>

namespace ovelin::tests {

int caseCount()
{
    constexpr int reducedCases = 60;
    return wantedTextCases().value_or(isRunReduced() ? reducedCases : usualTextCases);
}

int RandomChoice::width(const QString &text, const QFont &font)
{
    if (below(12) == 0)
        return below(4) - 2;
    if (below(6) == 0)
        return 1 + below(60);

    QString measured = text;
    if (below(2))
        measured.replace(u'\n', lineSeparator);
    constexpr int longestLine = 100; // characters; a long text then has many lines
    const int from = below(int(measured.size()));
    const int length = 1 + below(std::min(longestLine, int(measured.size()) - from));
    double end = advance(measured.mid(from, length), font);
    if (below(3) == 0)
        end = std::ceil(end) + 2;
    if (below(3) == 0)
        end += advance(QStringLiteral("-"), font);
    return std::max(1, static_cast<int>(std::floor(end)) + below(4) - 1);
}

} // namespace ovelin::tests
