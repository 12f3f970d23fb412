#include "support/paintrecorder.h"
#include "support/shapercalls.h"
#include "textsupport.h"

#include <ovelin/textrenderer.h>

#include <QImage>
#include <QPainter>
#include <QPen>
#include <QRegularExpression>
#include <QStaticText>
#include <QTest>
#include <QTextOption>
#include <QtGui/private/qpaintengineex_p.h>
#include <QtGui/private/qstatictext_p.h>
#include <QTransform>

#include <functional>
#include <limits>

using namespace ovelin;
using namespace ovelin::tests;

static_assert(std::is_default_constructible_v<TextRenderer>);
static_assert(std::is_copy_constructible_v<TextRenderer>);
static_assert(!std::is_copy_assignable_v<TextRenderer>);
static_assert(!std::is_move_assignable_v<TextRenderer>);
static_assert(std::has_virtual_destructor_v<TextRenderer>);
static_assert(sizeof(TextRenderer) == 2 * sizeof(void *), "the vtable and the private data");

namespace {

using Change = std::function<void(TextRenderer &)>;

constexpr int least = std::numeric_limits<int>::min();
constexpr int most = std::numeric_limits<int>::max();

// Wider than every text below that must stay on one line.
constexpr int ampleWidth = 600;

void prepare(TextRenderer &renderer, const QString &text, int width = ampleWidth,
             int maxLineCount = 1)
{
    renderer.setTextFont(pixelFont());
    renderer.setMaxLineCount(maxLineCount);
    renderer.setText(text);
    renderer.setTextWidth(width);
    renderer.relayout();
}

QStaticText staticText(const QString &text, double width, const QFont &font = pixelFont(),
                       Qt::TextFormat format = Qt::AutoText)
{
    QStaticText result;
    result.setTextFormat(format);
    result.setTextOption(QTextOption(Qt::AlignLeft));
    result.setTextWidth(width);
    result.setText(text);
    result.prepare(QTransform(), font);
    return result;
}

double lineHeight(const QFont &font = pixelFont())
{
    return staticText(QStringLiteral("a"), ampleWidth, font).size().height();
}

// A rich text with a line height in per cent of the font's.
QString withLineHeight(int percent)
{
    return QStringLiteral("<p style='line-height:%1%'>a</p>").arg(percent);
}

QImage canvas()
{
    QImage image(300, 120, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

bool isBlank(const QImage &image)
{
    return image == canvas();
}

// Records for each line of a static text whether QPainter asks the engine to cache it.
class CachingRecorder : public QPaintEngineEx
{
public:
    QList<bool> asked;

    void drawStaticTextItem(QStaticTextItem *item) override
    {
        asked.append(item->useBackendOptimizations != 0);
    }

    bool begin(QPaintDevice *) override { return true; }
    bool end() override { return true; }
    Type type() const override { return User; }
    void fill(const QVectorPath &, const QBrush &) override {}
    using QPaintEngineEx::clip;
    void clip(const QVectorPath &, Qt::ClipOperation) override {}
    using QPaintEngineEx::drawPixmap;
    void drawPixmap(const QRectF &, const QPixmap &, const QRectF &) override {}
    using QPaintEngineEx::drawImage;
    void drawImage(const QRectF &, const QImage &, const QRectF &,
                   Qt::ImageConversionFlags) override
    {
    }
    void clipEnabledChanged() override {}
    void penChanged() override {}
    void brushChanged() override {}
    void brushOriginChanged() override {}
    void opacityChanged() override {}
    void compositionModeChanged() override {}
    void renderHintsChanged() override {}
    void transformChanged() override {}
};

class CachingRecorderDevice : public QImage
{
public:
    explicit CachingRecorderDevice(CachingRecorder &engine)
        : QImage(canvas())
        , m_engine(engine)
    {
    }
    QPaintEngine *paintEngine() const override { return &m_engine; }

private:
    CachingRecorder &m_engine;
};

} // namespace

Q_DECLARE_METATYPE(Change)

class tst_TextRenderer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void startsEmptyWithoutNeedForALayout();

    void settersStoreTheirValue();
    void setterMarksDirtyOnlyIfTheValueChanges_data();
    void setterMarksDirtyOnlyIfTheValueChanges();
    void relayoutAppliesEachSetter_data();
    void relayoutAppliesEachSetter();
    void validityNeedsTextAndPixelSize();

    void newlinesStayOnASingleLine();
    void setTextReplacesNewlines();
    void setMaxLineCountReplacesNewlines();
    void replacedNewlinesStayReplaced();
    void setTextComparesTheTextWithReplacedNewlines();
    void newlinesOfALaterTextAreReplaced();
    void textLinesAreTheParagraphs();
    void displayTextHasNewlines();

    void setMaxTextWidthChangesTheStaticTextAtOnce();
    void equalMaxTextWidthDoesNotChangeTheStaticText();
    void textWidthChangesTheStaticTextWithTheLayout();
    void textWidthWinsOverMaxTextWidth();
    void widthsBelowOneAreNoWidth_data();
    void widthsBelowOneAreNoWidth();

    void widerBoxKeepsTheLayout();
    void boxAsWideAsTheTextKeepsTheLayout();
    void narrowerBoxNeedsALayout();
    void anyWidthOfAWrappedTextNeedsALayout();
    void firstWidthWithAMaxTextWidthNeedsALayout();
    void widthOfZeroKeepsTheLayout();
    void widthOfZeroKeepsAWrappedLayout();
    void negativeWidthNeedsALayout();
    void anyWidthOfAnElidedTextNeedsALayout();
    void anyWidthOfAnUnmeasuredTextNeedsALayout();
    void widthOfADirtyTextIsOnlyStored();
    void keptLayoutIsAlignedAgain();
    void severalWidthsKeepTheLayout();

    void moveShiftsWithoutLayout();
    void moveToTheSamePlaceDoesNothing();
    void setTextTopLeftResetsTheAlignment();

    void alignsVertically_data();
    void alignsVertically();
    void leavesVerticalPositionOfUnalignedText();
    void doesNotAlignVerticallyWithoutAvailableHeight();
    void resetsVerticalPositionWithoutAvailableHeight();
    void alignsHorizontally_data();
    void alignsHorizontally();
    void textThatFitsKeepsItsOwnWidth_data();
    void textThatFitsKeepsItsOwnWidth();
    void doesNotShiftATextThatIsWiderThanTheBox();
    void leavesHorizontalPositionOfUnalignedText();
    void doesNotAlignHorizontallyWithoutTextWidth();

    void boundingSizeAddsMarginsToRoundedUpSize();
    void boundingSizeOfEmptyTextIgnoresMargins();
    void boundingSizeLaysOutUnlessConst();
    void boundingRectIsAtTheAlignedPosition();
    void boundingRectIgnoresANullAlignedPosition();
    void geometryIsTheBox_data();
    void geometryIsTheBox();
    void geometryWithoutTextWidthIsTheBoundingRect();

    void copyHasTheValuesOfTheOriginal();
    void copyOfADirtyRendererIsDirty();
    void copyHasNeitherElidedStateNorMeasuredWidth();
    void copyIsIndependent();

    void drawPaintsTheStaticText();
    void drawPaintsTheSamePixelsAsAStaticText();
    void drawPaintsAtTheAlignedPosition();
    void drawPaintsAtANullAlignedPosition();
    void drawAsksForAggressiveCaching();
    void drawShapesNothingAfterALayout_data();
    void drawShapesNothingAfterALayout();
    void drawPaintsThePreviousLayoutOfADirtyText();
    void drawPaintsNothingWhenInvalid_data();
    void drawPaintsNothingWhenInvalid();
    void drawLeavesTheTextFontSet();
    void drawKeepsPenAndBrush();
    void drawStrikesOut_data();
    void drawStrikesOut();
    void drawStrikesOutPixels();
    void drawTextRendererPaintsAtTheOrigin();
    void drawTextRendererLeavesItsStateSet();

    void alignsInExtremeBoxes();
    void extremeValuesAreSafe_data();
    void extremeValuesAreSafe();
    void extremePositionsAreSafe();
    void rectanglesSaturate();
    void extremeLetterSpacingIsSafe();
};

void tst_TextRenderer::initTestCase()
{
    QVERIFY(isTestFontInstalled());
}

void tst_TextRenderer::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
}

void tst_TextRenderer::startsEmptyWithoutNeedForALayout()
{
    const TextRenderer renderer;

    QCOMPARE(renderer.text(), QString());
    QCOMPARE(renderer.textFont(), QFont());
    QCOMPARE(renderer.textFormat(), Qt::AutoText);
    QCOMPARE(renderer.textAlignment(), Qt::Alignment(Qt::AlignLeft));
    QCOMPARE(renderer.textWidth(), 0);
    QCOMPARE(renderer.maxTextWidth(), 0);
    QCOMPARE(renderer.maxLineCount(), 1);
    QCOMPARE(renderer.hyphenationEnabled(), true);
    QCOMPARE(renderer.textTopLeft(), QPoint(0, 0));
    QCOMPARE(renderer.alignedTextTopLeft(), QPoint(0, 0));
    QCOMPARE(renderer.isValid(), false);
    QCOMPARE(renderer.isNeedRelayout(), false);
    QCOMPARE(renderer.isTextElided(), false);
    QCOMPARE(renderer.displayText(), QString());
    QCOMPARE(renderer.textLines(), QStringList{QString()});
}

void tst_TextRenderer::settersStoreTheirValue()
{
    TextRenderer renderer;
    renderer.setText(QStringLiteral("слово"));
    renderer.setTextFont(pixelFont(31));
    renderer.setTextFormat(Qt::MarkdownText);
    renderer.setTextAlignment(Qt::AlignRight | Qt::AlignBottom);
    renderer.setTextWidth(-7);
    renderer.setMaxTextWidth(-8);
    renderer.setMaxLineCount(-9);
    renderer.setHyphenationEnabled(false);
    renderer.setTextTopLeft(QPoint(3, 4));

    QCOMPARE(renderer.text(), QStringLiteral("слово"));
    QCOMPARE(renderer.textFont(), pixelFont(31));
    QCOMPARE(renderer.textFormat(), Qt::MarkdownText);
    QCOMPARE(renderer.textAlignment(), Qt::AlignRight | Qt::AlignBottom);
    QCOMPARE(renderer.textWidth(), -7);
    QCOMPARE(renderer.maxTextWidth(), -8);
    QCOMPARE(renderer.maxLineCount(), -9);
    QCOMPARE(renderer.hyphenationEnabled(), false);
    QCOMPARE(renderer.textTopLeft(), QPoint(3, 4));
}

