# How the library is put together: ordinary sources are compiled once, kernel sources once for every instruction set.
# Each folder adds its own with qorv_sources() and qorv_kernel_sources(); qorv_finish_library() makes the targets.

# The library's folders; those of the tests have the same names.
set(QORV_FOLDERS core system buffer bitstream csc resize metric container util hash)

set(QORV_WARNINGS -Wall -Wextra -Wconversion -Wshadow)
# Presets make warnings errors. Those of compilers other than the two that scripts/check pins are only shown.
if(NOT "${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION}" MATCHES "^(GNU 12|Clang 19)\\.")
  set(CMAKE_COMPILE_WARNING_AS_ERROR OFF)
endif()

if(QORV_SCALAR)
  set(QORV_ISAS plain)
elseif(QORV_X86_64)
  set(QORV_ISAS v2 v3)
elseif(QORV_AARCH64)
  set(QORV_ISAS neon)
  set(QORV_PARTIAL_ISAS dotprod)  # on top of QORV_ISAS: a few functions alone
else()
  set(QORV_ISAS plain)
endif()
# The baseline set runs on processors of more than ten years ago alone: there, size counts for more than the last
# cycles.
set(QORV_ISA_FLAGS_v2 -march=x86-64-v2 -Os -DQORV_SMALL_KERNELS)
set(QORV_ISA_FLAGS_v3 -march=x86-64-v3)
# In-order cores depend on the order that the compiler finds, the others hardly.
set(QORV_ISA_FLAGS_neon -mtune=cortex-a55)
set(QORV_ISA_FLAGS_dotprod -march=armv8.2-a+dotprod -DQORV_PARTIAL_SET)
if(NOT QORV_ISAS MATCHES ";")
  set(QORV_ONLY_SET QORV_ONLY_SET)  # kernels may be the exported functions themselves
endif()
if(NOT "plain" IN_LIST QORV_ISAS)
  # For the tests alone, then: its unrolled blocks would take the compiler half a minute.
  set(QORV_ISA_FLAGS_plain -DQORV_SMALL_KERNELS)
endif()

# Compile options of every source that goes into the library.
add_library(qorv_build_options INTERFACE)
target_include_directories(qorv_build_options INTERFACE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/include)
target_compile_options(qorv_build_options INTERFACE
  ${QORV_WARNINGS} -fvisibility=hidden -fno-exceptions -fno-rtti -fno-threadsafe-statics -fno-math-errno)
if(QORV_AARCH64)
  target_compile_options(qorv_build_options INTERFACE -mbranch-protection=standard)
endif()
# No exception begins in the library, but a crash in it has to show its caller, and one thrown by a callback has to
# pass. Some targets leave the tables out unless asked.
target_compile_options(qorv_build_options INTERFACE -fasynchronous-unwind-tables)
if(NOT QORV_X86_64 AND NOT QORV_AARCH64 AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # Where it takes the processor for one without vectors, g++ 12 vectorises loops over bytes in whole words, wrongly.
  target_compile_options(qorv_build_options INTERFACE -fno-tree-vectorize)
endif()

add_library(qorv_objects OBJECT)
target_link_libraries(qorv_objects PRIVATE qorv_build_options)
set_target_properties(qorv_objects PROPERTIES POSITION_INDEPENDENT_CODE ON)
# Sources other than kernels parse what comes from outside. Fortified functions need optimisation, and the NDK has its
# own.
target_compile_options(qorv_objects PRIVATE -fstack-protector-strong)
if(NOT QORV_SANITIZE AND NOT ANDROID)
  target_compile_options(qorv_objects PRIVATE
    $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE> $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-D_FORTIFY_SOURCE=2>)
endif()
target_compile_definitions(qorv_objects PRIVATE ${QORV_ONLY_SET})
foreach(isa ${QORV_ISAS} ${QORV_PARTIAL_ISAS})
  target_compile_definitions(qorv_objects PRIVATE QORV_HAVE_${isa})
endforeach()

function(qorv_sources)
  foreach(source ${ARGN})
    target_sources(qorv_objects PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/${source})
  endforeach()
endfunction()

function(qorv_kernel_sources)
  foreach(source ${ARGN})
    set_property(GLOBAL APPEND PROPERTY QORV_KERNEL_SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/${source})
  endforeach()
endfunction()

# Those that a set of QORV_PARTIAL_ISAS is compiled from.
function(qorv_partial_kernel_sources)
  foreach(source ${ARGN})
    set_property(GLOBAL APPEND PROPERTY QORV_PARTIAL_KERNEL_SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/${source})
  endforeach()
endfunction()

# Three checks at every access, for which AddressSanitizer has a better one, take the compiler minutes where blocks are
# unrolled or every member has a reference of its own.
function(qorv_leave_accesses_to_asan target)
  if(QORV_SANITIZE MATCHES "undefined")
    target_compile_options(${target} PRIVATE -fno-sanitize=null,object-size,pointer-overflow)
  endif()
endfunction()

# An object library of kernel sources, compiled for one instruction set.
function(qorv_add_kernel_objects target isa)
  add_library(${target} OBJECT ${ARGN})
  target_link_libraries(${target} PRIVATE qorv_build_options)
  target_compile_options(${target} PRIVATE ${QORV_ISA_FLAGS_${isa}})
  qorv_leave_accesses_to_asan(${target})
  target_compile_definitions(${target} PRIVATE QORV_ISA=${isa} QORV_ISA_IS_${isa})
  set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
endfunction()

# The one of all the library's kernel sources, or of those that a partial set has.
function(qorv_add_kernels isa)
  if(isa IN_LIST QORV_PARTIAL_ISAS)
    get_property(sources GLOBAL PROPERTY QORV_PARTIAL_KERNEL_SOURCES)
  else()
    get_property(sources GLOBAL PROPERTY QORV_KERNEL_SOURCES)
  endif()
  qorv_add_kernel_objects(qorv_kernels_${isa} ${isa} ${sources})
  if(isa STREQUAL QORV_ISAS)
    target_compile_definitions(qorv_kernels_${isa} PRIVATE ${QORV_ONLY_SET})
  endif()
endfunction()

# The linker's version script is made from the list of exported names, which get the version QORV_<major>.
function(qorv_write_version_script list script)
  file(STRINGS ${list} names REGEX "^[a-z]")
  list(JOIN names ";\n    " joined)
  file(CONFIGURE OUTPUT ${script} CONTENT "QORV_${PROJECT_VERSION_MAJOR} {\n  global:\n    ${joined};\n  local:\n    *;\n};\n")
  set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${list})
