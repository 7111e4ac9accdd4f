# A Linux of the processor CMAKE_SYSTEM_PROCESSOR, by Debian's cross compiler; what was built runs by qemu's emulation.
set(CMAKE_SYSTEM_NAME Linux)
set(triplet ${CMAKE_SYSTEM_PROCESSOR}-linux-gnu)
set(CMAKE_C_COMPILER ${triplet}-gcc)
set(CMAKE_CXX_COMPILER ${triplet}-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-${CMAKE_SYSTEM_PROCESSOR} -L /usr/${triplet})
include(${CMAKE_CURRENT_LIST_DIR}/search.cmake)
