// The datums and grids by id and by name, for the command line.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kestrix {

struct Reference {
  enum class Kind { kDatum, kGrid };
  Kind kind;
  short id;
};

class Catalogue {
 public:
  // "datum:N", "grid:N", or a name as --list prints it; case, spaces and punctuation
  // don't count. Empty for a name that isn't there; an id is taken as it comes, for the
  // library to judge.
  static std::optional<Reference> Find(const std::string& text);
  // The --list text: one "datum:N  name" or "grid:N  name" line each.
  static std::string List();
};

}  // namespace kestrix
