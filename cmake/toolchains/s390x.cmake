# The bytes of a number lie in the other order.
set(CMAKE_SYSTEM_PROCESSOR s390x)
include(${CMAKE_CURRENT_LIST_DIR}/linux.cmake)
