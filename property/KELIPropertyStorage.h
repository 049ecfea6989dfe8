#pragma once

#include <cstdint>
#include <map>

#include "base/KELXDynamicArray.h"
#include "base/KELXExport.h"
#include "base/KELXHashMap.h"
#include "base/KELXProperty.h"
#include "base/KELXPropertyHandle.h"
#include "base/KELXReferenceCount.h"
#include "base/KELXString.h"

class KELIStorage;

namespace kelx::internal {
class CodePageDecoders;
}

/// One property set: the properties of one property-set stream, which has one or two sections.
///
/// Reference counted; held by KELIPropertyStorageHandle. InitializeFromBuffer fills it, once. After
/// that it needs nothing of the stream's bytes and answers queries. One object is for one thread at
/// a time.
///
/// Nothing in a stream makes parsing fail but its first four bytes. What lies beyond the end of the
/// stream reads as zero or empty, and parsing goes on. Parsing takes time and memory in proportion
/// to the stream, whatever it holds; the limits that see to this are met by damaged streams only:
/// - a property table, and a dictionary, end where the next identifier would not fit whole;
/// - a section has at most 1,048,576 table entries;
/// - all dictionaries together have at most 262,144 entries;
/// - all texts together have at most 64 MiB, at 4 bytes a character, and 16 times the bytes of the
///   stream; the first one that would pass that and all after it are empty. Properties that name
///   one value share its text. The 64 MiB are for all streams together that a storage finds;
/// - from the 257th code page on, in all streams together that a storage finds, texts read as
///   Windows-1252.
///
/// GUIDs are 16 bytes in display order: printed one after the other as hexadecimal numbers they
/// give the usual text. The first three groups of digits are stored reversed in a stream.
class KELXSTSTORAGE_API KELIPropertyStorage : public KELXReferenceCount {
 public:
  /// An empty set.
  KELIPropertyStorage();
  ~KELIPropertyStorage() override;

  /// Parses the `length` bytes at `bytes`, `length` taken as unsigned. They stay the caller's and
  /// must last until the call returns. False when `bytes` is null or they do not begin with the
  /// byte-order mark 0xFFFE and the format version 0 (FE FF 00 00; a version that the end cuts is
  /// 0 as well); the set then holds no property.
  ///
  /// The first section is taken to follow the header, whatever offset the header states.
  bool InitializeFromBuffer(const unsigned char* bytes, int length);

  /// @name The steps of parsing
  /// They work on the bytes last given to InitializeFromBuffer and are of use while those last.
  /// @{

  /// Reads the second section, from the offset that the header states, into an array of its own.
  void ReadExtendedSection();

  /// Reads the entry of a property table at `cursor`, moves `cursor` past it and returns the
  /// property that it points to, counting from `sectionStart`. The caller owns the property. Null
  /// when its type is not served or lies beyond the end, and for the dictionary, identifier 0,
  /// whose names are added to those that the set has.
  KELXProperty* ReadPropertyFromSection(unsigned char*& cursor, const unsigned char* sectionStart);

  /// Puts `property` in the place of the first one in `array` that has its identifier, or at the
  /// end when there is none. The array owns it from then on. Null is ignored.
  void AddOrUpdateProperty(KELXProperty* property, KELXDynamicArray<KELXPropertyHandle>& array);

  /// @}

  /// @name Readers of little-endian values
  /// A value that lies whole between the begin of the bytes and their end is read, and `cursor`
  /// moves past it. Any other, and any at a null cursor, is 0, and `cursor` stays. Until
  /// InitializeFromBuffer was given bytes nothing is known of their end, and every value is read.
  /// @{

  /// Reads a value of 1, 2, 4 or 8 bytes, as many as the type of the result has.
  unsigned char ReadByte(unsigned char*& cursor);
  unsigned short ReadUnsignedShort(unsigned char*& cursor);
  unsigned int ReadUnsignedInt(unsigned char*& cursor);
  unsigned long long ReadUnsignedInt64(unsigned char*& cursor);
  float ReadFloat(unsigned char*& cursor);
  double ReadDouble(unsigned char*& cursor);

