# Qt for the device: Core, Gui and Test, with the features that the library, the tests and the example use.
# Qt's own copies of FreeType, HarfBuzz, libpng and PCRE are built in: the device needs no other library.

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
    # pkg-config would find libraries of the building machine.
    "-DFEATURE_"{pkg_config,libudev,mtdev}"=OFF"
    "-DFEATURE_"{network,sql,widgets,dbus,xml,concurrent,printsupport,pdf}"=OFF"
    "-DFEATURE_"{glib,icu,xcb,fontconfig,vulkan}"=OFF"
    "-DFEATURE_"{gif,ico,jpeg,qmake}"=OFF"
)

# Sets box_qt, the folder in which Qt for the device is installed. Qt's tools (moc, rcc) are those of the root.
box_require_qt()
{
    # Debian's folder of CMake files depends on the processor of the building machine.
    local libraries
    libraries=$(root_run qmake6 -query QT_INSTALL_LIBS)
    crossbuild_require Qt crossbuild_fetch_package qt6-base qt6-base-dev \
        -DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR="$libraries/cmake" -- "${box_qt_options[@]}"
    box_qt=$crossbuild_installed
}
