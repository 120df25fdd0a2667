# Installs the library, its public headers, the CMake package and the pkg-config file. Everything is found from
# where the files lie, so an installed tree may be moved.
include(CMakePackageConfigHelpers)

install(TARGETS ketraqt EXPORT KetraQTTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})

# Private are the grammar, details, system dependent parts and whatever calls itself an implementation;
# tests/headers and scripts/consume go by the same names.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/lib/base ${PROJECT_SOURCE_DIR}/lib/qt
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ketra
    FILES_MATCHING PATTERN "*.h"
    REGEX "/(wire|detail|os)$|Impl\\.h$" EXCLUDE)

set(KETRAQT_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/KetraQT)
install(EXPORT KetraQTTargets NAMESPACE Ketra:: DESTINATION ${KETRAQT_PACKAGE_DIR})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/KetraQTConfig.cmake.in
    ${PROJECT_BINARY_DIR}/KetraQTConfig.cmake INSTALL_DESTINATION ${KETRAQT_PACKAGE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KetraQTConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/KetraQTConfig.cmake ${PROJECT_BINARY_DIR}/KetraQTConfigVersion.cmake
    DESTINATION ${KETRAQT_PACKAGE_DIR})

# An absolute library folder can't be found from the pkg-config file, so only then are full paths written.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}" OR IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
    set(KETRAQT_PC_PREFIX ${CMAKE_INSTALL_PREFIX})
    set(KETRAQT_PC_LIBDIR ${CMAKE_INSTALL_FULL_LIBDIR})
    set(KETRAQT_PC_INCLUDEDIR ${CMAKE_INSTALL_FULL_INCLUDEDIR})
else()
    file(RELATIVE_PATH KETRAQT_PC_UP "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
    string(REGEX REPLACE "/$" "" KETRAQT_PC_UP "${KETRAQT_PC_UP}")
    set(KETRAQT_PC_PREFIX "\${pcfiledir}/${KETRAQT_PC_UP}")
    set(KETRAQT_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
    set(KETRAQT_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
configure_file(${CMAKE_CURRENT_LIST_DIR}/ketra-qt.pc.in ${PROJECT_BINARY_DIR}/ketra-qt.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/ketra-qt.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
