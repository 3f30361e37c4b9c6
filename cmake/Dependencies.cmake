# What the library is built on. Both are private: a program that uses the library needs neither.

find_package(OpenCV 4.6 REQUIRED COMPONENTS core imgproc imgcodecs calib3d)
if(OpenCV_VERSION VERSION_GREATER_EQUAL 5)
  message(FATAL_ERROR "OpenCV ${OpenCV_VERSION} found; 4.6 or a later 4.x is needed.")
endif()
find_package(Eigen3 3.4 REQUIRED NO_MODULE)

message(STATUS "OpenCV ${OpenCV_VERSION}, Eigen ${Eigen3_VERSION}")
