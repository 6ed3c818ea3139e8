# nlohmann-json for the MinGW build. It is headers only, so Debian's copy serves Windows too; the headers
# are copied into the build folder so that their folder brings no other host header along.
set(_velkor_json_include ${CMAKE_BINARY_DIR}/host-headers)
if(NOT EXISTS ${_velkor_json_include}/nlohmann/json.hpp)
    file(COPY /usr/include/nlohmann DESTINATION ${_velkor_json_include})
endif()
if(NOT TARGET nlohmann_json::nlohmann_json)
    add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
    set_target_properties(nlohmann_json::nlohmann_json PROPERTIES
        INTERFACE_INCLUDE_DIRECTORIES ${_velkor_json_include})
endif()
unset(_velkor_json_include)
