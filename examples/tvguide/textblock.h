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

// A text in a rectangle of the screen: as many lines as fit, hyphenated, with an ellipsis if there
// are more. A text that moves without a change of its width is not laid out again.
class TextBlock
{
public:
    void show(const QString &text, const TextStyle &style, const QRect &box);
    void draw(QPainter &painter) const;

    QString text() const { return m_renderer.text(); }
    QRect box() const { return m_box; }
    bool isElided() const { return m_renderer.isTextElided(); }
    bool isShown() const { return m_isShown; }
    // Returns the height of the lines, which may be less than the height of the box.
    int height() const;
    // Returns the lines that the screen shows.
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
