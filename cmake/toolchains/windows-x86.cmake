set(CMAKE_SYSTEM_PROCESSOR i686)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
# Windows aligns a 32-bit stack to 4 bytes where it calls into the program; GCC relies on 16.
set(CMAKE_CXX_FLAGS_INIT "-mstackrealign")
