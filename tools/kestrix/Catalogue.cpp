#include "tools/kestrix/Catalogue.h"

#include <cctype>
#include <cstdlib>

namespace kestrix {

namespace {

struct Entry {
  short id;
  const char* name;
};

const Entry kDatums[] = {
#define DATUM(id, name, ...) {id, name},
#include "coords/data/Datums.inc"
#undef DATUM
};

const Entry kGrids[] = {
#define GRID(id, name, ...) {id, name},
#include "coords/data/Grids.inc"
#undef GRID
};

// Letters and digits only, in lower case: "WGS 84" and "wgs84" are one name.
std::string Folded(const std::string& text) {
  std::string folded;
  for (unsigned char c : text)
    if (std::isalnum(c)) folded += static_cast<char>(std::tolower(c));
  return folded;
}

// "datum:N" or "grid:N": the number as it stands, whatever it is.
std::optional<Reference> ById(const std::string& text, const std::string& prefix,
                              Reference::Kind kind) {
  if (text.compare(0, prefix.size(), prefix) != 0) return std::nullopt;
  const std::string number = text.substr(prefix.size());
  char* end = nullptr;
  const long id = std::strtol(number.c_str(), &end, 10);
  if (number.empty() || *end != '\0' || id < -32768 || id > 32767) return std::nullopt;
  return Reference{kind, static_cast<short>(id)};
}

template <size_t N>
std::optional<Reference> ByName(const Entry (&table)[N], const std::string& folded,
                                Reference::Kind kind) {
  for (const Entry& entry : table)
    if (entry.id != 0 && Folded(entry.name) == folded) return Reference{kind, entry.id};
  return std::nullopt;
}

}  // namespace

std::optional<Reference> Catalogue::Find(const std::string& text) {
  if (auto datum = ById(text, "datum:", Reference::Kind::kDatum)) return datum;
  if (auto grid = ById(text, "grid:", Reference::Kind::kGrid)) return grid;
  const std::string folded = Folded(text);
  if (auto datum = ByName(kDatums, folded, Reference::Kind::kDatum)) return datum;
  return ByName(kGrids, folded, Reference::Kind::kGrid);
}

std::string Catalogue::List() {
  std::string text;
  for (const Entry& entry : kDatums)
    text += "datum:" + std::to_string(entry.id) + "\t" + entry.name + "\n";
  for (const Entry& entry : kGrids)
    if (entry.id != 0 && entry.id != 52)
      text += "grid:" + std::to_string(entry.id) + "\t" + entry.name + "\n";
  return text;
}

}  // namespace kestrix
