# The Debian package: `cmake --build build --target package` writes
# build/vocabrix_<version>_<arch>.deb. Its Depends come from the binaries (dpkg-shlibdeps); the
# spell-checking dictionaries are recommended, as the application runs without them.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vocabrix)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "Vocabrix")
set(CPACK_PACKAGE_CONTACT "Vocabrix maintainers <maintainers@vocabrix.org>" CACHE STRING "Maintainer field of the package")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "translation tool for the interface resources of Mac OS X and iOS apps")
set(CPACK_PACKAGE_DESCRIPTION
  "Vocabrix translates the user-interface resources of Mac OS X and iOS applications:\n"
  "string tables, property lists, interface files (xib, nib) and whole .app bundles.\n"
  "It pre-fills translations from a previous localized release and from a dictionary\n"
  "kept per language pair, and writes the localized files into the target language's\n"
  ".lproj folder. Includes the command-line front end vocabrix-cli and the interface\n"
  "tools vocabrix-ibtool and vocabrix-nibtool.")
string(REPLACE ";" "" CPACK_PACKAGE_DESCRIPTION "${CPACK_PACKAGE_DESCRIPTION}")
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
# Debug information stays in the build; the package carries stripped programs.
set(CPACK_STRIP_FILES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "hunspell-en-us, hunspell-fr, hunspell-de-de, hunspell-es")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "desktop-file-utils, shared-mime-info")
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://vocabrix.org/")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
  ${CMAKE_SOURCE_DIR}/cmake/debian/postinst
  ${CMAKE_SOURCE_DIR}/cmake/debian/postrm)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

include(CPack)
