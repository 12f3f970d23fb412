# cmake -D READELF=... -D LIBRARY=... -D SONAME=... -D FILE_NAME=... -P checkdependencies.cmake
#
# Fails unless the library needs Qt Core, Qt Gui and the run time of C++ and C, and nothing else, and
# has the given names.

cmake_minimum_required(VERSION 3.24)

set(required libQt6Core.so.6 libQt6Gui.so.6)
set(allowed
    # the run time of C++, from GCC or LLVM
    "libstdc\\+\\+\\.so\\.6"
    "libc\\+\\+(abi)?\\.so\\.1"
    "libgcc_s\\.so\\.1"
    "libunwind\\.so\\.1"
    # the run time of C, from GNU or musl
    "libc\\.so\\.6"
    "libm\\.so\\.6"
    "libc\\.musl-.*\\.so\\.1"
    "ld-linux.*\\.so\\.[0-9]"
    "ld\\.so\\.1"
    # a build with sanitizers
    "lib(asan|ubsan|lsan|tsan)\\.so\\.[0-9]+"
    "libclang_rt\\.asan-.*\\.so"
)

execute_process(
    COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C ${READELF} --dynamic --wide ${LIBRARY}
    OUTPUT_VARIABLE dynamic_section
    COMMAND_ERROR_IS_FATAL ANY
)

string(REGEX MATCHALL "\\(NEEDED\\)[^\n]*" entries "${dynamic_section}")
list(TRANSFORM entries REPLACE ".*\\[(.*)\\].*" "\\1" OUTPUT_VARIABLE needed)

set(faults "")
foreach(library IN LISTS required)
    if(NOT library IN_LIST needed)
        list(APPEND faults "does not need ${library}")
    endif()
endforeach()
list(JOIN allowed "|" any_allowed)
foreach(library IN LISTS needed)
    if(NOT library IN_LIST required AND NOT library MATCHES "^(${any_allowed})$")
        list(APPEND faults "needs ${library}")
    endif()
endforeach()

string(REGEX MATCH "\\(SONAME\\)[^\n]*\\[([^]]*)\\]" soname_entry "${dynamic_section}")
if(NOT CMAKE_MATCH_1 STREQUAL SONAME)
    list(APPEND faults "is called ${CMAKE_MATCH_1}, not ${SONAME}")
endif()
cmake_path(GET LIBRARY FILENAME file_name)
if(NOT file_name STREQUAL FILE_NAME)
    list(APPEND faults "has the file name ${file_name}, not ${FILE_NAME}")
endif()

if(faults)
    list(JOIN faults "\n  " faults)
    message(FATAL_ERROR "${LIBRARY}\n  ${faults}")
endif()
list(JOIN needed ", " needed)
message(STATUS "${SONAME} needs ${needed}")
