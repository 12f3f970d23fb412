#include "pictures.h"

#include "recipes/budget.h"
#include "recipes/cardlist.h"
#include "recipes/focusedcard.h"
#include "recipes/languages.h"
#include "recipes/loadedposter.h"
#include "recipes/logtable.h"
#include "recipes/posterrow.h"
#include "recipes/ticker.h"

#include <ovelin/throbberrenderer.h>

#include <QEventLoop>

#include <memory>
#include <vector>

using namespace recipes;

namespace {

constexpr int fontSize = 20;

QStringList titles()
{
    return {"Утренние новости", "Путешествие на воздушном шаре", "Погода", "Ледокол идёт на север",
            "Вечернее кино"};
}

QString posterFile(const QString &name)
{
    return POSTERS + name + ".png";
}

// Draws what is seen of a poster: its picture, or the empty frame.
void drawPoster(Canvas &canvas, const QRect &place, const QImage &image)
{
    if (image.isNull())
        canvas.frame(place);
    else
        canvas.painter().drawImage(
            place, image.scaled(2 * place.size(), Qt::KeepAspectRatio, Qt::SmoothTransformation));
}

// A tracker that is installed as long as it exists.
class InstalledTracker : public ovelin::SceneResourceTracker
{
public:
    InstalledTracker() { ovelin::setSceneResourceTracker(this); }
    ~InstalledTracker() override { ovelin::setSceneResourceTracker(nullptr); }

private:
    Q_DISABLE_COPY_MOVE(InstalledTracker)
};

class Item : public QObject, public ovelin::AbstractResourceOwner
{
public:
    Item(const QString &name, const QRect &geometry)
        : m_name(name)
    {
        registerResource(1, name, ovelin::ResourceInfo::PaintedItem);
        describe(*ownerState, geometry);
    }

    QRect geometry() const { return ownerState->geometry; }

    void draw(Canvas &canvas) const
    {
        drawPoster(canvas, geometry(),
                   isResourcesAllowed() ? QImage(posterFile(m_name)) : QImage());
    }

    QObject *resourceOwnerObject() override { return this; }
    void allowResources() override {}
    void releaseResources() override {}

private:
    const QString m_name;
};

} // namespace

void drawCardList(Canvas &canvas)
{
    constexpr int offset = 130;
    const QRect area(20, 40, 720, 100);
    CardList list(titles(), pictureFont(fontSize));
    list.scrollTo(offset);
    canvas.label({20, 28}, QString("scrollTo(%1)").arg(offset));
    list.paint(canvas.painter(), area);
    canvas.frame(area);
}

void drawFocusedCard(Canvas &canvas)
{
    constexpr QPoint first(130, 105);
    constexpr QPoint step(250, 0);
    const FocusedCard card(Card(titles().at(1), pictureFont(fontSize)));
    for (int i = 0; i < 3; ++i) {
        const double progress = i / 2.0;
        const QPoint centre = first + i * step;
        canvas.label(centre - QPoint(100, 77), QString("progress %1").arg(progress));
        card.paint(canvas.painter(), centre, progress);
    }
}

void drawTicker(Canvas &canvas)
{
    const QRect area(20, 45, 720, 34);
    Ticker ticker("Сегодня в программе: " + titles().join(" • "), pictureFont(fontSize), area);
    ticker.advance(860);
    canvas.label({20, 30}, "advance(2), some 400 times");
    ticker.paint(canvas.painter());
    canvas.frame(area);
}

void drawLanguages(Canvas &canvas)
{
    const auto draw = [&canvas](int left, const QString &label, const QString &language) {
        ovelin::TextRenderer text;
        text.setTextFont(pictureFont(fontSize));
        text.setTextTopLeft({left, 44});
        text.setTextWidth(80);
        text.setMaxLineCount(4);
        setText(text, "two eggs and boxes", language);
        canvas.label({double(left), 30}, label);
        canvas.frame(text.geometry());
        text.draw(canvas.painter());
    };
    draw(20, "as Russian: \"eg-gs\"", "ru");
    draw(280, "as English", "en");
}

void drawPosters(Canvas &canvas)
{
    QRect place(20, 44, 220, 124);
    LoadedPoster poster(QUrl::fromLocalFile(posterFile("balloon")));
    const auto draw = [&](const QString &label) {
        canvas.label({double(place.left()), 30}, label);
        drawPoster(canvas, place, poster.image());
        if (poster.isLoading()) {
            constexpr int size = 48;
            ovelin::ThrobberRenderer throbber;
            QRect circle(0, 0, size, size);
            circle.moveCenter(place.center());
            throbber.setPenWidth(6);
            throbber.addAngles(0, 90);
            throbber.setRenderRect(circle);
            throbber.draw(canvas.painter());
        }
        place.translate(250, 0);
    };

    draw("registered");
    poster.allowResources();
    draw("allowed: isLoading()");
    QEventLoop loading;
    QObject::connect(&poster, &LoadedPoster::loaded, &loading, &QEventLoop::quit);
    loading.exec();
    draw("loaded()");
}