void tst_TextRenderer::setterMarksDirtyOnlyIfTheValueChanges_data()
{
    QTest::addColumn<Change>("change");

    QTest::newRow("text") << Change([](TextRenderer &r) { r.setText(QStringLiteral("b")); });
    QTest::newRow("font") << Change([](TextRenderer &r) { r.setTextFont(pixelFont(21)); });
    QTest::newRow("format") << Change([](TextRenderer &r) { r.setTextFormat(Qt::PlainText); });
    QTest::newRow("alignment") << Change(
        [](TextRenderer &r) { r.setTextAlignment(Qt::AlignHCenter); });
    QTest::newRow("maximal width") << Change([](TextRenderer &r) { r.setMaxTextWidth(77); });
    QTest::newRow("available height") << Change([](TextRenderer &r) { r.setAvailableHeight(77); });
    QTest::newRow("line count") << Change([](TextRenderer &r) { r.setMaxLineCount(3); });
    QTest::newRow("line count of zero") << Change([](TextRenderer &r) { r.setMaxLineCount(0); });
    QTest::newRow("hyphenation") << Change([](TextRenderer &r) { r.setHyphenationEnabled(false); });
    QTest::newRow("position") << Change([](TextRenderer &r) { r.setTextTopLeft(QPoint(1, 0)); });
}

void tst_TextRenderer::setterMarksDirtyOnlyIfTheValueChanges()
{
    QFETCH(Change, change);

    TextRenderer renderer;
    prepare(renderer, QStringLiteral("a"));
    QVERIFY(!renderer.isNeedRelayout());

    change(renderer);
    QVERIFY(renderer.isNeedRelayout());

    renderer.relayout();
    QVERIFY(!renderer.isNeedRelayout());

    change(renderer);
    QVERIFY(!renderer.isNeedRelayout());
}

void tst_TextRenderer::relayoutAppliesEachSetter_data()
{
    QTest::addColumn<Change>("change");

    QTest::newRow("longer text") << Change(
        [](TextRenderer &r) { r.setText(QStringLiteral("aaaa bbbb cccc dddd")); });
    QTest::newRow("shorter text") << Change(
        [](TextRenderer &r) { r.setText(QStringLiteral("a")); });
    QTest::newRow("greater font") << Change([](TextRenderer &r) { r.setTextFont(pixelFont(29)); });
    QTest::newRow("smaller font") << Change([](TextRenderer &r) { r.setTextFont(pixelFont(11)); });
    QTest::newRow("narrower maximal width")
        << Change([](TextRenderer &r) { r.setMaxTextWidth(80); });
    QTest::newRow("wider maximal width")
        << Change([](TextRenderer &r) { r.setMaxTextWidth(2 * ampleWidth); });
    QTest::newRow("narrower width") << Change([](TextRenderer &r) { r.setTextWidth(80); });
    QTest::newRow("width of a letter") << Change([](TextRenderer &r) { r.setTextWidth(15); });
    QTest::newRow("line count") << Change([](TextRenderer &r) { r.setMaxLineCount(9); });
    QTest::newRow("format") << Change([](TextRenderer &r) { r.setTextFormat(Qt::RichText); });
    QTest::newRow("no hyphenation") << Change([](TextRenderer &r) {
        r.setHyphenationEnabled(false);
        r.setTextWidth(80);
        r.setMaxLineCount(4);
    });
}

void tst_TextRenderer::relayoutAppliesEachSetter()
{
    QFETCH(Change, change);

    const auto setUp = [](TextRenderer &renderer) {
        renderer.setTextFont(pixelFont());
        renderer.setMaxLineCount(3);
        renderer.setMaxTextWidth(ampleWidth);
        renderer.setText(QStringLiteral("aaaa bbbb программа"));
    };

    TextRenderer changedLater;
    setUp(changedLater);
    changedLater.relayout();
    change(changedLater);
    changedLater.relayout();

    TextRenderer fresh;
    setUp(fresh);
    change(fresh);
    fresh.relayout();

    QCOMPARE(changedLater.displayText(), fresh.displayText());
    QCOMPARE(changedLater.boundingRect(), fresh.boundingRect());
    QCOMPARE(changedLater.geometry(), fresh.geometry());
    QCOMPARE(changedLater.isTextElided(), fresh.isTextElided());
}

void tst_TextRenderer::validityNeedsTextAndPixelSize()
{
    QFont pointFont(QStringLiteral("DejaVu Sans"));
    pointFont.setPointSize(12);

    TextRenderer renderer;
    QVERIFY(!renderer.isValid());

    renderer.setTextFont(pixelFont());
    QVERIFY(!renderer.isValid());

    renderer.setText(QStringLiteral("a"));
    QVERIFY(renderer.isValid());

    renderer.setTextFont(fontOfZeroPixels());
    QCOMPARE(renderer.textFont().pixelSize(), 0);
    QVERIFY(renderer.isValid());

    renderer.setTextFont(pointFont);
    QCOMPARE(renderer.textFont().pixelSize(), -1);
    QVERIFY(!renderer.isValid());
    renderer.relayout();
    QVERIFY(renderer.isNeedRelayout());
    renderer.boundingSize();
    QVERIFY(renderer.isNeedRelayout());
    QCOMPARE(renderer.displayText(), QString());

    renderer.setTextFont(pixelFont());
    renderer.relayout();
    QVERIFY(!renderer.isNeedRelayout());

    renderer.setText(QString());
    QVERIFY(!renderer.isValid());
    renderer.relayout();
    QVERIFY(renderer.isNeedRelayout());
    QCOMPARE(renderer.displayText(), QStringLiteral("a"));
}

void tst_TextRenderer::newlinesStayOnASingleLine()
{
    for (const int maxLineCount : {1, 0, -1, least}) {
        TextRenderer renderer;
        renderer.setMaxLineCount(maxLineCount);
        renderer.setText(QStringLiteral("a\nb"));
        QCOMPARE(renderer.text(), QStringLiteral("a\nb"));
        QCOMPARE(renderer.textLines(), QStringList{QStringLiteral("a\nb")});
    }
}

void tst_TextRenderer::setTextReplacesNewlines()
{
    for (const int maxLineCount : {2, 3, most}) {
        TextRenderer renderer;
        renderer.setMaxLineCount(maxLineCount);
        renderer.setText(QStringLiteral("\na\n\nb\n"));
        QCOMPARE(renderer.text(), QStringLiteral("\u2028a\u2028\u2028b\u2028"));
    }
}

void tst_TextRenderer::setMaxLineCountReplacesNewlines()
{
    TextRenderer renderer;
    renderer.setText(QStringLiteral("a\nb\nc"));
    renderer.setMaxLineCount(2);
    QCOMPARE(renderer.text(), QStringLiteral("a\u2028b\u2028c"));
}

