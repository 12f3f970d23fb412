# Follows the README: installs ovelin from the build tree TREE, takes main.cpp and CMakeLists.txt from the
# README, builds the program and runs it.

include(${CMAKE_CURRENT_LIST_DIR}/consumer.cmake)

# extract(<language> <file>)
#
# Writes the README's first sample in a language to a file.
function(extract language file)
    set(begin "```${language}\n")
    string(FIND "${readme}" "${begin}" start)
    if(start EQUAL -1)
        message(FATAL_ERROR "The README has no sample in ${language}")
    endif()
    string(LENGTH "${begin}" length)
    math(EXPR start "${start} + ${length}")
    string(SUBSTRING "${readme}" ${start} -1 rest)
    string(FIND "${rest}" "```" end)
    string(SUBSTRING "${rest}" 0 ${end} sample)
    file(WRITE ${file} "${sample}")
endfunction()

file(READ ${OVELIN_SOURCE}/README.md readme)
extract(cpp ${FOLDER}/main.cpp)
extract(cmake ${FOLDER}/CMakeLists.txt)

execute(${CMAKE_COMMAND} --install ${TREE} --prefix ${FOLDER}/prefix)
build_consumer(${FOLDER} ${FOLDER}/build ${FOLDER}/prefix)
execute_process(
    COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} ${FOLDER}/build/hello
    WORKING_DIRECTORY ${FOLDER}
    COMMAND_ERROR_IS_FATAL ANY
)
if(NOT EXISTS ${FOLDER}/hello.png)
    message(FATAL_ERROR "The README's program drew nothing")
endif()
