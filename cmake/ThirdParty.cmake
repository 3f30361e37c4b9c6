# The third-party packages that are part of the library and the program, and their licences: the file
# THIRD_PARTY_NOTICES, and the target trackedcam_licences for the program. A test compares the list
# with what is linked and included.

set(third_party libeigen3-dev)
if(TRACKEDCAM_BUILD_HOST)
  list(APPEND third_party libcli11-dev nlohmann-json3-dev libtomlplusplus-dev libboost1.*-dev
       libkainjow-mustache-dev libjs-three libjs-chart.js)
endif()
set(licence_folders /usr/share/doc)
if(MINGW)
  list(APPEND third_party opencv libpng1.6 libjpeg-turbo tiff libwebp openblas lapack
       libz-mingw-w64-dev gcc-mingw-w64-base mingw-w64-x86-64-dev)
  list(PREPEND licence_folders ${TRACKEDCAM_WINDOWS_DEPENDENCIES}/share/doc)
elseif(DEFINED VCPKG_INSTALLED_DIR)
  set(licence_folders ${VCPKG_INSTALLED_DIR}/${VCPKG_TARGET_TRIPLET}/share)
  file(GLOB third_party RELATIVE ${licence_folders} ${licence_folders}/*/copyright)
  list(TRANSFORM third_party REPLACE "/copyright$" "")
elseif(NOT EXISTS /usr/share/doc/libeigen3-dev/copyright)
  message(STATUS "The licences of Debian's packages are missing: the notices are empty")
  set(third_party "")
endif()

set(notices ${PROJECT_BINARY_DIR}/THIRD_PARTY_NOTICES)
add_custom_command(
  OUTPUT ${notices} ${notices}.copyright ${notices}.cpp
  COMMAND
    ${CMAKE_COMMAND} -D OUTPUT=${notices} -D LICENSE=${PROJECT_SOURCE_DIR}/LICENSE -D
    "FOLDERS=${licence_folders}" -D "PACKAGES=${third_party}" -P
    ${CMAKE_CURRENT_LIST_DIR}/write_notices.cmake
  DEPENDS ${PROJECT_SOURCE_DIR}/LICENSE ${CMAKE_CURRENT_LIST_DIR}/write_notices.cmake
          ${CMAKE_CURRENT_LIST_FILE}
  VERBATIM)
add_custom_target(trackedcam_notices ALL DEPENDS ${notices})
if(TRACKEDCAM_BUILD_HOST)
  add_library(trackedcam_licences STATIC ${notices}.cpp)
  add_dependencies(trackedcam_licences trackedcam_notices)
  target_include_directories(trackedcam_licences PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(trackedcam_licences PRIVATE trackedcam_compile_options)
endif()