void tst_TextRenderer::replacedNewlinesStayReplaced()
{
    TextRenderer renderer;
    renderer.setText(QStringLiteral("a\nb"));
    renderer.setMaxLineCount(2);
    renderer.setMaxLineCount(1);
    QCOMPARE(renderer.text(), QStringLiteral("a\u2028b"));
    QCOMPARE(renderer.textLines(), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
}

void tst_TextRenderer::setTextComparesTheTextWithReplacedNewlines()
{
    TextRenderer renderer;
    prepare(renderer, QStringLiteral("a\nb"), ampleWidth, 2);
    QCOMPARE(renderer.text(), QStringLiteral("a\u2028b"));

    renderer.setText(QStringLiteral("a\nb"));
    QVERIFY(!renderer.isNeedRelayout());
    renderer.setText(QStringLiteral("a\u2028b"));
    QVERIFY(!renderer.isNeedRelayout());

    renderer.setMaxLineCount(1);
    renderer.relayout();
    renderer.setText(QStringLiteral("a\u2028b"));
    QVERIFY(!renderer.isNeedRelayout());
    renderer.setText(QStringLiteral("a\nb"));
    QVERIFY(renderer.isNeedRelayout());
    QCOMPARE(renderer.text(), QStringLiteral("a\nb"));
}

void tst_TextRenderer::newlinesOfALaterTextAreReplaced()
{
    TextRenderer renderer;
    renderer.setMaxLineCount(2);
    renderer.setText(QStringLiteral("a\nb"));
    renderer.setMaxLineCount(1);
    renderer.setText(QStringLiteral("c\nd"));
    QCOMPARE(renderer.text(), QStringLiteral("c\nd"));
    renderer.setMaxLineCount(2);
    QCOMPARE(renderer.text(), QStringLiteral("c\u2028d"));

    TextRenderer copy(renderer);
    copy.setMaxLineCount(1);
    copy.setText(QStringLiteral("e\nf"));
    copy.setMaxLineCount(5);
    QCOMPARE(copy.text(), QStringLiteral("e\u2028f"));
}

void tst_TextRenderer::textLinesAreTheParagraphs()
{
    TextRenderer renderer;
    prepare(renderer, QStringLiteral("aaaa bbbb\n\ncccc dddd"), fineWidth(QStringLiteral("aaaa")),
            9);
    QCOMPARE(renderer.textLines(),
             (QStringList{QStringLiteral("aaaa bbbb"), QString(), QStringLiteral("cccc dddd")}));
}

void tst_TextRenderer::displayTextHasNewlines()
{
    TextRenderer renderer;
    renderer.setTextFont(pixelFont());
    renderer.setMaxLineCount(5);
    renderer.setText(QStringLiteral("a\n\nb"));
    QCOMPARE(renderer.displayText(), QString());
    renderer.relayout();
    QCOMPARE(renderer.displayText(), QStringLiteral("a\n\nb"));
}

void tst_TextRenderer::setMaxTextWidthChangesTheStaticTextAtOnce()
{
    const QString text = QStringLiteral("aaaa bbbb");
    const int width = fineWidth(QStringLiteral("aaaa"));

    TextRenderer renderer;
    prepare(renderer, text);
    const TextRenderer &constRenderer = renderer;
    renderer.setMaxTextWidth(width);
    QVERIFY(renderer.isNeedRelayout());
    QCOMPARE(constRenderer.boundingSize(), staticText(text, width).size().toSize());
    QCOMPARE(constRenderer.boundingSize().height(), qRound(2 * lineHeight()));

    renderer.setMaxTextWidth(ampleWidth);
    QCOMPARE(constRenderer.boundingSize(), QSize(ampleWidth, qRound(lineHeight())));

    // With a negative width Qt does not wrap the text.
    renderer.setMaxTextWidth(-1);
    QCOMPARE(constRenderer.boundingSize().width(),
             static_cast<int>(std::ceil(staticText(text, -1).size().width())));
}

void tst_TextRenderer::equalMaxTextWidthDoesNotChangeTheStaticText()
{
    const QString text = QStringLiteral("aaaa bbbb");
    TextRenderer renderer;
    renderer.setTextFont(pixelFont());
    renderer.setText(text);
    renderer.setMaxTextWidth(ampleWidth);
    renderer.relayout();
    const TextRenderer &constRenderer = renderer;
    QCOMPARE(constRenderer.boundingSize().width(), fineWidth(text));

    renderer.setMaxTextWidth(ampleWidth);

    QVERIFY(!renderer.isNeedRelayout());
    QCOMPARE(constRenderer.boundingSize().width(), fineWidth(text));
}

void tst_TextRenderer::textWidthChangesTheStaticTextWithTheLayout()
{
    TextRenderer renderer;
    prepare(renderer, QStringLiteral("aaaa bbbb"), ampleWidth, 2);
    const TextRenderer &constRenderer = renderer;
    const QSize before = constRenderer.boundingSize();

    const int width = fineWidth(QStringLiteral("aaaa"));
    renderer.setTextWidth(width);
    QVERIFY(renderer.isNeedRelayout());
    QCOMPARE(constRenderer.boundingSize(), before);
    QCOMPARE(renderer.boundingSize(), QSize(width, qRound(2 * lineHeight())));
}

void tst_TextRenderer::textWidthWinsOverMaxTextWidth()
{
    const QString text = QStringLiteral("aaaa bbbb");
    const int narrow = fineWidth(QStringLiteral("aaaa"));

    TextRenderer renderer;
    renderer.setMaxTextWidth(narrow);
    prepare(renderer, text, ampleWidth, 2);
    QCOMPARE(renderer.boundingSize(), QSize(fineWidth(text), qRound(lineHeight())));

    renderer.setMaxTextWidth(ampleWidth);
    renderer.setTextWidth(narrow);
    QCOMPARE(renderer.boundingSize(), QSize(narrow, qRound(2 * lineHeight())));

    TextRenderer withMaxTextWidthOnly;
    withMaxTextWidthOnly.setMaxTextWidth(narrow);
    prepare(withMaxTextWidthOnly, text, 0, 2);
    QCOMPARE(withMaxTextWidthOnly.boundingSize(), QSize(narrow, qRound(2 * lineHeight())));
}

void tst_TextRenderer::widthsBelowOneAreNoWidth_data()
{
    QTest::addColumn<int>("width");

    QTest::newRow("zero") << 0;
    QTest::newRow("negative") << -1;
    QTest::newRow("least") << least;
}

void tst_TextRenderer::widthsBelowOneAreNoWidth()
{
    QFETCH(int, width);

    const QString text = QStringLiteral("aaaa bbbb");
    TextRenderer unlimited;
    unlimited.setMaxTextWidth(width);
    prepare(unlimited, text, width);
    QCOMPARE(unlimited.boundingSize(), QSize(fineWidth(text), qRound(lineHeight())));
    QCOMPARE(unlimited.displayText(), text);
    QCOMPARE(unlimited.isTextElided(), false);
    QCOMPARE(unlimited.geometry(), unlimited.boundingRect());

    TextRenderer limited;
    limited.setMaxTextWidth(30);
    prepare(limited, text, width);
    QCOMPARE(limited.isTextElided(), true);

    // A width of 1 pixel limits the text.
    TextRenderer narrow;
    prepare(narrow, text, 1);
    QCOMPARE(narrow.isTextElided(), true);
    TextRenderer maximallyNarrow;
    maximallyNarrow.setMaxTextWidth(1);
    prepare(maximallyNarrow, text, width);
    QCOMPARE(maximallyNarrow.isTextElided(), true);
}

void tst_TextRenderer::widerBoxKeepsTheLayout()
{
    TextRenderer renderer;
    prepare(renderer, QStringLiteral("aaaa bbbb"), ampleWidth, 3);
    const QSize size = renderer.boundingSize();

    renderer.setTextWidth(ampleWidth + 50);
    QVERIFY(!renderer.isNeedRelayout());
    QCOMPARE(renderer.textWidth(), ampleWidth + 50);
    QCOMPARE(renderer.geometry().width(), ampleWidth + 50);
    QCOMPARE(renderer.boundingSize(), size);
}

void tst_TextRenderer::boxAsWideAsTheTextKeepsTheLayout()
{
    const QString text = QStringLiteral("aaaa bbbb");
    const int width = fineWidth(text);

    TextRenderer renderer;
    prepare(renderer, text, ampleWidth, 3);
    renderer.setTextWidth(width);
    QVERIFY(!renderer.isNeedRelayout());
    QCOMPARE(renderer.textWidth(), width);

    renderer.setTextWidth(ampleWidth);
    QVERIFY(!renderer.isNeedRelayout());
}

void tst_TextRenderer::narrowerBoxNeedsALayout()
{
    const QString text = QStringLiteral("aaaa bbbb");

    TextRenderer renderer;
    prepare(renderer, text, ampleWidth, 3);
    renderer.setTextWidth(fineWidth(text) - 1);
    QVERIFY(renderer.isNeedRelayout());
    QCOMPARE(renderer.textWidth(), fineWidth(text) - 1);
}

void tst_TextRenderer::anyWidthOfAWrappedTextNeedsALayout()
{
    const QString text = QStringLiteral("aaaa bbbb");
    TextRenderer renderer;
    prepare(renderer, text, fineWidth(text) - 1, 3);

    // Even the same width needs a layout when it is set again.
    renderer.setTextWidth(fineWidth(text) - 1);
    QVERIFY(renderer.isNeedRelayout());
    renderer.relayout();

    renderer.setTextWidth(ampleWidth);
    QVERIFY(renderer.isNeedRelayout());
}

void tst_TextRenderer::firstWidthWithAMaxTextWidthNeedsALayout()
{
    TextRenderer renderer;
    renderer.setMaxTextWidth(ampleWidth);
    prepare(renderer, QStringLiteral("aaaa bbbb"), 0, 3);
    QVERIFY(!renderer.isNeedRelayout());

    renderer.setTextWidth(ampleWidth);
    QVERIFY(renderer.isNeedRelayout());
}

void tst_TextRenderer::widthOfZeroKeepsTheLayout()
{
    TextRenderer renderer;
    prepare(renderer, QStringLiteral("aaaa bbbb"), ampleWidth, 3);
    renderer.setTextWidth(0);
    QVERIFY(!renderer.isNeedRelayout());
    QCOMPARE(renderer.textWidth(), 0);
    QCOMPARE(renderer.geometry(), renderer.boundingRect());
}

void tst_TextRenderer::widthOfZeroKeepsAWrappedLayout()
{
    const int width = fineWidth(QStringLiteral("aaaa"));
    TextRenderer renderer;
    prepare(renderer, QStringLiteral("aaaa bbbb"), width, 3);
    const QSize wrapped(width, qRound(2 * lineHeight()));
    QCOMPARE(renderer.boundingSize(), wrapped);

    renderer.setTextWidth(0);
    QVERIFY(!renderer.isNeedRelayout());
    renderer.relayout();
    QCOMPARE(renderer.boundingSize(), wrapped);
    QCOMPARE(renderer.textWidth(), 0);

    renderer.setTextWidth(0);
    QVERIFY(!renderer.isNeedRelayout());
    renderer.setTextWidth(ampleWidth);
    QVERIFY(renderer.isNeedRelayout());
}

void tst_TextRenderer::negativeWidthNeedsALayout()
{
    for (const int width : {-1, least}) {
        TextRenderer renderer;
        prepare(renderer, QStringLiteral("aaaa bbbb"), ampleWidth, 3);
        renderer.setTextWidth(width);
        QVERIFY(renderer.isNeedRelayout());
        QCOMPARE(renderer.textWidth(), width);
    }
}

void tst_TextRenderer::anyWidthOfAnElidedTextNeedsALayout()
{
    TextRenderer renderer;
    prepare(renderer, QStringLiteral("aaaa bbbb"), fineWidth(QStringLiteral("aaaa")));
    QVERIFY(renderer.isTextElided());

    renderer.setTextWidth(0);
    QVERIFY(renderer.isNeedRelayout());

    // The line limit can elide a text whose lines all fit the box.
    TextRenderer wideEnough;
    prepare(wideEnough, QStringLiteral("a\nb\nc"), ampleWidth, 2);
    QVERIFY(wideEnough.isTextElided());
    wideEnough.setTextWidth(ampleWidth + 1);
    QVERIFY(wideEnough.isNeedRelayout());
}

void tst_TextRenderer::anyWidthOfAnUnmeasuredTextNeedsALayout()
{
    TextRenderer untouched;
    untouched.setTextWidth(0);
    QVERIFY(untouched.isNeedRelayout());

    TextRenderer renderer;
    prepare(renderer, QStringLiteral("aaaa"), ampleWidth);
    TextRenderer copy(renderer);
    QVERIFY(!copy.isNeedRelayout());
    copy.setTextWidth(ampleWidth);
    QVERIFY(copy.isNeedRelayout());
}

void tst_TextRenderer::widthOfADirtyTextIsOnlyStored()
{
    const QString text = QStringLiteral("aaaa bbbb");
    TextRenderer renderer;
    prepare(renderer, text, ampleWidth, 3);
    renderer.setTextAlignment(Qt::AlignRight);

    renderer.setTextWidth(0);
    QVERIFY(renderer.isNeedRelayout());
    const int narrow = fineWidth(QStringLiteral("aaaa"));
    renderer.setTextWidth(narrow);
    QVERIFY(renderer.isNeedRelayout());
    QCOMPARE(renderer.alignedTextTopLeft(), QPoint(0, 0));
    QCOMPARE(renderer.boundingSize(), QSize(narrow, qRound(2 * lineHeight())));
}

void tst_TextRenderer::keptLayoutIsAlignedAgain()
{
    const QString text = QStringLiteral("aaaa bbbb");
    TextRenderer renderer;
    renderer.setTextAlignment(Qt::AlignRight);
    prepare(renderer, text, ampleWidth, 3);
    QCOMPARE(renderer.alignedTextTopLeft().x(), ampleWidth - fineWidth(text));

    renderer.setTextWidth(ampleWidth + 13);
    QVERIFY(!renderer.isNeedRelayout());
    QCOMPARE(renderer.alignedTextTopLeft().x(), ampleWidth + 13 - fineWidth(text));

    // A width of 0 does not move the text.
    renderer.setTextWidth(0);
    QVERIFY(!renderer.isNeedRelayout());
    QCOMPARE(renderer.alignedTextTopLeft().x(), ampleWidth + 13 - fineWidth(text));
}

void tst_TextRenderer::severalWidthsKeepTheLayout()
{
    TextRenderer renderer;
    prepare(renderer, QStringLiteral("aaaa"), ampleWidth);
    for (const int width : {ampleWidth - 1, ampleWidth + 1, ampleWidth, 0}) {
        renderer.setTextWidth(width);
        QVERIFY(!renderer.isNeedRelayout());
        QCOMPARE(renderer.textWidth(), width);
    }
}

void tst_TextRenderer::moveShiftsWithoutLayout()
{
    const QString text = QStringLiteral("aaaa");
    TextRenderer renderer;
    renderer.setTextAlignment(Qt::AlignRight | Qt::AlignBottom);
    renderer.setAvailableHeight(100);
    renderer.setTextTopLeft(QPoint(10, 20));
    prepare(renderer, text);
    const QPoint aligned = renderer.alignedTextTopLeft();
    QCOMPARE(aligned, QPoint(10 + ampleWidth - fineWidth(text), 20 + 100 - qRound(lineHeight())));

    renderer.move(QPoint(7, 28));
    QVERIFY(!renderer.isNeedRelayout());
    QCOMPARE(renderer.textTopLeft(), QPoint(7, 28));
    QCOMPARE(renderer.alignedTextTopLeft(), aligned + QPoint(-3, 8));

    // A dirty text stays dirty.
    renderer.setText(QStringLiteral("b"));
    renderer.move(QPoint(0, 0));
    QVERIFY(renderer.isNeedRelayout());
    QCOMPARE(renderer.alignedTextTopLeft(), aligned + QPoint(-10, -20));
}

void tst_TextRenderer::moveToTheSamePlaceDoesNothing()
{
    TextRenderer renderer;
    renderer.setTextAlignment(Qt::AlignRight);
    renderer.setTextTopLeft(QPoint(10, 20));
    prepare(renderer, QStringLiteral("aaaa"));
    const QPoint aligned = renderer.alignedTextTopLeft();

    renderer.move(QPoint(10, 20));
    QCOMPARE(renderer.alignedTextTopLeft(), aligned);
    QVERIFY(!renderer.isNeedRelayout());
}

void tst_TextRenderer::setTextTopLeftResetsTheAlignment()
{
    TextRenderer renderer;
    renderer.setTextAlignment(Qt::AlignRight);
    prepare(renderer, QStringLiteral("aaaa"));
    const QPoint aligned = renderer.alignedTextTopLeft();
    QVERIFY(aligned.x() > 0);

    renderer.setTextTopLeft(QPoint(0, 0));
    QVERIFY(!renderer.isNeedRelayout());
    QCOMPARE(renderer.alignedTextTopLeft(), aligned);

    renderer.setTextTopLeft(QPoint(10, 20));
    QVERIFY(renderer.isNeedRelayout());
    QCOMPARE(renderer.textTopLeft(), QPoint(10, 20));
    QCOMPARE(renderer.alignedTextTopLeft(), QPoint(10, 20));

    renderer.relayout();
    QCOMPARE(renderer.alignedTextTopLeft(), aligned + QPoint(10, 20));
}

void tst_TextRenderer::alignsVertically_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<Qt::Alignment>("alignment");
    QTest::addColumn<int>("availableHeight");
    QTest::addColumn<int>("expected"); // the offset from the requested position

    const QString plain = QStringLiteral("a");
    const int height = qRound(lineHeight());
    const Qt::Alignment center = Qt::AlignVCenter;
    const Qt::Alignment bottom = Qt::AlignBottom;
    QCOMPARE(double(height), lineHeight());

    QTest::newRow("no box") << plain << center << 0 << 0;
    QTest::newRow("negative box") << plain << bottom << -50 << 0;
    QTest::newRow("top") << plain << Qt::Alignment(Qt::AlignTop) << 100 << 0;
    QTest::newRow("centre") << plain << center << height + 10 << 5;
    QTest::newRow("centre, half a pixel") << plain << center << height + 11 << 6;
    QTest::newRow("centre, as high") << plain << center << height << 0;
    QTest::newRow("centre, higher than the box") << plain << center << height - 10 << -5;
    QTest::newRow("centre, higher by a half") << plain << center << height - 11 << -5;
    QTest::newRow("centre, box of one") << plain << center << 1 << (1 - height) / 2;
    QTest::newRow("centre before bottom") << plain << (center | bottom) << height + 10 << 5;
    QTest::newRow("bottom") << plain << bottom << height + 10 << 10;
    QTest::newRow("bottom, as high") << plain << bottom << height << 0;
    QTest::newRow("bottom, higher than the box") << plain << bottom << height - 10 << 0;

    // Fractional heights. The bottom alignment rounds the height up and subtracts it from the available height.
    // The centre alignment rounds half of the difference up.
    for (const int percent : {105, 112}) {
        const QString rich = withLineHeight(percent);
        const double broken =
            staticText(rich, ampleWidth, pixelFont(), Qt::RichText).size().height();
        QVERIFY(broken != std::floor(broken));
        const int ceiled = static_cast<int>(std::ceil(broken));
        const int available = ceiled + 9;
        QTest::addRow("centre, %d percent", percent)
            << rich << center << available << static_cast<int>(std::ceil((available - broken) / 2));
        QTest::addRow("bottom, %d percent", percent) << rich << bottom << available << 9;
        QTest::addRow("bottom, %d percent, hardly fitting", percent)
            << rich << bottom << ceiled << 0;
    }
}

