#include "base/KELXProperty.h"

#include <gtest/gtest.h>

#include "base/KELXPropertyContainerHandle.h"
#include "base/KELXPropertyHandle.h"
#include "base/KELXResult.h"

namespace {

KELXProperty* MakeProperty(const char* name, const char* value) {
  KELXString nameText = KELXString::fromUtf8(name);
  KELXString valueText = KELXString::fromUtf8(value);
  return new KELXProperty(nameText, ValueTypeFloat, valueText);
}

/// Counts its destruction.
class Reporter : public KELXProperty {
 public:
  Reporter(KELXString& text, int& destroyed)
      : KELXProperty(text, ValueTypeText, text), destroyed_(destroyed) {}
  ~Reporter() override { ++destroyed_; }

 private:
  int& destroyed_;
};

TEST(Property, GivesWhatItWasMadeOf) {
  const KELXPropertyHandle property(MakeProperty("Größe メモ", "12.5"));
  EXPECT_EQ(property->GetID(), 0U);
  property->SetID(0xFFFFFFFF);
  EXPECT_EQ(property->GetID(), 0xFFFFFFFF);
  KELXString name;
  KELXString value;
  int type = -1;
  property->GetData(name, value, type);
  EXPECT_EQ(name.toUtf8(), "Größe メモ");
  EXPECT_EQ(value.toUtf8(), "12.5");
  EXPECT_EQ(type, 3);
  EXPECT_STREQ(property->GetName(), "Größe メモ");
  EXPECT_TRUE(KELXString(property->GetName(), "US-ASCII").equals(name));
}

TEST(PropertyContainer, KeepsItsPropertiesAlive) {
  int destroyed = 0;
  KELXString text(L"x");
  KELXPropertyContainerHandle container(nullptr);
  EXPECT_FALSE(container.IsValid());
  {
    KELXDynamicArray<KELXPropertyHandle> properties;
    properties.Add(KELXPropertyHandle(new Reporter(text, destroyed)));
    container = KELXPropertyContainerHandle(new KELXPropertyContainer(properties));
    properties.Add(KELXPropertyHandle(new Reporter(text, destroyed)));
  }
  EXPECT_EQ(destroyed, 1);
  EXPECT_TRUE(container.IsValid());
  EXPECT_EQ(container->GetProperties().Count(), 1);
  KELXString name = KELXString::fromUtf8("Überblick");
  container->SetPropertyName(name);
  EXPECT_EQ(container->GetPropertyName().toUtf8(), "Überblick");
  EXPECT_STREQ(container->GetName(), "Überblick");
  container = KELXPropertyContainerHandle(nullptr);
  EXPECT_EQ(destroyed, 2);
}

TEST(Result, IsACode) {
  KELXResult result(0x1000001);
  EXPECT_EQ(result, KELXResult::kNotFound);
  EXPECT_NE(result, 0);
  result = 0;
  EXPECT_EQ(result.Code(), KELXResult::kSuccess);
  EXPECT_TRUE(0x1000008 == KELXResult(KELXResult::kNullStorage));
  EXPECT_EQ(KELXResult::kNullObject, 0x100000b);
}

}  // namespace
