#include "platform/posix/WideText.h"

namespace platform {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool IsLowSurrogate(char32_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

void AppendUtf8(std::string& out, char32_t c) {
  if (c < 0x80) {
    out += char(c);
  } else if (c < 0x800) {
    out += char(0xC0 | (c >> 6));
    out += char(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    out += char(0xE0 | (c >> 12));
    out += char(0x80 | ((c >> 6) & 0x3F));
    out += char(0x80 | (c & 0x3F));
  } else {
    out += char(0xF0 | (c >> 18));
    out += char(0x80 | ((c >> 12) & 0x3F));
    out += char(0x80 | ((c >> 6) & 0x3F));
    out += char(0x80 | (c & 0x3F));
  }
}

void AppendUtf16(std::u16string& out, char32_t c) {
  if (c < 0x10000) {
    out += char16_t(c);
  } else {
    c -= 0x10000;
    out += char16_t(0xD800 + (c >> 10));
    out += char16_t(0xDC00 + (c & 0x3FF));
  }
}

size_t SequenceLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if ((lead & 0xE0) == 0xC0) return 2;
  if ((lead & 0xF0) == 0xE0) return 3;
  if ((lead & 0xF8) == 0xF0) return 4;
  return 0;
}

// The code point of the UTF-8 sequence that starts at `at`; false for a stray, cut,
// overlong or out-of-range one.
bool DecodeSequence(const std::string& utf8, size_t at, size_t length, char32_t& c) {
  static const unsigned char kLeadMask[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
  static const char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  if (length == 0 || at + length > utf8.size()) return false;
  c = (unsigned char)utf8[at] & kLeadMask[length];
  for (size_t i = 1; i < length; ++i) {
    const unsigned char next = (unsigned char)utf8[at + i];
    if ((next & 0xC0) != 0x80) return false;
    c = (c << 6) | (next & 0x3F);
  }
  return c >= kSmallest[length] && c <= 0x10FFFF && !IsHighSurrogate(c) && !IsLowSurrogate(c);
}

}  // namespace

std::string ToUtf8(const std::u16string& text) {
  std::string utf8;
  for (size_t i = 0; i < text.size(); ++i) {
    char32_t c = text[i];
    if (IsHighSurrogate(c) && i + 1 < text.size() && IsLowSurrogate(text[i + 1]))
      c = 0x10000 + ((c - 0xD800) << 10) + (char32_t(text[++i]) - 0xDC00);
    else if (IsHighSurrogate(c) || IsLowSurrogate(c))
      c = kReplacement;
    AppendUtf8(utf8, c);
  }
  return utf8;
}

namespace {

// Malformed bytes come out as U+FFFD, or end the decoding when `exactly`.
bool Decode(const std::string& utf8, std::u16string& text, bool exactly) {
  for (size_t at = 0; at < utf8.size();) {
    const size_t length = SequenceLength((unsigned char)utf8[at]);
    char32_t c;
    if (DecodeSequence(utf8, at, length, c)) {
      AppendUtf16(text, c);
      at += length;
    } else if (exactly) {
      return false;
    } else {
      // Only the first byte is given up: what follows may start a good sequence.
      AppendUtf16(text, kReplacement);
      ++at;
    }
  }
  return true;
}

}  // namespace

std::u16string FromUtf8(const std::string& utf8) {
  std::u16string text;
  Decode(utf8, text, false);
  return text;
}

bool FromUtf8Exactly(const std::string& utf8, std::u16string& text) {
  return Decode(utf8, text, true);
}

}  // namespace platform
