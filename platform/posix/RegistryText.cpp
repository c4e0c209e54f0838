#include "platform/posix/RegistryText.h"

#include <algorithm>

#include "platform/posix/WideText.h"

namespace platform {

namespace {

constexpr const char* kHeading = "; KestrixCE registry, format 1\n";
constexpr const char* kHexDigits = "0123456789abcdef";

// ---- writing --------------------------------------------------------------------------

void AppendHexByte(std::string& out, unsigned byte) {
  out += kHexDigits[byte >> 4];
  out += kHexDigits[byte & 15];
}

void AppendBytes(std::string& out, const std::vector<BYTE>& data) {
  for (size_t i = 0; i < data.size(); ++i) {
    if (i) out += ',';
    AppendHexByte(out, data[i]);
  }
}

void AppendQuoted(std::string& out, const std::string& utf8) {
  out += '"';
  for (const char c : utf8) {
    if (c == '\\' || c == '"') {
      out += '\\';
      out += c;
    } else if ((unsigned char)c < 0x20) {
      out += "\\x";
      AppendHexByte(out, (unsigned char)c);
    } else {
      out += c;
    }
  }
  out += '"';
}

std::u16string CharactersOf(const std::vector<BYTE>& data) {
  std::u16string text(data.size() / 2, u'\0');
  for (size_t i = 0; i < text.size(); ++i) text[i] = char16_t(data[2 * i] | data[2 * i + 1] << 8);
  return text;
}

std::vector<BYTE> BytesOf(const std::u16string& text) {
  std::vector<BYTE> data;
  data.reserve(text.size() * 2);
  for (const char16_t c : text) {
    data.push_back(BYTE(c & 0xFF));
    data.push_back(BYTE(c >> 8));
  }
  return data;
}

// The readable form of a value; it is only a candidate, checked by reading it back.
std::string ReadableData(const RegistryValue& value) {
  std::string out;
  if (value.type == REG_DWORD && value.data.size() == 4) {
    out = "dword:";
    for (int i = 3; i >= 0; --i) AppendHexByte(out, value.data[size_t(i)]);
  } else if (value.type == REG_SZ && value.data.size() % 2 == 0) {
    std::u16string text = CharactersOf(value.data);
    if (!text.empty() && text.back() == 0) text.pop_back();
    AppendQuoted(out, ToUtf8(text));
  } else if (value.type == REG_MULTI_SZ && value.data.size() % 2 == 0) {
    std::u16string list = CharactersOf(value.data);
    if (!list.empty()) list.pop_back();  // the NUL after the last string
    out = "multi:";
    for (size_t start = 0; start < list.size();) {
      const size_t end = std::min(list.find(u'\0', start), list.size());
      if (start) out += ',';
      AppendQuoted(out, ToUtf8(list.substr(start, end - start)));
      start = end + 1;
    }
  } else if (value.type == REG_BINARY) {
    out = "hex:";
    AppendBytes(out, value.data);
  }
  return out;
}

std::string HexData(const RegistryValue& value) {
  std::string out = "hex(";
  std::string type;
  for (DWORD rest = value.type; rest || type.empty(); rest >>= 4)
    type.insert(0, 1, kHexDigits[rest & 15]);
  out += type + "):";
  AppendBytes(out, value.data);
  return out;
}

bool ParseData(const std::string& text, DWORD& type, std::vector<BYTE>& data);

std::string DataText(const RegistryValue& value) {
  const std::string readable = ReadableData(value);
  DWORD type;
  std::vector<BYTE> data;
  if (!readable.empty() && ParseData(readable, type, data) && type == value.type &&
      data == value.data)
    return readable;
  return HexData(value);
}

void WriteValue(const RegistryValue& value, std::string& out) {
  if (value.name.empty())
    out += '@';
  else
    AppendQuoted(out, ToUtf8(value.name));
  out += '=';
  out += DataText(value);
  out += '\n';
}

void WriteKey(const RegistryNode& key, const std::string& path, bool root, std::string& out) {
  // A key the machine made writes nothing of its own, only the sub-keys written into it.
  const bool written = !key.IsMachineMade();
  if (written && (!key.Values().empty() || (!root && key.Children().empty()))) {
    out += "\n[" + path + "]\n";
    for (const RegistryValue& value : key.Values()) WriteValue(value, out);
  }
  for (const auto& child : key.Children())
    WriteKey(*child, path + '\\' + ToUtf8(child->Name()), false, out);
}

// ---- reading --------------------------------------------------------------------------

// A reading position in one line.
class Cursor {
 public:
  explicit Cursor(const std::string& text) : m_text(text) {}

