# RapidCheck for the box: the property tests are linked with it.

# Sets box_rapidcheck_cmake: the folder in which CMake finds it.
box_require_rapidcheck()
{
    crossbuild_require RapidCheck crossbuild_fetch_original rapidcheck librapidcheck-dev -- \
        -DCMAKE_BUILD_TYPE=Release
    box_rapidcheck_cmake=$crossbuild_installed/share/rapidcheck/cmake
}
