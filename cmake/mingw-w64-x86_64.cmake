# Cross-compiles for 64-bit Windows with Debian's MinGW-w64 (posix thread model,
# so that std::thread and std::mutex are available).
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(TRAYWELL_MINGW_TRIPLE x86_64-w64-mingw32)

set(CMAKE_C_COMPILER ${TRAYWELL_MINGW_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${TRAYWELL_MINGW_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${TRAYWELL_MINGW_TRIPLE}-windres)
set(CMAKE_AR ${TRAYWELL_MINGW_TRIPLE}-ar CACHE FILEPATH "Archiver")
set(CMAKE_RANLIB ${TRAYWELL_MINGW_TRIPLE}-ranlib CACHE FILEPATH "Archive indexer")
set(CMAKE_MC_COMPILER ${TRAYWELL_MINGW_TRIPLE}-windmc CACHE FILEPATH "Message compiler")

# Libraries and headers come from the MinGW sysroot only; programs (code
# generators and the like) come from the build machine.
set(CMAKE_FIND_ROOT_PATH /usr/${TRAYWELL_MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
