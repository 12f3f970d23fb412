# Installs ovelin from the build tree TREE. CONSUMER, "cmake" or "pkgconfig", builds examples/card with the
# installed files. Then the files are moved, and CONSUMER builds the example again.

include(${CMAKE_CURRENT_LIST_DIR}/consumer.cmake)

# Fails if an installed file contains the path of the prefix, the sources or the build tree.
function(check_relocatable prefix)
    file(GLOB_RECURSE files LIST_DIRECTORIES FALSE "${prefix}/*")
    if(NOT files)
        message(FATAL_ERROR "Nothing was installed in ${prefix}")
    endif()
    foreach(file IN LISTS files)
        file(READ ${file} content HEX)
        foreach(path ${prefix} ${OVELIN_SOURCE} ${TREE})
            string(HEX "${path}" path_bytes)
            string(FIND "${content}" "${path_bytes}" place)
            if(NOT place EQUAL -1)
                message(FATAL_ERROR "${file} names ${path}: it cannot be moved")
            endif()
        endforeach()
    endforeach()
endfunction()

function(consume_by_cmake prefix tree)
    build_consumer(${OVELIN_SOURCE}/examples/card ${tree} ${prefix})
    run_card(${tree}/card)
endfunction()

function(consume_by_pkgconfig prefix tree)
    set(folders "${prefix}/${LIBRARY_FOLDER}/pkgconfig:${QT_LIBRARY_FOLDER}/pkgconfig")
    execute_process(
        COMMAND ${CMAKE_COMMAND} -E env "PKG_CONFIG_PATH=${folders}"
            ${PKG_CONFIG} --cflags --libs ovelin
        OUTPUT_VARIABLE options
        COMMAND_ERROR_IS_FATAL ANY
    )
    separate_arguments(options UNIX_COMMAND "${options}")
    # This build's warning flags are left out: Qt's headers would cause warnings.
    separate_arguments(flags UNIX_COMMAND "${CMAKE_CXX_FLAGS}")
    list(FILTER flags EXCLUDE REGEX "^-W")
    file(MAKE_DIRECTORY ${tree})
    # Qt requires position independent code.
    execute(${CMAKE_CXX_COMPILER} ${flags} -std=c++20 -fPIC ${OVELIN_SOURCE}/examples/card/main.cpp
        ${options} "-Wl,-rpath,${prefix}/${LIBRARY_FOLDER}:${QT_LIBRARY_FOLDER}" -o ${tree}/card
    )
    run_card(${tree}/card)
endfunction()

set(prefix "${FOLDER}/a prefix")
set(new_prefix "${FOLDER}/another prefix")

execute(${CMAKE_COMMAND} --install ${TREE} --strip --prefix ${prefix})
# Instrumented code contains the paths of its sources.
if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize|-fprofile|--coverage")
    check_relocatable(${prefix})
endif()
cmake_language(CALL consume_by_${CONSUMER} ${prefix} ${FOLDER}/first)

file(RENAME ${prefix} ${new_prefix})
cmake_language(CALL consume_by_${CONSUMER} ${new_prefix} ${FOLDER}/second)
