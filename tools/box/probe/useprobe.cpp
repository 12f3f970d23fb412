// useprobe
//
// Uses the library and prints the memory that its objects hold, in lines of "name value". Marks the
// operations whose instructions instructions.awk counts.

#include "heap.h"
#include "mark.h"

#include <ovelin/abstractresourceowner.h>
#include <ovelin/brushes.h>
#include <ovelin/sceneresourcetracker.h>
#include <ovelin/textrenderer.h>
#include <ovelin/throbberrenderer.h>

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QStaticText>
#include <QTextOption>
#include <QTransform>
#include <QUrl>

#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

using namespace ovelin;
using namespace Qt::StringLiterals;

namespace {

constexpr int fontPixelSize = 24;
constexpr int descriptionLines = 4;
constexpr QSize panelSize(900, 180);
constexpr int descriptionWidth = 620; // pixels; breaks the description into four full lines

const QString title = u"Ледокол идёт на север"_s;
// Twenty words.
const QString description =
    u"Документальный фильм рассказывает об экипаже атомного ледокола, который каждую зиму "
    "прокладывает караванам безопасную дорогу через замёрзшие проливы и полярную ночь."_s;

void print(const std::string &name, std::ptrdiff_t value)
{
    std::cout << name << ' ' << value << '\n';
}

QFont font()
{
    QFont font(u"DejaVu Sans"_s);
    font.setPixelSize(fontPixelSize);
    return font;
}

// A deep copy, so that the heap has bytes for it.
QString ownCopy(const QString &text)
{
    return QString(text.constData(), text.size());
}

std::unique_ptr<TextRenderer> laidOutText(const QString &text, int lines, int width)
{
    auto renderer = std::make_unique<TextRenderer>();
    renderer->setTextFont(font());
    renderer->setMaxLineCount(lines);
    renderer->setTextWidth(width);
    renderer->setText(ownCopy(text));
    renderer->relayout();
    return renderer;
}

// The heap that Qt alone needs for the same lines: a static text, its string, and the source string.
std::ptrdiff_t textBytesOfQt(const TextRenderer &renderer)
{
    const QString lines = renderer.displayText().replace(u'\n', QChar(QChar::LineSeparator));
    std::unique_ptr<QStaticText> staticText;
    QString source;
    return heapGrowth([&] {
        source = ownCopy(renderer.text());
        staticText = std::make_unique<QStaticText>();
        staticText->setPerformanceHint(QStaticText::AggressiveCaching);
        staticText->setTextOption(QTextOption(Qt::AlignLeft));
        staticText->setTextWidth(renderer.textWidth());
        staticText->setText(ownCopy(lines));
        staticText->prepare(QTransform(), renderer.textFont());
    });
}

// Fails unless the text has this number of lines. displayText() has no newline where a line ends at a space, so
// the number is computed from the height.
void checkLineCount(const TextRenderer &renderer, int lines)
{
    const double height = renderer.boundingSize().height();
    if (qRound(height / QFontMetricsF(renderer.textFont()).height()) != lines)
        qFatal("A text does not take %d lines.", lines);
}

void measureText(const std::string &name, const QString &text, int lines, int width)
{
    // The first text of all loads fonts, glyphs and patterns, which later texts share.
    laidOutText(text, lines, width);

    std::unique_ptr<TextRenderer> renderer;
    const std::ptrdiff_t all = heapGrowth([&] { renderer = laidOutText(text, lines, width); });
    checkLineCount(*renderer, lines);
    print("memory-" + name, all);
    print("memory-" + name + "-beyond-qt", all - textBytesOfQt(*renderer));
}

void countText()
{
    const auto renderer = laidOutText(description, descriptionLines, descriptionWidth);
    QImage image(renderer->boundingSize(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setPen(Qt::white);
    renderer->draw(painter);

    // Without a changed width relayout() would do nothing.
    renderer->setTextWidth(descriptionWidth - 1);
    markAction("relayout", [&] { renderer->relayout(); });
    checkLineCount(*renderer, descriptionLines);
    markAction("draw", [&] { renderer->draw(painter); });
}

class Item : public QObject, public AbstractResourceOwner
{
public:
    QObject *resourceOwnerObject() override { return this; }
    void allowResources() override {}
    void releaseResources() override {}
};

// Items whose images share one URL, so that the measured bytes contain no URL.
class Scene
{
public:
    explicit Scene(int itemCount)
        : m_items(std::size_t(itemCount))
    {
        setSceneResourceTracker(&tracker);
    }

    ~Scene()
    {
        for (Item &item : m_items)
            item.unregisterResources();
        setSceneResourceTracker(nullptr);
    }

    void registerImages(int id)
    {
        for (Item &item : m_items)
            item.registerImage(id, m_url);
    }

    Item &lastItem() { return m_items.back(); }
    void registerOne(int id) { lastItem().registerImage(id, m_url); }

    SceneResourceTracker tracker;

private:
    Q_DISABLE_COPY_MOVE(Scene)

    const QUrl m_url{u"file:///poster.png"_s};
    std::vector<Item> m_items;
};

void measureTracker()
{
    constexpr int count = 100;
    Scene scene(count);
    const std::ptrdiff_t withOwners = heapGrowth([&] { scene.registerImages(1); }) / count;
    const std::ptrdiff_t perResource = heapGrowth([&] { scene.registerImages(2); }) / count;
    print("memory-resource", perResource);
    print("memory-owner", withOwners - perResource);
}

void countTracker()
{
    constexpr int count = 200;
    Scene scene(count);
    int id = 0;
    scene.registerImages(++id);
    scene.registerOne(++id);

    ++id;
    markAction("registration", [&] { scene.registerOne(id); });
    // The first messages make the tracker's list of messages grow, which is not to be counted.
    scene.tracker.setMessagesEnabled(true);
    for (int messages = 0; messages < 3; ++messages)
        scene.registerOne(++id);
    ++id;
    markAction("registration-with-message", [&] { scene.registerOne(id); });
}

void measureThrobber()
{
    std::unique_ptr<ThrobberRenderer> throbber;
    print("memory-throbber",
          heapGrowth([&] { throbber = std::make_unique<ThrobberRenderer>(nullptr); }));
}

void countThrobber()
{
    constexpr int size = 160;
    constexpr int rotation = 120;
    constexpr int span = 180;
    constexpr int rotationStep = 3;
    constexpr int spanStep = 6;
    ThrobberRenderer throbber(nullptr);
    throbber.setRenderRect({0, 0, size, size});
    throbber.addAngles(rotation, span);

    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    throbber.draw(painter);

    markAction("throbber", [&] {
        throbber.addAngles(rotationStep, spanStep);
        throbber.draw(painter);
    });
}

void countPainting(const std::string &name, const std::function<void(QPainter &)> &paint)
{
    QImage screen(panelSize, QImage::Format_RGB32);
    screen.fill(Qt::black);
    QPainter painter(&screen);
    paint(painter);
    markAction(name, [&] { paint(painter); });
}

// Marks two actions: filling a panel with a gradient, and with a texture of the gradient.
void countGradient(const std::string &name, const QPoint &end, const QSize &textureSize)
{
    constexpr QRect panel(QPoint(0, 0), panelSize);
    QLinearGradient gradient(QPoint(0, 0), end);
    gradient.setColorAt(0, Qt::black);
    gradient.setColorAt(1, Qt::darkBlue);
    const QBrush texture = createTexturedBrush(textureSize, gradient);
    countPainting(name, [&](QPainter &painter) { painter.fillRect(panel, gradient); });
    countPainting(name + "-texture", [&](QPainter &painter) { painter.fillRect(panel, texture); });
}

void countGradients()
{
    constexpr int thickness = 8;
    countGradient("gradient-down", {0, panelSize.height()}, {thickness, panelSize.height()});
    countGradient("gradient-across", {panelSize.width(), 0}, {panelSize.width(), thickness});

    QImage kept(panelSize, QImage::Format_RGB32);
    kept.fill(Qt::darkBlue);
    countPainting("gradient-kept", [&](QPainter &painter) { painter.drawImage(0, 0, kept); });
}

} // namespace

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    markAction("empty", [] {});

    measureText("one-line", title, 1, 0);
    measureText("four-lines", description, descriptionLines, descriptionWidth);
    measureTracker();
    measureThrobber();

    countText();
    countTracker();
    countThrobber();
    countGradients();
}