endfunction()

function(qorv_add_shared_library)
  set(script ${CMAKE_CURRENT_BINARY_DIR}/qorv_skia.map)
  qorv_write_version_script(${PROJECT_SOURCE_DIR}/qorv_skia.exports ${script})
  add_library(qorv_skia SHARED ${ARGN})
  set_target_properties(qorv_skia PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR} LINK_DEPENDS ${script})
  target_link_options(qorv_skia PRIVATE -Wl,--version-script=${script}
    -Wl,-z,now,-z,relro,-z,noexecstack -Wl,--as-needed -Wl,--no-undefined-version)
  target_link_options(qorv_skia PRIVATE -static-libgcc)  # some processors have no instruction for a byte swap
  if(NOT QORV_SANITIZE)
    target_link_options(qorv_skia PRIVATE -Wl,-z,defs)
  endif()
  if(QORV_AARCH64)
    target_link_options(qorv_skia PRIVATE -mbranch-protection=standard)
  endif()
  # Android devices of either architecture may have pages of 16 KiB, AArch64 servers too.
  if(ANDROID OR QORV_AARCH64)
    target_link_options(qorv_skia PRIVATE -Wl,-z,max-page-size=16384)
  endif()
endfunction()

# Picture families copy rows of sizes that no compiler knows: fortified, their copies would check nothing, and lose
# their inlining (a twentieth of all instructions of a small conversion).
function(qorv_leave_pictures_unfortified)
  get_target_property(sources qorv_objects SOURCES)
  list(FILTER sources INCLUDE REGEX "/src/(csc|metric|resize)/")
  set_property(SOURCE ${sources} APPEND PROPERTY COMPILE_OPTIONS -U_FORTIFY_SOURCE)
endfunction()

function(qorv_finish_library)
  qorv_leave_pictures_unfortified()
  set(objects $<TARGET_OBJECTS:qorv_objects>)
  foreach(isa ${QORV_ISAS} ${QORV_PARTIAL_ISAS})
    qorv_add_kernels(${isa})
    list(APPEND objects $<TARGET_OBJECTS:qorv_kernels_${isa}>)
  endforeach()

  # BUILD_SHARED_LIBS chooses where it is set; otherwise both are built.
  set(targets)
  if(NOT DEFINED BUILD_SHARED_LIBS OR BUILD_SHARED_LIBS)
    qorv_add_shared_library(${objects})
    list(APPEND targets qorv_skia)
  endif()
  if(NOT BUILD_SHARED_LIBS)
    add_library(qorv_skia_static STATIC ${objects})
    set_target_properties(qorv_skia_static PROPERTIES OUTPUT_NAME qorv_skia)
    list(APPEND targets qorv_skia_static)
  endif()
  foreach(target ${targets})
    target_include_directories(${target} PUBLIC
      $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    add_library(qorv::${target} ALIAS ${target})
  endforeach()
  if(NOT TARGET qorv_skia)
    add_library(qorv::qorv_skia ALIAS qorv_skia_static)
  endif()
endfunction()
