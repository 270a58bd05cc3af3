# What is installed beside the program, and the packages: `cpack -G DEB` makes three, `cpack -G TGZ` one archive of all.
# What names no component belongs to the program.

set(python_dir lib/python3/dist-packages) # below /usr, where Debian's Python looks
set(doc_dir ${CMAKE_INSTALL_DATADIR}/doc/varlo) # of all three, so that the links of README.md lead somewhere
set(VARLO_MANUAL "" CACHE PATH "The manual as `docs/make` made it; without it only its Markdown is installed")

install(FILES man/varlo.1 man/varlo-thumbnailer.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES man/varlo.5 DESTINATION ${CMAKE_INSTALL_MANDIR}/man5)
install(FILES completions/varlo.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
    RENAME varlo)
install(FILES completions/_varlo DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
install(FILES completions/varlo.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
install(DIRECTORY editors/vim/ DESTINATION ${CMAKE_INSTALL_DATADIR}/vim/vimfiles)

# ---- the desktop: the type of scenes, with its icon and small pictures, and what a software centre shows ----

install(FILES packaging/varlo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages)
install(FILES packaging/varlo.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES packaging/org.example.varlo.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES packaging/varlo.thumbnailer DESTINATION ${CMAKE_INSTALL_DATADIR}/thumbnailers)
install(PROGRAMS packaging/varlo-thumbnailer DESTINATION ${CMAKE_INSTALL_BINDIR})

# ---- the tools around it ----

install(DIRECTORY python/varlo DESTINATION ${python_dir} COMPONENT tools
    FILES_MATCHING PATTERN *.py PATTERN py.typed PATTERN __pycache__ EXCLUDE)
foreach(tool IN ITEMS check render watch film)
    configure_file(python/launcher.in python/varlo-${tool} @ONLY)
    install(PROGRAMS ${CMAKE_CURRENT_BINARY_DIR}/python/varlo-${tool} DESTINATION ${CMAKE_INSTALL_BINDIR}
        COMPONENT tools)
    install(FILES man/varlo-${tool}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
    # bash and fish look for a file with the name of the command.
    install(FILES completions/varlo-tools.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        RENAME varlo-${tool} COMPONENT tools)
    install(FILES completions/varlo-tools.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d
        RENAME varlo-${tool}.fish COMPONENT tools)
endforeach()
install(FILES completions/_varlo-tools DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions COMPONENT tools)

# ---- what one reads ----

install(FILES LICENSE README.md CHANGELOG.md ARCHITECTURE.md CONTRIBUTING.md DESTINATION ${doc_dir} COMPONENT doc)
install(FILES bench/README.md DESTINATION ${doc_dir}/bench COMPONENT doc)
install(FILES web/README.md DESTINATION ${doc_dir}/web COMPONENT doc)
install(DIRECTORY docs gallery DESTINATION ${doc_dir} COMPONENT doc USE_SOURCE_PERMISSIONS
    PATTERN html EXCLUDE PATTERN make EXCLUDE PATTERN make-sheet EXCLUDE)
if(VARLO_MANUAL)
    install(DIRECTORY ${VARLO_MANUAL}/ DESTINATION ${doc_dir}/docs COMPONENT doc)
endif()

# What `examples/generate` writes is not installed: a package would depend on whether it was there.
file(STRINGS examples/.gitignore generated)
list(TRANSFORM generated REPLACE "^/*(.+)$" "PATTERN;\\1;EXCLUDE")
install(DIRECTORY examples DESTINATION ${doc_dir} COMPONENT doc USE_SOURCE_PERMISSIONS
    PATTERN .gitignore EXCLUDE ${generated})

# ---- the packages ----

set(VARLO_MAINTAINER "The VARLO authors <varlo@example.org>" CACHE STRING
    "Who answers for the packages; whoever publishes them puts a name and an address here")
set(CPACK_PACKAGE_CONTACT ${VARLO_MAINTAINER})
set(CPACK_PACKAGE_VENDOR "The VARLO authors")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package begins its description with one of its own
set(CPACK_RESOURCE_FILE_LICENSE ${CMAKE_CURRENT_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/cmake/stage.cmake)
set(CPACK_VARLO_SOURCE_DIR ${CMAKE_CURRENT_SOURCE_DIR})
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_COMPONENTS_ALL varlo tools doc)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)

set(CPACK_DEBIAN_VARLO_PACKAGE_NAME varlo)
set(CPACK_DEBIAN_VARLO_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_VARLO_PACKAGE_RECOMMENDS varlo-tools)
set(CPACK_DEBIAN_VARLO_PACKAGE_SUGGESTS varlo-doc)
set(CPACK_COMPONENT_VARLO_DESCRIPTION
"ray tracer for text scenes and 3DS models
varlo renders one scene to one picture. A scene is a text file: a camera,
lights, surfaces, and objects such as spheres, cones, polygons and smooth
patches. It can also render a 3DS model, named by a small settings file.
.
It knows mirrors, glass, haze, depth of field, soft shadows and adaptive
anti-aliasing, and writes TGA, BMP, PPM, PNG, JPEG and TIFF.")

# The tools ask for the other programs by name, and only when they are needed.
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME varlo-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "varlo (= ${PROJECT_VERSION}-1), python3 (>= 3.11)")
set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS "chafa, feh, ffmpeg, openssh-client, parallel, rsync")
set(CPACK_DEBIAN_TOOLS_PACKAGE_SUGGESTS "slurm-client, python3-fonttools, python3-numpy")
set(CPACK_DEBIAN_TOOLS_PACKAGE_CONTROL_EXTRA
    ${CMAKE_CURRENT_SOURCE_DIR}/packaging/tools/postinst ${CMAKE_CURRENT_SOURCE_DIR}/packaging/tools/prerm)
set(CPACK_COMPONENT_TOOLS_DESCRIPTION
"everyday tools and a Python module for the ray tracer varlo
With them comes the Python module varlo, which runs it from programs.")

set(CPACK_DEBIAN_DOC_PACKAGE_NAME varlo-doc)
set(CPACK_DEBIAN_DOC_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOC_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DOC_PACKAGE_SUGGESTS varlo)
set(CPACK_COMPONENT_DOC_DESCRIPTION
"manual, gallery and examples of the ray tracer varlo
The manual as HTML and Markdown: a tutorial, the scene language, the command
line, models, messages and limits. The gallery shows what its example scenes
look like, and the scenes are here too.")
include(CPack)
