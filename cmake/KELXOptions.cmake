# Usage requirements of this project's own targets. Nothing here reaches a consumer.
add_library(kelx_options INTERFACE)
target_include_directories(kelx_options INTERFACE ${PROJECT_SOURCE_DIR})
# Files up to 4 GiB, also where off_t has 32 bits unless asked.
target_compile_definitions(kelx_options INTERFACE _FILE_OFFSET_BITS=64)
target_compile_options(
  kelx_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow
                         $<$<BOOL:${KELX_WERROR}>:-Werror>
                         # g++ 12 sees overlap in operator+(const char*, std::string&&), where there
                         # is none.
                         $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)

# What turns a fault that all tests missed into an abort rather than into somebody's code. The
# fortified functions need an optimised build, and the sanitizers check the same things better.
set(hardened "$<AND:$<BOOL:${KELX_HARDENING}>,$<CONFIG:Release,RelWithDebInfo,MinSizeRel>>")
target_compile_options(
  kelx_options
  INTERFACE
    "$<${hardened}:-fstack-protector-strong;-fstack-clash-protection;-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3>"
)
target_link_options(kelx_options INTERFACE "$<${hardened}:LINKER:-z,relro,-z,now,-z,noexecstack>")
