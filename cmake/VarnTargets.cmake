# How the project's own targets are compiled. Nothing here reaches the targets of those who embed
# the library, apart from the language standard and the include directory.

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
  varn3d_strict_warnings(${target})
endfunction()
