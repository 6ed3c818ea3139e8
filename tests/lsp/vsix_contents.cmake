# Builds the .vsix with scripts/package_vsix.sh and checks that it holds the manifest, both grammars, the
# language configuration, the client and the language client library it loads.
execute_process(COMMAND ${SOURCE_DIR}/scripts/package_vsix.sh ${VSIX} RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "scripts/package_vsix.sh failed: ${result}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -E tar tf ${VSIX} OUTPUT_VARIABLE listing RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "${VSIX} is not a zip archive")
endif()
foreach(entry extension.vsixmanifest extension/package.json extension/extension.js
        extension/language-configuration.json extension/syntaxes/velkor.tmLanguage.json
        extension/syntaxes/velkor-iff.tmLanguage.json extension/node_modules/vscode-languageclient/node.js)
    string(FIND "${listing}" "${entry}" at)
    if(at EQUAL -1)
        message(FATAL_ERROR "${VSIX} lacks ${entry}:\n${listing}")
    endif()
endforeach()
string(FIND "${listing}" "extension/test/" at)
if(NOT at EQUAL -1)
    message(FATAL_ERROR "${VSIX} holds the tests")
endif()
