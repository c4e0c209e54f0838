// Event, WaitGroup, EventQueue and Thread across real threads. Nothing here sleeps to
// synchronise: every hand-over goes through an event.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "frame/EventQueue.h"
#include "frame/LibraryLock.h"
#include "frame/Ref.h"
#include "frame/Thread.h"
#include "frame/WaitGroup.h"

namespace kx {
namespace {

TEST(Event, StaysSetUntilReset) {
  Event event(7, 3);
  EXPECT_EQ(event.GetOwnerID(), 7);
  EXPECT_EQ(event.GetKind(), 3);
  EXPECT_FALSE(event.WaitFor(0));
  event.Set();
  EXPECT_TRUE(event.WaitFor(0));
  EXPECT_TRUE(event.WaitFor(0));  // waiting doesn't reset
  event.Reset();
  EXPECT_FALSE(event.WaitFor(1));
}

TEST(WaitGroup, TheEarliestAddedOfSeveralSetEventsWins) {
  WaitGroup group;
  std::vector<Ref<Event>> events;
  for (int i = 0; i < 5; ++i) {
    events.emplace_back(new Event(0, i));
    group.Add(events.back().get());
  }
  events[3]->Set();
  events[1]->Set();
  for (int round = 0; round < 3; ++round)  // nobody resets: at once, every time
    EXPECT_EQ(Ref<Event>(group.WaitAny(0))->GetKind(), 1);
  events[1]->Reset();
  EXPECT_EQ(Ref<Event>(group.WaitAny())->GetKind(), 3);
  events[3]->Reset();
  EXPECT_FALSE(Ref<Event>(group.WaitAny(5)));  // time-out
  group.Close();
  EXPECT_FALSE(Ref<Event>(group.WaitAny(0)));  // no members
}

TEST(WaitGroup, RefusesA65thEvent) {
  WaitGroup group;
  std::vector<Ref<Event>> events;
  for (int i = 0; i < 65; ++i) {
    events.emplace_back(new Event(0, i));
    group.Add(events.back().get());
  }
  EXPECT_EQ(group.GetCount(), 64);
  events[64]->Set();
  EXPECT_FALSE(Ref<Event>(group.WaitAny(0)));
  events[63]->Set();
  EXPECT_EQ(Ref<Event>(group.WaitAny(0))->GetKind(), 63);
}

TEST(WaitGroup, WakesWhenAnotherThreadSetsAMember) {
  WaitGroup group;
  Ref<Event> stop(new Event(0, 1)), data(new Event(0, 2));
  group.Add(stop.get());
  group.Add(data.get());
  std::thread setter([&] { data->Set(); });
  Ref<Event> woke(group.WaitAny());
  setter.join();
  ASSERT_TRUE(woke);
  EXPECT_EQ(woke->GetKind(), 2);
}

// The producer and consumer pattern: push under the lock, then set; wait, reset, then
// pop under the lock until nothing is left.
TEST(EventQueue, CarriesObjectsBetweenThreadsInOrder) {
  EventQueue queue;
  Ref<Event> ready(new Event()), finished(new Event());
  constexpr int kCount = 2000;
  std::thread producer([&] {
    for (int i = 1; i <= kCount; ++i) {
      Ref<BaseObject> item(new BaseObject());
      item->SetID(i);
      {
        LockScope lock;
        queue.Push(item.get());
      }
      ready->Set();
    }
    finished->Set();
  });
  WaitGroup group;
  group.Add(ready.get());
  group.Add(finished.get());
  int expected = 1;
  bool done = false;
  while (!done) {
    Ref<Event> woke(group.WaitAny());
    done = woke.get() == finished.get();
    ready->Reset();
    for (;;) {
      Ref<BaseObject> item;
      {
        LockScope lock;
        item = Ref<BaseObject>(queue.Pop());
      }
      if (!item) break;
      EXPECT_EQ(item->GetID(), expected++);
    }
  }
  producer.join();
  EXPECT_EQ(expected, kCount + 1);
  EXPECT_FALSE(Ref<BaseObject>(queue.Pop()));
}

class Worker : public BaseObject {
 public:
  void ThreadMain(Thread* thread, BaseObject* argument) override {
    ++runs;
    seenThread = thread;
    seenArgument = argument;
    stop.Wait();
  }
  std::atomic<int> runs{0};
  Thread* seenThread = nullptr;
  BaseObject* seenArgument = nullptr;
  Event stop;
};

TEST(Thread, RunsTheOwnersThreadMainOnceUntilClosed) {
  Worker worker;
  Ref<Thread> thread(new Thread());
  Ref<BaseObject> argument(new BaseObject());
  EXPECT_FALSE(thread->IsRunning());
  thread->Start(&worker, argument.get());
  thread->Start(&worker, nullptr);  // started already: nothing changes
  EXPECT_TRUE(thread->IsRunning());
  EXPECT_EQ(argument->AddRef(), 3);  // the test, the thread, this call
  argument->Release();
  worker.stop.Set();
  thread->Close();
  EXPECT_FALSE(thread->IsRunning());
  EXPECT_EQ(worker.runs, 1);
  EXPECT_EQ(worker.seenThread, thread.get());
  EXPECT_EQ(worker.seenArgument, argument.get());
  EXPECT_EQ(argument->AddRef(), 2);  // given up by Close
  argument->Release();

  worker.stop.Reset();
  thread->Start(&worker, nullptr);  // a closed thread starts again
  worker.stop.Set();
  thread->Close();
  EXPECT_EQ(worker.runs, 2);
  EXPECT_EQ(worker.seenArgument, nullptr);
  thread->Close();  // closing a closed thread is harmless
  EXPECT_EQ(thread->Error().GetNumber(), 0);
}

// An owner that writes a plain field on its thread; whoever closes the thread reads it
// afterwards without a lock, which is right only once Close has waited for the thread.
class Counter : public BaseObject {
 public:
  void ThreadMain(Thread*, BaseObject*) override {
    for (int i = 0; i < 1000; ++i) ++total;
  }
  int total = 0;
};

TEST(Thread, TheLastReleaseStopsTheThreadAndOrdersItsWrites) {
  Counter counter;
  for (int round = 1; round <= 20; ++round) {
    auto* thread = new Thread();
    thread->Start(&counter, nullptr);
    ReleaseObject(thread);  // count 0: Close, then destroy
    ASSERT_EQ(counter.total, round * 1000);
  }
}

}  // namespace
}  // namespace kx
