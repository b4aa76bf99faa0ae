# Toolchain file for arm64 Linux on a Debian machine of another kind: Debian's cross compiler, the libraries of
# its arm64 packages, and qemu-user to run what was built.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64)

# Packages of this machine's own kind must not be found in place of arm64 ones.
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/aarch64-linux-gnu/pkgconfig:/usr/share/pkgconfig)
set(CMAKE_IGNORE_PREFIX_PATH /usr/local)
