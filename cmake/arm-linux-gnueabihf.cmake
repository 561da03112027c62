# Cross build for the appliance: 32-bit ARM hard-float Linux, against Debian's
# multiarch armhf packages; tests run under qemu-arm.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)

set(CMAKE_FIND_ROOT_PATH /usr/arm-linux-gnueabihf)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY BOTH)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE BOTH)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)

# The armhf loader and libraries come from Debian multiarch (libc6:armhf), so
# qemu-arm needs no -L prefix; the cross toolchain's own libc under
# /usr/arm-linux-gnueabihf may be of another release and must not be mixed in.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm)

# Libraries install to Debian's multiarch directory, as armhf packages must
# (GNUInstallDirs picks it only for a native /usr build).
set(CMAKE_INSTALL_LIBDIR lib/arm-linux-gnueabihf)
