// RingBuffer, ByteBuffer and Value.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <numeric>
#include <vector>

#include "frame/ByteBuffer.h"
#include "frame/Ref.h"
#include "frame/RingBuffer.h"
#include "frame/Value.h"

namespace kx {
namespace {

TEST(RingBuffer, WritesOnlyWhatFitsAndWrapsAroundTheEnd) {
  RingBuffer ring(8);
  std::vector<uint8_t> bytes(20);
  std::iota(bytes.begin(), bytes.end(), uint8_t(1));
  EXPECT_EQ(ring.Write(bytes.data(), 20), 8u);
  EXPECT_EQ(ring.GetFree(), 0u);
  uint8_t out[20] = {};
  EXPECT_EQ(ring.Read(out, 5), 5u);
  EXPECT_EQ(ring.Write(bytes.data() + 8, 4), 4u);  // crosses the end of the storage
  EXPECT_EQ(ring.GetCount(), 7u);
  EXPECT_EQ(ring.Read(out + 5, 20), 7u);
  const uint8_t expected[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  EXPECT_EQ(std::memcmp(out, expected, sizeof expected), 0);
}

TEST(RingBuffer, AnEmptiedBufferStartsAgainFromZero) {
  RingBuffer ring(4);
  const uint8_t in[] = {1, 2, 3};
  uint8_t out[4];
  for (int round = 0; round < 5; ++round) {
    ASSERT_EQ(ring.Write(in, 3), 3u);
    ASSERT_EQ(ring.Read(out, 4), 3u);
    EXPECT_EQ(ring.GetCount(), 0u);
    EXPECT_EQ(ring.GetFree(), 4u);
  }
  EXPECT_EQ(ring.Read(out, 4), 0u);
}

// A capacity that doesn't divide 2^32, never emptied, for many turns: every byte comes
// out once and in order.
TEST(RingBuffer, KeepsOrderOverManyTurnsWhenNeverEmptied) {
  RingBuffer ring(7);
  uint8_t next = 0, expected = 0;
  uint8_t chunk[7];
  for (uint32_t round = 0; round < 3000; ++round) {
    const uint32_t in = std::min(ring.GetFree(), 1 + round % 5);
    for (uint32_t i = 0; i < in; ++i) chunk[i] = next++;
    ASSERT_EQ(ring.Write(chunk, in), in);
    const uint32_t out = ring.Read(chunk, std::min(ring.GetCount() - 1, 1 + round % 4));
    for (uint32_t i = 0; i < out; ++i) ASSERT_EQ(chunk[i], expected++) << round;
    ASSERT_GT(ring.GetCount(), 0u);
  }
}

TEST(RingBuffer, ZeroCapacityHoldsNothing) {
  const uint8_t in[] = {1, 2};
  uint8_t out[2];
  RingBuffer none(0);
  EXPECT_EQ(none.Write(in, 2), 0u);
  EXPECT_EQ(none.Read(out, 2), 0u);
  EXPECT_EQ(none.GetFree(), 0u);
}

TEST(ByteBuffer, CopiesOrStaysEmpty) {
  const uint8_t bytes[] = {9, 8, 7};
  ByteBuffer copy(bytes, 3);
  EXPECT_NE(copy.GetData(), bytes);
  EXPECT_EQ(std::memcmp(copy.GetData(), bytes, 3), 0);
  for (ByteBuffer* empty :
       {new ByteBuffer(nullptr, 5), new ByteBuffer(bytes, 0), new ByteBuffer(-1)}) {
    EXPECT_EQ(empty->GetData(), nullptr);
    EXPECT_EQ(empty->GetLength(), 0);
    ReleaseObject(empty);
  }
  EXPECT_EQ(ByteBuffer(16).GetLength(), 16);
}

TEST(Value, EachSetterDropsWhatWasHeldBefore) {
  Ref<String> text(new String("COM3:"));
  Value value(text.get());
  EXPECT_EQ(value.GetType(), Value::kText);
  EXPECT_EQ(Ref<String>(value.GetString()).get(), text.get());
  Ref<ByteBuffer> binary(new ByteBuffer(4));
  value.SetBinary(binary.get());
  EXPECT_EQ(value.GetType(), Value::kBinary);
  EXPECT_FALSE(Ref<String>(value.GetString()));
  EXPECT_EQ(text->AddRef(), 2);  // the value gave its reference up
  text->Release();
  value.SetInteger(-7);
  EXPECT_EQ(value.GetType(), Value::kInteger);
  EXPECT_EQ(value.GetInteger(), -7);
  EXPECT_FALSE(Ref<ByteBuffer>(value.GetBinary()));
  EXPECT_STREQ(Ref<String>(Value("x").GetString())->GetText(), "x");
  EXPECT_EQ(Value().GetType(), Value::kEmpty);
}

TEST(Value, CloseGivesUpTheObjectAndEmpties) {
  Ref<ByteBuffer> binary(new ByteBuffer(4));
  Value value(binary.get());
  EXPECT_EQ(value.GetType(), Value::kBinary);
  value.Close();
  EXPECT_EQ(value.GetType(), Value::kEmpty);
  EXPECT_FALSE(Ref<ByteBuffer>(value.GetBinary()));
  EXPECT_EQ(binary->AddRef(), 2);  // the test and this call
  binary->Release();
}

}  // namespace
}  // namespace kx
