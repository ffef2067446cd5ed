# How the project's own targets are compiled. Nothing here reaches the targets of those who embed
# the library, apart from the language standard and the include directory.

include(CheckCXXSourceCompiles)
foreach(option -mbranches-within-32B-boundaries -Wa,-mbranches-within-32B-boundaries)
  if(NOT VARN3D_ALIGN_BRANCHES_OPTION AND CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64" AND NOT MSVC)
    string(MAKE_C_IDENTIFIER "VARN3D_HAS${option}" found)
    set(CMAKE_REQUIRED_FLAGS ${option})
    check_cxx_source_compiles("int main() { return 0; }" ${found} FAIL_REGEX "unrecognized|unknown")
    unset(CMAKE_REQUIRED_FLAGS)
    if(${found})
      set(VARN3D_ALIGN_BRANCHES_OPTION ${option})
    endif()
  endif()
endforeach()

# Strict warnings as errors, for one of our own targets.
function(varn3d_strict_warnings target)
  if(NOT VARN3D_WERROR)
    return()
  endif()
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4 /WX)
  else()
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
                                             -Werror)
  endif()
endfunction()

# Compiles a target made of the library's sources the way they must be compiled.
function(varn3d_set_up_library target)
  target_compile_features(${target} PUBLIC cxx_std_17)
  target_include_directories(
    ${target} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}> $<INSTALL_INTERFACE:include>)
  set_target_properties(
    ${target}
    PROPERTIES CXX_EXTENSIONS OFF
               CXX_VISIBILITY_PRESET hidden
               VISIBILITY_INLINES_HIDDEN ON
               POSITION_INDEPENDENT_CODE ON)
  # A fused multiply-add rounds once where the predicates count on two roundings.
  if(MSVC)
    target_compile_options(${target} PRIVATE /fp:precise)
  else()
    target_compile_options(${target} PRIVATE -ffp-contract=off)
  endif()
  target_compile_options(${target} PRIVATE ${VARN3D_OPTIMISE})
  # Intel processors from Skylake to Cascade Lake decode slowly what jumps across 32 bytes.
  if(VARN3D_ALIGN_BRANCHES_OPTION)
    target_compile_options(${target} PRIVATE ${VARN3D_ALIGN_BRANCHES_OPTION})
  endif()
  varn3d_strict_warnings(${target})
endfunction()

# Gives a limit of so many seconds to each test of the present directory that has none of its own, so
# that one that hangs fails. They take seconds; the limit is for sanitizers and slow machines.
function(varn3d_limit_tests seconds)
  get_property(tests DIRECTORY PROPERTY TESTS)
  foreach(test IN LISTS tests)
    get_test_property(${test} TIMEOUT limit)
    if(NOT limit)
      set_tests_properties(${test} PROPERTIES TIMEOUT ${seconds})
    endif()
  endforeach()
endfunction()
