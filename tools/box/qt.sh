# Qt for the box: Core, Gui and Test with what the library, the tests and the example use; fonts,
# pictures and patterns by the copies that Qt brings, so that nothing else is needed on the box.

readonly box_qt_options=(
    -DCMAKE_BUILD_TYPE=Release
    -DQT_BUILD_TESTS=OFF
    -DQT_BUILD_EXAMPLES=OFF
    -DINPUT_freetype=qt
    -DINPUT_harfbuzz=qt
    -DINPUT_libpng=qt
    -DINPUT_pcre=qt
    -DINPUT_opengl=no
    -DFEATURE_system_zlib=OFF
    -DFEATURE_linuxfb=ON
    -DFEATURE_testlib=ON
    # pkg-config would find libraries of the machine that builds
    "-DFEATURE_"{pkg_config,libudev,mtdev}"=OFF"
    "-DFEATURE_"{network,sql,widgets,dbus,xml,concurrent,printsupport,pdf}"=OFF"
    "-DFEATURE_"{glib,icu,xcb,fontconfig,vulkan}"=OFF"
    "-DFEATURE_"{gif,ico,jpeg,qmake}"=OFF"
)

# Sets box_qt: the folder in which Qt for the box is installed. The root's Qt brings the tools.
box_require_qt()
{
    # Where Debian keeps CMake's files depends on the processor of the machine that builds.
    local libraries
    libraries=$(root_run qmake6 -query QT_INSTALL_LIBS)
    crossbuild_require Qt crossbuild_fetch_package qt6-base qt6-base-dev \
        -DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR="$libraries/cmake" -- "${box_qt_options[@]}"
    box_qt=$crossbuild_installed
}