void drawBudget(Canvas &canvas)
{
    constexpr QSize size(104, 58);
    constexpr int bytesPerPixel = 4;
    constexpr int budget = 3 * size.width() * size.height() * bytesPerPixel;
    const QStringList names{"balloon", "dam", "forest", "icebreaker", "balloon", "dam"};

    int top = 44;
    for (const int focused : {1, 4}) {
        InstalledTracker tracker;
        std::vector<std::unique_ptr<Item>> items;
        QRect place(QPoint(20, top), size);
        for (const QString &name : names) {
            items.push_back(std::make_unique<Item>(name, place));
            place.translate(122, 0);
        }
        const QRect focus = items[std::size_t(focused)]->geometry();
        decide(tracker, budget, focus.center());

        canvas.label({20, top - 14.0}, QString("focus on item %1").arg(focused + 1));
        for (const auto &item : items)
            item->draw(canvas);
        canvas.painter().setPen(QPen(QColor(colours::accent), 3));
        canvas.painter().setBrush(Qt::NoBrush);
        canvas.painter().drawRect(focus.adjusted(-4, -4, 4, 4));
        top += 112;
    }
}

void drawOnScreen(Canvas &canvas)
{
    constexpr int step = PosterRow::cardSize.width() + PosterRow::gap;
    constexpr QRect screen(step, 0, 2 * step - PosterRow::gap, PosterRow::cardSize.height());
    constexpr double scale = 0.68;
    constexpr QPoint corner(20, 50);
    const auto decideAndLoad = [] {
        QCoreApplication::processEvents();
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::processEvents();
    };

    QList<QUrl> files;
    for (const char *name : {"balloon", "dam", "forest", "icebreaker", "balloon"})
        files.append(QUrl::fromLocalFile(posterFile(name)));
    InstalledTracker tracker;
    PosterRow row(tracker, screen, files);
    decideAndLoad();
    row.scrollTo(step);
    decideAndLoad();

    QPainter &painter = canvas.painter();
    painter.save();
    painter.translate(corner);
    painter.scale(scale, scale);
    row.paint(painter);
    painter.restore();

    const auto shown = [&](const QRect &rect) {
        return QRectF(corner + QPointF(rect.topLeft()) * scale, QSizeF(rect.size()) * scale);
    };
    const QMap<State::Status, QString> names = {
        {State::CreationAllowed, "CreationAllowed"},
        {State::CreationDenied, "CreationDenied"},
        {State::Cleared, "Cleared"},
    };
    for (const ovelin::ResourceInfo &resource : tracker.resources()) {
        const State &state = *resource.ownerState;
        const QRectF place = shown(state.geometry);
        canvas.frame(place);
        canvas.label(place.bottomLeft() + QPointF(0, 22), names.value(state.status));
    }
    canvas.label({shown(screen).left(), 28}, "the screen, after scrollTo(212)");
    painter.setPen(QPen(QColor(colours::accent), 3));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(shown(screen).adjusted(-5, -5, 5, 5));
}

void drawLog(Canvas &canvas)
{
    struct Sample
    {
        QString name;
        State::Status status;
        QString label;
    };
    const Sample samples[] = {
        {"balloon", State::CreationAllowed, "allowed"},
        {"dam", State::CreationDenied, "denied"},
        {"forest", State::CreationRequested, "nobody has decided"},
    };

    InstalledTracker tracker;
    static QStringList lines;
    const auto keepLine = [](QtMsgType, const QMessageLogContext &, const QString &line) {
        lines.append(line);
    };
    const auto printBefore = qInstallMessageHandler(keepLine);
    printLog(tracker);
    std::vector<std::unique_ptr<LoadedPoster>> posters;
    QRect place(20, 40, 150, 84);
    for (const auto &[name, status, label] : samples) {
        posters.push_back(std::make_unique<LoadedPoster>(QUrl("file:///" + name + ".png")));
        LoadedPoster &poster = *posters.back();
        if (status != State::CreationRequested)
            tracker.setStatus(tracker.owners().at(&poster), status);
        canvas.label({double(place.left()), 28}, name + ".png: " + label);
        drawPoster(canvas, place,
                   status == State::CreationAllowed ? QImage(posterFile(name)) : QImage());
        place.translate(250, 0);
    }
    tracker.disconnect();
    qInstallMessageHandler(printBefore);

    QFont font("DejaVu Sans Mono");
    font.setPixelSize(12);
    int top = 146;
    canvas.painter().setPen(QColor(colours::ink));
    for (const QString &line : std::as_const(lines)) {
        ovelin::TextRenderer text;
        text.setTextFont(font);
        text.setTextTopLeft({20, top});
        text.setText(line);
        text.relayout();
        text.draw(canvas.painter());
        top += 18;
    }
}
