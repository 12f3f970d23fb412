# cmake -D NM=... -D LIBRARY=... -D RECORDED=... -P checkexports.cmake
#
# Fails unless the library exports the symbols that are recorded, and nothing else.

cmake_minimum_required(VERSION 3.24)

# CMake's lists cannot have the square brackets of ABI tags. Some demanglers write "> >", others ">>".
function(split_lines result text)
    string(REPLACE "[" "<" text "${text}")
    string(REPLACE "]" ">" text "${text}")
    string(REPLACE "> >" ">>" text "${text}")
    string(REGEX MATCHALL "[^\n]+" lines "${text}")
    set(${result} "${lines}" PARENT_SCOPE)
endfunction()

execute_process(
    COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C
        ${NM} --dynamic --defined-only --demangle ${LIBRARY}
    OUTPUT_VARIABLE symbols
    COMMAND_ERROR_IS_FATAL ANY
)
split_lines(symbols "${symbols}")
file(READ ${RECORDED} recorded)
split_lines(recorded "${recorded}")

set(ours "^(vtable for |typeinfo for |typeinfo name for )?ovelin::")
# Symbols of the linker and of the address sanitizer.
set(marks "^(__bss_start|_edata|_end|_init|_fini|_fbss|_fdata|_ftext)$|^__odr_asan")

set(exported "")
foreach(symbol IN LISTS symbols)
    # "address type name"
    string(REGEX REPLACE "^[0-9a-f]+ ([A-Za-z]) (.*)" "\\1" type "${symbol}")
    string(REGEX REPLACE "^[0-9a-f]+ ([A-Za-z]) (.*)" "\\2" name "${symbol}")
    # A build without optimisation has weak symbols for the inline functions and templates of Qt's headers
    # and of the standard library. They do not count.
    if(name MATCHES "${ours}" OR NOT (type MATCHES "[VWu]" OR name MATCHES "${marks}"))
        list(APPEND exported "${name}")
    endif()
endforeach()

# A constructor or destructor has several symbols with the same name, so each name is removed only once.
set(faults "")
foreach(name IN LISTS exported)
    list(FIND recorded "${name}" place)
    if(place EQUAL -1)
        list(APPEND faults "exports ${name}")
    else()
        list(REMOVE_AT recorded ${place})
    endif()
endforeach()
foreach(name IN LISTS recorded)
    list(APPEND faults "does not export ${name}")
endforeach()

if(faults)
    list(JOIN faults "\n  " faults)
    message(FATAL_ERROR "${LIBRARY}\n  ${faults}\nIf the change is intended: ./dev abi --update")
endif()
