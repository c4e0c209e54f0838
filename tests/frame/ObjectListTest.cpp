// ObjectList: 1-based positions, lookups by ID, the cursor, and the references it holds.
#include <gtest/gtest.h>

#include <vector>

#include "frame/ObjectList.h"
#include "frame/Ref.h"

namespace kx {
namespace {

class Counted : public BaseObject {
 public:
  explicit Counted(int32_t id, int* closes = nullptr) : m_closes(closes) { SetID(id); }
  void Close() override {
    if (m_closes) ++*m_closes;
  }

 private:
  int* m_closes;
};

// The IDs from head to tail, by a walk with the cursor.
std::vector<int32_t> Walk(ObjectList& list) {
  std::vector<int32_t> ids;
  for (Ref<BaseObject> o(list.GetFirst()); o; o = Ref<BaseObject>(list.GetNext()))
    ids.push_back(o->GetID());
  return ids;
}

class ObjectListTest : public ::testing::Test {
 protected:
  void Fill(std::initializer_list<int32_t> ids) {
    for (int32_t id : ids) {
      Ref<Counted> object(new Counted(id));
      list.Add(object.get());
    }
  }
  ObjectList list;
};

TEST_F(ObjectListTest, InsertAtPositionsAndInSortedOrder) {
  Fill({1, 2, 3});
  Ref<Counted> a(new Counted(10)), b(new Counted(11)), c(new Counted(12)), d(new Counted(13));
  list.Insert(a.get(), 0);
  list.Insert(b.get(), 3);
  list.Insert(c.get(), 99);
  list.Insert(d.get(), -5);
  list.Add(nullptr);
  EXPECT_EQ(Walk(list), (std::vector<int32_t>{10, 1, 11, 2, 3, 12, 13}));

  ObjectList sorted;
  const std::pair<int32_t, int32_t> arrivals[] = {{1, 50}, {2, 10}, {3, 50}, {4, 30}, {5, 10}};
  for (auto [id, key] : arrivals) sorted.InsertSorted(Ref<Counted>(new Counted(id)).get(), key);
  EXPECT_EQ(Walk(sorted), (std::vector<int32_t>{2, 5, 4, 1, 3}));
}

TEST_F(ObjectListTest, PositionsAreOneBasedAndOutOfRangeGivesNothing) {
  Fill({7, 8, 9});
  EXPECT_EQ(Ref<BaseObject>(list.GetItem(1))->GetID(), 7);
  EXPECT_EQ(Ref<BaseObject>(list.GetItem(3))->GetID(), 9);
  EXPECT_FALSE(Ref<BaseObject>(list.GetItem(0)));
  EXPECT_FALSE(Ref<BaseObject>(list.GetNext()));  // the cursor went with it
  EXPECT_FALSE(Ref<BaseObject>(list.GetItem(4)));
  EXPECT_FALSE(Ref<BaseObject>(list.GetPrevious()));
  EXPECT_EQ(list.GetPosition(9), 3);
  EXPECT_EQ(list.GetPosition(5), 0);
  EXPECT_EQ(list.GetIDAt(2), 8);
  EXPECT_EQ(list.GetIDAt(4), 0);
}

TEST_F(ObjectListTest, AnExhaustedCursorStaysExhaustedAtEitherEnd) {
  Fill({1, 2});
  Ref<BaseObject>(list.GetLast());
  EXPECT_FALSE(Ref<BaseObject>(list.GetNext()));
  EXPECT_FALSE(Ref<BaseObject>(list.GetNext()));
  EXPECT_FALSE(Ref<BaseObject>(list.GetPrevious()));  // doesn't come back from the tail
  EXPECT_EQ(Ref<BaseObject>(list.GetFirst())->GetID(), 1);
  EXPECT_FALSE(Ref<BaseObject>(list.GetPrevious()));
  EXPECT_FALSE(Ref<BaseObject>(list.GetNext()));

  list.Add(Ref<Counted>(new Counted(3)).get());  // the cursor moves to what was added
  EXPECT_EQ(Ref<BaseObject>(list.GetPrevious())->GetID(), 2);

  ObjectList empty;
  empty.Insert(Ref<Counted>(new Counted(4)).get(), 5);  // beyond the count of an empty list
  EXPECT_EQ(empty.GetIDAt(1), 4);
}

TEST_F(ObjectListTest, TheFirstOfTwoEqualIDsIsFoundAndRemoved) {
  Ref<Counted> first(new Counted(5)), second(new Counted(5));
  Fill({1});
  list.Add(first.get());
  list.Add(second.get());
  EXPECT_EQ(Ref<BaseObject>(list.FindByID(5)).get(), first.get());
  EXPECT_TRUE(list.RemoveByID(5));
  EXPECT_EQ(Ref<BaseObject>(list.FindByID(5)).get(), second.get());
  EXPECT_FALSE(list.RemoveByID(6));
  EXPECT_TRUE(list.ContainsID(5));
  EXPECT_FALSE(list.Contains(nullptr));
  Counted stranger(1);  // never added, but its ID is that of the head
  EXPECT_TRUE(list.Contains(&stranger));
  EXPECT_TRUE(list.Remove(&stranger));
  EXPECT_EQ(list.GetPosition(5), 1);
}

TEST_F(ObjectListTest, RemoveResetsTheCursorToTheHead) {
  Fill({1, 2, 3, 4});
  Ref<BaseObject>(list.GetItem(3));
  EXPECT_TRUE(list.RemoveByID(4));
  EXPECT_EQ(Ref<BaseObject>(list.GetNext())->GetID(), 2);
  Ref<BaseObject>(list.GetLast());
  EXPECT_EQ(Ref<BaseObject>(list.GetPrevious())->GetID(), 2);
}

TEST_F(ObjectListTest, TheListHoldsOneReferenceAndGivesItUp) {
  int closes = 0;
  Ref<Counted> object(new Counted(1, &closes));
  list.Add(object.get());
  list.Add(object.get());
  list.CloseAll();
  EXPECT_EQ(closes, 2);  // closed twice, kept
  EXPECT_EQ(list.GetCount(), 2);
  EXPECT_EQ(object->AddRef(), 4);  // the holder, two list entries, this call
  object->Release();
  list.RemoveAll();
  EXPECT_EQ(list.GetCount(), 0);
  EXPECT_EQ(object->AddRef(), 2);
  object->Release();
  EXPECT_FALSE(Ref<BaseObject>(list.GetFirst()));
}

}  // namespace
}  // namespace kx
