#include "textsupport.h"

#include <ovelin/textrenderer.h>

#include <QTest>

#include <cstdlib>
#include <memory>
#include <new>
#include <optional>

using namespace ovelin;
using namespace ovelin::tests;

// What is left of a copy for which memory runs out half way.

namespace {

// Of this thread: QtTest has one that watches.
thread_local std::optional<int> allocationsLeft; // any number, where not set
thread_local int liveAllocations = 0;

} // namespace

void *operator new(std::size_t size)
{
    if (allocationsLeft && (*allocationsLeft)-- <= 0)
        throw std::bad_alloc();
    void *memory = std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr)
        throw std::bad_alloc();
    ++liveAllocations;
    return memory;
}

void operator delete(void *memory) noexcept
{
    if (memory != nullptr)
        --liveAllocations;
    std::free(memory);
}

void operator delete(void *memory, std::size_t) noexcept
{
    operator delete(memory);
}

class tst_TextRendererCopy : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsLeftOfAFailedCopy();
};

void tst_TextRendererCopy::nothingIsLeftOfAFailedCopy()
{
    TextRenderer original;
    original.setTextFont(pixelFont());
    original.setMaxLineCount(3);
    original.setTextWidth(100);
    original.setText(QStringLiteral("Документальный фильм об экипаже ледокола"));
    original.relayout();
    const QString shown = original.displayText();
    const QSize size = original.boundingSize();

    int failures = 0;
    std::unique_ptr<TextRenderer> copy;
    while (!copy) {
        const int before = liveAllocations;
        allocationsLeft = failures;
        try {
            copy = std::make_unique<TextRenderer>(original);
        } catch (const std::bad_alloc &) {
            ++failures;
        }
        allocationsLeft.reset();
        if (!copy)
            QCOMPARE(liveAllocations, before);
        QCOMPARE(original.displayText(), shown);
        QCOMPARE(original.boundingSize(), size);
    }

    // At least the renderer itself, its private record, and the static text of that.
    QCOMPARE_GE(failures, 3);
    QCOMPARE(copy->displayText(), shown);
    QCOMPARE(copy->boundingSize(), size);
}

QTEST_MAIN(tst_TextRendererCopy)

#include "tst_textrenderer_copy.moc"
