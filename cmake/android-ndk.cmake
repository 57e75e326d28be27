# The NDK's own toolchain file, for the presets android-*. QORV_ANDROID_NDK is the NDK's folder.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES QORV_ANDROID_NDK)
if(NOT EXISTS "${QORV_ANDROID_NDK}/build/cmake/android.toolchain.cmake")
  message(FATAL_ERROR "Set ANDROID_NDK to the folder of an Android NDK (one with build/cmake/android.toolchain.cmake); "
    "it is \"${QORV_ANDROID_NDK}\".")
endif()
include("${QORV_ANDROID_NDK}/build/cmake/android.toolchain.cmake")
