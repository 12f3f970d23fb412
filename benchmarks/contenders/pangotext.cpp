#include "contenders/pangotext.h"

#include <pango/pangocairo.h>

namespace ovelin::benchmarks {

namespace {

template<typename Object>
std::shared_ptr<Object> shared(Object *object)
{
    return {object, g_object_unref};
}

} // namespace

PangoText::PangoText(const char *fontFamily, int pixelSize, int width, int maxLineCount)
{
    const auto context = shared(pango_font_map_create_context(pango_cairo_font_map_get_default()));
    m_layout = shared(pango_layout_new(context.get()));

    PangoFontDescription *font = pango_font_description_new();
    pango_font_description_set_family(font, fontFamily);
    pango_font_description_set_absolute_size(font, pixelSize * PANGO_SCALE);
    pango_layout_set_font_description(m_layout.get(), font);
    pango_font_description_free(font);

    pango_layout_set_width(m_layout.get(), width * PANGO_SCALE);
    // A negative height is a number of lines.
    pango_layout_set_height(m_layout.get(), -maxLineCount);
    pango_layout_set_ellipsize(m_layout.get(), PANGO_ELLIPSIZE_END);
}

void PangoText::layOut(const QByteArray &utf8)
{
    pango_layout_set_text(m_layout.get(), utf8.constData(), int(utf8.size()));
    // Asking for the size lays everything out.
    pango_layout_get_pixel_size(m_layout.get(), nullptr, nullptr);
}

} // namespace ovelin::benchmarks
