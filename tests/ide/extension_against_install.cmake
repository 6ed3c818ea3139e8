# Installs the build into a scratch prefix and builds the sample extension on its own against it, as an
# extension writer would: the installed headers must be complete and the CMake package must find them.
# cmake -DBUILD_DIR=... -DSOURCE_DIR=... -DWORK_DIR=... -P extension_against_install.cmake
file(REMOVE_RECURSE ${WORK_DIR})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/prefix
    RESULT_VARIABLE result OUTPUT_QUIET)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "install failed")
endif()
foreach(file bin/velkor bin/velkorc lib/velkor/velkor lib/velkor/velkorc lib/velkor/docs/help/objects.html
        lib/velkor/sample_extension.so include/velkor/ide/velkor_extension.h
        lib/cmake/VelkorExtension/VelkorExtensionConfig.cmake)
    if(NOT EXISTS ${WORK_DIR}/prefix/${file})
        message(FATAL_ERROR "not installed: ${file}")
    endif()
endforeach()
execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE_DIR}/examples/extension -B ${WORK_DIR}/build
    -DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix -DCMAKE_BUILD_TYPE=Release
    RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE out)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "configuring the sample against the install failed:\n${out}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK_DIR}/build
    RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE out)
if(NOT result EQUAL 0 OR NOT EXISTS ${WORK_DIR}/build/sample_extension.so)
    message(FATAL_ERROR "building the sample against the install failed:\n${out}")
endif()
file(REMOVE_RECURSE ${WORK_DIR})
message(STATUS "sample extension built against the installed headers")
