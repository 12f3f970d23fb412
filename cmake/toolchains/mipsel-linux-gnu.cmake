# The device: MIPS32 release 2, little endian, hard float, glibc, by Debian's cross compiler. QEMU's user
# emulation runs the programs.
#
#   OVELIN_BOX_QT   the folder in which Qt for the device is installed (cache entry or environment)
#
# The SDK of a vendor has a toolchain file of its own: see docs/box.md.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR mipsel)

set(box_triplet mipsel-linux-gnu)
set(CMAKE_C_COMPILER ${box_triplet}-gcc)
set(CMAKE_CXX_COMPILER ${box_triplet}-g++)
# Qt for the device has no fontconfig: it takes fonts from one folder.
set(CMAKE_CROSSCOMPILING_EMULATOR
    qemu-mipsel -L /usr/${box_triplet} -E QT_QPA_FONTDIR=/usr/share/fonts/truetype/dejavu
)

set(CMAKE_FIND_ROOT_PATH /usr/${box_triplet})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The build of Qt itself also uses this file, without OVELIN_BOX_QT.
if(NOT OVELIN_BOX_QT)
    set(OVELIN_BOX_QT $ENV{OVELIN_BOX_QT})
endif()
if(OVELIN_BOX_QT)
    list(PREPEND CMAKE_FIND_ROOT_PATH ${OVELIN_BOX_QT})
    list(APPEND CMAKE_PREFIX_PATH ${OVELIN_BOX_QT})
endif()
# moc and rcc run on the building machine: they come from its own Qt, which has the same version.
set(QT_HOST_PATH /usr CACHE PATH "Qt of the building machine")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES OVELIN_BOX_QT)
