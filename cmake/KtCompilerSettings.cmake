# Settings that all targets of the project share. A target takes them with kt_compile_settings(target).

set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# Compile through ccache where it is found; set CMAKE_CXX_COMPILER_LAUNCHER to choose otherwise.
find_program(KT_CCACHE ccache)
mark_as_advanced(KT_CCACHE)
if(KT_CCACHE AND NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${KT_CCACHE})
endif()

# Optimised builds keep -O3: the passes over links gain from it.
string(REPLACE "-O2" "-O3" CMAKE_CXX_FLAGS_RELWITHDEBINFO "${CMAKE_CXX_FLAGS_RELWITHDEBINFO}")

if(KT_SANITIZE)
  add_compile_options(-fsanitize=${KT_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${KT_SANITIZE})
endif()

function(kt_compile_settings target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wshadow -Wpedantic -Wnon-virtual-dtor
                                           -Wcast-align -Woverloaded-virtual)
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # GCC 12 sees overlaps where strings are concatenated (its bug 105651).
    target_compile_options(${target} PRIVATE -Wno-restrict)
  endif()
  if(KT_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
