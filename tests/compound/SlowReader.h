#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <set>
#include <string>
#include <vector>

#include "compound/KELReadValue.h"
#include "compound/KELStStorageFileInfo.h"

/// Reads a compound file one value at a time through the public binary readers, with nothing in
/// common with the bulk reading of the library but the place of a sector.
class SlowReader {
 public:
  using Words = std::vector<unsigned int>;

  struct Entry {
    std::string name;
    unsigned char type;
    unsigned int left, right, child, start, size;
    bool operator==(const Entry&) const = default;
  };

  /// Reads the file that `image` was loaded from, with its header.
  explicit SlowReader(const KELStStorageFileInfo& image)
      : image_(image),
        header_(image.getHeader()),
        file_(image.GetFilePath().OpenFile("rb")),
        sectorSize_(1U << header_.sectorShift) {
    ReadDifat();
    for (const unsigned int sector : fatSectors_) ReadWords(sector, fat);
    if (header_.miniFatStartSect != 0xFFFFFFFE) {
      for (const unsigned int sector : Chain(header_.miniFatStartSect)) ReadWords(sector, miniFat);
    }
    for (const unsigned int sector : Chain(header_.dirStartSect)) ReadEntries(sector);
    ReadMiniStream();
  }
  SlowReader(const SlowReader&) = delete;
  SlowReader& operator=(const SlowReader&) = delete;
  ~SlowReader() { std::fclose(file_); }

  Words fat;
  Words miniFat;
  std::vector<Entry> entries;
  std::string miniStream;

  /// Reads a stream's bytes; false where it has none.
  bool ReadStream(const Entry& entry, std::string& bytes) {
    return entry.size >= header_.miniStreamCutoff ? ReadLarge(entry, bytes)
                                                  : ReadSmall(entry, bytes);
  }

 private:
  static constexpr unsigned int kMarks = 0xFFFFFFFC;

  [[nodiscard]] bool Same() const { return header_.byteOrder == 0xFFFE; }

  void Seek(unsigned int sector) { KELSetPosition(file_, image_.getEquivalentFatBytePos(sector)); }

  unsigned int Word() {
    unsigned int value = 0;
    KELReadUINT(file_, value, Same());
    return value;
  }

  void ReadWords(unsigned int sector, Words& words) {
    Seek(sector);
    for (unsigned int i = 0; i < sectorSize_ / 4; ++i) words.push_back(Word());
  }

  void ReadDifat() {
    KELSetPosition(file_, 76);
    for (int i = 0; i < 109; ++i) AddFatSector(Word());
    if (header_.difStartSect == 0xFFFFFFFE) return;
    unsigned int sector = header_.difStartSect;
    std::fseek(file_, 0, SEEK_END);
    const auto most = static_cast<unsigned int>(std::ftell(file_)) / sectorSize_ + 64;
    for (unsigned int i = 0; i < std::min(header_.numDifSects, most); ++i) {
      Words words;
      ReadWords(sector, words);
      sector = words.back();
      if (i + 1 < header_.numDifSects) words.pop_back();
      for (const unsigned int word : words) AddFatSector(word);
    }
  }

  void AddFatSector(unsigned int sector) {
    if (sector < 0xFFFFFFFE) fatSectors_.push_back(sector);
  }

  [[nodiscard]] Words Chain(unsigned int sector) const {
    Words chain;
    std::set<unsigned int> met;
    while (met.insert(sector).second) {
      chain.push_back(sector);
      if (sector >= fat.size() || fat[sector] >= kMarks) break;
      sector = fat[sector];
    }
    return chain;
  }

  void ReadEntries(unsigned int sector) {
    Seek(sector);
    for (unsigned int i = 0; i < sectorSize_ / 128; ++i) {
      Entry entry{};
      bool ended = false;
      for (int unit = 0; unit < 32; ++unit) {
        unsigned char low = 0;
        unsigned char high = 0;
        KELReadBYTE(file_, low, true);
        KELReadBYTE(file_, high, true);
        ended = ended || low == 0;
        if (!ended) entry.name.push_back(static_cast<char>(low));
      }
      unsigned short skipped = 0;
      KELReadUSHORT(file_, skipped, Same());
      KELReadBYTE(file_, entry.type, true);
      unsigned char colour = 0;
      KELReadBYTE(file_, colour, true);
      entry.left = Word();
      entry.right = Word();
      entry.child = Word();
      for (int word = 0; word < 9; ++word) Word();
      entry.start = Word();
      entry.size = Word();
      Word();
      entries.push_back(entry);
    }
  }

  void ReadMiniStream() {
    if (entries.empty() || entries[0].type != 5) return;
    if (entries[0].start == 0xFFFFFFFE || entries[0].size == 0) return;
    for (const unsigned int sector : Chain(entries[0].start)) {
      AppendSector(sector, entries[0].size, miniStream);
    }
  }

  void AppendSector(unsigned int sector, unsigned int size, std::string& bytes) {
    const int left = static_cast<int>(size - static_cast<unsigned int>(bytes.size()));
    Seek(sector);
    for (int i = 0; i < left && i < static_cast<int>(sectorSize_); ++i) {
      unsigned char byte = 0;
      KELReadBYTE(file_, byte, true);
      bytes.push_back(static_cast<char>(byte));
    }
  }

  bool ReadLarge(const Entry& entry, std::string& bytes) {
    unsigned int sector = entry.start;
    std::set<unsigned int> met;
    while (sector < kMarks || met.empty()) {
      if (sector >= fat.size() || !met.insert(sector).second) return false;
      AppendSector(sector, entry.size, bytes);
      sector = fat[sector];
    }
    return true;
  }

  bool ReadSmall(const Entry& entry, std::string& bytes) {
    unsigned int sector = entry.start;
    std::size_t steps = 0;
    while (sector < kMarks || steps == 0) {
      const int left = static_cast<int>(entry.size - static_cast<unsigned int>(bytes.size()));
      if (left == 0 || steps++ > miniFat.size()) return false;
      const int chunk = std::min(left, 64);
      const std::uint64_t start = sector << 6;
      if (chunk > 0 && start + static_cast<unsigned int>(chunk) > miniStream.size()) return false;
      if (chunk > 0) bytes += miniStream.substr(start, static_cast<std::size_t>(chunk));
      sector = sector < miniFat.size() ? miniFat[sector] : 0xFFFFFFFE;
    }
    return true;
  }

  KELStStorageFileInfo image_;
  KELStStorageHeader header_;
  std::FILE* file_;
  unsigned int sectorSize_;
  Words fatSectors_;
};
