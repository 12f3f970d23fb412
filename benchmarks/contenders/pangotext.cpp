#include "contenders/pangotext.h"

#include <pango/pangocairo.h>

namespace ovelin::benchmarks {

namespace {

template<typename Object>
std::shared_ptr<Object> shared(Object *object)
{
    return {object, g_object_unref};
}

int toPango(double pixels)
{
    return int(pixels * PANGO_SCALE);
}

void setFont(PangoLayout *layout, const QFont &font)
{
    PangoFontDescription *description = pango_font_description_new();
    pango_font_description_set_family(description, font.family().toUtf8().constData());
    pango_font_description_set_absolute_size(description, toPango(font.pixelSize()));
    pango_layout_set_font_description(layout, description);
    pango_font_description_free(description);
}

void setLetterSpacing(PangoLayout *layout, double spacing)
{
    PangoAttrList *attributes = pango_attr_list_new();
    pango_attr_list_insert(attributes, pango_attr_letter_spacing_new(toPango(spacing)));
    pango_layout_set_attributes(layout, attributes);
    pango_attr_list_unref(attributes);
}

std::shared_ptr<cairo_t> makePicture()
{
    constexpr int width = 1280;
    constexpr int height = 720;
    cairo_surface_t *surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
    std::shared_ptr<cairo_t> picture(cairo_create(surface), cairo_destroy);
    cairo_surface_destroy(surface); // the context still holds it
    cairo_set_source_rgb(picture.get(), 1, 1, 1);
    return picture;
}

} // namespace

PangoText::PangoText(const QFont &font, int width, int maxLineCount)
{
    const auto context = shared(pango_font_map_create_context(pango_cairo_font_map_get_default()));
    m_layout = shared(pango_layout_new(context.get()));
    setFont(m_layout.get(), font);
    if (font.letterSpacing() != 0)
        setLetterSpacing(m_layout.get(), font.letterSpacing());

    pango_layout_set_width(m_layout.get(), toPango(width));
    pango_layout_set_wrap(m_layout.get(), PANGO_WRAP_WORD_CHAR);
    // A negative height is a number of lines.
    pango_layout_set_height(m_layout.get(), -maxLineCount);
    pango_layout_set_ellipsize(m_layout.get(), PANGO_ELLIPSIZE_END);
}

void PangoText::layOut(const QByteArray &utf8)
{
    pango_layout_set_text(m_layout.get(), utf8.constData(), int(utf8.size()));
    // The function lays the text out before it returns the size.
    pango_layout_get_pixel_size(m_layout.get(), nullptr, nullptr);
}

void PangoText::draw(const QPoint &place)
{
    static const std::shared_ptr<cairo_t> picture = makePicture();
    cairo_move_to(picture.get(), place.x(), place.y());
    pango_cairo_show_layout(picture.get(), m_layout.get());
}

} // namespace ovelin::benchmarks
