#ifndef TVGUIDE_TEXTBLOCK_H
#define TVGUIDE_TEXTBLOCK_H

#include <ovelin/textrenderer.h>

#include <QColor>
#include <QRect>
#include <QStringList>

QT_BEGIN_NAMESPACE
class QPainter;
QT_END_NAMESPACE

namespace tvguide {

struct TextStyle
{
    int pixelSize;
    QFont::Weight weight = QFont::Normal;
    QColor color;
    Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignTop;
    int maxLines = 8;
};

// A text in a rectangle of the screen: as many lines as fit, broken and hyphenated, the last one
// elided. Putting it elsewhere without changing its width costs no new layout.
class TextBlock
{
public:
    void show(const QString &text, const TextStyle &style, const QRect &box);
    void draw(QPainter &painter) const;

    QString text() const { return m_renderer.text(); }
    QRect box() const { return m_box; }
    bool isElided() const { return m_renderer.isTextElided(); }
    bool isShown() const { return m_isShown; }
    // The lines as they are seen.
    QStringList displayedLines() const;

private:
    void setStyle(const TextStyle &style);
    void place(const QRect &box);

    ovelin::TextRenderer m_renderer;
    QColor m_color;
    int m_maxLines = 1;
    QRect m_box;
    bool m_isShown = false;
};

} // namespace tvguide

#endif
