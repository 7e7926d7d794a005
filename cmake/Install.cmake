# What is installed where, and the packages. Everything is found relative to what asks for it, so an
# installation can be moved as a whole.

include(CMakePackageConfigHelpers)

set(runtime COMPONENT libtextwizard1)
set(development COMPONENT libtextwizard-dev)
foreach(target textwizard_shared HostFramework)
  set_target_properties(${target} PROPERTIES
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
endforeach()
set_target_properties(textwizard_shared PROPERTIES EXPORT_NAME textwizard)
install(TARGETS textwizard_shared HostFramework EXPORT TextWizardTargets
  LIBRARY DESTINATION lib ${runtime} NAMELINK_COMPONENT libtextwizard-dev)
install(TARGETS TextWizardDac EXPORT TextWizardTargets LIBRARY DESTINATION lib ${runtime})
install(TARGETS HostFrameworkInterface EXPORT TextWizardTargets)
install(FILES HostFramework/catalogue/lorvane.err DESTINATION share/textwizard ${runtime})
install(TARGETS textwizard RUNTIME DESTINATION bin COMPONENT textwizard)

install(DIRECTORY library/include/textwizard DESTINATION include ${development})
install(DIRECTORY HostFramework/include/HostFramework DESTINATION include ${development})
configure_file(cmake/textwizard.pc.in ${CMAKE_BINARY_DIR}/install/textwizard.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/install/textwizard.pc DESTINATION lib/pkgconfig ${development})
configure_package_config_file(cmake/TextWizardConfig.cmake.in
  ${CMAKE_BINARY_DIR}/install/TextWizardConfig.cmake INSTALL_DESTINATION lib/cmake/TextWizard)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/install/TextWizardConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/install/TextWizardConfig.cmake
  ${CMAKE_BINARY_DIR}/install/TextWizardConfigVersion.cmake
  DESTINATION lib/cmake/TextWizard ${development})
install(EXPORT TextWizardTargets NAMESPACE TextWizard:: DESTINATION lib/cmake/TextWizard
  ${development})

# Manual pages and completions, from the program's own help.
set(manuals ${CMAKE_BINARY_DIR}/manuals)
add_custom_command(OUTPUT ${manuals}/man/textwizard.1
  COMMAND ${PROJECT_SOURCE_DIR}/tools/make-manuals $<TARGET_FILE:textwizard>
    ${PROJECT_SOURCE_DIR}/library/include/textwizard/textwizard.h ${manuals}
  DEPENDS textwizard tools/make-manuals library/include/textwizard/textwizard.h VERBATIM)
add_custom_target(manuals ALL DEPENDS ${manuals}/man/textwizard.1)
install(DIRECTORY ${manuals}/man/ DESTINATION share/man/man1 COMPONENT textwizard
  FILES_MATCHING PATTERN "*.1")
install(FILES ${manuals}/man/textwizard.3 DESTINATION share/man/man3 ${development})
install(FILES ${manuals}/completion/textwizard.bash COMPONENT textwizard
  DESTINATION share/bash-completion/completions RENAME textwizard)
install(FILES ${manuals}/completion/_textwizard COMPONENT textwizard
  DESTINATION share/zsh/site-functions)
install(FILES ${manuals}/completion/textwizard.fish COMPONENT textwizard
  DESTINATION share/fish/vendor_completions.d)

# `python` installs its package by itself.

# `make package`: Debian packages.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME textwizard)
set(CPACK_PACKAGE_CONTACT "TextWizard developers <textwizard@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Text files as typed tables")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_COMPONENTS_ALL textwizard libtextwizard1 libtextwizard-dev python3-textwizard)
foreach(component ${CPACK_COMPONENTS_ALL})
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${component})
endforeach()
set(CPACK_COMPONENT_TEXTWIZARD_DESCRIPTION "Imports text data files: the program")
set(CPACK_COMPONENT_TEXTWIZARD_DEPENDS libtextwizard1)
set(CPACK_COMPONENT_LIBTEXTWIZARD1_DESCRIPTION "Imports text data files: the shared libraries")
set(CPACK_COMPONENT_LIBTEXTWIZARD-DEV_DESCRIPTION "Imports text data files: headers for developers")
set(CPACK_COMPONENT_LIBTEXTWIZARD-DEV_DEPENDS libtextwizard1)
set(CPACK_COMPONENT_PYTHON3-TEXTWIZARD_DESCRIPTION "Imports text data files: the Python package")
set(CPACK_COMPONENT_PYTHON3-TEXTWIZARD_DEPENDS libtextwizard1)
set(CPACK_DEBIAN_PYTHON3-TEXTWIZARD_PACKAGE_DEPENDS
  "python3 (>= 3.11), python3 (<< 3.12), python3-numpy")
set(CPACK_DEBIAN_PYTHON3-TEXTWIZARD_PACKAGE_RECOMMENDS python3-pandas)
set(CPACK_DEBIAN_PYTHON3-TEXTWIZARD_PACKAGE_SUGGESTS "python3-dask, python3-distributed")
set(CPACK_DEBIAN_TEXTWIZARD_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_LIBTEXTWIZARD1_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBTEXTWIZARD-DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PYTHON3-TEXTWIZARD_PACKAGE_SECTION python)
include(CPack)
