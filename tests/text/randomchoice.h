#ifndef OVELIN_TESTS_TEXT_RANDOMCHOICE_H
#define OVELIN_TESTS_TEXT_RANDOMCHOICE_H

#include <QList>

#include <random>

class QFont;
class QString;

namespace ovelin::tests {

// How many random cases a row of texts has.
int caseCount();

// Chooses at random, by the same seed the same in every run.
class RandomChoice
{
public:
    explicit RandomChoice(unsigned seed)
        : m_random(seed)
    {
    }

    int below(int end) { return static_cast<int>(m_random() % static_cast<unsigned>(end)); }

    template<typename T>
    T oneOf(const QList<T> &list)
    {
        return list.at(below(int(list.size())));
    }

    // The width of a box, mostly next to where some part of the text ends, with and without the margin and
    // a hyphen.
    int width(const QString &text, const QFont &font);

private:
    std::mt19937 m_random;
};

} // namespace ovelin::tests

#endif
