# The version of Debian's nlohmann-json, which the MinGW build uses (see nlohmann_jsonConfig.cmake).
include(/usr/share/cmake/nlohmann_json/nlohmann_jsonConfigVersion.cmake)
