#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "base/KELXDynamicArray.h"
#include "base/KELXString.h"

namespace {

/// Counts how many of its kind are alive.
class Counted {
 public:
  static inline int alive = 0;

  explicit Counted(int value) : value_(value) { ++alive; }
  Counted(const Counted& other) : value_(other.value_) { ++alive; }
  Counted& operator=(const Counted&) = default;
  ~Counted() { --alive; }
  [[nodiscard]] int Value() const { return value_; }

 private:
  int value_;
};

std::vector<int> Values(const KELXDynamicArray<Counted>& array) {
  std::vector<int> values;
  for (const Counted& element : array) values.push_back(element.Value());
  return values;
}

KELXDynamicArray<Counted> MakeArray(int count) {
  KELXDynamicArray<Counted> array;
  for (int i = 0; i < count; ++i) array.Add(Counted(i));
  return array;
}

TEST(Array, CapacityFollowsReserve) {
  KELXDynamicArray<int> array;
  EXPECT_EQ(array.Count(), 0);
  EXPECT_EQ(array.Capacity(), 4);
  array.Reserve(3);
  EXPECT_EQ(array.Capacity(), 4);
  array.Reserve(10);
  EXPECT_EQ(array.Capacity(), 10);
  array.Reserve(-1);
  EXPECT_EQ(array.Capacity(), 10);
  EXPECT_EQ((KELXDynamicArray<int>(0, 7).Capacity()), 4);
  EXPECT_EQ((KELXDynamicArray<int>(-1, 7).Count()), 0);
  const KELXDynamicArray<int> sized(6, 7);
  EXPECT_EQ(sized.Capacity(), 6);
  EXPECT_EQ(std::vector<int>(sized.begin(), sized.end()), std::vector<int>(6, 7));
}

TEST(Array, AccessOutsideIsNull) {
  KELXDynamicArray<int> array(2, 1);
  const auto& reading = array;
  EXPECT_NE(array.At(1), nullptr);
  EXPECT_EQ(array.At(2), nullptr);
  EXPECT_EQ(array.At(-1), nullptr);
  EXPECT_EQ(reading.At(2), nullptr);
}

TEST(Array, EveryElementIsDestroyedOnce) {
  {
    KELXDynamicArray<Counted> copy;
    {
      const KELXDynamicArray<Counted> source = MakeArray(100);
      copy = source;
      const KELXDynamicArray<Counted> another(copy);
      EXPECT_EQ(Counted::alive, 100);
    }
    EXPECT_EQ(Counted::alive, 100);
    EXPECT_EQ(copy.At(99)->Value(), 99);
    copy = MakeArray(3);
    EXPECT_EQ(Counted::alive, 3);
    copy.Clear();
    EXPECT_EQ(Counted::alive, 0);
    EXPECT_GE(copy.Capacity(), 3);
  }
  EXPECT_EQ(Counted::alive, 0);
}

TEST(Array, WritersDetachFromSharedElements) {
  const std::vector<int> original = {0, 1, 2, 3};
  const std::vector<void (*)(KELXDynamicArray<Counted>&)> writers = {
      [](auto& array) { array.Add(Counted(9)); },
      [](auto& array) { *array.At(0) = Counted(9); },
      [](auto& array) { array.Reserve(50); },
      [](auto& array) { array.Clear(); },
      [](auto& array) { array.Callback(); },
      [](auto& array) { array = KELXDynamicArray<Counted>(); },
  };
  for (std::size_t i = 0; i < writers.size(); ++i) {
    {
      KELXDynamicArray<Counted> first = MakeArray(4);
      KELXDynamicArray<Counted> second(first);
      writers[i](second);
      EXPECT_EQ(Values(first), original) << "writer " << i;
      writers[i](first);
      EXPECT_EQ(Values(first), Values(second)) << "writer " << i;
    }
    EXPECT_EQ(Counted::alive, 0) << "writer " << i;
  }
}

TEST(Array, AddsAnElementOfItsOwn) {
  KELXDynamicArray<KELXString> array;
  array.Add(KELXString(L"first"));
  for (int i = 0; i < 20; ++i) array.Add(*array.At(0));
  const KELXDynamicArray<KELXString> shared(array);
  array.Add(*array.At(20));
  array.Add(*shared.At(3));
  EXPECT_EQ(array.Count(), 23);
  EXPECT_EQ(array.At(22)->toUtf8(), "first");
  EXPECT_EQ(shared.Count(), 21);
}

TEST(Array, BulkAppend) {
  KELXDynamicArray<unsigned int> array;
  const unsigned int values[] = {1, 2, 3, 4, 5};
  EXPECT_TRUE(array.Append(values, 5));
  const KELXDynamicArray<unsigned int> shared(array);
  EXPECT_TRUE(array.Append(values, 2));
  EXPECT_TRUE(array.Append(values, 0));
  EXPECT_TRUE(array.Append(values, -1));
  EXPECT_EQ(std::vector<unsigned int>(array.begin(), array.end()),
            (std::vector<unsigned int>{1, 2, 3, 4, 5, 1, 2}));
  EXPECT_EQ(shared.Count(), 5);
  EXPECT_EQ(array.Extend(0), nullptr);
  EXPECT_EQ(array.Extend(-1), nullptr);
  EXPECT_EQ(array.Extend(2147483647), nullptr);  // 2^31 - 1 elements are the most
  EXPECT_EQ(array.Count(), 7);
}

TEST(Array, KeepsElementsOnItsWayToLargeBlocks) {
  KELXDynamicArray<unsigned int> array;
  constexpr int kCount = 3 << 20;  // 12 MiB, past the step from small blocks to large ones
  for (int i = 0; i < kCount; ++i) array.Add(static_cast<unsigned int>(i));
  const KELXDynamicArray<unsigned int> shared(array);
  array.Reserve(kCount + 5);
  *array.At(7) = 0;
  int wrong = 0;
  for (int i = 0; i < kCount; ++i) wrong += *shared.At(i) != static_cast<unsigned int>(i);
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(*std::as_const(array).At(kCount - 1), static_cast<unsigned int>(kCount - 1));
}

TEST(UntypedArray, WorksWithoutTheTemplate) {
  KELXArrayHeader* header = kelxArrayAllocate(2, sizeof(int));
  for (int value : {10, 20, 30}) kelxArrayAdd(header, &value);
  kelxArrayAdd(header, header->elements);
  const auto values = [](const KELXArrayHeader* array) {
    const auto* elements = static_cast<const int*>(array->elements);
    return std::vector<int>(elements, elements + kelxArrayCount(array));
  };
  EXPECT_EQ(values(header), (std::vector<int>{10, 20, 30, 10}));

  KELXArrayHeader* copy = kelxArrayCopy(header);
  EXPECT_TRUE(kelxArrayIsShared(header));
  int value = 50;
  kelxArrayAdd(copy, &value);
  EXPECT_EQ(values(header), (std::vector<int>{10, 20, 30, 10}));
  EXPECT_EQ(values(copy), (std::vector<int>{10, 20, 30, 10, 50}));

  kelxArrayReallocSize(copy, 100);
  EXPECT_EQ(copy->capacity, 100U);
  kelxArrayReallocSize(copy, 1);  // never below what is held
  EXPECT_EQ(values(copy), (std::vector<int>{10, 20, 30, 10, 50}));
  kelxArrayClear(copy);
  EXPECT_EQ(kelxArrayCount(copy), 0);
  kelxArrayFree(copy, nullptr);
  kelxArrayFree(header, nullptr);
  EXPECT_EQ(header, nullptr);
  kelxArrayFree(header, nullptr);
  EXPECT_EQ(kelxArrayCount(nullptr), 0);
}

}  // namespace
