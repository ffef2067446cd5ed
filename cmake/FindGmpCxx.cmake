# GMP with its C++ interface: the target GMP::gmpxx. CGAL has modules FindGMP and FindGMPXX of its
# own, which the benchmarks need: a module of either name would take their place.
include(FindPackageHandleStandardArgs)
find_path(GMP_INCLUDE_DIR gmp.h)
find_path(GMPXX_INCLUDE_DIR gmpxx.h)
find_library(GMP_LIBRARY gmp)
find_library(GMPXX_LIBRARY gmpxx)
mark_as_advanced(GMP_INCLUDE_DIR GMPXX_INCLUDE_DIR GMP_LIBRARY GMPXX_LIBRARY)
find_package_handle_standard_args(GmpCxx DEFAULT_MSG GMPXX_LIBRARY GMP_LIBRARY GMP_INCLUDE_DIR
                                  GMPXX_INCLUDE_DIR)
if(GmpCxx_FOUND AND NOT TARGET GMP::gmpxx)
  add_library(GMP::gmpxx INTERFACE IMPORTED)
  target_include_directories(GMP::gmpxx INTERFACE ${GMP_INCLUDE_DIR} ${GMPXX_INCLUDE_DIR})
  target_link_libraries(GMP::gmpxx INTERFACE ${GMPXX_LIBRARY} ${GMP_LIBRARY})
endif()
