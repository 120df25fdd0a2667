# Installs the library, its public headers, the CMake package and the pkg-config file. Everything is found from
# where the files lie, so an installed tree may be moved.
include(CMakePackageConfigHelpers)

# ketraqt_install(EXPORT-NAME LIBDIR RUNTIME-COMPONENT DEVELOPMENT-COMPONENT [EXCLUDE_FROM_ALL]): one layout. A
# layout that is left out of the whole installation serves the package generator alone (cmake/Debian.cmake).
function(ketraqt_install export libdir runtime development)
    install(TARGETS ketraqt EXPORT ${export}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${runtime} ${ARGN}
        LIBRARY DESTINATION ${libdir} COMPONENT ${runtime} NAMELINK_COMPONENT ${development} ${ARGN}
        ARCHIVE DESTINATION ${libdir} COMPONENT ${development} ${ARGN})

    # Private are the grammar, details, system dependent parts and whatever calls itself an implementation;
    # tests/headers and scripts/consume go by the same names.
    file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}/lib ${PROJECT_SOURCE_DIR}/lib/*.h)
    list(FILTER headers EXCLUDE REGEX "/(wire|detail|os)/|Impl\\.h$")
    foreach(header IN LISTS headers)
        get_filename_component(folder ${header} DIRECTORY)
        install(FILES ${PROJECT_SOURCE_DIR}/lib/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ketra/${folder}
            COMPONENT ${development} ${ARGN})
    endforeach()

    set(package ${libdir}/cmake/KetraQT)
    set(made ${PROJECT_BINARY_DIR}/${export})
    install(EXPORT ${export} FILE KetraQTTargets.cmake NAMESPACE Ketra:: DESTINATION ${package}
        COMPONENT ${development} ${ARGN})
    configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/KetraQTConfig.cmake.in ${made}/KetraQTConfig.cmake
        INSTALL_DESTINATION ${package})
    write_basic_package_version_file(${made}/KetraQTConfigVersion.cmake COMPATIBILITY SameMajorVersion)
    install(FILES ${made}/KetraQTConfig.cmake ${made}/KetraQTConfigVersion.cmake DESTINATION ${package}
        COMPONENT ${development} ${ARGN})

    # An absolute library folder can't be found from the pkg-config file, so only then are full paths written.
    if(IS_ABSOLUTE "${libdir}" OR IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
        set(KETRAQT_PC_PREFIX ${CMAKE_INSTALL_PREFIX})
        set(KETRAQT_PC_LIBDIR ${CMAKE_INSTALL_FULL_LIBDIR})
        set(KETRAQT_PC_INCLUDEDIR ${CMAKE_INSTALL_FULL_INCLUDEDIR})
    else()
        file(RELATIVE_PATH up "/${libdir}/pkgconfig" "/")
        string(REGEX REPLACE "/$" "" up "${up}")
        set(KETRAQT_PC_PREFIX "\${pcfiledir}/${up}")
        set(KETRAQT_PC_LIBDIR "\${prefix}/${libdir}")
        set(KETRAQT_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
    endif()
    configure_file(${PROJECT_SOURCE_DIR}/cmake/ketra-qt.pc.in ${made}/ketra-qt.pc @ONLY)
    install(FILES ${made}/ketra-qt.pc DESTINATION ${libdir}/pkgconfig COMPONENT ${development} ${ARGN})
endfunction()

ketraqt_install(KetraQTTargets ${CMAKE_INSTALL_LIBDIR} runtime development)
