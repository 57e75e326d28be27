# find_package(qorv_skia 1.0) gives the targets qorv::qorv_skia (shared) and qorv::qorv_skia_static.
include(${CMAKE_CURRENT_LIST_DIR}/qorv_skia-targets.cmake)

# The library is C++ inside but needs no C++ runtime: without this a C program could not link the static library with
# the C compiler alone.
get_target_property(qorv_configurations qorv::qorv_skia_static IMPORTED_CONFIGURATIONS)
foreach(qorv_configuration ${qorv_configurations})
  set_property(TARGET qorv::qorv_skia_static PROPERTY IMPORTED_LINK_INTERFACE_LANGUAGES_${qorv_configuration})
endforeach()
unset(qorv_configurations)
