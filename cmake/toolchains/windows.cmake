# Windows on x86-64, by Debian's MinGW-w64; what was built runs by wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(triplet x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${triplet}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triplet}-g++-posix)
set(CMAKE_RC_COMPILER ${triplet}-windres)
set(CMAKE_CROSSCOMPILING_EMULATOR wine)
include(${CMAKE_CURRENT_LIST_DIR}/search.cmake)
