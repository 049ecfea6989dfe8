#include "compound/KELReadValue.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <memory>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

struct Close {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

std::unique_ptr<std::FILE, Close> FileOf(const Bytes& bytes) {
  std::unique_ptr<std::FILE, Close> file(std::tmpfile());
  if (!bytes.empty()) std::fwrite(bytes.data(), 1, bytes.size(), file.get());
  std::rewind(file.get());
  return file;
}

template <typename T>
T ReadWith(void (*read)(std::FILE*, T&, bool), const Bytes& bytes, bool sameByteOrder) {
  T value{};
  std::memset(&value, 0xAA, sizeof(value));
  const auto file = FileOf(bytes);
  read(file.get(), value, sameByteOrder);
  EXPECT_EQ(KELGetPosition(file.get()),
            static_cast<std::int64_t>(std::min(bytes.size(), sizeof(value))));
  return value;
}

TEST(ReadValue, TakesBytesInEitherOrder) {
  const Bytes bytes = {0xFE, 0xFF, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09};
  EXPECT_EQ(ReadWith(KELReadUSHORT, bytes, true), 0xFFFE);
  EXPECT_EQ(ReadWith(KELReadUSHORT, bytes, false), 0xFEFF);
  EXPECT_EQ(ReadWith(KELReadSHORT, bytes, true), -2);
  EXPECT_EQ(ReadWith(KELReadUINT, bytes, true), 0x0403FFFEU);
  EXPECT_EQ(ReadWith(KELReadUINT, bytes, false), 0xFEFF0304U);
  EXPECT_EQ(ReadWith(KELReadINT, bytes, false), -0x100FCFC);
  EXPECT_EQ(ReadWith(KELReadULONG, bytes, true), 0x080706050403FFFEUL);
  EXPECT_EQ(ReadWith(KELReadLONG, bytes, false), static_cast<long>(0xFEFF030405060708UL));
  EXPECT_EQ(ReadWith(KELReadBYTE, bytes, false), 0xFE);
  EXPECT_EQ(ReadWith(KELReadCHAR, bytes, true), '\xFE');
  EXPECT_EQ(ReadWith(KELReadDOUBLE, {0x3F, 0xF0, 0, 0, 0, 0, 0, 0}, false), 1.0);
  EXPECT_EQ(ReadWith(KELReadDOUBLE, {0, 0, 0, 0, 0, 0, 0xF0, 0x3F}, true), 1.0);
  EXPECT_EQ(ReadWith(KELReadFLOAT, {0, 0, 0x80, 0x3F}, true), 1.0F);
  EXPECT_EQ(ReadWith(KELReadFLOAT, {0x3F, 0x80, 0, 0}, false), 1.0F);
}

TEST(ReadValue, KeepsTheDeliveredBytesOfACutValue) {
  EXPECT_EQ(ReadWith(KELReadUINT, {0x12, 0x34}, true), 0x3412U);
  EXPECT_EQ(ReadWith(KELReadUINT, {0x12, 0x34}, false), 0x12340000U);
  EXPECT_EQ(ReadWith(KELReadULONG, {0x12}, false), 0x1200000000000000UL);
  EXPECT_EQ(ReadWith(KELReadUINT, {}, false), 0U);
  EXPECT_EQ(ReadWith(KELReadDOUBLE, {}, true), 0.0);
  EXPECT_EQ(ReadWith(KELReadBYTE, {}, true), 0);
}

TEST(ReadValue, AnyWidthUpTo32) {
  Bytes bytes(40);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<unsigned char>(i + 1);
  for (const int size : {-1, 0, 1, 3, 32, 33}) {
    for (const bool same : {true, false}) {
      const auto file = FileOf(bytes);
      Bytes value(40, 0xAA);
      KELReadValue(file.get(), value.data(), size, same);
      Bytes expected(40, 0xAA);
      const int written = size > 0 && size <= 32 ? size : 0;
      for (int i = 0; i < written; ++i) {
        expected[static_cast<std::size_t>(i)] =
            static_cast<unsigned char>(same ? i + 1 : written - i);
      }
      EXPECT_EQ(value, expected) << size << ' ' << same;
      EXPECT_EQ(KELGetPosition(file.get()), written);
    }
  }
}

TEST(ReadValue, MakeValueCopiesFromMemory) {
  const Bytes bytes = {1, 2, 3};
  std::array<unsigned char, 4> value{9, 9, 9, 9};
  KELMakeValue(bytes.data(), value.data(), 0, true);
  KELMakeValue(bytes.data(), value.data(), -5, true);
  EXPECT_EQ(value, (std::array<unsigned char, 4>{9, 9, 9, 9}));
  KELMakeValue(bytes.data(), value.data(), 3, false);
  EXPECT_EQ(value, (std::array<unsigned char, 4>{3, 2, 1, 9}));
  EXPECT_EQ(AsUChar('\xFF'), 255);
}

TEST(ReadBytes, FillsWhatIsMissingWithZeros) {
  const auto file = FileOf({1, 2, 3, 4, 5});
  Bytes buffer(8, 0xAA);
  EXPECT_EQ(KELReadBytes(file.get(), 2, buffer.data()), 2);
  EXPECT_EQ(buffer, (Bytes{1, 2, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA}));
  EXPECT_EQ(KELReadBytes(file.get(), 3, 4, buffer.data()), 2);
  EXPECT_EQ(buffer, (Bytes{4, 5, 0, 0, 0xAA, 0xAA, 0xAA, 0xAA}));
  EXPECT_EQ(KELReadBytes(file.get(), -3, buffer.data() + 4), 0);
  EXPECT_EQ(buffer[4], 0xAA);
  EXPECT_EQ(KELReadBytes(file.get(), 100, 2, buffer.data()), 0);
  EXPECT_EQ(buffer, (Bytes{0, 0, 0, 0, 0xAA, 0xAA, 0xAA, 0xAA}));
}

TEST(Position, ReachesBeyondTwoGiB) {
  const auto file = FileOf({1});
  constexpr std::uint64_t kFar = (std::uint64_t{1} << 32) + 512;
  EXPECT_EQ(KELSetPosition(file.get(), kFar), 0);
  EXPECT_EQ(KELGetPosition(file.get()), static_cast<std::int64_t>(kFar));
  EXPECT_NE(KELSetPosition(file.get(), ~std::uint64_t{0}), 0);
  EXPECT_EQ(KELGetPosition(file.get()), static_cast<std::int64_t>(kFar));
}

}  // namespace