void tst_TextRenderer::alignsVertically()
{
    QFETCH(QString, text);
    QFETCH(Qt::Alignment, alignment);
    QFETCH(int, availableHeight);
    QFETCH(int, expected);

    for (const int y : {0, 40, -40}) {
        TextRenderer renderer;
        renderer.setTextFormat(text.startsWith(u'<') ? Qt::RichText : Qt::PlainText);
        renderer.setTextAlignment(alignment);
        renderer.setAvailableHeight(availableHeight);
        renderer.setTextTopLeft(QPoint(3, y));
        prepare(renderer, text);
        QCOMPARE(renderer.alignedTextTopLeft(), QPoint(3, y + expected));
        QCOMPARE(renderer.textTopLeft(), QPoint(3, y));
    }
}

void tst_TextRenderer::leavesVerticalPositionOfUnalignedText()
{
    const int height = qRound(lineHeight());
    TextRenderer renderer;
    renderer.setTextAlignment(Qt::AlignVCenter);
    renderer.setAvailableHeight(height + 10);
    prepare(renderer, QStringLiteral("a"));
    QCOMPARE(renderer.alignedTextTopLeft().y(), 5);

    renderer.setTextAlignment(Qt::AlignTop);
    renderer.relayout();
    QCOMPARE(renderer.alignedTextTopLeft().y(), 5);

    renderer.setTextAlignment(Qt::AlignBottom);
    renderer.setAvailableHeight(height);
    renderer.relayout();
    QCOMPARE(renderer.alignedTextTopLeft().y(), 5);

    renderer.setAvailableHeight(height + 1);
    renderer.relayout();
    QCOMPARE(renderer.alignedTextTopLeft().y(), 1);
}

void tst_TextRenderer::doesNotAlignVerticallyWithoutAvailableHeight()
{
    TextRenderer renderer;
    renderer.setTextAlignment(Qt::AlignVCenter);
    prepare(renderer, QStringLiteral("a"));
    QCOMPARE(renderer.alignedTextTopLeft().y(), 0);
}

void tst_TextRenderer::resetsVerticalPositionWithoutAvailableHeight()
{
    for (const int noBox : {0, -1}) {
        TextRenderer renderer;
        renderer.setTextAlignment(Qt::AlignVCenter);
        renderer.setAvailableHeight(100);
        renderer.setTextTopLeft(QPoint(0, 8));
        prepare(renderer, QStringLiteral("a"));
        QVERIFY(renderer.alignedTextTopLeft().y() > 8);

        renderer.setAvailableHeight(noBox);
        renderer.relayout();
        QCOMPARE(renderer.alignedTextTopLeft().y(), 8);
    }
}

void tst_TextRenderer::alignsHorizontally_data()
{
    QTest::addColumn<Qt::Alignment>("alignment");
    QTest::addColumn<int>("spare"); // how much wider the box is than the text
    QTest::addColumn<int>("expected");

    const Qt::Alignment center = Qt::AlignHCenter;
    const Qt::Alignment right = Qt::AlignRight;

    QTest::newRow("left") << Qt::Alignment(Qt::AlignLeft) << 10 << 0;
    QTest::newRow("justify") << Qt::Alignment(Qt::AlignJustify) << 10 << 0;
    QTest::newRow("centre") << center << 10 << 5;
    QTest::newRow("centre, half a pixel") << center << 11 << 6;
    QTest::newRow("centre, one pixel") << center << 1 << 1;
    QTest::newRow("centre, none") << center << 0 << 0;
    QTest::newRow("centre before right") << (center | right) << 10 << 5;
    QTest::newRow("right") << right << 10 << 10;
    QTest::newRow("right, odd") << right << 11 << 11;
    QTest::newRow("right, none") << right << 0 << 0;
}

