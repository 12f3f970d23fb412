#include "posterart.h"

#include "theme.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

#include <array>

namespace tvguide {

namespace {

using namespace Qt::StringLiterals;

// Pseudo-random numbers that depend on a text alone: every machine gets the same ones.
class Variation
{
public:
    explicit Variation(const QString &text)
    {
        for (const QChar c : text)
            m_state = (m_state ^ c.unicode()) * 16777619U;
    }

    int next(int bound)
    {
        m_state = m_state * 1664525U + 1013904223U;
        return static_cast<int>((m_state >> 8) % static_cast<quint32>(bound));
    }

private:
    quint32 m_state = 2166136261U;
};

struct Scenery
{
    QPainter &painter;
    QRectF rect;
    Variation &variation;
    QColor light;

    double x(double part) const { return rect.left() + part * rect.width(); }
    double y(double part) const { return rect.top() + part * rect.height(); }

    QColor shade(int alpha) const
    {
        QColor color = light;
        color.setAlpha(alpha);
        return color;
    }

    void disc(double centerX, double centerY, double radius) const
    {
        const double r = radius * rect.height();
        painter.drawEllipse(QPointF(x(centerX), y(centerY)), r, r);
    }
};

using Motif = void (*)(Scenery &);

void paintGlobe(Scenery &s)
{
    s.painter.setBrush(Qt::NoBrush);
    const double r = 0.62 * s.rect.height();
    const QPointF center(s.x(0.72), s.y(0.62));
    for (int i = 0; i < 4; ++i) {
        s.painter.setPen(QPen(s.shade(150 - 30 * i), s.rect.height() / 60));
        s.painter.drawEllipse(center, r * (1 - 0.3 * i), r);
        s.painter.drawEllipse(center, r, r * (1 - 0.3 * i));
    }
    s.painter.setPen(Qt::NoPen);
    s.painter.setBrush(s.shade(210));
    for (int i = 0; i < 5; ++i) {
        // Computed before the call: compilers evaluate arguments in different orders.
        const double cy = 0.2 + 0.15 * s.variation.next(6);
        const double cx = 0.5 + 0.1 * s.variation.next(5);
        s.disc(cx, cy, 0.025);
    }
}

void paintFilm(Scenery &s)
{
    QLinearGradient beam(s.x(0.05), s.y(0.1), s.x(0.95), s.y(0.8));
    beam.setColorAt(0, s.shade(170));
    beam.setColorAt(1, s.shade(0));
    QPainterPath cone(QPointF(s.x(0.08), s.y(0.12)));
    cone.lineTo(s.x(1.0), s.y(0.2 + 0.04 * s.variation.next(5)));
    cone.lineTo(s.x(1.0), s.y(1.0));
    cone.closeSubpath();
    s.painter.fillPath(cone, beam);

    s.painter.setBrush(QColor(0, 0, 0, 120));
    const double band = 0.16 * s.rect.height();
    s.painter.drawRect(QRectF(s.rect.left(), s.rect.bottom() - band, s.rect.width(), band));
    s.painter.setBrush(s.shade(120));
    constexpr int holes = 12;
    for (int i = 0; i < holes; ++i) {
        s.painter.drawRoundedRect(QRectF(s.x((i + 0.25) / holes), s.rect.bottom() - 0.7 * band,
                                         s.rect.width() * 0.5 / holes, 0.4 * band),
                                  1, 1);
    }
}

void paintStadium(Scenery &s)
{
    s.painter.setBrush(Qt::NoBrush);
    for (int i = 0; i < 5; ++i) {
        s.painter.setPen(QPen(s.shade(170 - 25 * i), s.rect.height() / 22));
        const double r = s.rect.height() * (0.45 + 0.2 * i);
        s.painter.drawEllipse(QPointF(s.x(0.55), s.y(1.15)), r * 1.7, r);
    }
    s.painter.setPen(Qt::NoPen);
    s.painter.setBrush(s.shade(235));
    s.disc(0.45 + 0.08 * s.variation.next(5), 0.25, 0.09);
}

void paintBalloons(Scenery &s)
{
    constexpr std::array hues{20, 48, 190, 320, 140};
    for (int i = 0; i < 7; ++i) {
        const double cx = 0.2 + 0.12 * i;
        const double cy = 0.22 + 0.07 * s.variation.next(7);
        const double r = 0.11 + 0.015 * s.variation.next(5);
        const int hue = hues[static_cast<std::size_t>(s.variation.next(int(hues.size())))];
        s.painter.setPen(QPen(s.shade(90), s.rect.height() / 120));
        s.painter.drawLine(QPointF(s.x(cx), s.y(cy)), QPointF(s.x(0.6), s.y(1.1)));
        s.painter.setPen(Qt::NoPen);
        s.painter.setBrush(QColor::fromHsv(hue, 150, 250, 225));
        s.disc(cx, cy, r);
        s.painter.setBrush(QColor(255, 255, 255, 110));
        s.disc(cx - 0.02, cy - 0.04, r / 4);
    }
}

void paintMountains(Scenery &s)
{
    s.painter.setBrush(s.shade(220));
    s.disc(0.45 + 0.07 * s.variation.next(6), 0.34, 0.14);
    for (int range = 0; range < 3; ++range) {
        QPainterPath ridge(QPointF(s.x(0), s.y(1)));
        constexpr int peaks = 6;
        for (int i = 0; i <= peaks; ++i) {
            const double height = (i % 2 == 0 ? 0.12 : 0.3) + 0.03 * s.variation.next(5);
            ridge.lineTo(s.x(double(i) / peaks), s.y(0.72 + 0.16 * range - height));
        }
        ridge.lineTo(s.x(1), s.y(1));
        ridge.closeSubpath();
        s.painter.fillPath(ridge, QColor(8, 20, 30, 90 + 40 * range));
    }
}

void paintEqualizer(Scenery &s)
{
    constexpr int bars = 18;
    for (int i = 0; i < bars; ++i) {
        const double height = 0.15 + 0.07 * s.variation.next(10);
        s.painter.setBrush(s.shade(90 + 8 * i));
        const double width = s.rect.width() / bars;
        s.painter.drawRoundedRect(QRectF(s.x(double(i) / bars) + width * 0.2,
                                         s.rect.bottom() - height * s.rect.height(), width * 0.6,
                                         height * s.rect.height() + width),
                                  width * 0.3, width * 0.3);
    }
}

void paintOrbits(Scenery &s)
{
    const QPointF center(s.x(0.66), s.y(0.52));
    s.painter.setBrush(Qt::NoBrush);
    for (int i = 1; i <= 4; ++i) {
        s.painter.setPen(QPen(s.shade(130), s.rect.height() / 90));
        const double r = 0.17 * i * s.rect.height();
        s.painter.drawEllipse(center, r * 1.5, r * 0.8);
    }
    s.painter.setPen(Qt::NoPen);
    s.painter.setBrush(s.shade(245));
    s.painter.drawEllipse(center, 0.1 * s.rect.height(), 0.1 * s.rect.height());
    s.painter.setBrush(s.shade(200));
    for (int i = 0; i < 3; ++i) {
        const double cy = 0.25 + 0.1 * s.variation.next(6);
        const double cx = 0.4 + 0.1 * s.variation.next(6);
        s.disc(cx, cy, 0.035);
    }
}

void paintDishes(Scenery &s)
{
    for (int i = 0; i < 3; ++i) {
        s.painter.setBrush(s.shade(60 + 60 * i));
        s.disc(0.66, 0.6, 0.46 - 0.12 * i);
    }
    s.painter.setBrush(Qt::NoBrush);
    s.painter.setPen(QPen(s.shade(170), s.rect.height() / 34, Qt::SolidLine, Qt::RoundCap));
    for (int i = 0; i < 3; ++i) {
        QPainterPath steam(QPointF(s.x(0.58 + 0.08 * i), s.y(0.42)));
        const double bend = 0.03 + 0.01 * s.variation.next(4);
        steam.cubicTo(s.x(0.58 + 0.08 * i + bend), s.y(0.3), s.x(0.58 + 0.08 * i - bend), s.y(0.22),
                      s.x(0.58 + 0.08 * i), s.y(0.08));
        s.painter.drawPath(steam);
    }
    s.painter.setPen(Qt::NoPen);
}

void paintCity(Scenery &s)
{
    s.painter.setBrush(s.shade(200));
    s.disc(0.78, 0.26, 0.1);
    constexpr int houses = 9;
    for (int i = 0; i < houses; ++i) {
        const double height = 0.3 + 0.05 * s.variation.next(9);
        const double width = 1.0 / houses;
        s.painter.setBrush(QColor(10, 12, 30, 150));
        s.painter.drawRect(QRectF(s.x(i * width), s.y(1 - height), s.rect.width() * width * 0.94,
                                  s.rect.height() * height));
        s.painter.setBrush(QColor(255, 222, 150, 200));
        for (int window = 0; window < 6; ++window) {
            if (s.variation.next(3) == 0)
                continue;
            const int column = window % 2;
            const int row = window / 2;
            s.painter.drawRect(QRectF(s.x((i + 0.2 + 0.36 * column) * width),
                                      s.y(1 - height + 0.07 + 0.11 * row),
                                      s.rect.width() * width * 0.2, s.rect.height() * 0.05));
        }
    }
}

void paintSpotlights(Scenery &s)
{
    for (int i = 0; i < 5; ++i) {
        const double top = 0.14 + 0.19 * i;
        const double foot = 0.1 * s.variation.next(11);
        QLinearGradient beam(s.x(top), s.y(0), s.x(foot), s.y(1));
        beam.setColorAt(0, s.shade(170));
        beam.setColorAt(1, s.shade(10));
        QPainterPath cone(QPointF(s.x(top), s.y(-0.1)));
        cone.lineTo(s.x(foot - 0.13), s.y(1));
        cone.lineTo(s.x(foot + 0.13), s.y(1));
        cone.closeSubpath();
        s.painter.fillPath(cone, beam);
    }
}

struct Genre
{
    // Prefixes of the category names of this genre, in English and Russian.
    std::array<QLatin1StringView, 2> latinStems;
    std::array<QStringView, 2> stems;
    int hue;
    Motif motif;
};

const std::array genres{
    Genre{{"news"_L1, "current"_L1}, {u"новост", u"информ"}, 212, paintGlobe},
    Genre{{"movie"_L1, "film"_L1}, {u"кино", u"фильм"}, 18, paintFilm},
    Genre{{"sport"_L1, "race"_L1}, {u"спорт", u"матч"}, 140, paintStadium},
    Genre{{"child"_L1, "kid"_L1}, {u"дет", u"мульт"}, 265, paintBalloons},
    Genre{{"nature"_L1, "travel"_L1}, {u"природ", u"путешеств"}, 168, paintMountains},
    Genre{{"music"_L1, "concert"_L1}, {u"музык", u"концерт"}, 312, paintEqualizer},
    Genre{{"science"_L1, "docu"_L1}, {u"наук", u"познават"}, 232, paintOrbits},
    Genre{{"cook"_L1, "food"_L1}, {u"кулин", u"еда"}, 30, paintDishes},
    Genre{{"series"_L1, "drama"_L1}, {u"сериал", u"драма"}, 350, paintCity},
    Genre{{"show"_L1, "entertain"_L1}, {u"шоу", u"развле"}, 288, paintSpotlights},
};

const Genre &genreOf(const QString &category, Variation &variation)
{
    for (const Genre &genre : genres) {
        for (const QLatin1StringView stem : genre.latinStems) {
            if (category.startsWith(stem, Qt::CaseInsensitive))
                return genre;
        }
        for (const QStringView stem : genre.stems) {
            if (category.startsWith(stem, Qt::CaseInsensitive))
                return genre;
        }
    }
    return genres[static_cast<std::size_t>(variation.next(int(genres.size())))];
}

QString initial(const QString &text)
{
    for (const QChar c : text) {
        if (c.isLetterOrNumber())
            return c.toUpper();
    }
    return u"•"_s;
}

} // namespace

void paintPosterArt(QPainter &painter, const QRect &rect, const QString &title,
                    const QString &category)
{
    Variation variation(title);
    const Genre &genre = genreOf(category, variation);
    constexpr int fullTurn = 360;
    const int hue = (genre.hue + variation.next(28) + fullTurn - 14) % fullTurn;

    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipRect(rect);

    QLinearGradient sky(rect.topLeft(), rect.bottomRight());
    sky.setColorAt(0, QColor::fromHsv(hue, 170, 96));
    sky.setColorAt(0.6, QColor::fromHsv((hue + 12) % fullTurn, 165, 150));
    sky.setColorAt(1, QColor::fromHsv((hue + 30) % fullTurn, 150, 190));
    painter.fillRect(rect, sky);

    painter.setPen(Qt::NoPen);
    Scenery scenery{.painter = painter,
                    .rect = rect,
                    .variation = variation,
                    .light = QColor::fromHsv((hue + 20) % fullTurn, 60, 255)};
    genre.motif(scenery);
    painter.restore();
}

void paintPosterInitial(QPainter &painter, const QRect &rect, const QString &title)
{
    painter.save();
    painter.setFont(theme::font(rect.height() * 5 / 8, QFont::Bold));
    painter.setPen(QColor(255, 255, 255, 70));
    painter.drawText(rect.adjusted(rect.height() / 10, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
                     initial(title));
    painter.restore();
}

void paintChannelBadge(QPainter &painter, const QRect &rect, const QString &name)
{
    Variation variation(name);
    const int hue = variation.next(360);

    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient disc(rect.topLeft(), rect.bottomLeft());
    disc.setColorAt(0, QColor::fromHsv(hue, 140, 205));
    disc.setColorAt(1, QColor::fromHsv(hue, 170, 140));
    painter.setPen(Qt::NoPen);
    painter.setBrush(disc);
    painter.drawEllipse(rect);
    painter.setFont(theme::font(rect.height() / 2, QFont::Bold));
    painter.setPen(theme::text);
    painter.drawText(rect, Qt::AlignCenter, initial(name));
    painter.restore();
}

} // namespace tvguide
