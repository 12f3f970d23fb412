# cmake -D NM=... -D OBJECTS=...|... -P checkstaticinit.cmake
#
# Fails if an object outside of the text module has a static initialiser. Fails also if the text module has
# none: then the compiler gives static initialisers other names than this test expects.

cmake_minimum_required(VERSION 3.24)

string(REPLACE "|" ";" objects "${OBJECTS}")
set(faults "")
set(text_has_one FALSE)
foreach(object IN LISTS objects)
    execute_process(
        COMMAND ${NM} --defined-only ${object}
        OUTPUT_VARIABLE symbols
        COMMAND_ERROR_IS_FATAL ANY
    )
    # Initialisers of sanitizers and of coverage have names with "_sub_I_" or "asan.", without "_GLOBAL_".
    if(NOT symbols MATCHES " _GLOBAL__sub_I_")
        continue()
    endif()
    if(object MATCHES "/text/")
        set(text_has_one TRUE)
    else()
        list(APPEND faults "${object} has a static initialiser.")
    endif()
endforeach()
if(NOT text_has_one)
    list(APPEND faults "No object of the text module has a static initialiser.")
endif()

if(faults)
    list(JOIN faults "\n  " faults)
    message(FATAL_ERROR "${faults}")
endif()
