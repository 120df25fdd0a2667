# Debian's layout (libraries by architecture, no search paths in programs, compressed documents) beside the movable
# one, out of the same build, and its three packages: the library by its SONAME, what is needed to build with it,
# and the tool, which must not stand in the way of two libraries of different SONAMEs.
set(runtime libketraqt${PROJECT_VERSION_MAJOR})
set(development libketraqt-dev)
set(tool ketraqt)

find_program(GZIP gzip REQUIRED)
mark_as_advanced(GZIP)
# ketraqt_install_gz(FILE FOLDER NAME COMPONENT): FILE as FOLDER/NAME.gz, without a time in it.
function(ketraqt_install_gz file folder name component)
    set(packed ${PROJECT_BINARY_DIR}/debian/${component}/${name}.gz)
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/debian/${component})
    execute_process(COMMAND ${GZIP} -9nc ${file} OUTPUT_FILE ${packed} COMMAND_ERROR_IS_FATAL ANY)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
    install(FILES ${packed} DESTINATION ${folder} COMPONENT ${component} EXCLUDE_FROM_ALL)
endfunction()

ketraqt_install(KetraQTDebianTargets lib/${CMAKE_LIBRARY_ARCHITECTURE} ${runtime} ${development} EXCLUDE_FROM_ALL)
install(TARGETS ketraqt_tool RUNTIME DESTINATION bin COMPONENT ${tool} EXCLUDE_FROM_ALL)
install(CODE "file(RPATH_REMOVE FILE \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/bin/ketraqt\")"
    COMPONENT ${tool} EXCLUDE_FROM_ALL)
foreach(manual IN LISTS KETRAQT_MANUALS)
    get_filename_component(name ${manual} NAME)
    ketraqt_install_gz(${manual} share/man/man1 ${name} ${tool})
endforeach()
ketraqt_install_completions(vendor-completions ${tool} EXCLUDE_FROM_ALL)
ketraqt_install_notices(share/doc/${tool}/third-party ${tool} EXCLUDE_FROM_ALL)
install(DIRECTORY docs examples DESTINATION share/doc/${development} COMPONENT ${development} EXCLUDE_FROM_ALL
    FILES_MATCHING PATTERN "*.md" PATTERN "*.cpp" PATTERN "man" EXCLUDE)

foreach(package ${runtime} ${development} ${tool})
    set(documents share/doc/${package})
    install(FILES packaging/copyright DESTINATION ${documents} COMPONENT ${package} EXCLUDE_FROM_ALL)
    ketraqt_install_gz(${PROJECT_SOURCE_DIR}/packaging/debian/changelog ${documents} changelog.Debian ${package})
    ketraqt_install_gz(${PROJECT_SOURCE_DIR}/CHANGELOG.md ${documents} changelog ${package})
    string(REGEX REPLACE "[0-9]+$" "" page ${package})
    if(EXISTS ${PROJECT_SOURCE_DIR}/packaging/debian/${page}.lintian-overrides)
        install(FILES packaging/debian/${page}.lintian-overrides DESTINATION share/lintian/overrides
            RENAME ${package} COMPONENT ${package} EXCLUDE_FROM_ALL)
    endif()

    # The page of the package: its section, the line in lists, then the long text.
    file(STRINGS packaging/debian/${page}.description lines)
    list(POP_FRONT lines section)
    list(JOIN lines "\n" description)
    string(TOUPPER ${package} name)
    set(CPACK_DEBIAN_${name}_PACKAGE_NAME ${package})
    set(CPACK_DEBIAN_${name}_PACKAGE_SECTION ${section})
    set(CPACK_DEBIAN_${name}_DESCRIPTION "${description}")
endforeach()

list(PREPEND CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL ${runtime} ${development} ${tool})
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SOURCE ketraqt)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(version ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})

string(TOUPPER ${runtime} name)
set(CPACK_DEBIAN_${name}_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_${name}_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/debian/triggers)
set(CPACK_DEBIAN_LIBKETRAQT-DEV_PACKAGE_DEPENDS "${runtime} (= ${version})")
set(CPACK_DEBIAN_KETRAQT_PACKAGE_DEPENDS "${runtime} (>= ${version})")
set(CPACK_DEBIAN_KETRAQT_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/lib)
