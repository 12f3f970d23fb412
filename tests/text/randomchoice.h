#ifndef OVELIN_TESTS_TEXT_RANDOMCHOICE_H
#define OVELIN_TESTS_TEXT_RANDOMCHOICE_H

#include <QList>

#include <random>

class QFont;
class QString;

namespace ovelin::tests {

// Returns the usual number of random cases for one data row of a test. Slow rows take a fraction of it.
int caseCount();

// Makes random choices. The same seed gives the same choices in every run.
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

    // Returns a width for a box: mostly within two pixels of the advance of some part of the text, with or
    // without the margin of two pixels and a hyphen.
    int width(const QString &text, const QFont &font);

private:
    std::mt19937 m_random;
};

} // namespace ovelin::tests

#endif