void tst_TextRenderer::alignsHorizontally()
{
    QFETCH(Qt::Alignment, alignment);
    QFETCH(int, spare);
    QFETCH(int, expected);

    const QString text = QStringLiteral("aaaa b");
    for (const int x : {0, 30, -30}) {
        TextRenderer renderer;
        renderer.setTextAlignment(alignment);
        renderer.setTextTopLeft(QPoint(x, 4));
        prepare(renderer, text, fineWidth(text) + spare);
        QCOMPARE(renderer.isTextElided(), false);
        QCOMPARE(renderer.alignedTextTopLeft(), QPoint(x + expected, 4));
    }
}

// A layout may conclude from a prefix that the whole text is wider than the box. These texts fit.
void tst_TextRenderer::textThatFitsKeepsItsOwnWidth_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("maxLineCount");

    const auto row = [](const char *name, const QString &text) {
        QTest::addRow("%s, one line", name) << text << 1;
        QTest::addRow("%s, three lines", name) << text << 3;
    };
    row("wide letters", QStringLiteral("wwwwwwwwwwwwwwwww"));
    row("narrow letters", QStringLiteral("iiiiii"));
    row("no advance", QStringLiteral("\U000E0100").repeated(60));
}

void tst_TextRenderer::textThatFitsKeepsItsOwnWidth()
{
    QFETCH(QString, text);
    QFETCH(int, maxLineCount);
    const int width = fineWidth(text);
    TextRenderer renderer;
    renderer.setTextAlignment(Qt::AlignHCenter);
    prepare(renderer, text, width + 5, maxLineCount);

    QCOMPARE(renderer.isTextElided(), false);
    QCOMPARE(renderer.boundingSize().width(), width);
    QCOMPARE(renderer.alignedTextTopLeft().x(), 3);

    renderer.setTextWidth(width);
    QCOMPARE(renderer.isNeedRelayout(), false);
    QCOMPARE(renderer.alignedTextTopLeft().x(), 0);
}

void tst_TextRenderer::doesNotShiftATextThatIsWiderThanTheBox()
{
    // The aligned width is the width of the whole text on one line, but at most the width of the box.
    const QString text = QStringLiteral("aaaa bbbb");
    for (const Qt::AlignmentFlag alignment : {Qt::AlignHCenter, Qt::AlignRight}) {
        for (const int narrow : {fineWidth(QStringLiteral("aaaa")) + 4, 1}) {
            TextRenderer renderer;
            renderer.setTextAlignment(alignment);
            renderer.setTextTopLeft(QPoint(5, 0));
            prepare(renderer, text, ampleWidth, 3);
            QVERIFY(renderer.alignedTextTopLeft().x() > 5);

            renderer.setTextWidth(narrow);
            renderer.relayout();
            QCOMPARE(renderer.alignedTextTopLeft().x(), 5);
        }
    }
}

void tst_TextRenderer::leavesHorizontalPositionOfUnalignedText()
{
    const QString text = QStringLiteral("aaaa");
    TextRenderer renderer;
    renderer.setTextAlignment(Qt::AlignRight);
    prepare(renderer, text, fineWidth(text) + 10);
    QCOMPARE(renderer.alignedTextTopLeft().x(), 10);

    renderer.setTextAlignment(Qt::AlignLeft);
    renderer.relayout();
    QCOMPARE(renderer.alignedTextTopLeft().x(), 10);
}

void tst_TextRenderer::doesNotAlignHorizontallyWithoutTextWidth()
{
    TextRenderer renderer;
    renderer.setTextAlignment(Qt::AlignRight);
    renderer.setMaxTextWidth(ampleWidth);
    renderer.setTextTopLeft(QPoint(5, 0));
    prepare(renderer, QStringLiteral("aaaa"), 0);
    QCOMPARE(renderer.alignedTextTopLeft().x(), 5);
}

void tst_TextRenderer::boundingSizeAddsMarginsToRoundedUpSize()
{
    const QString text = QStringLiteral("aaaa b");
    const QMargins margins(1, 2, 30, 40);

    TextRenderer renderer;
    prepare(renderer, text);
    QCOMPARE(renderer.boundingSize(), QSize(fineWidth(text), qRound(lineHeight())));
    QCOMPARE(renderer.boundingSize(margins),
             QSize(fineWidth(text) + 31, qRound(lineHeight()) + 42));

    // A static text with a negative width has the fractional width of its line.
    renderer.setMaxTextWidth(-1);
    const QSizeF natural = staticText(text, -1).size();
    QVERIFY(natural.width() - std::floor(natural.width()) < 0.5);
    QVERIFY(natural.width() != std::floor(natural.width()));
    const TextRenderer &constRenderer = renderer;
    QCOMPARE(constRenderer.boundingSize(margins).width(),
             static_cast<int>(std::floor(natural.width())) + 1 + 31);

    TextRenderer rich;
    rich.setTextFormat(Qt::RichText);
    prepare(rich, withLineHeight(105));
    const double height =
        staticText(withLineHeight(105), ampleWidth, pixelFont(), Qt::RichText).size().height();
    QVERIFY(height - std::floor(height) > 0 && height - std::floor(height) < 0.5);
    QCOMPARE(rich.boundingSize(margins).height(), static_cast<int>(std::floor(height)) + 1 + 42);
}

void tst_TextRenderer::boundingSizeOfEmptyTextIgnoresMargins()
{
    const QMargins margins(1, 2, 30, 40);
    const TextRenderer untouched;
    QCOMPARE(untouched.boundingSize(margins).width(), 0);

    // The static text still has the layout of the previous text.
    for (const int percent : {105, 112}) {
        TextRenderer rich;
        rich.setTextFormat(Qt::RichText);
        prepare(rich, withLineHeight(percent));
        rich.setText(QString());
        const double height =
            staticText(withLineHeight(percent), ampleWidth, pixelFont(), Qt::RichText)
                .size()
                .height();
        QVERIFY(height != std::floor(height));
        QCOMPARE(rich.boundingSize(margins), QSize(0, static_cast<int>(std::floor(height))));
        QCOMPARE(rich.boundingRect(), QRect(0, 0, 0, static_cast<int>(std::floor(height))));
    }
}

void tst_TextRenderer::boundingSizeLaysOutUnlessConst()
{
    TextRenderer renderer;
    prepare(renderer, QStringLiteral("a"));
    const TextRenderer &constRenderer = renderer;
    const QSize before = constRenderer.boundingSize();

    renderer.setText(QStringLiteral("aaaa"));
    QCOMPARE(constRenderer.boundingSize(), before);
    QCOMPARE(renderer.boundingRect().size(), before);
    QCOMPARE(renderer.geometry().height(), before.height());
    QCOMPARE(renderer.displayText(), QStringLiteral("a"));
    QVERIFY(renderer.isNeedRelayout());

    QCOMPARE(renderer.boundingSize().width(), fineWidth(QStringLiteral("aaaa")));
    QVERIFY(!renderer.isNeedRelayout());
    QCOMPARE(renderer.displayText(), QStringLiteral("aaaa"));
}

void tst_TextRenderer::boundingRectIsAtTheAlignedPosition()
{
    const QString text = QStringLiteral("aaaa");
    TextRenderer renderer;
    renderer.setTextAlignment(Qt::AlignRight | Qt::AlignBottom);
    renderer.setAvailableHeight(100);
    renderer.setTextTopLeft(QPoint(10, 20));
    prepare(renderer, text);

    const QSize size(fineWidth(text), qRound(lineHeight()));
    QCOMPARE(renderer.boundingRect(),
             QRect(QPoint(10 + ampleWidth - size.width(), 20 + 100 - size.height()), size));
}

void tst_TextRenderer::boundingRectIgnoresANullAlignedPosition()
{
    const int height = qRound(lineHeight());
    TextRenderer renderer;
    renderer.setTextAlignment(Qt::AlignVCenter);
    renderer.setAvailableHeight(height - 14);
    renderer.setTextTopLeft(QPoint(0, 7));
    prepare(renderer, QStringLiteral("a"));
    QCOMPARE(renderer.alignedTextTopLeft(), QPoint(0, 0));
    QCOMPARE(renderer.boundingRect().topLeft(), QPoint(0, 7));

    // A point is null only if both coordinates are 0.
    renderer.move(QPoint(1, 7));
    QCOMPARE(renderer.alignedTextTopLeft(), QPoint(1, 0));
    QCOMPARE(renderer.boundingRect().topLeft(), QPoint(1, 0));
    renderer.move(QPoint(0, 8));
    QCOMPARE(renderer.boundingRect().topLeft(), QPoint(0, 1));
}

void tst_TextRenderer::geometryIsTheBox_data()
{
    QTest::addColumn<double>("leastFraction");
    QTest::addColumn<double>("greatestFraction");
    QTest::addColumn<int>("roundedUp");

    // The range of the height's fraction, and the pixel that rounding adds.
    QTest::newRow("whole") << 0.0 << 0.0 << 0;
    QTest::newRow("below a half") << 0.1 << 0.49 << 0;
    QTest::newRow("a half") << 0.5 << 0.5 << 1;
    QTest::newRow("above a half") << 0.51 << 0.9 << 1;
}

