#ifndef RECIPES_LANGUAGES_H
#define RECIPES_LANGUAGES_H

#include <ovelin/textrenderer.h>

#include <QLocale>

namespace recipes {

//! [language]
// Shows a text in a language such as "ru" or "en".
inline void setText(ovelin::TextRenderer &renderer, const QString &text, const QString &language)
{
    const QLocale locale(language);
    const bool isRightToLeft = locale.textDirection() == Qt::RightToLeft;

    renderer.setTextFormat(Qt::PlainText);
    renderer.setHyphenationEnabled(locale.language() == QLocale::Russian);
    renderer.setTextAlignment(isRightToLeft ? Qt::AlignRight : Qt::AlignLeft);
    renderer.setText(text);
    renderer.relayout();
}
//! [language]

} // namespace recipes

#endif
