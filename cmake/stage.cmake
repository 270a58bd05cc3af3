# Runs between the staging of all files and the packing of them. What it does is what Debian asks for and nobody
# else: below the temporary directory lies a folder for each component.

if(CPACK_GENERATOR STREQUAL "DEB")
    set(version ${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
    string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC) # that of SOURCE_DATE_EPOCH, if it is set

    foreach(component IN LISTS CPACK_COMPONENTS_ALL)
        string(TOUPPER ${component} upper)
        set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
        set(share ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/share)
        set(doc ${share}/doc/${package})

        file(MAKE_DIRECTORY ${doc})
        file(COPY_FILE ${CPACK_VARLO_SOURCE_DIR}/packaging/copyright ${doc}/copyright)
        file(COPY_FILE ${CPACK_VARLO_SOURCE_DIR}/CHANGELOG.md ${doc}/changelog)
        file(WRITE ${doc}/changelog.Debian
            "${package} (${version}) unstable; urgency=medium\n\n"
            "  * Package of this version; changelog.gz tells what is new in it.\n\n"
            " -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
        if(EXISTS ${share}/zsh/site-functions)
            file(RENAME ${share}/zsh/site-functions ${share}/zsh/vendor-completions)
        endif()
        file(GLOB pages ${share}/man/man*/*)
        execute_process(COMMAND gzip -9n ${doc}/changelog ${doc}/changelog.Debian ${pages}
            COMMAND_ERROR_IS_FATAL ANY)
    endforeach()
endif()
