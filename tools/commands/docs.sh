# docs
# Build the reference into build/docs: HTML, and a help file for Qt Creator and Assistant.
#
# A QDoc warning or a broken link is an error. The library draws the pictures. The first page is
# build/docs/html/index.html. Qt Creator takes build/docs/ovelin.qch under Preferences, Help,
# Documentation.
#
#   ./dev docs --plots    draw only the plots of the speed, from docs/measured/speed.csv into docs/images

source "$repository/tools/docs/build.sh"

documentation=$repository/build/docs

use_workshop
case $* in
"") ;;
--plots)
    docs_draw_plots
    exit
    ;;
*) fail "./dev docs has no option \"$*\"." "\"./dev help docs\" describes the command." ;;
esac
docs_build ovelin_docs

rm --recursive --force "$documentation"
mkdir --parents "$documentation"
cp --recursive "$tree/docs/html" "$tree/docs/ovelin.qch" "$documentation"
say "The reference is $(short_path "$documentation")/html/index.html"
