# cpack --preset release: a .deb and a .tar.gz

set(CPACK_PACKAGE_CONTACT "trackedcam maintainers <maintainers@trackedcam.example>")
set(CPACK_PACKAGE_FILE_NAME "${PROJECT_NAME}-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_RESOURCE_FILE_README ${PROJECT_SOURCE_DIR}/README.md)
set(CPACK_STRIP_FILES ON)
set(CPACK_THREADS 0)

# The Python package is a separate .deb, which depends on the other one. An archive holds both.
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_UNSPECIFIED_PACKAGE_NAME ${PROJECT_NAME})
set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-${PROJECT_NAME})
set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
    "python3 (>= 3.9), python3-numpy, ${PROJECT_NAME} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS python3-matplotlib)  # for drawings

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
# The lens solves ten times as fast as with the reference LAPACK. It does not need OpenBLAS's threads, but
# OpenBLAS without threads has no locks, and programs may call it from several threads.
set(CPACK_DEBIAN_UNSPECIFIED_PACKAGE_RECOMMENDS libopenblas0-pthread)

set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/same_dates.cmake)
include(CPack)
