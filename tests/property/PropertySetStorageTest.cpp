#include "property/KELIPropertySetStorage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "property/KELIPropertySetStorageHandle.h"
#include "tests/support/PropertySetBuilder.h"

namespace kelx::test {
namespace {

using testing::ElementsAre;

/// Counts its destruction.
class Reporter : public KELIPropertyStorage {
 public:
  explicit Reporter(int& destroyed) : destroyed_(destroyed) {}
  ~Reporter() override { ++destroyed_; }

 private:
  int& destroyed_;
};

class PropertySetStorage : public testing::Test {
 protected:
  KELIPropertyStorage* AddSet(const PropertySetBuilder& builder) {
    auto* const set = new Reporter(destroyed_);
    const KELIPropertyStorageHandle handle(set);
    const Bytes stream = builder.Build();
    EXPECT_TRUE(set->InitializeFromBuffer(stream.data(), static_cast<int>(stream.size())));
    EXPECT_TRUE(sets_->AddPropertyStorage(set));
    return set;
  }

  int destroyed_ = 0;
  KELIPropertySetStorageHandle sets_{new KELIPropertySetStorage};
};

PropertySetBuilder Named(const char* name) { return PropertySetBuilder().Add(255, Lpstr(name)); }

TEST_F(PropertySetStorage, IsEmptyAtFirst) {
  EXPECT_EQ(sets_->GetPropertyStorageCount(), 0);
  EXPECT_FALSE(sets_->AddPropertyStorage(nullptr));
  EXPECT_EQ(sets_->GetPropertyStorageCount(), 0);
  KELIPropertyStorage* found = AddSet(PropertySetBuilder());
  EXPECT_EQ(sets_->GetPropertyStorageWithName(KELXString(L"x"), found), KELXResult::kNotFound);
  EXPECT_EQ(found, nullptr);
}

TEST_F(PropertySetStorage, TheFirstMatchIsHandedOut) {
  KELIPropertyStorage* const a = AddSet(Named("A"));
  KELIPropertyStorage* const unnamed = AddSet(PropertySetBuilder({}, kUserDefinedId));
  AddSet(Named("A"));
  EXPECT_TRUE(sets_->AddPropertyStorage(a));
  EXPECT_EQ(sets_->GetPropertyStorageCount(), 4);
  struct Case {
    const wchar_t* name;
    KELIPropertyStorage* expected;
  };
  for (const Case& row : {Case{L"A", a}, {L"a", nullptr}, {L"", unnamed}}) {
    KELIPropertyStorage* found = a;
    const KELXResult result = sets_->GetPropertyStorageWithName(KELXString(row.name), found);
    EXPECT_EQ(result, row.expected != nullptr ? 0 : 0x1000001);
    EXPECT_EQ(found, row.expected);
    if (found != nullptr) found->LowerReference();
  }
  unsigned char id[16] = {};
  KELIPropertyStorage* found = a;
  EXPECT_EQ(sets_->GetPropertyStorageWithID(id, found), KELXResult::kNotFound);
  EXPECT_EQ(found, nullptr);
  for (KELIPropertyStorage* const expected : {a, unnamed}) {
    expected->GetPropertyStorageID(id);
    EXPECT_EQ(sets_->GetPropertyStorageWithID(id, found), KELXResult::kSuccess);
    EXPECT_EQ(found, expected);
    found->LowerReference();
  }
}

TEST_F(PropertySetStorage, WhatIsHandedOutOutlivesTheCollection) {
  AddSet(Named("A"));
  KELIPropertyStorage* const b = AddSet(Named("B"));
  KELIPropertyStorage* found = nullptr;
  sets_->GetPropertyStorageWithName(KELXString(L"B"), found);
  sets_ = KELIPropertySetStorageHandle(nullptr);
  EXPECT_EQ(destroyed_, 1);
  EXPECT_EQ(b->GetPropertyStorageName().toUtf8(), "B");
  found->LowerReference();
  EXPECT_EQ(destroyed_, 2);
}

TEST_F(PropertySetStorage, AllAreAppendedWithAReferenceEach) {
  KELIPropertyStorage* const a = AddSet(Named("A"));
  KELIPropertyStorage* const b = AddSet(Named("B"));
  KELXDynamicArray<KELIPropertyStorage*> all;
  all.Add(nullptr);
  sets_->GetPropertyStorages(all);
  EXPECT_THAT(std::vector(all.begin(), all.end()), ElementsAre(nullptr, a, b));
  sets_ = KELIPropertySetStorageHandle(nullptr);
  EXPECT_EQ(destroyed_, 0);
  a->LowerReference();
  b->LowerReference();
  EXPECT_EQ(destroyed_, 2);
}

}  // namespace
}  // namespace kelx::test
