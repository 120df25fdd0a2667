# What cpack makes: Debian packages and a tar.gz, or a zip for Windows; scripts/package makes and tries them all.
# The archives hold what `cmake --install` installs; the documents below come with it.
set(notices ${CMAKE_INSTALL_DOCDIR}/third-party)

install(FILES README.md CHANGELOG.md packaging/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documents)
install(DIRECTORY docs examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documents
    FILES_MATCHING PATTERN "*.md" PATTERN "*.cpp" PATTERN "man" EXCLUDE)

file(GLOB KETRAQT_MANUALS CONFIGURE_DEPENDS docs/man/*.1)
install(FILES ${KETRAQT_MANUALS} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tool)

# ketraqt_install_completions(ZSH-FOLDER FISH-FOLDER COMPONENT [EXCLUDE_FROM_ALL]): each shell looks for its own
# name, and a distribution's packages have folders of their own.
function(ketraqt_install_completions zsh fish component)
    set(bash bash-completion/completions)
    foreach(completion "ketraqt.bash ${bash} ketraqt" "_ketraqt ${zsh} _ketraqt" "ketraqt.fish ${fish} ketraqt.fish")
        separate_arguments(completion)
        list(GET completion 0 file)
        list(GET completion 1 folder)
        list(GET completion 2 name)
        if(EXISTS ${PROJECT_SOURCE_DIR}/completions/${file})
            install(FILES completions/${file} DESTINATION ${CMAKE_INSTALL_DATADIR}/${folder} RENAME ${name}
                COMPONENT ${component} ${ARGN})
        endif()
    endforeach()
endfunction()
ketraqt_install_completions(zsh/site-functions fish/vendor_completions.d tool)

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
