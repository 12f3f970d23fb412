# Functions for the tests of the package. The script that includes this file is run with
#
#   -D SETTINGS=file   the settings of this build, see settings.cmake.in
#   -D FOLDER=folder   the folder to work in, which is emptied first

include(${SETTINGS})

file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})

# The output of examples/card.
set(expected_output "card.png: 1 resource, allowed, text elided\n")

function(execute)
    execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# build_project(<source> <tree> [-D...])
#
# Configures a project with the settings of this build, and builds it.
function(build_project source tree)
    execute(${CMAKE_COMMAND} -C ${SETTINGS} -G ${GENERATOR} -S ${source} -B ${tree} ${ARGN})
    execute(${CMAKE_COMMAND} --build ${tree} --config ${CMAKE_BUILD_TYPE})
endfunction()

# build_consumer(<source> <tree> <prefix>)
#
# Builds a project. Fails unless CMake finds ovelin in the prefix.
function(build_consumer source tree prefix)
    set(arguments "-DCMAKE_PREFIX_PATH=${prefix};${CMAKE_PREFIX_PATH}")
    if(CMAKE_TOOLCHAIN_FILE)
        # With a toolchain file CMake looks for packages only in the folders of the toolchain.
        set(arguments "-DOvelin_DIR=${prefix}/${LIBRARY_FOLDER}/cmake/Ovelin")
    endif()
    build_project(${source} ${tree} "${arguments}")

    file(STRINGS ${tree}/CMakeCache.txt found REGEX "^Ovelin_DIR:")
    string(FIND "${found}" "${prefix}" place)
    if(place EQUAL -1)
        message(FATAL_ERROR "CMake found another ovelin: ${found}")
    endif()
endfunction()

# run_card(<program>)
#
# Fails unless the program prints the expected output and draws a picture.
function(run_card program)
    file(REMOVE ${FOLDER}/card.png)
    execute_process(
        COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} ${program}
        WORKING_DIRECTORY ${FOLDER}
        OUTPUT_VARIABLE output
        COMMAND_ERROR_IS_FATAL ANY
    )
    if(NOT output STREQUAL expected_output)
        message(FATAL_ERROR "${program} said \"${output}\", not \"${expected_output}\"")
    endif()
    if(NOT EXISTS ${FOLDER}/card.png)
        message(FATAL_ERROR "${program} drew nothing")
    endif()
endfunction()
