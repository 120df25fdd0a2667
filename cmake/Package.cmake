# What cpack makes: Debian packages and a tar.gz, or a zip for Windows; scripts/package makes and tries them all.
# The archives hold what `cmake --install` installs; the documents below come with it.
install(FILES README.md CHANGELOG.md packaging/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documents)
install(DIRECTORY docs examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documents
    FILES_MATCHING PATTERN "*.md" PATTERN "*.cpp" PATTERN "man" EXCLUDE)

file(GLOB KETRAQT_MANUALS CONFIGURE_DEPENDS docs/man/*.1)
install(FILES ${KETRAQT_MANUALS} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tool)

# ketraqt_install_completions(ZSH-FOLDER COMPONENT [EXCLUDE_FROM_ALL]): a distribution's packages have a folder of
# their own for zsh.
function(ketraqt_install_completions zsh component)
    set(shared ${CMAKE_INSTALL_DATADIR})
    install(FILES completions/ketraqt.bash DESTINATION ${shared}/bash-completion/completions RENAME ketraqt
        COMPONENT ${component} ${ARGN})
    install(FILES completions/_ketraqt DESTINATION ${shared}/zsh/${zsh} COMPONENT ${component} ${ARGN})
    install(FILES completions/ketraqt.fish DESTINATION ${shared}/fish/vendor_completions.d COMPONENT ${component} ${ARGN})
endfunction()
if(NOT WIN32)
    ketraqt_install_completions(site-functions tool)
endif()

# What others wrote and is inside our binaries asks for its notice to go along: the headers of the tool and, in a
# DLL that needs nothing else, zlib and the runtime of the compiler.
set(KETRAQT_NOTICES libcli11-dev nlohmann-json3-dev libfmt-dev)
if(MINGW)
    list(APPEND KETRAQT_NOTICES libz-mingw-w64 gcc-mingw-w64-base mingw-w64-common)
endif()
function(ketraqt_install_notices folder component)
    foreach(package IN LISTS KETRAQT_NOTICES)
        if(EXISTS /usr/share/doc/${package}/copyright)
            install(FILES /usr/share/doc/${package}/copyright DESTINATION ${folder} RENAME ${package}
                COMPONENT ${component} ${ARGN})
        endif()
    endforeach()
endfunction()
ketraqt_install_notices(${CMAKE_INSTALL_DOCDIR}/third-party documents)

set(CPACK_PACKAGE_NAME ketraqt)
set(CPACK_PACKAGE_VENDOR "Ketra QT authors")
set(CPACK_PACKAGE_CONTACT "Ketra QT authors <authors@ketra-qt.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # or every Debian package would have the same
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
    GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
string(TOLOWER "ketraqt-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}" CPACK_PACKAGE_FILE_NAME)
set(CPACK_GENERATOR TGZ)
if(WIN32)
    set(CPACK_GENERATOR ZIP)
elseif(CMAKE_LIBRARY_ARCHITECTURE AND EXISTS /etc/debian_version)
    include(Debian)
endif()
include(CPack)
