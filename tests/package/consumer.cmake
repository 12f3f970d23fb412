# What the tests of the package share. The script that includes it is run with
#
#   -D SETTINGS=file   how this build was made, see settings.cmake.in
#   -D FOLDER=folder   where to work; emptied first

include(${SETTINGS})

file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})

# What is expected of the example, which the consumers are.
set(expected_output "card.png: 1 resource, allowed, text elided\n")

function(execute)
    execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# build_project(<source> <tree> [-D...])
#
# Configures a project as this build was, and builds it.
function(build_project source tree)
    execute(${CMAKE_COMMAND} -C ${SETTINGS} -G ${GENERATOR} -S ${source} -B ${tree} ${ARGN})
    execute(${CMAKE_COMMAND} --build ${tree} --config ${CMAKE_BUILD_TYPE})
endfunction()

# build_consumer(<source> <tree> <prefix>)
#
# Builds a project that is to find the ovelin in the prefix.
function(build_consumer source tree prefix)
    set(arguments "-DCMAKE_PREFIX_PATH=${prefix};${CMAKE_PREFIX_PATH}")
    if(CMAKE_TOOLCHAIN_FILE)
        # A tool chain has packages looked for in its own folders alone.
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
# Fails unless the example says and draws what it should.
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
