# Builds a static ovelin into FOLDER.

include(${CMAKE_CURRENT_LIST_DIR}/consumer.cmake)

# A Release build has no debug information, which would contain the paths of the sources.
build_project(${OVELIN_SOURCE} ${FOLDER}
    -D BUILD_SHARED_LIBS=OFF
    -D CMAKE_BUILD_TYPE=Release
    -D OVELIN_BUILD_EXAMPLES=OFF
    -D OVELIN_BUILD_TESTS=OFF
)
