#include "tests/property/PropertySetListing.h"

#include <gtest/gtest.h>

#include <sstream>

namespace kelx::test {

std::string Describe(const KELXPropertyHandle& property) {
  if (!property.IsValid()) return "none";
  KELXString name;
  KELXString value;
  int kind = 0;
  property->GetData(name, value, kind);
  std::ostringstream out;
  out << std::hex << property->GetID() << '[' << name.toUtf8() << ']' << kind << '='
      << value.toUtf8();
  return out.str();
}

std::vector<std::string> Listing(const KELXDynamicArray<KELXPropertyHandle>& properties) {
  std::vector<std::string> listing;
  for (const KELXPropertyHandle& property : properties) listing.push_back(Describe(property));
  return listing;
}

std::size_t ValueLength(const KELXPropertyHandle& property) {
  const std::string text = Describe(property);
  return text.size() - text.find('=') - 1;
}

KELIPropertyStorageHandle Parse(const Bytes& stream) {
  const KELIPropertyStorageHandle set(new KELIPropertyStorage);
  // The set must need nothing of the bytes afterwards.
  const Bytes copy = stream;
  const bool isAccepted = set->InitializeFromBuffer(copy.data(), static_cast<int>(copy.size()));
  return isAccepted ? set : KELIPropertyStorageHandle(nullptr);
}

std::vector<std::string> ListingOf(const Bytes& stream) {
  const KELIPropertyStorageHandle set = Parse(stream);
  EXPECT_TRUE(set.IsValid());
  return set.IsValid() ? Listing(set->GetPropertyArray()) : std::vector<std::string>();
}

}  // namespace kelx::test
