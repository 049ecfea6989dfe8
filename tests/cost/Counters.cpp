#include "tests/cost/Counters.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <new>

Counters counters;

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  ++counters.allocations;
  return std::malloc(size > 0 ? size : 1);
}
void* operator new(std::size_t size) {
  void* const block = operator new(size, std::nothrow);
  if (block == nullptr) std::abort();
  return block;
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }

// The linker puts these in the place of the functions of the C library (--wrap).
extern "C" {
std::size_t __real_fread(void* buffer, std::size_t size, std::size_t count, std::FILE* file);
int __real_fseeko64(std::FILE* file, off_t offset, int origin);

std::size_t __wrap_fread(void* buffer, std::size_t size, std::size_t count, std::FILE* file) {
  ++counters.reads;
  return __real_fread(buffer, size, count, file);
}

int __wrap_fseeko64(std::FILE* file, off_t offset, int origin) {
  ++counters.seeks;
  return __real_fseeko64(file, offset, origin);
}
}
