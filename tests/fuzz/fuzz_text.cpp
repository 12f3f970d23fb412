#include "fuzzing.h"

#include "text/layoutinvariants.h"
#include "text/oddtext.h"
#include "text/referencelayout.h"
#include "text/textsupport.h"

#include <ovelin/textrenderer.h>

#include <QImage>
#include <QPainter>
#include <QPen>
#include <QTextDocument>

#include <memory>
#include <vector>

// Calls random functions of a few text renderers. Checks after each layout the rules that hold for every
// text, and compares short texts with the reference layout.

using namespace ovelin;
using namespace ovelin::tests;

namespace {

// The lengths are in characters. Qt shapes a text in pieces of 4,096 characters, so a text of 5,000 has two
// pieces. A longer text would have only more of them, and would slow the fuzzer.
constexpr qsizetype longestText = 5'000;
constexpr qsizetype longestRichText = 500;
constexpr qsizetype longestComparedText = 200;
constexpr qsizetype mostCharacters = longestText; // in all layouts of one input together

constexpr int candidateBudget = 500;
constexpr std::size_t mostRenderers = 4;
constexpr int mostCalls = 30;
constexpr int canvasSize = 64;

QString anyText(FuzzedDataProvider &data)
{
    const QString text = oddText(data.ConsumeRandomLengthString()).left(longestText);
    if (text.isEmpty() || data.ConsumeIntegralInRange(0, 7) > 0)
        return text;
    const auto length = data.ConsumeIntegralInRange<qsizetype>(1, longestText);
    return text.repeated(length / text.size() + 1).left(length);
}

QFont anyFont(FuzzedDataProvider &data)
{
    QFont font(QStringLiteral("DejaVu Sans"));
    // Only a few sizes, because Qt keeps each font in its cache for the whole run.
    const int size = data.PickValueInArray({-1, 0, 1, 2, 11, 20, 27, 40, 200, 1000, 134'217'728});
    if (size == 0)
        font = fontOfZeroPixels();
    else if (size > 0)
        font.setPixelSize(size);
    if (data.ConsumeIntegralInRange(0, 3) == 0) {
        const auto type = data.PickValueInArray({QFont::AbsoluteSpacing, QFont::PercentageSpacing});
        font.setLetterSpacing(type, data.ConsumeBool() ? data.ConsumeIntegralInRange(-20, 200)
                                                       : data.ConsumeFloatingPoint<double>());
    }
    if (data.ConsumeIntegralInRange(0, 7) == 0)
        font.setWordSpacing(data.ConsumeIntegralInRange(-20, 200));
    font.setStrikeOut(data.ConsumeIntegralInRange(0, 7) == 0);
    font.setItalic(data.ConsumeBool());
    return font;
}

QPoint anyPoint(FuzzedDataProvider &data)
{
    return {anyInt(data), anyInt(data)};
}

// A renderer and its available height, which the renderer does not return.
class Subject
{
public:
    Subject() = default;
    Subject(const Subject &other) = default;

    void call(FuzzedDataProvider &data, qsizetype &charactersLeft);

private:
    void set(FuzzedDataProvider &data);
    void layOut(qsizetype &charactersLeft);
    bool isTooLongForQt() const;
    void compare() const;
    void paint(FuzzedDataProvider &data) const;

    TextRenderer m_renderer;
    int m_availableHeight = 0;
};

void Subject::call(FuzzedDataProvider &data, qsizetype &charactersLeft)
{
    switch (data.ConsumeIntegralInRange(0, 5)) {
    case 0:
        requireNone(moveViolation(m_renderer, anyPoint(data)));
        break;
    case 1:
        paint(data);
        break;
    case 2:
        layOut(charactersLeft);
        break;
    default:
        set(data);
    }
}

void Subject::set(FuzzedDataProvider &data)
{
    switch (data.ConsumeIntegralInRange(0, 10)) {
    case 0:
        m_renderer.setTextFont(anyFont(data));
        break;
    case 1:
        m_renderer.setTextFormat(
            data.PickValueInArray({Qt::PlainText, Qt::RichText, Qt::AutoText, Qt::MarkdownText}));
        break;
    case 2:
        m_renderer.setTextAlignment(
            Qt::Alignment::fromInt(static_cast<Qt::Alignment::Int>(anyInt(data))));
        break;
    case 3:
        requireNone(widthViolation(m_renderer, anyInt(data)));
        break;
    case 4:
        m_renderer.setMaxTextWidth(anyInt(data));
        break;
    case 5:
        m_availableHeight = anyInt(data);
        m_renderer.setAvailableHeight(m_availableHeight);
        break;
    case 6:
        m_renderer.setMaxLineCount(anyInt(data));
        break;
    case 7:
        m_renderer.setHyphenationEnabled(data.ConsumeBool());
        break;
    case 8:
        m_renderer.setTextTopLeft(anyPoint(data));
        break;
    default:
        m_renderer.setText(anyText(data));
    }
}

void Subject::layOut(qsizetype &charactersLeft)
{
    if (isTooLongForQt() || m_renderer.text().size() > charactersLeft)
        return;
    const bool laysOut = m_renderer.isNeedRelayout() && m_renderer.isValid();
    charactersLeft -= laysOut ? m_renderer.text().size() : 0;
    m_renderer.relayout();
    if (!laysOut)
        return;
    compare();
    requireNone(layoutViolation(m_renderer, m_availableHeight));
}

// The time that Qt takes for a document with many images grows with the square of the text's length.
bool Subject::isTooLongForQt() const
{
    const QString text = m_renderer.text();
    const Qt::TextFormat format = m_renderer.textFormat();
    const bool mayBeRich =
        format == Qt::AutoText ? Qt::mightBeRichText(text) : format != Qt::PlainText;
    return mayBeRich && text.size() > longestRichText;
}

void Subject::compare() const
{
    if (m_renderer.text().size() > longestComparedText)
        return;
    ReferenceInput input;
    input.text = m_renderer.text();
    input.font = m_renderer.textFont();
    input.maxLineCount = m_renderer.maxLineCount();
    input.textWidth = m_renderer.textWidth();
    input.maxTextWidth = m_renderer.maxTextWidth();
    input.hyphenationEnabled = m_renderer.hyphenationEnabled();
    input.format = m_renderer.textFormat();
    input.alignment = m_renderer.textAlignment();
    const ReferenceLayout expected = referenceLayoutAtAnyLimit(input, candidateBudget);
    if (expected.ended)
        requireNone(referenceViolation(m_renderer, expected));
}

void Subject::paint(FuzzedDataProvider &data) const
{
    QImage canvas(canvasSize, canvasSize, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    QPainter painter(&canvas);
    if (data.ConsumeBool())
        m_renderer.draw(painter);
    else
        drawTextRenderer(painter, m_renderer, QPen(Qt::white, data.ConsumeIntegralInRange(0, 9)));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    FuzzedDataProvider data(bytes, size);
    std::vector<std::unique_ptr<Subject>> subjects;
    subjects.push_back(std::make_unique<Subject>());

    qsizetype charactersLeft = mostCharacters;
    for (int calls = 0; calls < mostCalls && data.remaining_bytes() > 0; ++calls) {
        const auto chosen = data.ConsumeIntegralInRange<std::size_t>(0, subjects.size());
        if (chosen < subjects.size())
            subjects[chosen]->call(data, charactersLeft);
        else if (subjects.size() < mostRenderers)
            subjects.push_back(std::make_unique<Subject>(*subjects.back()));
        else
            subjects.erase(subjects.begin());
    }
    return 0;
}
