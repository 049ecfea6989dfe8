#include "compound/KELReadValue.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>

#include "compound/ByteCursor.h"

namespace {

constexpr int kLongestValue = 32;

template <typename T>
void Read(std::FILE* file, T& value, bool sameByteOrder) {
  std::array<unsigned char, sizeof(T)> raw;
  KELReadBytes(file, sizeof(T), raw.data());
  value = kelx::internal::DecodeValue<T>(raw, sameByteOrder);
}

}  // namespace

std::int64_t KELGetPosition(std::FILE* file) { return ftello(file); }

int KELSetPosition(std::FILE* file, std::uint64_t offset) {
  return fseeko(file, static_cast<off_t>(offset), SEEK_SET);
}

std::int64_t KELReadBytes(std::FILE* file, std::int64_t size, unsigned char* buffer) {
  if (size <= 0) return 0;
  const auto wanted = static_cast<std::size_t>(size);
  const std::size_t delivered = std::fread(buffer, 1, wanted, file);
  std::fill(buffer + delivered, buffer + wanted, static_cast<unsigned char>(0));
  return static_cast<std::int64_t>(delivered);
}

std::int64_t KELReadBytes(std::FILE* file, std::int64_t offset, std::int64_t size,
                          unsigned char* buffer) {
  KELSetPosition(file, static_cast<std::uint64_t>(offset));
  return KELReadBytes(file, size, buffer);
}

void KELReadValue(std::FILE* file, void* value, int size, bool sameByteOrder) {
  if (size <= 0 || size > kLongestValue) return;
  std::array<unsigned char, kLongestValue> raw;
  KELReadBytes(file, size, raw.data());
  KELMakeValue(raw.data(), value, size, sameByteOrder);
}

void KELMakeValue(const unsigned char* bytes, void* value, int size, bool sameByteOrder) {
  if (size <= 0) return;
  const std::span source(bytes, static_cast<std::size_t>(size));
  auto* const target = static_cast<unsigned char*>(value);
  if (sameByteOrder) {
    std::ranges::copy(source, target);
  } else {
    std::ranges::reverse_copy(source, target);
  }
}

void KELReadBYTE(std::FILE* file, unsigned char& value, bool) { Read(file, value, true); }
void KELReadCHAR(std::FILE* file, char& value, bool) { Read(file, value, true); }
void KELReadSHORT(std::FILE* file, short& value, bool same) { Read(file, value, same); }
void KELReadUSHORT(std::FILE* file, unsigned short& value, bool same) { Read(file, value, same); }
void KELReadINT(std::FILE* file, int& value, bool same) { Read(file, value, same); }
void KELReadUINT(std::FILE* file, unsigned int& value, bool same) { Read(file, value, same); }
void KELReadLONG(std::FILE* file, long& value, bool same) { Read(file, value, same); }
void KELReadULONG(std::FILE* file, unsigned long& value, bool same) { Read(file, value, same); }
void KELReadFLOAT(std::FILE* file, float& value, bool same) { Read(file, value, same); }
void KELReadDOUBLE(std::FILE* file, double& value, bool same) { Read(file, value, same); }

unsigned char AsUChar(char character) { return static_cast<unsigned char>(character); }
