#include <cstdint>
#include <cstring>
#include <iterator>
#include <random>

// Changes a compound file where its structure is: words of the header, the tables and the
// directory, set to what is likely to be taken for a sector number, a mark or a size. The fields
// that decide whether a file is accepted at all are put right nearly always.

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace {

constexpr std::size_t kHeaderBytes = 512;
constexpr std::size_t kWord = sizeof(std::uint32_t);

void Store(std::uint8_t* at, std::uint64_t value, std::size_t width) {
  for (std::size_t i = 0; i < width; ++i) at[i] = static_cast<std::uint8_t>(value >> (8 * i));
}

void RepairHeader(std::uint8_t* data, unsigned int random) {
  Store(data + 28, 0xFFFE, 2);
  Store(data + 30, random % 8 == 0 ? 12 : 9, 2);
  Store(data + 32, 6, 2);
  Store(data + 34, 0, 6);
  Store(data + 40, random % 8, 4);
}

void ChangeWord(std::uint8_t* data, std::size_t size, std::mt19937& random) {
  constexpr std::uint32_t kWords[] = {0,          1,          2,          3,          4095,
                                      4096,       0x7FFFFFFF, 0x80000000, 0x800000,   0xFFFFFFFB,
                                      0xFFFFFFFC, 0xFFFFFFFD, 0xFFFFFFFE, 0xFFFFFFFF, 0x4000000};
  const auto sectors = static_cast<std::uint32_t>(size / kHeaderBytes);
  const auto any = static_cast<std::uint32_t>(random());
  const std::uint32_t word = any % 2 == 0 ? kWords[any / 2 % std::size(kWords)] : any / 2 % sectors;
  Store(data + random() % (size / kWord) * kWord, word, kWord);
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t most, unsigned int seed) {
  std::mt19937 random(seed);
  if (size < kHeaderBytes || random() % 4 == 0) size = LLVMFuzzerMutate(data, size, most);
  if (size < kHeaderBytes) return size;
  for (auto changes = random() % 4; changes > 0; --changes) ChangeWord(data, size, random);
  if (random() % 32 != 0) RepairHeader(data, static_cast<unsigned int>(random()));
  return size;
}
