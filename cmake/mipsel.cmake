# Little-endian 32-bit MIPS, the processor of the routers this is for, with Debian's cross compiler.
# What the compiler's packages do not bring (cJSON, GoogleTest) `script/bootstrap --mips` unpacks
# into build/mipsel-root.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR mipsel)
set(CMAKE_C_COMPILER mipsel-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER mipsel-linux-gnu-g++)
# The 24KEc core of the MT7628, in its 16-bit instructions as OpenWrt builds packages for it: a third
# less code. Debian's libraries are for the same core, but with a floating-point unit.
set(mipsel_flags "-march=mips32r2 -mtune=24kc -mips16 -minterlink-mips16")
set(CMAKE_C_FLAGS_INIT ${mipsel_flags})
set(CMAKE_CXX_FLAGS_INIT ${mipsel_flags})

set(mipsel_root ${CMAKE_CURRENT_LIST_DIR}/../build/mipsel-root)
cmake_path(NORMAL_PATH mipsel_root)
set(CMAKE_LIBRARY_ARCHITECTURE mipsel-linux-gnu)
set(CMAKE_FIND_ROOT_PATH ${mipsel_root} /usr/mipsel-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} ${mipsel_root}/usr/lib/mipsel-linux-gnu/pkgconfig)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${mipsel_root})
