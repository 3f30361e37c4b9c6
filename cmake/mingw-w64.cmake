# Toolchain file: builds for Windows on x86-64 with mingw-w64, on Debian.
#
# TRACKEDCAM_WINDOWS_DEPENDENCIES is the folder that scripts/build_windows_dependencies.sh writes.

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

# The compilers with POSIX threads: those with Windows threads lack std::thread.
set(tools x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${tools}-gcc-posix)
set(CMAKE_CXX_COMPILER ${tools}-g++-posix)
set(CMAKE_Fortran_COMPILER ${tools}-gfortran-posix)
set(CMAKE_RC_COMPILER ${tools}-windres)
set(CMAKE_AR ${tools}-gcc-ar-posix)
set(CMAKE_RANLIB ${tools}-gcc-ranlib-posix)
set(CMAKE_ASM_NASM_COMPILER nasm)

# Windows 7 and later.
foreach(language IN ITEMS C CXX)
  set(CMAKE_${language}_FLAGS_INIT "-D_WIN32_WINNT=0x0601 -DWINVER=0x0601")
endforeach()

# Compiler runtimes are linked in, so only Windows itself is needed. No time stamp, and no base address
# that depends on the output path, so that two builds give the same bytes.
foreach(kind IN ITEMS EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT
      "-static -static-libgcc -static-libstdc++ -Wl,--no-insert-timestamp,--disable-auto-image-base")
  set(CMAKE_${kind}_LINKER_FLAGS_RELEASE_INIT "-s")
endforeach()

set(TRACKEDCAM_WINDOWS_DEPENDENCIES
    ${CMAKE_CURRENT_LIST_DIR}/../build/windows-dependencies
    CACHE PATH "Output of scripts/build_windows_dependencies.sh")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TRACKEDCAM_WINDOWS_DEPENDENCIES)

set(CMAKE_FIND_ROOT_PATH ${TRACKEDCAM_WINDOWS_DEPENDENCIES} /usr/${tools})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
