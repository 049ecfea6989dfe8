#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <utility>
#include <vector>

#include "property/KELIPropertyStorage.h"
#include "property/PropertyBytes.h"
#include "property/PropertyTexts.h"

/// Reads the stream of one property set into it, and remembers while it does what it has read, so
/// that what the stream names again and again is not read again and again.
class KELIPropertyStorage::Parser {
 public:
  using Properties = KELXDynamicArray<KELXPropertyHandle>;

  /// `textBudget` and `decoders` are those of PropertyTexts.
  Parser(KELIPropertyStorage& set, std::uint64_t textBudget,
         kelx::internal::CodePageDecoders* decoders = nullptr);

  /// Reads the header, up to the first section. False when this is no property set.
  bool ReadHeader(unsigned char*& cursor);

  /// Reads the section at `start`: its head into `section`, its properties into `properties`.
  void ReadSection(const unsigned char* start, Section& section, Properties& properties);

  /// The same of the second section, wherever it is.
  void ReadSecondSection();

  /// As KELIPropertyStorage's own operations of these names.
  KELXProperty* ReadPropertyFromSection(unsigned char*& cursor, const unsigned char* sectionStart);
  KELXString ReadUTF16String(unsigned char*& cursor, bool pad, bool countBefore);
  KELXString ReadMBCSString(unsigned char*& cursor, bool pad);

  [[nodiscard]] const kelx::internal::PropertyBytes& Bytes() const { return bytes_; }
  [[nodiscard]] std::uint64_t TextBudget() const { return texts_.Budget(); }

 private:
  struct Value {
    ValueType kind;
    KELXString text;
  };
  /// Where something stands in the stream, and the code page that it was read in.
  using Reading = std::pair<const unsigned char*, unsigned short>;
  /// One bit for each byte held.
  using Places = std::vector<bool>;

  void ReadTable(unsigned char* cursor, const Section& section, Properties& properties);
  void ReadDictionary(unsigned char* cursor);
  void ReadSettings(unsigned int id, unsigned char* cursor);
  std::optional<Value> ReadSharedValue(unsigned char* cursor);
  std::optional<Value> ReadValue(unsigned char* cursor);
  std::optional<Value> ReadNumber(unsigned int type, unsigned char* cursor);
  KELXString ReadFiletime(unsigned char* cursor);
  KELXString ReadGuid(unsigned char* cursor);
  KELXString ReadBstr(unsigned char* cursor);
  std::span<const unsigned char> TakeUnits(unsigned char*& cursor, bool pad, bool countBefore);
  std::span<const unsigned char> TakeCounted(unsigned char*& cursor, bool pad);
  void ReadEntry(unsigned char*& cursor);
  [[nodiscard]] bool IsHeld(const unsigned char* cursor) const;
  bool IsFirstVisit(const unsigned char* cursor, Places& visited);

  KELIPropertyStorage& set_;
  kelx::internal::PropertyBytes bytes_;
  kelx::internal::PropertyTexts texts_;
  Places values_;                                         // places of values read so far
  std::map<Reading, std::optional<Value>> sharedValues_;  // those read more than once
  Places names_;  // places of dictionary entries read so far
  std::set<Reading> dictionaries_;
  unsigned int dictionaryEntriesLeft_;
};
