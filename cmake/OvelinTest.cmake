# ovelin_add_test(<name> [SOURCES file...] [LIBRARIES library...])
#
# Adds the test program tst_<name>, made of tst_<name>.cpp and the SOURCES, linked with ovelin and the
# LIBRARIES. The test runs without a display, and in a cross build under CMAKE_CROSSCOMPILING_EMULATOR. The
# library does not export its private functions: a test of a private function has its .cpp among the SOURCES.
function(ovelin_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LIBRARIES")

    set(target tst_${name})
    qt_add_executable(${target} ${target}.cpp ${arg_SOURCES})
    target_include_directories(${target} PRIVATE
        ${PROJECT_SOURCE_DIR}/src
        ${PROJECT_SOURCE_DIR}/tests
    )
    target_compile_definitions(${target} PRIVATE QT_NO_KEYWORDS)
    target_link_libraries(${target} PRIVATE Ovelin::Ovelin Qt6::Test ${arg_LIBRARIES})

    add_test(NAME ${target} COMMAND ${target})
    set_tests_properties(${target} PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
endfunction()

# ovelin_add_property_test(<name> [SOURCES file...] [LIBRARIES library...])
#
# Calls ovelin_add_test() for a test that uses RapidCheck, if RapidCheck was found.
function(ovelin_add_property_test name)
    if(rapidcheck_FOUND)
        ovelin_add_test(${name} ${ARGN} LIBRARIES rapidcheck)
    endif()
endfunction()
