// The chunked store: where growth puts records, how splits divide a chunk, how the
// cursor walks, and the failures with their texts.
#include <gtest/gtest.h>

#include <vector>

#include "frame/Ref.h"
#include "shapes/ChunkedRecordStore.h"

namespace kx {
namespace {

struct Record {
  int32_t value;
  int32_t pad[9];  // 40 bytes, as a Shape's node
};

Record R(int32_t value) { return Record{value, {}}; }

Ref<ChunkedRecordStore> NewStore() {
  return Ref<ChunkedRecordStore>(new ChunkedRecordStore(sizeof(Record), 20, 50, 100));
}

void Append(ChunkedRecordStore& store, int32_t from, int32_t to) {
  for (int32_t v = from; v < to; ++v) {
    const Record r = R(v);
    store.Insert(-1, &r);
    ASSERT_FALSE(store.Error().Failed());
  }
}

std::vector<int32_t> ChunkCounts(const ChunkedRecordStore& store) {
  std::vector<int32_t> counts;
  for (int32_t c = 0; c < store.GetChunkCount(); ++c) counts.push_back(store.ChunkAt(c).GetCount());
  return counts;
}

std::vector<int32_t> ChunkCapacities(const ChunkedRecordStore& store) {
  std::vector<int32_t> capacities;
  for (int32_t c = 0; c < store.GetChunkCount(); ++c)
    capacities.push_back(store.ChunkAt(c).GetCapacity());
  return capacities;
}

std::vector<int32_t> Values(ChunkedRecordStore& store) {
  std::vector<int32_t> values;
  for (int32_t k = 0; k < store.GetCount(); ++k) {
    Record r{};
    store.Get(k, &r);
    values.push_back(r.value);
  }
  return values;
}

std::vector<int32_t> Range(int32_t from, int32_t to) {
  std::vector<int32_t> v;
  for (int32_t k = from; k < to; ++k) v.push_back(k);
  return v;
}

TEST(ChunkedRecordStore, AppendsOpenChunksOf20Then50Then100AndMoveNothing) {
  Ref<ChunkedRecordStore> store = NewStore();
  Append(*store, 0, 20);
  const uint8_t* firstBlock = store->ChunkAt(0).Records();
  Append(*store, 20, 171);
  EXPECT_EQ(ChunkCapacities(*store), (std::vector<int32_t>{20, 50, 100, 100}));
  EXPECT_EQ(ChunkCounts(*store), (std::vector<int32_t>{20, 50, 100, 1}));
  EXPECT_EQ(store->ChunkAt(0).Records(), firstBlock);  // no record moved
  EXPECT_EQ(Values(*store), Range(0, 171));
}

// Runs of all lengths, behind records that a removal took from the last chunk: the same
// chunks as one append after another, and the cursor on the last record.
TEST(ChunkedRecordStore, ARunAppendedInOneCallLandsWhereSingleAppendsWould) {
  Ref<ChunkedRecordStore> many = NewStore(), one = NewStore();
  std::vector<int32_t> model;
  for (int32_t run : {7, 13, 30, 1, 149, 100, 250}) {
    std::vector<Record> records;
    for (int32_t k = 0; k < run; ++k) records.push_back(R(int32_t(model.size()) + k));
    EXPECT_EQ(many->Append(records.data(), run), run);
    Append(*one, int32_t(model.size()), int32_t(model.size()) + run);
    for (const Record& r : records) model.push_back(r.value);
    EXPECT_EQ(ChunkCapacities(*many), ChunkCapacities(*one)) << run;
    EXPECT_EQ(ChunkCounts(*many), ChunkCounts(*one)) << run;
    many->Remove(many->GetCount() - 1);
    one->Remove(one->GetCount() - 1);
    model.pop_back();
  }
  EXPECT_EQ(Values(*many), model);
  EXPECT_EQ(many->Append(nullptr, 0), 0);
  EXPECT_FALSE(many->Error().Failed());
}

TEST(ChunkedRecordStore, InsertingIntoAFullChunkSplitsItAtHalfItsCapacity) {
  Ref<ChunkedRecordStore> store = NewStore();
  Append(*store, 1, 21);
  const Record zero = R(0);
  store->Insert(0, &zero);  // the upper half moves behind, the new record goes first
  EXPECT_EQ(ChunkCounts(*store), (std::vector<int32_t>{11, 10}));
  EXPECT_EQ(ChunkCapacities(*store), (std::vector<int32_t>{20, 50}));
  EXPECT_EQ(Values(*store), Range(0, 21));

  Ref<ChunkedRecordStore> middle = NewStore();
  Append(*middle, 0, 20);
  const Record r = R(100);
  middle->Insert(15, &r);  // past the half: the record lands in the new chunk
  EXPECT_EQ(ChunkCounts(*middle), (std::vector<int32_t>{10, 11}));
  std::vector<int32_t> expected = Range(0, 15);
  expected.push_back(100);
  for (int32_t v = 15; v < 20; ++v) expected.push_back(v);
  EXPECT_EQ(Values(*middle), expected);
  EXPECT_EQ(middle->GetCount(), 21);
}

TEST(ChunkedRecordStore, RemovingAMiddleChunksOnlyRecordDropsTheChunk) {
  Ref<ChunkedRecordStore> store = NewStore();
  Append(*store, 0, 71);                                // 20, 50, 1
  for (int32_t k = 69; k >= 21; --k) store->Remove(k);  // the middle chunk keeps one
  EXPECT_EQ(ChunkCounts(*store), (std::vector<int32_t>{20, 1, 1}));
  store->Remove(20);
  EXPECT_EQ(ChunkCounts(*store), (std::vector<int32_t>{20, 1}));
  Record next{};
  store->Get(20, &next);
  EXPECT_EQ(next.value, 70);  // the record that followed
}

TEST(ChunkedRecordStore, RemovingTheOnlyRecordLeavesNoChunkAndStartsOverAt20) {
  Ref<ChunkedRecordStore> store = NewStore();
  Append(*store, 0, 1);
  store->Remove(0);
  EXPECT_EQ(store->GetChunkCount(), 0);
  EXPECT_EQ(store->GetCount(), 0);
  Append(*store, 0, 1);
  EXPECT_EQ(ChunkCapacities(*store), (std::vector<int32_t>{20}));
  store->Clear();
  EXPECT_EQ(store->GetChunkCount(), 0);
  Append(*store, 0, 21);
  EXPECT_EQ(ChunkCapacities(*store), (std::vector<int32_t>{20, 50}));
}

// Phases of growth and of removals near the front, as a track is built and then cut from
// its start, leave chunks of every size alone or side by side; every insertion must find
// a slot (an overflow is what AddressSanitizer sees here).
TEST(ChunkedRecordStore, RandomEditsAgreeWithAVector) {
  for (uint32_t seed : {12345u, 7u, 2024u, 99991u}) {
    Ref<ChunkedRecordStore> store = NewStore();
    std::vector<int32_t> model;
    auto next = [&](uint32_t bound) {
      seed = seed * 1103515245u + 12345u;
      return (seed >> 8) % bound;
    };
    for (int32_t step = 0; step < 6000; ++step) {
      const bool growing = (step / 400) % 2 == 0;
      const uint32_t what = next(10);
      if ((growing ? what < 8 : what < 1) || model.empty()) {
        const int32_t at = int32_t(next(uint32_t(model.size()) + 1));
        const Record r = R(step);
        store->Insert(at, &r);
        model.insert(model.begin() + at, step);
      } else if (what < 9) {
        // Shrinking takes mostly from the front, which empties the first chunks.
        const uint32_t reach =
            growing ? uint32_t(model.size()) : std::min<uint32_t>(30, model.size());
        const int32_t at = int32_t(next(reach));
        store->Remove(at);
        model.erase(model.begin() + at);
      } else {
        const int32_t at = int32_t(next(uint32_t(model.size())));
        const Record r = R(-step);
        store->Set(at, &r);
        model[at] = -step;
      }
      ASSERT_FALSE(store->Error().Failed()) << "step " << step;
      ASSERT_EQ(store->GetCount(), int32_t(model.size()));
      for (int32_t c = 0; c < store->GetChunkCount(); ++c) {
        ASSERT_GT(store->ChunkAt(c).GetCount(), 0);
        ASSERT_LE(store->ChunkAt(c).GetCount(), store->ChunkAt(c).GetCapacity());
      }
    }
    EXPECT_EQ(Values(*store), model);
    // Walking downwards crosses the borders without losing a record.
    std::vector<int32_t> down;
    for (int32_t k = store->GetCount() - 1; k >= 0; --k) {
      Record r{};
      store->Get(k, &r);
      down.push_back(r.value);
    }
    EXPECT_EQ(std::vector<int32_t>(down.rbegin(), down.rend()), model);
    Ref<ChunkedRecordStore> clone(store->Clone());
    EXPECT_EQ(Values(*clone), model);
  }
}

TEST(ChunkedRecordStore, FailuresAndTheirTexts) {
  Ref<ChunkedRecordStore> store = NewStore();
  Record r{};
  store->Get(0, &r);  // no chunk yet
  EXPECT_EQ(store->Error().GetNumber(), 10004);
  EXPECT_STREQ(store->Error().GetText(), "Index out of bounds");
  Append(*store, 0, 30);
  store->Get(5, &r);
  store->Get(30, &r);  // at count: refused, and the cursor stays on 5
  EXPECT_EQ(store->Error().GetNumber(), 10004);
  store->Get(6, &r);
  EXPECT_EQ(r.value, 6);
  store->Insert(-2, &r);
  EXPECT_EQ(store->Error().GetNumber(), 10004);
  store->Insert(31, &r);
  EXPECT_EQ(store->Error().GetNumber(), 10004);
  store->Set(0, nullptr);
  EXPECT_EQ(store->Error().GetNumber(), 10003);
  EXPECT_STREQ(store->Error().GetText(), "Invalid parameter!");
  store->Remove(30);
  EXPECT_EQ(store->Error().GetNumber(), 10004);
  EXPECT_EQ(store->GetCount(), 30);
}

}  // namespace
}  // namespace kx
