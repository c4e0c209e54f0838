// Bytes from a port: the splitter and the sentences it hands out, with arbitrary bytes,
// runs longer than the ring without CR LF, long fields and NULs. Nothing may be read
// out of bounds, and every sentence handed out must carry a right checksum. The same
// bytes handed over at once, as a text by hand, must lose none of the sentences that the
// pieces gave.
#include <cstdint>
#include <string>
#include <vector>

#include "frame/Ref.h"
#include "gps/NmeaSentence.h"
#include "gps/SentenceSplitter.h"

using kx::NmeaSentence;
using kx::Ref;
using kx::SentenceSplitter;
using kx::String;

namespace {

// The sentence's own text must pass the test the splitter made. The two digits are the
// bytes behind the "*", which may be the CR and LF that ended the sentence.
void CheckChecksum(const String* text) {
  const char* bytes = text->GetText();
  const int32_t length = text->GetLength();
  uint8_t sum = 0;
  int32_t at = 1;
  for (; at < length && bytes[at] != '*'; ++at) sum ^= uint8_t(bytes[at]);
  if (at >= length) __builtin_trap();  // a mandatory checksum is missing
  auto byteAt = [&](int32_t i) { return i < length ? bytes[i] : i == length ? '\r' : '\n'; };
  auto digit = [](char c) { return c >= '0' && c <= '9' ? c - '0' : c - 0x37; };
  if (int8_t(16 * digit(byteAt(at + 1)) + digit(byteAt(at + 2))) != int8_t(sum)) __builtin_trap();
}

void Exercise(NmeaSentence* sentence) {
  (void)sentence->GetType();
  for (int32_t i = -1; i <= sentence->GetFieldCount() + 1; ++i) Ref<String>(sentence->GetField(i));
  Ref<String> text(sentence->GetSentence());
  if (text && text->GetLength() > 0) CheckChecksum(text.get());
  sentence->SetField(sentence->GetFieldCount() + 2, 1.25, 3);
  Ref<String>(sentence->GetSentence());
}

std::string TextOf(NmeaSentence* sentence) {
  Ref<String> text(sentence->GetSentence());
  return text ? std::string(text->GetText(), size_t(text->GetLength())) : std::string();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 65536) return 0;
  SentenceSplitter splitter;
  std::vector<std::string> pieces;
  // Write in uneven pieces, as a port does, scanning after each.
  size_t at = 0, piece = 1;
  while (at < size) {
    const size_t length = size - at < piece ? size - at : piece;
    splitter.WriteBytes(data + at, int32_t(length));
    at += length;
    piece = piece * 3 % 700 + 1;
    while (splitter.FindSentence()) {
      Ref<NmeaSentence> sentence(splitter.GetSentence());
      pieces.push_back(TextOf(sentence.get()));
      Exercise(sentence.get());
    }
  }
  SentenceSplitter whole;
  size_t matched = 0;
  whole.Feed(data, int32_t(size), [&] {
    Ref<NmeaSentence> sentence(whole.GetSentence());
    if (matched < pieces.size() && TextOf(sentence.get()) == pieces[matched]) ++matched;
  });
  if (matched != pieces.size()) __builtin_trap();  // a sentence the pieces found went lost
  return 0;
}