  bool AtEnd() const { return m_at == m_text.size(); }
  std::string Rest() const { return m_text.substr(m_at); }
  bool Take(char c) {
    if (AtEnd() || m_text[m_at] != c) return false;
    ++m_at;
    return true;
  }
  bool Take(const char* word) {
    const std::string expected(word);
    if (m_text.compare(m_at, expected.size(), expected) != 0) return false;
    m_at += expected.size();
    return true;
  }
  void SkipBlanks() {
    while (!AtEnd() && (m_text[m_at] == ' ' || m_text[m_at] == '\t')) ++m_at;
  }
  // Up to `most` hex digits, at least one.
  bool HexNumber(size_t most, DWORD& number) {
    size_t digits = 0;
    number = 0;
    for (int digit; digits < most && !AtEnd() && (digit = HexDigit(m_text[m_at])) >= 0; ++digits) {
      number = number << 4 | DWORD(digit);
      ++m_at;
    }
    return digits > 0;
  }
  bool Quoted(std::string& utf8) {
    if (!Take('"')) return false;
    while (!AtEnd()) {
      const char c = m_text[m_at++];
      if (c == '"') return true;
      if (c != '\\') {
        utf8 += c;
        continue;
      }
      DWORD byte;
      if (Take('\\') || Take('"'))
        utf8 += m_text[m_at - 1];
      else if (Take('x') && HexNumber(2, byte))
        utf8 += char(byte);
      else
        return false;
    }
    return false;
  }

 private:
  static int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
  }

  const std::string& m_text;
  size_t m_at = 0;
};

bool ParseBytes(Cursor& cursor, std::vector<BYTE>& data) {
  cursor.SkipBlanks();
  if (cursor.AtEnd()) return true;
  do {
    DWORD byte;
    cursor.SkipBlanks();
    if (!cursor.HexNumber(2, byte)) return false;
    data.push_back(BYTE(byte));
    cursor.SkipBlanks();
  } while (cursor.Take(','));
  return cursor.AtEnd();
}

bool ParseText(Cursor& cursor, std::vector<BYTE>& data) {
  std::string utf8;
  if (!cursor.Quoted(utf8)) return false;
  const std::vector<BYTE> bytes = BytesOf(FromUtf8(utf8) + u'\0');
  data.insert(data.end(), bytes.begin(), bytes.end());
  return true;
}

bool ParseList(Cursor& cursor, std::vector<BYTE>& data) {
  if (!cursor.AtEnd()) {
    do {
      if (!ParseText(cursor, data)) return false;
    } while (cursor.Take(','));
  }
  data.push_back(0);
  data.push_back(0);
  return cursor.AtEnd();
}

bool ParseData(const std::string& text, DWORD& type, std::vector<BYTE>& data) {
  Cursor cursor(text);
  DWORD number;
  if (cursor.Take("dword:")) {
    type = REG_DWORD;
    if (!cursor.HexNumber(8, number) || !cursor.AtEnd()) return false;
    for (int i = 0; i < 4; ++i) data.push_back(BYTE(number >> (8 * i)));
    return true;
  }
  if (cursor.Take("hex:")) {
    type = REG_BINARY;
    return ParseBytes(cursor, data);
  }
  if (cursor.Take("hex(")) {
    if (!cursor.HexNumber(8, type) || !cursor.Take("):")) return false;
    return ParseBytes(cursor, data);
  }
  if (cursor.Take("multi:")) {
    type = REG_MULTI_SZ;
    return ParseList(cursor, data);
  }
  type = REG_SZ;
  return ParseText(cursor, data) && cursor.AtEnd();
}

void ReadValue(const std::string& line, RegistryNode& key) {
  Cursor cursor(line);
  std::string name;
  if (!cursor.Take('@') && !cursor.Quoted(name)) return;
  cursor.SkipBlanks();
  if (!cursor.Take('=')) return;
  cursor.SkipBlanks();
  DWORD type;
  std::vector<BYTE> data;
  if (ParseData(cursor.Rest(), type, data)) key.SetValue(FromUtf8(name), type, std::move(data));
}

// The key of a bracketed path, made when missing; null under a root that isn't there.
RegistryNode* KeyAt(RegistryNode& top, const std::string& path) {
  RegistryNode* key = &top;
  for (size_t start = 0; start <= path.size();) {
    const size_t end = std::min(path.find('\\', start), path.size());
    if (end > start) {
      const std::u16string name = FromUtf8(path.substr(start, end - start));
      key = key == &top ? top.Child(name) : key->AddChild(name);
      if (!key) return nullptr;
    }
    start = end + 1;
  }
  return key == &top ? nullptr : key;
}

std::string Trimmed(const std::string& line) {
  const size_t first = line.find_first_not_of(" \t\r");
  if (first == std::string::npos) return std::string();
  return line.substr(first, line.find_last_not_of(" \t\r") + 1 - first);
}

}  // namespace

std::string RegistryText::Write(const RegistryNode& top) {
  std::string out = kHeading;
  for (const auto& root : top.Children()) WriteKey(*root, ToUtf8(root->Name()), true, out);
  return out;
}

void RegistryText::Read(const std::string& text, RegistryNode& top) {
  RegistryNode* key = nullptr;
  for (size_t start = 0; start < text.size();) {
    const size_t end = std::min(text.find('\n', start), text.size());
    const std::string line = Trimmed(text.substr(start, end - start));
    start = end + 1;
    if (line.empty() || line[0] == ';') continue;
    if (line[0] == '[') {
      const size_t close = line.rfind(']');
      key = close == std::string::npos ? nullptr : KeyAt(top, line.substr(1, close - 1));
    } else if (key) {
      ReadValue(line, *key);
    }
  }
}

}  // namespace platform
