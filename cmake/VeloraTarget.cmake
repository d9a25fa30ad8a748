# Settings that all targets of the project share.

set(velora_sanitizers "" CACHE STRING "Sanitizers to build with, as -fsanitize takes them")

# velora_target(TARGET): C++20 without extensions, warnings as errors, and all symbols hidden that are not marked.
function(velora_target target)
  target_compile_features(${target} PRIVATE cxx_std_20)
  set_target_properties(${target} PROPERTIES
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    POSITION_INDEPENDENT_CODE ON)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Werror -Wconversion -Wsign-conversion -Wold-style-cast -Wcast-qual -Wnon-virtual-dtor
    -Woverloaded-virtual -Wundef
    # A unique symbol would keep the library in memory after it was unloaded. Clang does not make such symbols.
    $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique -Wshadow=local>
    $<$<CXX_COMPILER_ID:Clang>:-Wshadow>
    # GCC 12 wrongly reports overlaps in std::string (its bug 105651).
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>)
  if(velora_sanitizers)
    # Without the check of dynamic types: a test hands the component an object whose table of slots it made itself.
    target_compile_options(${target} PRIVATE
      -fsanitize=${velora_sanitizers} -fno-sanitize=vptr -fno-sanitize-recover=all -fno-omit-frame-pointer
      # With sanitizers, GCC wrongly reports uninitialised members in <regex> (its bug 105562).
      $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    target_link_options(${target} PRIVATE -fsanitize=${velora_sanitizers})
  endif()
endfunction()

# velora_precompile(TARGET PRIVATE HEADERS... | TARGET REUSE_FROM OTHER): lets GCC read headers once that most files of
# a target include. Every file includes what it needs all the same: clang, the preset "benchmark" and the build for
# Windows do without this. So does a build with a compiler cache, which would keep nothing otherwise.
function(velora_precompile target)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL GNU OR WIN32 OR CMAKE_CXX_COMPILER_LAUNCHER OR CMAKE_DISABLE_PRECOMPILE_HEADERS)
    return()
  endif()
  target_precompile_headers(${target} ${ARGN})
  # With a precompiled <string>, GCC 12 wrongly reports overflows where texts are joined (its bug 105651). The builds
  # without precompiled headers keep these warnings.
  target_compile_options(${target} PRIVATE
    $<$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>:-Wno-array-bounds;-Wno-stringop-overflow;-Wno-stringop-overread>)
endfunction()

# velora_exports(TARGET LIST): exports only what the version script LIST for the linker names, without instantiations of
# templates of the standard library.
function(velora_exports target list)
  if(NOT WIN32)
    target_link_options(${target} PRIVATE -Wl,--version-script=${list})
    set_target_properties(${target} PROPERTIES LINK_DEPENDS ${list})
  endif()
endfunction()

# velora_runtime_beside(FOLDER): copies the compiler's run-time libraries to a folder where Windows finds them, because
# Windows has no run paths. They are never linked statically: each DLL would have its own global locale and its own
# exception count.
function(velora_runtime_beside folder)
  foreach(file libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${file}
      OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
    file(COPY ${path} DESTINATION ${folder})
  endforeach()
endfunction()

# velora_platform_library(TARGET ROOT): makes TARGET from the vendor's library of that name under the prefix ROOT.
function(velora_platform_library target root)
  find_library(${target}_LIBRARY ${target} PATHS ${root} PATH_SUFFIXES lib NO_DEFAULT_PATH NO_CACHE REQUIRED)
  add_library(${target} UNKNOWN IMPORTED GLOBAL)
  set_target_properties(${target} PROPERTIES
    IMPORTED_LOCATION ${${target}_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${root}/include)
endfunction()
