# The installed files and their folders.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/trackedcam)

if(TARGET trackedcam_c_import_library)
  install(FILES ${PROJECT_BINARY_DIR}/c/trackedcam_c.lib DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
set(libraries trackedcam)
if(TARGET trackedcam_c)
  list(APPEND libraries trackedcam_c)
endif()
install(
  TARGETS ${libraries}
  EXPORT trackedcamTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES ${PROJECT_SOURCE_DIR}/include/trackedcam/trackedcam.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/trackedcam)
if(TARGET trackedcam_c)
  install(FILES ${PROJECT_SOURCE_DIR}/include/trackedcam/trackedcam_c.h
                ${PROJECT_SOURCE_DIR}/include/trackedcam/trackedcam.hpp
          DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/trackedcam)
endif()
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/README.md
              ${PROJECT_SOURCE_DIR}/CHANGELOG.md ${PROJECT_BINARY_DIR}/THIRD_PARTY_NOTICES
        DESTINATION ${CMAKE_INSTALL_DOCDIR})
if(NOT WIN32)
  # The file name under which a Debian package has its licences.
  install(
    FILES ${PROJECT_BINARY_DIR}/THIRD_PARTY_NOTICES.copyright
    DESTINATION ${CMAKE_INSTALL_DOCDIR}
    RENAME copyright)
endif()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs ${PROJECT_SOURCE_DIR}/examples
        DESTINATION ${CMAKE_INSTALL_DOCDIR})

# find_package(trackedcam CONFIG [COMPONENTS c])
install(
  EXPORT trackedcamTargets
  NAMESPACE trackedcam::
  DESTINATION ${package_dir})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/trackedcamConfig.cmake.in
                              ${PROJECT_BINARY_DIR}/trackedcamConfig.cmake
                              INSTALL_DESTINATION ${package_dir})
install(FILES ${PROJECT_BINARY_DIR}/trackedcamConfig.cmake DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/trackedcamConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/trackedcamConfigVersion.cmake DESTINATION ${package_dir})

# pkg-config trackedcam and pkg-config trackedcam_c; both work after the installed tree is moved.
file(RELATIVE_PATH PREFIX_FROM_PC_FILE /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
foreach(library IN LISTS libraries)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/trackedcam.pc.in ${PROJECT_BINARY_DIR}/${library}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${library}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

if(TARGET trackedcam_program)
  file(RELATIVE_PATH libraries_from_programs /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
  set_target_properties(trackedcam_program PROPERTIES INSTALL_RPATH $ORIGIN/${libraries_from_programs})
  install(TARGETS trackedcam_program RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

  find_program(LOWDOWN lowdown)
  if(LOWDOWN)
    set(man_page ${PROJECT_BINARY_DIR}/trackedcam.1)
    set(man_page_source ${PROJECT_SOURCE_DIR}/docs/trackedcam.1.md)
    add_custom_command(
      OUTPUT ${man_page}
      COMMAND ${LOWDOWN} -s -Tman --out-no-smarty -Mtitle=TRACKEDCAM -Msection=1
              "-Msource=trackedcam ${PROJECT_VERSION}" -o ${man_page} ${man_page_source}
      DEPENDS ${man_page_source}
      VERBATIM)
    add_custom_target(trackedcam_man_page ALL DEPENDS ${man_page})
    install(FILES ${man_page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  else()
    message(STATUS "lowdown is missing: no man page")
  endif()
endif()

if(MINGW)
  # The map lists the members of static libraries that were linked; a test compares it with the notices.
  foreach(target IN ITEMS trackedcam trackedcam_c trackedcam_program)
    if(TARGET ${target})
      target_link_options(${target} PRIVATE "LINKER:-Map=${PROJECT_BINARY_DIR}/${target}.map")
    endif()
  endforeach()
endif()
