# What makes an install a desktop program on Linux: the desktop entry, the icon, the file types of the
# games' binary files and of mission units, the AppStream metainfo, the manual pages written from the
# programs' own --help, and bash completion. Then the Debian package CPack makes of an install to /usr
# (scripts/package.sh): its Depends computed by dpkg-shlibdeps.
if(WIN32)
    return()
endif()

set(VELKOR_APP_ID org.velkor.Velkor)
set(VELKOR_PACKAGING_DIR ${PROJECT_SOURCE_DIR}/packaging)

install(FILES ${VELKOR_PACKAGING_DIR}/velkor-mime.xml DESTINATION share/mime/packages RENAME velkor.xml)
install(FILES ${VELKOR_PACKAGING_DIR}/bash-completion/velkorc DESTINATION share/bash-completion/completions)
install(FILES ${VELKOR_PACKAGING_DIR}/copyright DESTINATION share/doc/velkor)
if(VELKOR_BUILD_IDE)
    install(FILES ${VELKOR_PACKAGING_DIR}/${VELKOR_APP_ID}.desktop DESTINATION share/applications)
    install(FILES ${VELKOR_PACKAGING_DIR}/${VELKOR_APP_ID}.metainfo.xml DESTINATION share/metainfo)
    install(FILES ${VELKOR_PACKAGING_DIR}/velkor.svg DESTINATION share/icons/hicolor/scalable/apps)
endif()

# Compressed files carry no time stamp (gzip -n), so that two builds of one source are the same bytes.
find_program(VELKOR_GZIP gzip REQUIRED)
set(VELKOR_PACKAGING_OUT ${CMAKE_BINARY_DIR}/packaging)
file(MAKE_DIRECTORY ${VELKOR_PACKAGING_OUT}/man)

# A Debian changelog of the release, as every package's documentation folder holds one.
string(TIMESTAMP VELKOR_RELEASE_DATE "%a, %d %b %Y 00:00:00 +0000" UTC)
set(VELKOR_PACKAGE_MAINTAINER "The Velkor developers <developers@velkor.org>" CACHE STRING
    "Maintainer of the Debian package")
file(WRITE ${VELKOR_PACKAGING_OUT}/changelog
    "velkor (${PROJECT_VERSION}) unstable; urgency=medium\n\n"
    "  * Release ${PROJECT_VERSION}.\n\n"
    " -- ${VELKOR_PACKAGE_MAINTAINER}  ${VELKOR_RELEASE_DATE}\n")
add_custom_command(OUTPUT ${VELKOR_PACKAGING_OUT}/changelog.gz
    COMMAND ${VELKOR_GZIP} -9nkf ${VELKOR_PACKAGING_OUT}/changelog
    DEPENDS ${VELKOR_PACKAGING_OUT}/changelog VERBATIM)
set(velkor_packaging_outputs ${VELKOR_PACKAGING_OUT}/changelog.gz)
install(FILES ${VELKOR_PACKAGING_OUT}/changelog.gz DESTINATION share/doc/velkor)

# velkor_man_page(PROGRAM): PROGRAM.1.gz from the program's --help and --version and the hand-written
# sections of packaging/man/PROGRAM.h2m.
find_program(VELKOR_HELP2MAN help2man)
function(velkor_man_page program)
    set(page ${VELKOR_PACKAGING_OUT}/man/${program}.1)
    set(include ${VELKOR_PACKAGING_DIR}/man/${program}.h2m)
    add_custom_command(OUTPUT ${page}.gz
        COMMAND ${VELKOR_HELP2MAN} --no-info --no-discard-stderr --section=1 --source=Velkor
                --include=${include} --output=${page} $<TARGET_FILE:${program}>
        COMMAND ${VELKOR_GZIP} -9nf ${page}
        DEPENDS ${program} ${include}
        COMMENT "Writing the manual page ${program}(1)" VERBATIM)
    set(velkor_packaging_outputs ${velkor_packaging_outputs} ${page}.gz PARENT_SCOPE)
    install(FILES ${page}.gz DESTINATION share/man/man1)
endfunction()
if(VELKOR_HELP2MAN)
    velkor_man_page(velkorc)
    if(VELKOR_BUILD_IDE)
        velkor_man_page(velkor)
    endif()
else()
    message(WARNING "help2man not found: no manual pages (scripts/setup.sh installs it)")
endif()
add_custom_target(velkor_packaging_files ALL DEPENDS ${velkor_packaging_outputs})

# --- the Debian package
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME velkor)
set(CPACK_PACKAGE_VENDOR "The Velkor developers")
set(CPACK_PACKAGE_CONTACT ${VELKOR_PACKAGE_MAINTAINER})
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "compiler and IDE for space-combat mission scripts")
# Lines of the long description stay within 80 columns, as dpkg shows them.
set(CPACK_PACKAGE_DESCRIPTION
    "Velkor compiles units, missions, sectors and series of a Pascal-like
mission-scripting language into textual IFF, optimises the script listings
and assembles the text into the binary IFF files two space-combat games load
(.mis, .iff, .sec, .srs). It decodes such files back into text that
assembles into the same bytes again.
.
The package holds the desktop environment velkor, the command-line compiler
velkorc, the library units, the help pages, and the headers and CMake package
for writing extension libraries.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://velkor.org/")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Loaded by Qt at run time, so dpkg-shlibdeps cannot see it: the SVG icon engine for the window icon.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6svg6")
set(CPACK_OUTPUT_FILE_PREFIX ${PROJECT_SOURCE_DIR}/out)
include(CPack)
