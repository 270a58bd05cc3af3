# What is installed beside the program, and the packages: `cpack -G DEB` and `cpack -G TGZ`.

install(FILES man/varlo.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES man/varlo.5 DESTINATION ${CMAKE_INSTALL_MANDIR}/man5)
install(FILES completions/varlo.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
    RENAME varlo)
install(FILES completions/_varlo DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
install(FILES completions/varlo.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
install(DIRECTORY editors/vim/ DESTINATION ${CMAKE_INSTALL_DATADIR}/vim/vimfiles)
install(FILES packaging/varlo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages)
install(FILES LICENSE README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR} OPTIONAL)

# What `examples/generate` writes is not installed: a package would depend on whether it was there.
file(STRINGS examples/.gitignore generated)
list(TRANSFORM generated REPLACE "^/*(.+)$" "PATTERN;\\1;EXCLUDE")
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} USE_SOURCE_PERMISSIONS
    PATTERN .gitignore EXCLUDE ${generated})

set(VARLO_MAINTAINER "The VARLO authors <varlo@example.org>" CACHE STRING
    "Who answers for the packages; whoever publishes them puts a name and an address here")
set(CPACK_PACKAGE_CONTACT ${VARLO_MAINTAINER})
set(CPACK_PACKAGE_VENDOR "The VARLO authors")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "ray tracer for text scenes and 3DS models")
set(CPACK_RESOURCE_FILE_LICENSE ${CMAKE_CURRENT_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/cmake/stage.cmake)
set(CPACK_VARLO_SOURCE_DIR ${CMAKE_CURRENT_SOURCE_DIR})

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"varlo renders one scene to one picture. A scene is a text file: a camera,
lights, surfaces, and objects such as spheres, cones, polygons and smooth
patches. It can also render a 3DS model, named by a small settings file.
.
It knows mirrors, glass, haze, depth of field, soft shadows and adaptive
anti-aliasing, and writes TGA, BMP, PPM, PNG, JPEG and TIFF.")
include(CPack)
