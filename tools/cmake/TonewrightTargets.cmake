# What all targets share: language, warnings, arithmetic, sanitizers, and the rules for a folder's library and tests.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()
set(CMAKE_CXX_FLAGS_RELEASE "-O3 -DNDEBUG")

find_program(TONEWRIGHT_CCACHE ccache)
if(TONEWRIGHT_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${TONEWRIGHT_CCACHE})
endif()

find_package(Threads REQUIRED)
find_package(OpenMP REQUIRED COMPONENTS CXX)

# Float32 arithmetic is carried out as written: nothing is contracted or reordered. Without -fno-trapping-math the
# polynomial loops stay scalar.
add_library(tonewright_options INTERFACE)
add_library(Tonewright::options ALIAS tonewright_options)
set_target_properties(tonewright_options PROPERTIES EXPORT_NAME options)
target_compile_options(tonewright_options INTERFACE
  $<BUILD_INTERFACE:-ffp-contract=off;-fno-trapping-math;-fno-math-errno>
  $<BUILD_INTERFACE:-Wall;-Wextra>
  $<BUILD_INTERFACE:$<$<CXX_COMPILER_ID:GNU>:-Wconversion;-Werror>>)
if(TONEWRIGHT_SANITIZE)
  target_compile_options(tonewright_options INTERFACE
    $<BUILD_INTERFACE:-fsanitize=address,undefined;-fno-sanitize-recover=all;-fno-omit-frame-pointer>)
  target_link_options(tonewright_options INTERFACE $<BUILD_INTERFACE:-fsanitize=address,undefined>)
endif()
install(TARGETS tonewright_options EXPORT TonewrightTargets COMPONENT dev)

# tonewright_library(<folder> [USES <folder>...] [LINKS <library>...])
# Every .cpp of the folder becomes the library tonewright_<folder>, exported as Tonewright::<folder>.
# Headers that end in _impl.h are the folder's own and are not installed.
function(tonewright_library name)
  cmake_parse_arguments(ARG "" "" "USES;LINKS;SUBFOLDERS" ${ARGN})
  set(globs *.cpp *.h)
  foreach(subfolder ${ARG_SUBFOLDERS})
    list(APPEND globs ${subfolder}/*.cpp ${subfolder}/*.h)
  endforeach()
  file(GLOB sources CONFIGURE_DEPENDS ${globs})
  add_library(tonewright_${name} STATIC ${sources})
  add_library(Tonewright::${name} ALIAS tonewright_${name})
  set_target_properties(tonewright_${name} PROPERTIES EXPORT_NAME ${name} LINKER_LANGUAGE CXX)
  target_include_directories(tonewright_${name} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/tonewright>)
  target_compile_features(tonewright_${name} PUBLIC cxx_std_20)
  target_link_libraries(tonewright_${name} PRIVATE Tonewright::options)
  foreach(used ${ARG_USES})
    target_link_libraries(tonewright_${name} PUBLIC Tonewright::${used})
  endforeach()
  target_link_libraries(tonewright_${name} PRIVATE ${ARG_LINKS})
  install(TARGETS tonewright_${name} EXPORT TonewrightTargets
          ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev)
  install(DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR}/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tonewright/${name}
          COMPONENT dev FILES_MATCHING PATTERN "*.h" PATTERN "*_impl.h" EXCLUDE)
endfunction()

function(tonewright_install_package)
  set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Tonewright)
  install(EXPORT TonewrightTargets NAMESPACE Tonewright:: DESTINATION ${package_dir} COMPONENT dev)
  configure_package_config_file(${PROJECT_SOURCE_DIR}/tools/cmake/TonewrightConfig.cmake.in
    ${PROJECT_BINARY_DIR}/TonewrightConfig.cmake INSTALL_DESTINATION ${package_dir})
  write_basic_package_version_file(${PROJECT_BINARY_DIR}/TonewrightConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
  install(FILES ${PROJECT_BINARY_DIR}/TonewrightConfig.cmake ${PROJECT_BINARY_DIR}/TonewrightConfigVersion.cmake
          DESTINATION ${package_dir} COMPONENT dev)
endfunction()

# tonewright_tests(<folder> [USES <folder>...] [LINKS <library>...] [NAME <target>] [MAIN <own main>])
# Every tests/<folder>/*_test.cpp goes into one program <folder>_test; each case is a test of its own with a time limit.
function(tonewright_tests folder)
  cmake_parse_arguments(ARG "OWN_MAIN" "NAME;TIMEOUT" "USES;LINKS" ${ARGN})
  if(NOT ARG_NAME)
    set(ARG_NAME ${folder})
  endif()
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_executable(${ARG_NAME}_test ${sources} ${PROJECT_SOURCE_DIR}/tests/support/places.cpp)
  target_link_libraries(${ARG_NAME}_test PRIVATE Tonewright::options ${ARG_LINKS} GTest::gmock)
  foreach(used ${ARG_USES})
    target_link_libraries(${ARG_NAME}_test PRIVATE Tonewright::${used})
  endforeach()
  if(NOT ARG_OWN_MAIN)
    target_link_libraries(${ARG_NAME}_test PRIVATE GTest::gtest_main)
  endif()
  target_include_directories(${ARG_NAME}_test PRIVATE ${PROJECT_SOURCE_DIR})
  target_compile_options(${ARG_NAME}_test PRIVATE $<$<CONFIG:Release>:-O1>)  # what they call is as it ships
  gtest_discover_tests(${ARG_NAME}_test TEST_PREFIX ${ARG_NAME}. DISCOVERY_TIMEOUT 60
                       PROPERTIES TIMEOUT ${ARG_TIMEOUT})
endfunction()
