#ifndef OVELIN_BENCHMARKS_PANGOTEXT_H
#define OVELIN_BENCHMARKS_PANGOTEXT_H

#include <QByteArray>
#include <QFont>
#include <QPoint>

#include <memory>

struct _PangoLayout; // NOLINT(bugprone-reserved-identifier) Pango's name

namespace ovelin::benchmarks {

// Pango's layout with a line limit and an ellipsis at the end.
class PangoText
{
public:
    PangoText(const QFont &font, int width, int maxLineCount);

    void layOut(const QByteArray &utf8);

    // Paints in white, into one picture for all texts.
    void draw(const QPoint &place);

private:
    std::shared_ptr<_PangoLayout> m_layout;
};

} // namespace ovelin::benchmarks

#endif
