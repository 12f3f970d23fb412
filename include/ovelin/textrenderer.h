#ifndef OVELIN_TEXTRENDERER_H
#define OVELIN_TEXTRENDERER_H

#include <ovelin/ovelinglobal.h>

#include <QtCore/qmargins.h>
#include <QtCore/qnamespace.h>
#include <QtCore/qpoint.h>
#include <QtCore/qrect.h>
#include <QtCore/qsize.h>
#include <QtCore/qstring.h>
#include <QtCore/qstringlist.h>
#include <QtGui/qfont.h>

#include <memory>

QT_BEGIN_NAMESPACE
class QFontMetricsF;
class QPainter;
class QPen;
QT_END_NAMESPACE

namespace ovelin {

struct TextRendererPrivate;

// A text that is laid out once and painted with one call. All lengths, and the size of the font, are in
// device pixels. Guide: "How a text is laid out".
class OVELIN_EXPORT TextRenderer
{
public:
    TextRenderer();
    TextRenderer(const TextRenderer &other);
    TextRenderer &operator=(const TextRenderer &) = delete;
    virtual ~TextRenderer();

    static int fineTextWidth(const QString &text, const QFontMetricsF &metrics);

    QString text() const;
    void setText(const QString &text);

    QFont textFont() const;
    void setTextFont(const QFont &font);

    Qt::TextFormat textFormat() const;
    void setTextFormat(Qt::TextFormat format);

    Qt::Alignment textAlignment() const;
    void setTextAlignment(Qt::Alignment alignment);

    int textWidth() const;
    void setTextWidth(int width);

    int maxTextWidth() const;
    void setMaxTextWidth(int width);

    void setAvailableHeight(int height);

    int maxLineCount() const;
    void setMaxLineCount(int count);

    bool hyphenationEnabled() const;
    void setHyphenationEnabled(bool enabled);

    QPoint textTopLeft() const;
    void setTextTopLeft(const QPoint &topLeft);
    QPoint alignedTextTopLeft() const;

    bool isValid() const;
    bool isNeedRelayout() const;
    bool isTextElided() const;
    QString displayText() const;
    QStringList textLines() const;

    void move(const QPoint &topLeft);
    void relayout();

    QSize boundingSize(const QMargins &margins = {});
    QSize boundingSize(const QMargins &margins = {}) const;
    QRect boundingRect() const;
    QRect geometry() const;

    void draw(QPainter &painter) const;

private:
    std::unique_ptr<TextRendererPrivate> d;
};

OVELIN_EXPORT void drawTextRenderer(QPainter &painter, const TextRenderer &renderer,
                                    const QPen &pen);

} // namespace ovelin

#endif
