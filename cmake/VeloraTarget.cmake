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

# velora_together(TARGET [ALONE SOURCES...]): with VELORA_TOGETHER, the sources of a folder are compiled as one, which
# reads the headers that they include once. What is ALONE has names of its own that others of its folder have too, such
# as the columns of its question. Every file includes what it needs all the same: "release" and "debug" do without this.
option(VELORA_TOGETHER "Compile the sources of a folder together" OFF)
function(velora_together target)
  if(NOT VELORA_TOGETHER)
    return()
  endif()
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "ALONE")
  get_target_property(sources ${target} SOURCES)
  list(REMOVE_ITEM sources ${arg_ALONE})
  foreach(source IN LISTS sources)
    cmake_path(GET source PARENT_PATH folder)
    string(MAKE_C_IDENTIFIER "in_${folder}" group)
    set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${group})
  endforeach()
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
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
