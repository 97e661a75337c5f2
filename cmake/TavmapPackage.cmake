# The Debian package: `cpack` in a build folder that was configured for /usr, as scripts/package does.
set(packaging ${CMAKE_SOURCE_DIR}/packaging)
install(FILES ${packaging}/changelog ${packaging}/copyright DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/tavmap COMPONENT package)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tavmap)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${packaging}/compress.cmake)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "The Tavmap authors <tavmap@example.org>")
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS fonts-dejavu-core)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "whole-brain maps of directed influence from fMRI")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "For a reference region and every voxel Tavmap fits autoregressive models and
computes Geweke's linear feedback: from the region to the voxel, back, and
the instantaneous part, with thresholds from simulated surrogates.
.
This package has the program tavmap, its manual pages and completions, and
the plug-in TAVPlugin.so with its help for a host that loads plug-ins.")
include(CPack)