void tst_TextRenderer::geometryIsTheBox()
{
    QFETCH(double, leastFraction);
    QFETCH(double, greatestFraction);
    QFETCH(int, roundedUp);

    // Searches for a height whose fraction is in the range.
    for (int pixelSize = 8; pixelSize < 12; ++pixelSize) {
        for (int percent = 101; percent < 200; ++percent) {
            const QFont font = pixelFont(pixelSize);
            const QString text = withLineHeight(percent);
            const double height = staticText(text, 100, font, Qt::RichText).size().height();
            const double fraction = height - std::floor(height);
            if (fraction < leastFraction || fraction > greatestFraction)
                continue;

            TextRenderer renderer;
            renderer.setTextFormat(Qt::RichText);
            renderer.setTextAlignment(Qt::AlignRight | Qt::AlignBottom);
            renderer.setAvailableHeight(200);
            renderer.setTextTopLeft(QPoint(5, 7));
            renderer.setTextFont(font);
            renderer.setText(text);
            renderer.setTextWidth(100);
            renderer.relayout();
            QVERIFY(renderer.alignedTextTopLeft().y() != 7);
            QCOMPARE(renderer.geometry(),
                     QRect(5, 7, 100, static_cast<int>(std::floor(height)) + roundedUp));
            return;
        }
    }
    QFAIL("No line height has a fraction in the range.");
}

void tst_TextRenderer::geometryWithoutTextWidthIsTheBoundingRect()
{
    for (const int width : {0, -4}) {
        TextRenderer renderer;
        renderer.setTextAlignment(Qt::AlignBottom);
        renderer.setAvailableHeight(100);
        renderer.setTextTopLeft(QPoint(5, 7));
        prepare(renderer, QStringLiteral("aaaa"), width);
        QCOMPARE(renderer.geometry(), renderer.boundingRect());
        QVERIFY(renderer.geometry().y() > 7);
    }

    // A width of 1 pixel makes a box.
    TextRenderer narrow;
    narrow.setTextTopLeft(QPoint(5, 7));
    prepare(narrow, QStringLiteral("aaaa"));
    narrow.setTextWidth(1);
    QCOMPARE(narrow.geometry(), QRect(5, 7, 1, qRound(lineHeight())));
}

void tst_TextRenderer::copyHasTheValuesOfTheOriginal()
{
    TextRenderer renderer;
    renderer.setTextAlignment(Qt::AlignRight | Qt::AlignBottom);
    renderer.setTextFormat(Qt::PlainText);
    renderer.setAvailableHeight(200);
    renderer.setHyphenationEnabled(false);
    renderer.setMaxTextWidth(350);
    renderer.setTextTopLeft(QPoint(5, 7));
    prepare(renderer, QStringLiteral("aaaa\nb"), 400, 3);

    TextRenderer copy(renderer);
    const TextRenderer &constCopy = copy;
    QCOMPARE(copy.text(), renderer.text());
    QCOMPARE(copy.textFont(), renderer.textFont());
    QCOMPARE(copy.textFormat(), renderer.textFormat());
    QCOMPARE(copy.textAlignment(), renderer.textAlignment());
    QCOMPARE(copy.textWidth(), 400);
    QCOMPARE(copy.maxTextWidth(), 350);
    QCOMPARE(copy.maxLineCount(), 3);
    QCOMPARE(copy.hyphenationEnabled(), false);
    QCOMPARE(copy.textTopLeft(), renderer.textTopLeft());
    QVERIFY(renderer.alignedTextTopLeft() != renderer.textTopLeft());
    QCOMPARE(copy.alignedTextTopLeft(), renderer.alignedTextTopLeft());
    QCOMPARE(copy.displayText(), QStringLiteral("aaaa\nb"));
    QCOMPARE(constCopy.boundingSize(), renderer.boundingSize());
    QCOMPARE(copy.geometry(), renderer.geometry());
    QCOMPARE(copy.isNeedRelayout(), false);
    QCOMPARE(copy.isValid(), true);

    // Only the next layout shows that the copy has the available height.
    copy.setTextTopLeft(QPoint(6, 8));
    copy.relayout();
    QCOMPARE(copy.alignedTextTopLeft(), renderer.alignedTextTopLeft() + QPoint(1, 1));
}

void tst_TextRenderer::copyOfADirtyRendererIsDirty()
{
    TextRenderer renderer;
    prepare(renderer, QStringLiteral("a"));
    renderer.setText(QStringLiteral("b"));

    TextRenderer copy(renderer);
    QCOMPARE(copy.isNeedRelayout(), true);
    QCOMPARE(copy.displayText(), QStringLiteral("a"));
    copy.relayout();
    QCOMPARE(copy.displayText(), QStringLiteral("b"));
    QCOMPARE(renderer.displayText(), QStringLiteral("a"));
}

void tst_TextRenderer::copyHasNeitherElidedStateNorMeasuredWidth()
{
    TextRenderer renderer;
    prepare(renderer, QStringLiteral("aaaa bbbb"), fineWidth(QStringLiteral("aaaa")));
    QVERIFY(renderer.isTextElided());

    TextRenderer copy(renderer);
    QCOMPARE(copy.isTextElided(), false);
    QCOMPARE(copy.displayText(), renderer.displayText());
    copy.relayout();
    QCOMPARE(copy.isTextElided(), false);

    copy.setTextTopLeft(QPoint(1, 1));
    copy.relayout();
    QCOMPARE(copy.isTextElided(), true);

    // The copy does not have the measured width, by which the original keeps its layout.
    TextRenderer fitting;
    prepare(fitting, QStringLiteral("aaaa"));
    TextRenderer fittingCopy(fitting);
    fittingCopy.setTextWidth(0);
    QVERIFY(fittingCopy.isNeedRelayout());
    fitting.setTextWidth(0);
    QVERIFY(!fitting.isNeedRelayout());
}

void tst_TextRenderer::copyIsIndependent()
{
    auto renderer = std::make_unique<TextRenderer>();
    prepare(*renderer, QStringLiteral("aaaa"));
    TextRenderer copy(*renderer);

    copy.setText(QStringLiteral("b"));
    copy.setTextFormat(Qt::RichText);
    copy.setTextAlignment(Qt::AlignRight);
    copy.relayout();
    QCOMPARE(renderer->displayText(), QStringLiteral("aaaa"));
    QCOMPARE(renderer->textFormat(), Qt::AutoText);
    QCOMPARE(renderer->textAlignment(), Qt::Alignment(Qt::AlignLeft));
    QVERIFY(!renderer->isNeedRelayout());

    renderer.reset();
    QCOMPARE(copy.displayText(), QStringLiteral("b"));
}

void tst_TextRenderer::drawPaintsTheStaticText()
{
    TextRenderer renderer;
    renderer.setTextTopLeft(QPoint(10, 20));
    prepare(renderer, QStringLiteral("aaaa bbbb"), fineWidth(QStringLiteral("aaaa")), 2);
    const QPen pen(Qt::red, 3);

    PaintRecorder recorder;
    {
        QPainter painter(&recorder);
        painter.setPen(pen);
        painter.setBrush(Qt::blue);
        painter.translate(100, 200);
        renderer.draw(painter);
        QCOMPARE(painter.brush(), QBrush(Qt::blue));
        QCOMPARE(painter.transform(), QTransform::fromTranslate(100, 200));
    }

    PaintRecorder byHand;
    {
        QPainter painter(&byHand);
        painter.setPen(pen);
        painter.setFont(pixelFont());
        painter.drawStaticText(QPointF(10, 20), staticText(QStringLiteral("aaaa bbbb"),
                                                           fineWidth(QStringLiteral("aaaa"))));
    }

    const QList<PaintCall> calls = recorder.calls();
    const QList<PaintCall> expected = byHand.calls();
    QCOMPARE(recorder.kinds(), (QList{PaintCall::Kind::Text, PaintCall::Kind::Text}));
    QCOMPARE(recorder.kinds(), byHand.kinds());
    for (qsizetype i = 0; i < calls.size(); ++i) {
        QCOMPARE(calls.at(i).text.trimmed(),
                 i == 0 ? QStringLiteral("aaaa") : QStringLiteral("bbbb"));
        QCOMPARE(calls.at(i).position, expected.at(i).position);
        QCOMPARE(calls.at(i).font.pixelSize(), 20);
        QCOMPARE(calls.at(i).pen.color(), QColor(Qt::red));
        QCOMPARE(calls.at(i).transform, QTransform::fromTranslate(100, 200));
    }
}

void tst_TextRenderer::drawPaintsTheSamePixelsAsAStaticText()
{
    TextRenderer renderer;
    renderer.setTextTopLeft(QPoint(10, 20));
    prepare(renderer, QStringLiteral("телепрограмма"));

    QImage drawn = canvas();
    {
        QPainter painter(&drawn);
        painter.setPen(Qt::white);
        renderer.draw(painter);
    }
    QVERIFY(!isBlank(drawn));

    QImage byHand = canvas();
    {
        QPainter painter(&byHand);
        painter.setPen(Qt::white);
        painter.setFont(pixelFont());
        painter.drawStaticText(QPointF(10, 20),
                               staticText(QStringLiteral("телепрограмма"),
                                          fineWidth(QStringLiteral("телепрограмма"))));
    }
    QCOMPARE(drawn, byHand);

    // Nothing is painted outside boundingRect().
    {
        QPainter painter(&drawn);
        painter.setCompositionMode(QPainter::CompositionMode_Clear);
        painter.fillRect(renderer.boundingRect(), Qt::transparent);
    }
    QVERIFY(isBlank(drawn));
}

void tst_TextRenderer::drawPaintsAtTheAlignedPosition()
{
    const QString text = QStringLiteral("aaaa");
    TextRenderer renderer;
    renderer.setTextAlignment(Qt::AlignRight | Qt::AlignBottom);
    renderer.setAvailableHeight(100);
    renderer.setTextTopLeft(QPoint(5, 6));
    prepare(renderer, text, 250);

    QImage drawn = canvas();
    PaintRecorder recorder;
    for (QPaintDevice *device :
         {static_cast<QPaintDevice *>(&drawn), static_cast<QPaintDevice *>(&recorder)}) {
        QPainter painter(device);
        renderer.draw(painter);
    }
    QVERIFY(!isBlank(drawn));

    // The line ends at the right edge of the box.
    const QList<PaintCall> calls = recorder.calls();
    QCOMPARE(calls.size(), 1);
    const QPointF origin = renderer.alignedTextTopLeft();
    QCOMPARE(origin, QPointF(5 + 250 - fineWidth(text), 6 + 100 - qRound(lineHeight())));
    QCOMPARE(calls.constFirst().position.y(), origin.y() + QFontMetricsF(pixelFont()).ascent());
    QCOMPARE(calls.constFirst().position.x(), origin.x() + fineWidth(text) - advance(text));

    {
        QPainter painter(&drawn);
        painter.setCompositionMode(QPainter::CompositionMode_Clear);
        painter.fillRect(renderer.boundingRect(), Qt::transparent);
    }
    QVERIFY(isBlank(drawn));
}