  /// Reads a GUID and writes 16 bytes to `out`, in display order.
  void ReadCLSID(unsigned char*& cursor, unsigned char* out);

  /// Reads UTF-16 text up to its first NUL. Its number of 16-bit units is a 4-byte count at
  /// `cursor`; or, with `countBefore`, one more than half the 4-byte number that stands just before
  /// `cursor`. Empty when the units do not fit; `cursor` is then past the count, if there is one.
  /// With `pad` an odd number of units is followed by 2 more bytes, which are skipped.
  KELXString ReadUTF16String(unsigned char*& cursor, bool pad, bool countBefore);

  /// Reads a 4-byte count and so many bytes of text in the code page of the set, up to the first
  /// NUL. Null and unknown code pages read as Windows-1252, bytes that mean nothing as U+FFFD.
  /// Empty when the bytes do not fit; `cursor` is then past the count. With `pad` the bytes up to
  /// the next multiple of 4 are skipped.
  KELXString ReadMBCSString(unsigned char*& cursor, bool pad);

  /// @}

  /// @name Values as text
  /// `format` is one of swprintf and takes one value. At most 259 characters come out: what
  /// swprintf leaves of a longer text, which with the GNU C library is its first 259. They do not
  /// depend on the set.
  /// @{

  /// The value as an int; `isSigned` says whether it is widened with its sign.
  static KELXString FormatByte(unsigned char value, const wchar_t* format, bool isSigned);
  static KELXString FormatUnsignedShort(unsigned short value, const wchar_t* format, bool isSigned);

  /// The flag has no effect; the format says how the bits are read. A format for a long sees the
  /// 32 bits with zeros before them.
  static KELXString FormatUnsignedInt(unsigned int value, const wchar_t* format, bool isSigned);

  /// The same of 64 bits, for a format that takes a long long.
  static KELXString FormatUnsignedInt64(unsigned long long value, const wchar_t* format,
                                        bool isSigned);

  /// With a decimal point also where the locale of the process has a comma: every comma in the
  /// text becomes a point.
  static KELXString FormatFloat(float value, const wchar_t* format);

  /// As FormatFloat.
  static KELXString FormatDouble(double value, const wchar_t* format);

  /// "True" for 0xFFFF, else "False".
  static KELXString FormatBoolean(unsigned short value);

  /// The date whose FILETIME has these halves, as KELXDate writes it.
  static KELXString FormatFiletime(unsigned int high, unsigned int low);

  /// The GUID in braces, with capital digits; `id` has 16 bytes in display order.
  static KELXString FormatCLSID(unsigned char* id);

  /// @}

  /// @name Names and queries
  /// After parsing, the properties of the first section come first, in the order of its table, then
  /// those of the second. Identifiers may therefore occur twice. Names are those of the dictionary
  /// in the stream: the usual sets have none for their own properties, whose identifiers have fixed
  /// meanings, and the name of these is empty.
  /// @{

  /// Exchanges each property in `array` that the dictionary names for a new one with that name.
  void AddPropertyDisplayName(KELXDynamicArray<KELXPropertyHandle>& array);

  /// Names the properties of the second section, or those of the first when the second has none,
  /// and merges the sections. Parsing ends with this; each further call merges once more.
  void MergeDisplayNames();

  /// Appends the properties of the second section to the list of properties.
  void MergePropertyArray();

  /// A copy of the list, which shares the properties.
  KELXDynamicArray<KELXPropertyHandle> GetPropertyArray();

  /// The first property with the identifier `id`; a handle that is not valid when there is none. A
  /// negative `id` is widened with its sign and finds nothing where a long has 64 bits.
  KELXPropertyHandle GetPropertyWithID(int id);

