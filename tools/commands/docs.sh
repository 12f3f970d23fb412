# docs
# Build the reference into build/docs: HTML, and a help file for Qt Creator and Assistant.
#
# A QDoc warning or a broken link is an error. The library draws the pictures. The first page is
# build/docs/html/index.html. Qt Creator takes build/docs/ovelin.qch under Preferences, Help,
# Documentation.

documentation=$repository/build/docs

(($# == 0)) || fail "./dev docs takes no arguments."
use_workshop
build_tree_as docs release -DOVELIN_BUILD_DOCS=ON -DOVELIN_BUILD_TESTS=OFF -DOVELIN_BUILD_EXAMPLES=OFF -- ovelin_docs

rm --recursive --force "$documentation"
mkdir --parents "$documentation"
cp --recursive "$tree/docs/html" "$tree/docs/ovelin.qch" "$documentation"
say "The reference is $(short_path "$documentation")/html/index.html"
