# find_package(qorv_skia 1.0) gives the targets qorv::qorv_skia and qorv::qorv_skia_static, of those that are installed;
# where the static library alone is, qorv::qorv_skia is another name of it. The components `shared` and `static` ask for
# one of them.
include(${CMAKE_CURRENT_LIST_DIR}/qorv_skia-targets.cmake)

if(TARGET qorv::qorv_skia)
  set(qorv_skia_shared_FOUND TRUE)
endif()
if(TARGET qorv::qorv_skia_static)
  set(qorv_skia_static_FOUND TRUE)
  # The library is C++ inside but needs no C++ runtime: without this a C program could not link the static library with
  # the C compiler alone.
  get_target_property(qorv_configurations qorv::qorv_skia_static IMPORTED_CONFIGURATIONS)
  foreach(qorv_configuration ${qorv_configurations})
    set_property(TARGET qorv::qorv_skia_static PROPERTY IMPORTED_LINK_INTERFACE_LANGUAGES_${qorv_configuration})
  endforeach()
  unset(qorv_configurations)
  if(NOT TARGET qorv::qorv_skia)
    add_library(qorv::qorv_skia ALIAS qorv::qorv_skia_static)
  endif()
endif()

foreach(qorv_component ${qorv_skia_FIND_COMPONENTS})
  if(qorv_skia_FIND_REQUIRED_${qorv_component} AND NOT qorv_skia_${qorv_component}_FOUND)
    set(qorv_skia_FOUND FALSE)
    set(qorv_skia_NOT_FOUND_MESSAGE "The component ${qorv_component} is not installed; there are `shared` and `static`.")
  endif()
endforeach()
unset(qorv_component)