void tst_TextRenderer::drawPaintsAtANullAlignedPosition()
{
    const int height = qRound(lineHeight());
    QFont font = pixelFont();
    font.setStrikeOut(true);
    TextRenderer renderer;
    renderer.setTextAlignment(Qt::AlignVCenter);
    renderer.setAvailableHeight(height - 14);
    renderer.setTextTopLeft(QPoint(0, 7));
    prepare(renderer, QStringLiteral("a"));
    renderer.setTextFont(font);
    renderer.relayout();
    QCOMPARE(renderer.alignedTextTopLeft(), QPoint(0, 0));

    QTest::ignoreMessage(QtWarningMsg, "QPen::setWidth: Setting a pen width that is out of range");
    PaintRecorder recorder;
    {
        QPainter painter(&recorder);
        renderer.draw(painter);
    }

    // The text is painted at the null position, although boundingRect() begins 7 pixels below it.
    const QPointF baseline = recorder.calls(PaintCall::Kind::Text).constFirst().position;
    QCOMPARE(baseline, QPointF(0, QFontMetricsF(font).ascent()));
    const QLineF strike = recorder.calls(PaintCall::Kind::Lines).constFirst().lines.constFirst();
    QCOMPARE(strike.p1(), QPointF(0, height / 2));
}

void tst_TextRenderer::drawAsksForAggressiveCaching()
{
    TextRenderer renderer;
    prepare(renderer, QStringLiteral("aaaa bbbb"), fineWidth(QStringLiteral("aaaa")), 2);
    const TextRenderer copy = renderer;

    for (const TextRenderer *each : {&std::as_const(renderer), &copy}) {
        CachingRecorder engine;
        CachingRecorderDevice device(engine);
        {
            QPainter painter(&device);
            each->draw(painter);
        }
        QCOMPARE(engine.asked, (QList{true, true})); // one value for each line
    }
}

void tst_TextRenderer::drawShapesNothingAfterALayout_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("maxLineCount");

    const QString text = QStringLiteral("путешествие на воздушном шаре");
    QTest::newRow("one line") << text << ampleWidth << 1;
    QTest::newRow("no width") << text << 0 << 1;
    QTest::newRow("elided") << text << 120 << 1;
    QTest::newRow("several lines") << text << 120 << 4;
    QTest::newRow("rich text") << QStringLiteral("<b>a</b> b") << ampleWidth << 1;
}

void tst_TextRenderer::drawShapesNothingAfterALayout()
{
    QFETCH(const QString, text);
    QFETCH(const int, width);
    QFETCH(const int, maxLineCount);
    TextRenderer renderer;
    if (countShaperCalls([&] { prepare(renderer, text, width, maxLineCount); }) == 0)
        QSKIP("This Qt contains the shaper: its calls cannot be counted.");

    QImage image = canvas();
    QPainter painter(&image);
    QCOMPARE(countShaperCalls([&] { renderer.draw(painter); }), 0);
    painter.end();
    QVERIFY(!isBlank(image));
}

void tst_TextRenderer::drawPaintsThePreviousLayoutOfADirtyText()
{
    TextRenderer renderer;
    prepare(renderer, QStringLiteral("before"));
    renderer.setText(QStringLiteral("after"));

    PaintRecorder recorder;
    {
        QPainter painter(&recorder);
        renderer.draw(painter);
    }
    QCOMPARE(recorder.calls().size(), 1);
    QCOMPARE(recorder.calls().constFirst().text, QStringLiteral("before"));
    QVERIFY(renderer.isNeedRelayout());
}

void tst_TextRenderer::drawPaintsNothingWhenInvalid_data()
{
    QTest::addColumn<Change>("invalidate");

    QTest::newRow("empty text") << Change([](TextRenderer &r) { r.setText(QString()); });
    QTest::newRow("font in points") << Change([](TextRenderer &r) {
        QFont font = pixelFont();
        font.setPointSize(12);
        r.setTextFont(font);
    });
    QTest::newRow("elided to nothing") << Change([](TextRenderer &r) {
        r.setTextWidth(1);
        r.relayout();
    });
}

void tst_TextRenderer::drawPaintsNothingWhenInvalid()
{
    QFETCH(Change, invalidate);

    TextRenderer renderer;
    prepare(renderer, QStringLiteral("aaaa"));
    const auto draw = [&renderer](QPaintDevice *device) {
        QPainter painter(device);
        renderer.draw(painter);
    };

    QImage image = canvas();
    draw(&image);
    QVERIFY(!isBlank(image));

    invalidate(renderer);
    PaintRecorder recorder;
    draw(&recorder);
    QCOMPARE(recorder.kinds(), QList<PaintCall::Kind>());
    image = canvas();
    draw(&image);
    QVERIFY(isBlank(image));
}

void tst_TextRenderer::drawLeavesTheTextFontSet()
{
    TextRenderer renderer;
    prepare(renderer, QStringLiteral("a"));

    PaintRecorder recorder;
    QPainter painter(&recorder);
    painter.setFont(pixelFont(50));
    renderer.draw(painter);
    QCOMPARE(painter.font().pixelSize(), 20);

    // An invalid renderer does not set the painter's font.
    renderer.setText(QString());
    painter.setFont(pixelFont(50));
    renderer.draw(painter);
    QCOMPARE(painter.font().pixelSize(), 50);
}

void tst_TextRenderer::drawKeepsPenAndBrush()
{
    const QPen pen(Qt::red, 3, Qt::DashLine);
    for (const bool strikeOut : {false, true}) {
        QFont font = pixelFont();
        font.setStrikeOut(strikeOut);
        TextRenderer renderer;
        renderer.setTextFont(font);
        renderer.setText(QStringLiteral("a"));
        renderer.relayout();

        // draw() uses the font's point size as the width of the pen. The point size of a font in pixels is -1,
        // and QPen refuses this width with a warning.
        if (strikeOut) {
            QTest::ignoreMessage(QtWarningMsg,
                                 "QPen::setWidth: Setting a pen width that is out of range");
        }
        QImage image = canvas();
        QPainter painter(&image);
        painter.setPen(pen);
        painter.setBrush(Qt::blue);
        renderer.draw(painter);
        QCOMPARE(painter.pen(), pen);
        QCOMPARE(painter.brush(), QBrush(Qt::blue));
        QCOMPARE(painter.transform(), QTransform());
    }
}

void tst_TextRenderer::drawStrikesOut_data()
{
    QTest::addColumn<int>("pixelSize");

    QTest::newRow("even height") << 20;
    QTest::newRow("odd height") << 14;
}

void tst_TextRenderer::drawStrikesOut()
{
    QFETCH(int, pixelSize);

    const QString text = QStringLiteral("aaaa b");
    QFont font = pixelFont(pixelSize);
    font.setStrikeOut(true);
    const double height = lineHeight(font);
    QCOMPARE(std::fmod(height, 2), pixelSize == 14 ? 1.0 : 0.0);

    TextRenderer renderer;
    renderer.setTextAlignment(Qt::AlignRight | Qt::AlignBottom);
    renderer.setAvailableHeight(100);
    renderer.setTextTopLeft(QPoint(10, 20));
    prepare(renderer, text);
    renderer.setTextFont(font);
    renderer.relayout();

    const QPen pen(Qt::red, 3, Qt::DashLine);
    QTest::ignoreMessage(QtWarningMsg, "QPen::setWidth: Setting a pen width that is out of range");
    PaintRecorder recorder;
    {
        QPainter painter(&recorder);
        painter.setPen(pen);
        renderer.draw(painter);
    }

    const int x = 10 + ampleWidth - fineWidth(text, font);
    const int top = 20 + 100 - static_cast<int>(std::ceil(height));
    const int y = top + static_cast<int>(std::floor(height / 2));
    QCOMPARE(recorder.kinds().constFirst(), PaintCall::Kind::Text);
    QCOMPARE(recorder.kinds().constLast(), PaintCall::Kind::Lines);
    const QList<PaintCall> lines = recorder.calls(PaintCall::Kind::Lines);
    QCOMPARE(lines.size(), 1);
    QCOMPARE(lines.constFirst().lines, QList{QLineF(x, y, x + fineWidth(text, font), y)});
    QCOMPARE(lines.constFirst().pen.color(), QColor(Qt::red));
    QCOMPARE(lines.constFirst().transform, QTransform());

    // A static text with a negative width has the fractional width of its line. The strike-out line ends at the
    // next whole pixel.
    renderer.setMaxTextWidth(-1);
    const double width = staticText(text, -1, font).size().width();
    QVERIFY(width != std::floor(width));
    recorder.clear();
    QTest::ignoreMessage(QtWarningMsg, "QPen::setWidth: Setting a pen width that is out of range");
    {
        QPainter painter(&recorder);
        renderer.draw(painter);
    }
    QCOMPARE(recorder.calls(PaintCall::Kind::Lines).constFirst().lines,
             QList{QLineF(x, y, x + std::floor(width) + 1, y)});

    // A font without strike-out draws no line.
    renderer.setTextFont(pixelFont(pixelSize));
    renderer.relayout();
    recorder.clear();
    {
        QPainter painter(&recorder);
        renderer.draw(painter);
    }
    QCOMPARE(recorder.kinds(), QList{PaintCall::Kind::Text});
}

void tst_TextRenderer::drawStrikesOutPixels()
{
    QFont font = pixelFont();
    font.setStrikeOut(true);
    TextRenderer renderer;
    renderer.setTextTopLeft(QPoint(10, 20));
    renderer.setTextFont(font);
    renderer.setText(QStringLiteral("a         b"));
    renderer.relayout();

    QImage image = canvas();
    QVERIFY(isBlank(image));
    QTest::ignoreMessage(QtWarningMsg, "QPen::setWidth: Setting a pen width that is out of range");
    {
        QPainter painter(&image);
        painter.setPen(Qt::white);
        renderer.draw(painter);
    }
    const QRect rect = renderer.boundingRect();
    const int y = rect.top() + rect.height() / 2;
    for (int x = rect.left(); x <= rect.right(); ++x)
        QVERIFY2(image.pixelColor(x, y).alpha() > 0, qPrintable(QString::number(x)));
}

