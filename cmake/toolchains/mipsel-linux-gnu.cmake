# The box: MIPS32 release 2, little endian, hard float, glibc, by Debian's cross compiler. Its programs
# run under qemu's user emulation.
#
#   OVELIN_BOX_QT   the folder in which Qt for the box is installed (cache entry or environment)
#
# Vendors' compilers and Qt builds come with files of their own: see docs/box.md.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR mipsel)

set(box_triplet mipsel-linux-gnu)
set(CMAKE_C_COMPILER ${box_triplet}-gcc)
set(CMAKE_CXX_COMPILER ${box_triplet}-g++)
# Without fontconfig Qt takes its fonts from one folder.
set(CMAKE_CROSSCOMPILING_EMULATOR
    qemu-mipsel -L /usr/${box_triplet} -E QT_QPA_FONTDIR=/usr/share/fonts/truetype/dejavu
)

set(CMAKE_FIND_ROOT_PATH /usr/${box_triplet})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The build of Qt itself uses this file too, and has no Qt for the box yet.
if(NOT OVELIN_BOX_QT)
    set(OVELIN_BOX_QT $ENV{OVELIN_BOX_QT})
endif()
if(OVELIN_BOX_QT)
    list(PREPEND CMAKE_FIND_ROOT_PATH ${OVELIN_BOX_QT})
    list(APPEND CMAKE_PREFIX_PATH ${OVELIN_BOX_QT})
endif()
# moc and rcc run on the machine that builds: its own Qt, of the same version, has them.
set(QT_HOST_PATH /usr CACHE PATH "Qt of the machine that builds")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES OVELIN_BOX_QT)
