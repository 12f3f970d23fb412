# Builds examples/card in a project that has ovelin as a subproject. METHOD is "add_subdirectory" or
# "FetchContent".

include(${CMAKE_CURRENT_LIST_DIR}/consumer.cmake)

build_project(${CMAKE_CURRENT_LIST_DIR}/subproject ${FOLDER}/tree -D METHOD=${METHOD})
run_card(${FOLDER}/tree/card)

execute(${CMAKE_COMMAND} --install ${FOLDER}/tree --prefix ${FOLDER}/prefix)
if(EXISTS ${FOLDER}/prefix)
    message(FATAL_ERROR "Inside another project, ovelin must not install itself")
endif()