void tst_TextRenderer::drawTextRendererPaintsAtTheOrigin()
{
    TextRenderer renderer;
    renderer.setTextAlignment(Qt::AlignRight | Qt::AlignBottom);
    renderer.setAvailableHeight(100);
    renderer.setTextTopLeft(QPoint(500, 600));
    prepare(renderer, QStringLiteral("aaaa"));

    QImage image = canvas();
    {
        QPainter painter(&image);
        painter.translate(20, 30);
        drawTextRenderer(painter, renderer, QPen(Qt::green));
    }
    QVERIFY(!isBlank(image));

    TextRenderer atOrigin;
    atOrigin.setTextAlignment(Qt::AlignRight);
    atOrigin.setTextTopLeft(QPoint(20, 30));
    prepare(atOrigin, QStringLiteral("aaaa"), fineWidth(QStringLiteral("aaaa")));
    QImage expected = canvas();
    {
        QPainter painter(&expected);
        painter.setPen(Qt::green);
        atOrigin.draw(painter);
    }
    QCOMPARE(image, expected);
}

void tst_TextRenderer::drawTextRendererLeavesItsStateSet()
{
    const QString text = QStringLiteral("aaaa");
    TextRenderer renderer;
    renderer.setTextAlignment(Qt::AlignRight);
    renderer.setTextTopLeft(QPoint(10, 20));
    prepare(renderer, text);
    const QPoint aligned = renderer.alignedTextTopLeft();
    QVERIFY(aligned.x() > 10);

    QTransform before;
    before.scale(2, 3);
    before.translate(7, 8);
    QTransform after = before;
    after.translate(-aligned.x(), -aligned.y());
    const QPen pen(Qt::red, 3);

    QImage image = canvas();
    PaintRecorder recorder;
    for (QPaintDevice *device :
         {static_cast<QPaintDevice *>(&image), static_cast<QPaintDevice *>(&recorder)}) {
        QPainter painter(device);
        painter.setTransform(before);
        painter.setBrush(Qt::blue);
        drawTextRenderer(painter, renderer, pen);
        QCOMPARE(painter.transform(), after);
        QCOMPARE(painter.brush(), QBrush(Qt::NoBrush));
        QCOMPARE(painter.font().pixelSize(), 20);
        // With the recorder's engine, Qt sets a pen of its own to draw a static text.
        if (device == &image)
            QCOMPARE(painter.pen(), pen);
        else
            QCOMPARE(painter.pen().color(), pen.color());
    }
    QCOMPARE(recorder.kinds(), QList{PaintCall::Kind::Text});
    QCOMPARE(recorder.calls().constFirst().transform, after);
    QCOMPARE(recorder.calls().constFirst().brush, QBrush(Qt::NoBrush));
    QCOMPARE(recorder.calls().constFirst().pen.color(), QColor(Qt::red));

    // An invalid renderer paints nothing, but pen and brush are set.
    const TextRenderer invalid;
    recorder.clear();
    {
        QPainter painter(&recorder);
        painter.setBrush(Qt::blue);
        drawTextRenderer(painter, invalid, pen);
        QCOMPARE(painter.pen(), pen);
        QCOMPARE(painter.brush(), QBrush(Qt::NoBrush));
    }
    QCOMPARE(recorder.kinds(), QList<PaintCall::Kind>());
}

void tst_TextRenderer::alignsInExtremeBoxes()
{
    const QPoint topLeft(3, 4);
    const QString text = QStringLiteral("слово");
    const double width = fineWidth(text);
    const double height = lineHeight();
    const auto bounded = [](double position) {
        return static_cast<int>(std::clamp<double>(position, least, most));
    };

    for (const int extent : {least, least + 1, -1, 0, 1000, most - 1, most}) {
        TextRenderer renderer;
        renderer.setTextTopLeft(topLeft);
        renderer.setAvailableHeight(extent);
        prepare(renderer, text, extent);
        const bool isBox = extent >= 1;

        renderer.setTextAlignment(Qt::AlignRight | Qt::AlignBottom);
        renderer.relayout();
        const QPoint farthest(bounded(extent - width + topLeft.x()),
                              bounded(extent - std::ceil(height) + topLeft.y()));
        QCOMPARE(renderer.alignedTextTopLeft(), isBox ? farthest : topLeft);

        renderer.setTextAlignment(Qt::AlignCenter);
        renderer.relayout();
        const QPoint middle(bounded(std::ceil((extent - width) / 2) + topLeft.x()),
                            bounded(std::ceil((extent - height) / 2) + topLeft.y()));
        QCOMPARE(renderer.alignedTextTopLeft(), isBox ? middle : topLeft);
    }
}

void tst_TextRenderer::extremeValuesAreSafe_data()
{
    QTest::addColumn<Change>("change");

    for (const int value : {least, least + 1, -1, 0, 1, most - 1, most}) {
        const QByteArray name = QByteArray::number(value);
        QTest::addRow("width %s", name.constData())
            << Change([value](TextRenderer &r) { r.setTextWidth(value); });
        QTest::addRow("maximal width %s", name.constData())
            << Change([value](TextRenderer &r) { r.setMaxTextWidth(value); });
        QTest::addRow("height %s", name.constData())
            << Change([value](TextRenderer &r) { r.setAvailableHeight(value); });
        QTest::addRow("line count %s", name.constData())
            << Change([value](TextRenderer &r) { r.setMaxLineCount(value); });
    }
}

void tst_TextRenderer::extremeValuesAreSafe()
{
    QFETCH(Change, change);

    const QList<Qt::Alignment> alignments{Qt::AlignLeft, Qt::AlignCenter,
                                          Qt::AlignRight | Qt::AlignBottom};
    for (const Qt::Alignment alignment : alignments) {
        for (const int width : {0, 1, 70, most}) {
            TextRenderer renderer;
            renderer.setTextAlignment(alignment);
            renderer.setAvailableHeight(50);
            prepare(renderer, QStringLiteral("телепрограмма  на x-www\nсегодня"), width, 3);
            change(renderer);
            renderer.relayout();
            QVERIFY(!renderer.isNeedRelayout());
            renderer.geometry();
            renderer.boundingRect();
            QVERIFY(renderer.displayText().size() < 2000);
        }
    }
}

void tst_TextRenderer::extremePositionsAreSafe()
{
    const QList<QPoint> points{{least, least}, {most, most}, {least, most}, {0, 0}, {-1, 1}};
    const QList<Qt::Alignment> alignments{Qt::AlignLeft, Qt::AlignCenter,
                                          Qt::AlignRight | Qt::AlignBottom};
    for (const Qt::Alignment alignment : alignments) {
        for (const int extent : {1, 50, most}) {
            TextRenderer renderer;
            renderer.setTextAlignment(alignment);
            renderer.setAvailableHeight(extent);
            prepare(renderer, QStringLiteral("слово"), ampleWidth);
            for (const QPoint &point : points) {
                renderer.setTextTopLeft(point);
                renderer.relayout();
                renderer.setTextWidth(extent);
                renderer.relayout();
                renderer.setTextWidth(most);
                renderer.boundingRect();
                renderer.geometry();
                for (const QPoint &next : points) {
                    renderer.move(next);
                    QCOMPARE(renderer.textTopLeft(), next);
                    renderer.boundingRect();
                    renderer.geometry();
                    PaintRecorder recorder;
                    QPainter painter(&recorder);
                    drawTextRenderer(painter, renderer, QPen(Qt::white));
                }
            }
        }
    }
}

void tst_TextRenderer::rectanglesSaturate()
{
    TextRenderer renderer;
    prepare(renderer, QStringLiteral("слово"), ampleWidth);
    const QSize size = renderer.boundingSize();

    const QPoint farRight(most - 1, most - 2);
    renderer.move(farRight);
    QCOMPARE(renderer.boundingRect(), QRect(farRight, QPoint(most, most)));
    QCOMPARE(renderer.geometry(), QRect(farRight, QPoint(most, most)));

    const QPoint farLeft(least, least);
    renderer.move(farLeft);
    QCOMPARE(renderer.boundingRect(), QRect(farLeft, size));
    QCOMPARE(renderer.geometry().topLeft(), farLeft);
    QCOMPARE(renderer.geometry().width(), ampleWidth);

    QCOMPARE(renderer.boundingSize(QMargins(most, most, 0, 0)), QSize(most, most));
    QCOMPARE(renderer.boundingSize(QMargins(most, most, most, most)), QSize(most, most));
    QCOMPARE(renderer.boundingSize(QMargins(least, least, least, least)), QSize(least, least));
}

// With strong negative letter spacing the width of a text is negative.
void tst_TextRenderer::extremeLetterSpacingIsSafe()
{
    QFont font = spacedFont(QFont::AbsoluteSpacing, -1e6);
    const QString text = QStringLiteral("слово");
    const double width = fineWidth(text, font);
    QVERIFY(width < 0);

    TextRenderer renderer;
    renderer.setTextFont(font);
    renderer.setText(text);
    renderer.setTextWidth(most);

    renderer.setTextAlignment(Qt::AlignHCenter);
    renderer.relayout();
    QCOMPARE(renderer.alignedTextTopLeft(),
             QPoint(static_cast<int>(std::ceil((most - width) / 2)), 0));

    renderer.setTextAlignment(Qt::AlignRight);
    renderer.relayout();
    QCOMPARE(renderer.alignedTextTopLeft(), QPoint(most, 0));

    // A width of 0 does not move the text.
    renderer.setTextWidth(0);
    QVERIFY(!renderer.isNeedRelayout());
    QCOMPARE(renderer.alignedTextTopLeft(), QPoint(most, 0));
}

QTEST_MAIN(tst_TextRenderer)

#include "tst_textrenderer.moc"
