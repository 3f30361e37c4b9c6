# Compile options of all targets of the project.

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# Selects platform_posix.cpp or platform_windows.cpp in each folder that has them.
if(WIN32)
  set(TRACKEDCAM_PLATFORM windows)
else()
  set(TRACKEDCAM_PLATFORM posix)
endif()

add_library(trackedcam_compile_options INTERFACE)
target_compile_features(trackedcam_compile_options INTERFACE cxx_std_17)

if(MSVC)
  target_compile_options(trackedcam_compile_options INTERFACE /utf-8 /W4 /fp:precise)
else()
  # Every machine must print the same digits: a fused multiply-add rounds once, the two separate
  # operations round twice.
  target_compile_options(
    trackedcam_compile_options INTERFACE -ffp-contract=off -Wall -Wextra -Wpedantic -Wshadow
                                         -Wnon-virtual-dtor -Woverloaded-virtual)
endif()

# A matrix element that was never set is NaN instead of a plausible number.
target_compile_definitions(trackedcam_compile_options
                           INTERFACE $<$<CONFIG:Debug>:EIGEN_INITIALIZE_MATRICES_BY_NAN>)
