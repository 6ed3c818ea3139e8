# Fails when a source folder includes a header of a layer above its own. Run as a script:
#   cmake -DSOURCE_DIR=<tree> -P check_layers.cmake
# Layers, lowest first: platform -> scanner -> iff -> compiler and codegen -> the front ends. Each folder
# lists the folders it may include from; the editor sits on the scanner alone, and the language server
# is a front end that velkorc runs.
cmake_minimum_required(VERSION 3.25)
if(NOT SOURCE_DIR)
    message(FATAL_ERROR "check_layers.cmake: SOURCE_DIR not set")
endif()

set(allowed_platform platform)
set(allowed_scanner platform scanner)
set(allowed_iff platform scanner iff)
set(allowed_compiler platform scanner iff compiler codegen)
set(allowed_codegen platform scanner iff compiler codegen)
set(allowed_editor platform scanner editor)
set(allowed_lsp platform scanner iff compiler codegen lsp)
set(allowed_cli platform scanner iff compiler codegen lsp cli)
set(allowed_tools platform scanner iff compiler codegen tools)
set(layered_folders platform scanner iff compiler codegen editor lsp cli tools)

set(violations "")
foreach(folder IN LISTS layered_folders)
    file(GLOB sources ${SOURCE_DIR}/${folder}/*.h ${SOURCE_DIR}/${folder}/*.cpp)
    foreach(source IN LISTS sources)
        file(STRINGS ${source} includes REGEX "^[ \t]*#[ \t]*include[ \t]*\"[^\"/]+/")
        foreach(line IN LISTS includes)
            string(REGEX REPLACE "^[ \t]*#[ \t]*include[ \t]*\"([^\"/]+)/([^\"]*)\".*" "\\1;\\2" parts "${line}")
            list(GET parts 0 target)
            if(NOT target IN_LIST allowed_${folder})
                file(RELATIVE_PATH shown ${SOURCE_DIR} ${source})
                list(GET parts 1 header)
                string(APPEND violations "\n  ${shown} includes ${target}/${header}")
            endif()
        endforeach()
    endforeach()
endforeach()

if(violations)
    message(FATAL_ERROR "A layer includes one above it:${violations}")
endif()
