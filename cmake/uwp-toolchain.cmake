# Cross-compiles for Windows with zig's clang and C library (scripts/setup-windows.sh installs them).
# ZARVIK_UWP_ARCHITECTURE (arm64 or x64) chooses the processor.

set(ZARVIK_UWP_ARCHITECTURE "arm64" CACHE STRING "Processor: arm64 or x64")
if(DEFINED ENV{ZARVIK_CACHE})
    set(ZARVIK_CACHE "$ENV{ZARVIK_CACHE}" CACHE PATH "Where the cross toolchain is installed")
else()
    set(ZARVIK_CACHE "${CMAKE_CURRENT_LIST_DIR}/../.cache" CACHE PATH "Where the cross toolchain is installed")
endif()
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ZARVIK_UWP_ARCHITECTURE ZARVIK_CACHE)

cmake_path(ABSOLUTE_PATH ZARVIK_CACHE NORMALIZE OUTPUT_VARIABLE ZARVIK_WINDOWS)
cmake_path(APPEND ZARVIK_WINDOWS windows)
if(NOT EXISTS "${ZARVIK_WINDOWS}/stamp")
    message(FATAL_ERROR "The Windows cross toolchain is not installed. Run scripts/setup-windows.sh first.")
endif()

set(CMAKE_SYSTEM_NAME Windows)
if(ZARVIK_UWP_ARCHITECTURE STREQUAL "arm64")
    set(CMAKE_SYSTEM_PROCESSOR ARM64)
    set(CMAKE_C_COMPILER_TARGET aarch64-windows-gnu)
elseif(ZARVIK_UWP_ARCHITECTURE STREQUAL "x64")
    set(CMAKE_SYSTEM_PROCESSOR AMD64)
    set(CMAKE_C_COMPILER_TARGET x86_64-windows-gnu)
else()
    message(FATAL_ERROR "ZARVIK_UWP_ARCHITECTURE is '${ZARVIK_UWP_ARCHITECTURE}'; it must be arm64 or x64.")
endif()
set(CMAKE_CXX_COMPILER_TARGET ${CMAKE_C_COMPILER_TARGET})

set(CMAKE_C_COMPILER "${ZARVIK_WINDOWS}/bin/zig-cc")
set(CMAKE_CXX_COMPILER "${ZARVIK_WINDOWS}/bin/zig-c++")
set(CMAKE_AR "${ZARVIK_WINDOWS}/bin/zig-ar" CACHE FILEPATH "")
set(CMAKE_RANLIB "${ZARVIK_WINDOWS}/bin/zig-ranlib" CACHE FILEPATH "")

# The platform's import library replaces the list of desktop libraries that CMake would add.
set(CMAKE_C_STANDARD_LIBRARIES "" CACHE STRING "")
set(CMAKE_CXX_STANDARD_LIBRARIES "" CACHE STRING "")

# Compiling and linking need the same -O: zig builds its runtime once per combination (some minutes).
# So the configure step's own checks do not link either. The debug information goes to a file beside the DLL.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_C_FLAGS_RELEASE "-O2 -gline-tables-only -DNDEBUG" CACHE STRING "")
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -gline-tables-only -DNDEBUG" CACHE STRING "")
set(CMAKE_EXE_LINKER_FLAGS_RELEASE "-O2" CACHE STRING "")
set(CMAKE_SHARED_LINKER_FLAGS_RELEASE "-O2" CACHE STRING "")

set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
