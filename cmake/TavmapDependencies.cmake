# Third-party libraries of the layers around the core, all from Debian packages.
find_package(PkgConfig REQUIRED)
find_package(Boost REQUIRED)  # headers alone: distributions
find_package(Eigen3 REQUIRED NO_MODULE)
find_package(ZLIB REQUIRED)
find_package(CLI11 REQUIRED)
find_package(fmt REQUIRED)
find_package(nlohmann_json REQUIRED)
find_package(tomlplusplus REQUIRED)
find_package(tinyxml2 REQUIRED)
pkg_check_modules(CAIRO REQUIRED IMPORTED_TARGET cairo)
pkg_check_modules(LIBEDIT REQUIRED IMPORTED_TARGET libedit)
pkg_check_modules(NETTLE REQUIRED IMPORTED_TARGET nettle)
pkg_check_modules(FFTW REQUIRED IMPORTED_TARGET fftw3)
pkg_check_modules(ISAL IMPORTED_TARGET libisal)

# The NIFTI package's own CMake file points at a library that Debian does not ship.
find_path(NIFTI2_INCLUDE_DIR nifti2_io.h PATH_SUFFIXES nifti REQUIRED)
find_library(NIFTI2_LIBRARY nifti2 REQUIRED)
find_library(ZNZ_LIBRARY znz REQUIRED)
add_library(tavmap_nifti2 INTERFACE)
target_include_directories(tavmap_nifti2 SYSTEM INTERFACE ${NIFTI2_INCLUDE_DIR})
target_link_libraries(tavmap_nifti2 INTERFACE ${NIFTI2_LIBRARY} ${ZNZ_LIBRARY} ZLIB::ZLIB)
