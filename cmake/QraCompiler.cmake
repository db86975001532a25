# Language level, warnings and sanitizers for every target of the tree.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Build type" FORCE)
endif()

find_program(QRA_CCACHE ccache)
if(QRA_CCACHE)
    set(CMAKE_C_COMPILER_LAUNCHER ${QRA_CCACHE})
    set(CMAKE_CXX_COMPILER_LAUNCHER ${QRA_CCACHE})
    if(QRA_PRECOMPILE)
        # What the cache asks for, to know a source that is compiled with a precompiled header again.
        list(PREPEND CMAKE_CXX_COMPILER_LAUNCHER env CCACHE_SLOPPINESS=pch_defines,time_macros)
    endif()
endif()

# 64-bit file offsets also on 32-bit processors.
add_compile_definitions(_FILE_OFFSET_BITS=64 _GNU_SOURCE)
add_compile_options(-Wall -Wextra -Wformat=2)
if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
    add_compile_options(-Wthread-safety)
endif()
if(QRA_WERROR)
    add_compile_options(-Werror)
endif()

if(QRA_SANITIZE)
    add_compile_options(-fsanitize=${QRA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${QRA_SANITIZE})
endif()

if(QRA_BUILD_FUZZ)
    # The coverage that libFuzzer steers by; its main function is linked to the fuzz targets alone.
    add_compile_options(-fsanitize=fuzzer-no-link)
    add_link_options(-fsanitize=fuzzer-no-link)
endif()

# The tree links a hundred programs; this linker takes a third of the default one's time.
find_program(QRA_LLD ld.lld)
if(QRA_LLD)
    add_link_options(-fuse-ld=lld)
endif()

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
