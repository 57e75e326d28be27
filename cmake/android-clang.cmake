# Compiles and links for Android without its NDK, to check the sources: clang 19 on the Android triple, no header of a
# C++ library, musl's headers, and in place of bionic a stub library of the names that the library may use
# (scripts/android_check).
# Nothing built with it is fit to run; programs are built with the NDK's own toolchain file.
# -DQORV_ANDROID_PROCESSOR=aarch64|x86_64 -DQORV_ANDROID_STUBS=<folder of libc.so>
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${QORV_ANDROID_PROCESSOR})
set(ANDROID ON)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES QORV_ANDROID_PROCESSOR QORV_ANDROID_STUBS)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

set(CMAKE_CXX_COMPILER clang++-19)
set(CMAKE_CXX_COMPILER_TARGET ${QORV_ANDROID_PROCESSOR}-linux-android24)
# musl declares the plain POSIX names, as bionic does; glibc would redirect some of them. What is behind errno has a
# name of bionic's own. The kernel's headers come last.
set(CMAKE_CXX_FLAGS_INIT "-nostdlibinc -fstack-protector-strong -D__errno_location=__errno \
-isystem /usr/include/x86_64-linux-musl -idirafter /usr/include -idirafter /usr/include/x86_64-linux-gnu")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-fuse-ld=lld-19 -nostdlib -Wl,--build-id=sha1 -L${QORV_ANDROID_STUBS}")
set(CMAKE_CXX_STANDARD_LIBRARIES_INIT "-lc")
if(QORV_ANDROID_PROCESSOR STREQUAL x86_64)
  # The processor test, which the NDK links from its own copy of this archive.
  string(APPEND CMAKE_CXX_STANDARD_LIBRARIES_INIT " /usr/lib/llvm-19/lib/clang/19/lib/linux/libclang_rt.builtins-x86_64.a")
endif()
