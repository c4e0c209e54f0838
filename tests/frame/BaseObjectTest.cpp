#include <gtest/gtest.h>

#include <string>

#include "frame/BaseObject.h"
#include "frame/ErrorNumbers.h"
#include "frame/Ref.h"

using kx::BaseObject;
using kx::ErrorRecord;
using kx::Ref;

namespace {

// Counts its Close calls and its destruction into the test's variables.
class Probe : public BaseObject {
 public:
  Probe(int* closes, int* destroyed) : m_closes(closes), m_destroyed(destroyed) {}
  ~Probe() override { ++*m_destroyed; }
  void Close() override { ++*m_closes; }

 private:
  int* m_closes;
  int* m_destroyed;
};

}  // namespace

TEST(BaseObject, IdsFollowEachOtherAndCanBeOverwritten) {
  BaseObject first, second;
  EXPECT_EQ(second.GetID(), first.GetID() + 1);
  EXPECT_TRUE(first.IsSameObject(&first));
  EXPECT_FALSE(first.IsSameObject(&second));
  EXPECT_FALSE(first.IsSameObject(nullptr));
  second.SetID(first.GetID());
  EXPECT_TRUE(first.IsSameObject(&second));
}

TEST(BaseObject, LastReleaseClosesOnceAndItsCallerDestroys) {
  int closes = 0, destroyed = 0;
  auto* object = new Probe(&closes, &destroyed);
  EXPECT_EQ(object->AddRef(), 2);
  BaseObject* second = object;
  kx::ReleaseObject(second);
  EXPECT_EQ(second, nullptr);
  EXPECT_EQ(closes, 0);
  EXPECT_EQ(destroyed, 0);
  kx::ReleaseObject(object);
  EXPECT_EQ(closes, 1);
  EXPECT_EQ(destroyed, 1);
  kx::ReleaseObject(object);  // null: nothing
}

TEST(BaseObject, RefHoldsAndGivesUpItsOwnReference) {
  int closes = 0, destroyed = 0;
  {
    Ref<Probe> owner(new Probe(&closes, &destroyed));
    Ref<Probe> shared = Ref<Probe>::Share(owner.get());
    Ref<Probe> copy = shared;
    Ref<Probe> moved = std::move(copy);
    EXPECT_FALSE(copy);
    owner.Reset();
    EXPECT_EQ(destroyed, 0);
    Probe* handedOut = moved.Detach();
    kx::ReleaseObject(handedOut);
    EXPECT_EQ(destroyed, 0);
  }
  EXPECT_EQ(closes, 1);
  EXPECT_EQ(destroyed, 1);
}

TEST(ErrorRecord, KeepsAPrivateCopyOfTheText) {
  ErrorRecord record;
  std::string text = "Comm port in use!";
  record.SetError(10007, text.c_str());
  text = "changed";
  EXPECT_EQ(record.GetNumber(), 10007);
  EXPECT_STREQ(record.GetText(), "Comm port in use!");
  record.SetError(10003, nullptr);
  EXPECT_STREQ(record.GetText(), "");
  record.SetError(0, "ignored");
  EXPECT_EQ(record.GetText(), nullptr);
  record.SetError(10004, "x");
  record.ClearError();
  EXPECT_EQ(record.GetNumber(), 0);
  EXPECT_EQ(record.GetText(), nullptr);
}

TEST(ErrorRecord, CopyTakesOverAFailureAndCutsTo16Bits) {
  ErrorRecord member, owner;
  member.SetError(0x12345, "Error reading from file");
  EXPECT_EQ(owner.m_copy_err(&member), int16_t(0x2345));
  EXPECT_EQ(owner.GetNumber(), 0x12345);
  EXPECT_STREQ(owner.GetText(), "Error reading from file");
  member.ClearError();
  EXPECT_EQ(owner.m_copy_err(&member), 0);
  EXPECT_EQ(owner.GetText(), nullptr);
  EXPECT_EQ(owner.m_copy_err(nullptr), kx::kErrInternal);
  EXPECT_STREQ(owner.GetText(), "NULL argument to m_copy_err()");
  EXPECT_EQ(owner.m_copy_err(&owner), kx::kErrInternal);  // a record copying itself
  EXPECT_STREQ(owner.GetText(), "NULL argument to m_copy_err()");
}
