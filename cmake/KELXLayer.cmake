# kelx_add_layer(NAME): the object library kelx_NAME of all sources in the folder NAME.
#
# The objects go into the shared libraries and, whole, into the unit tests, which so reach what the
# libraries hide. Sources are globbed: a folder is a layer, so a list would only repeat it.
function(kelx_add_layer name)
  file(GLOB sources CONFIGURE_DEPENDS ${name}/*.cpp)
  if(NOT sources) # a layer of headers only has no objects
    add_library(kelx_${name} INTERFACE)
    return()
  endif()
  add_library(kelx_${name} OBJECT ${sources})
  set_target_properties(kelx_${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  target_link_libraries(kelx_${name} PRIVATE kelx_options)
endfunction()

# kelx_add_shared(TARGET EXPORT_NAME NAME LAYERS LAYER...): the shared library of these layers,
# known as KELX::NAME here and to find_package. Headers with the class prefix are public.
function(kelx_add_shared target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" EXPORT_NAME LAYERS)
  add_library(${target} SHARED)
  add_library(KELX::${arg_EXPORT_NAME} ALIAS ${target})
  set_target_properties(
    ${target}
    PROPERTIES EXPORT_NAME ${arg_EXPORT_NAME}
               VERSION ${PROJECT_VERSION}
               SOVERSION ${KELX_SOVERSION}
               LINKER_LANGUAGE CXX
               INSTALL_RPATH $ORIGIN)
  target_compile_features(${target} PUBLIC cxx_std_20)
  foreach(layer IN LISTS arg_LAYERS)
    target_link_libraries(${target} PRIVATE kelx_${layer})
    file(GLOB headers CONFIGURE_DEPENDS ${layer}/KEL*.h)
    target_sources(
      ${target} PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${headers})
  endforeach()
endfunction()
