#include <gtest/gtest.h>

#include "base/KELXReferenceCount.h"
#include "base/KELXTypedHandle.h"

namespace {

class Reporter : public KELXReferenceCount {
 public:
  explicit Reporter(int& destroyed) : KELXReferenceCount(0), destroyed_(destroyed) {}
  ~Reporter() override { ++destroyed_; }

 private:
  int& destroyed_;
};

using Handle = KELXTypedHandle<Reporter>;

TEST(Reference, TheLastHolderDeletesTheObject) {
  int destroyed = 0;
  auto* object = new Reporter(destroyed);
  {
    Handle first(object);
    {
      const Handle second(first);
      EXPECT_TRUE(second == first);
    }
    Handle& alias = first;
    first = alias;
    EXPECT_EQ(destroyed, 0);
    object->RaiseReference();
    first = Handle(nullptr);
    EXPECT_FALSE(first.IsValid());
    EXPECT_EQ(destroyed, 0);
  }
  object->LowerReference();
  EXPECT_EQ(destroyed, 1);
}

TEST(Reference, HandlesCompareByObject) {
  int destroyed = 0;
  const Handle a(new Reporter(destroyed));
  const Handle b(new Reporter(destroyed));
  const Handle none(nullptr);
  EXPECT_TRUE(a.IsValid());
  EXPECT_FALSE(a == b);
  EXPECT_NE(a < b, b < a);
  EXPECT_TRUE(none < a);
  Reporter* const held = a;
  EXPECT_TRUE(a == held);
  EXPECT_EQ(held, a.operator->());
  EXPECT_STREQ(a->GetName(), "");
}

}  // namespace
