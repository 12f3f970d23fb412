#include "textsupport.h"

#include <ovelin/textrenderer.h>

#include <QTest>

#include <cstdlib>
#include <memory>
#include <new>
#include <optional>

using namespace ovelin;
using namespace ovelin::tests;

// Memory runs out in the middle of a copy.

namespace {

// QtTest has a thread of its own, whose allocations are not counted.
thread_local std::optional<int> allocationsLeft; // not set: any number
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
    void failedCopyLeaksNothing();
};

void tst_TextRendererCopy::failedCopyLeaksNothing()
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

    // A copy allocates at least the renderer, its private data and the static text.
    QCOMPARE_GE(failures, 3);
    QCOMPARE(copy->displayText(), shown);
    QCOMPARE(copy->boundingSize(), size);
}

QTEST_MAIN(tst_TextRendererCopy)

#include "tst_textrenderer_copy.moc"