  /// The first property named `name`, case included; a handle that is not valid when there is none.
  /// The empty name finds the first property that has no name.
  KELXPropertyHandle GetPropertyWithName(const KELXString& name);

  /// The text of the last property read that has the identifier 255; empty when there is none.
  KELXString GetPropertyStorageName();

  /// Writes the 16 bytes of the format identifier (FMTID) to `out`: that of the second section
  /// when the stream has two sections, else that of the first.
  void GetPropertyStorageID(unsigned char* out);

  /// @}

  /// @name The header as it was read, and what the properties say of the set as a whole
  /// @{

  /// The byte-order mark, 0xFFFE in every set that was parsed.
  [[nodiscard]] unsigned short GetByteOrder() const { return byteOrder_; }

  /// The format version, 0 in every set that was parsed.
  [[nodiscard]] unsigned short GetFormatVersion() const { return formatVersion_; }

  /// Low half of the identifier of the system that wrote the stream.
  [[nodiscard]] unsigned short GetOSVersion() const { return osVersion_; }

  /// High half of it.
  [[nodiscard]] unsigned short GetOSKind() const { return osKind_; }

  /// Writes the 16 bytes of the class identifier to `out`.
  void GetClassID(unsigned char* out) const;

  /// The number of sections as stated. Only 2 makes a second section be read.
  [[nodiscard]] unsigned int GetSectionCount() const { return sectionCount_; }

  /// Writes the 16 bytes of a section's own FMTID to `out`: of the second section, zeros when there
  /// is none, when `section` is 1, else of the first.
  void GetSectionID(int section, unsigned char* out) const;

  /// How many properties the second section has: after parsing the last ones of the list.
  [[nodiscard]] int GetExtendedPropertyCount() const { return extendedProperties_.Count(); }

  /// The Windows code page of 8-bit texts, from property 1; 0 when there is none.
  [[nodiscard]] unsigned short GetCodePage() const { return codePage_; }

  /// The locale, from property 0x80000000; 0 when there is none.
  [[nodiscard]] unsigned int GetLocaleID() const { return localeId_; }

  /// @}

 private:
  friend class KELIStorage;  // parses streams that hold less than they claim
  class [[gnu::visibility("hidden")]] Parser;

  /// What the stream says of a section, and where the section begins.
  struct Section {
    unsigned char id[16] = {};
    unsigned int offset = 0;
    unsigned int size = 0;
    unsigned int propertyCount = 0;
    const unsigned char* start = nullptr;
  };

  static constexpr std::uint64_t kTextAllowance = std::uint64_t{64} << 20;

  bool Initialize(const unsigned char* bytes, unsigned int held, unsigned int length,
                  std::uint64_t& textAllowance,
                  kelx::internal::CodePageDecoders* decoders = nullptr);
  void AddName(unsigned int id, const KELXString& name);
  bool FindName(unsigned int id, KELXString& name) const;

  const unsigned char* streamBuffer_ = nullptr;
  unsigned int streamLength_ = 0;
  unsigned int heldLength_ = 0;  // bytes at streamBuffer_; the rest of the length reads as zeros
  unsigned short byteOrder_ = 0;
  unsigned short formatVersion_ = 0;
  unsigned short osVersion_ = 0;
  unsigned short osKind_ = 0x00FF;
  unsigned char classId_[16] = {};
  unsigned int sectionCount_ = 0;
  Section first_;
  Section second_;
  KELXDynamicArray<KELXPropertyHandle> properties_;
  KELXDynamicArray<KELXPropertyHandle> extendedProperties_;
  KELXHashMap<unsigned int, KELXString> dictionary_;
  std::map<unsigned int, KELXString> furtherNames_;  // what a large dictionary has beyond the map
  KELXString storageName_;
  unsigned short codePage_ = 0;
  unsigned int localeId_ = 0;
};
