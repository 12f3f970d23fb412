# Builds the documentation, and draws its plots.

readonly plots_data=$repository/docs/measured/speed.csv

# Sets tree.
# docs_build TARGET
docs_build()
{
    build_tree_as docs release -DOVELIN_BUILD_DOCS=ON -DOVELIN_BUILD_TESTS=OFF -DOVELIN_BUILD_EXAMPLES=OFF -- "$1"
}

# Draws the plots into docs/images, where the repository's readers see them.
docs_draw_plots()
{
    docs_build ovelin_plots
    inside env QT_QPA_PLATFORM=offscreen "$tree/docs/ovelin_plots" "$plots_data" "$repository/docs/images" \
        || fail "The plots were not drawn; the reason is above." \
            "If measured times are missing or too old, run: ./dev bench --record"
    git -C "$repository" diff --stat -- docs/images docs/measured >&2
}
