# RapidCheck for the device: the property tests are linked with RapidCheck.

# Sets box_rapidcheck_cmake, the folder of RapidCheck's CMake files.
box_require_rapidcheck()
{
    crossbuild_require RapidCheck crossbuild_fetch_original rapidcheck librapidcheck-dev -- \
        -DCMAKE_BUILD_TYPE=Release
    box_rapidcheck_cmake=$crossbuild_installed/share/rapidcheck/cmake
}
