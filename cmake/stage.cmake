# Runs for each package, between the staging of its files and the packing of them. What it does is what Debian
# asks for and nobody else.

if(CPACK_GENERATOR STREQUAL "DEB")
    set(share ${CPACK_TEMPORARY_DIRECTORY}/usr/share)
    set(doc ${share}/doc/${CPACK_PACKAGE_NAME})
    set(version ${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
    string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC) # that of SOURCE_DATE_EPOCH, if it is set

    file(REMOVE ${doc}/LICENSE)
    file(COPY_FILE ${CPACK_VARLO_SOURCE_DIR}/packaging/copyright ${doc}/copyright)
    file(RENAME ${doc}/CHANGELOG.md ${doc}/changelog)
    file(WRITE ${doc}/changelog.Debian
        "${CPACK_PACKAGE_NAME} (${version}) unstable; urgency=medium\n\n"
        "  * Package of this version; changelog.gz tells what is new in it.\n\n"
        " -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
    file(RENAME ${share}/zsh/site-functions ${share}/zsh/vendor-completions)
    execute_process(COMMAND gzip -9n ${doc}/changelog ${doc}/changelog.Debian
        ${share}/man/man1/varlo.1 ${share}/man/man5/varlo.5 COMMAND_ERROR_IS_FATAL ANY)
endif()
