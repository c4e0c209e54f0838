#include "tools/kestrix/CoordinateText.h"

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace kestrix {

namespace {

// Numbers and hemisphere letters, in order; anything else separates them ("59 18'7.25"
// and "59°18'7.25\"" read alike). False for a character that belongs to neither.
struct Token {
  bool isLetter;
  char letter;
  double number;
};

bool Tokenise(const std::string& line, std::vector<Token>& tokens) {
  const char* p = line.c_str();
  while (*p) {
    const unsigned char c = static_cast<unsigned char>(*p);
    if (std::isdigit(c) || ((c == '-' || c == '+' || c == '.') && p[1] != '\0')) {
      char* end = nullptr;
      const double value = std::strtod(p, &end);
      if (end == p) return false;
      tokens.push_back({false, 0, value});
      p = end;
    } else if (std::strchr("NSEWnsew", c) && c != 0) {
      tokens.push_back({true, static_cast<char>(std::toupper(c)), 0});
      ++p;
    } else if (std::isalpha(c)) {
      return false;
    } else {
      ++p;  // spaces, commas, degree signs, quotes
    }
  }
  return true;
}

// Up to three numbers (degrees, minutes, seconds) and then a letter, from `at`.
std::optional<double> SexagesimalAngle(const std::vector<Token>& tokens, size_t& at,
                                       const char* letters) {
  double parts[3] = {0, 0, 0};
  size_t count = 0;
  while (at < tokens.size() && !tokens[at].isLetter && count < 3)
    parts[count++] = tokens[at++].number;
  if (count == 0 || at >= tokens.size() || !tokens[at].isLetter) return std::nullopt;
  const char letter = tokens[at++].letter;
  if (letter != letters[0] && letter != letters[1]) return std::nullopt;
  const double value = parts[0] + parts[1] / 60 + parts[2] / 3600;
  return letter == letters[1] ? -value : value;
}

}  // namespace

std::optional<Geographic> CoordinateText::ReadGeographic(const std::string& line) {
  std::vector<Token> tokens;
  if (!Tokenise(line, tokens) || tokens.empty()) return std::nullopt;
  bool sexagesimal = false;
  for (const Token& t : tokens) sexagesimal = sexagesimal || t.isLetter;
  Geographic g;
  size_t at = 0;
  if (sexagesimal) {
    const auto latitude = SexagesimalAngle(tokens, at, "NS");
    const auto longitude = SexagesimalAngle(tokens, at, "EW");
    if (!latitude || !longitude) return std::nullopt;
    g.latitude = *latitude;
    g.longitude = *longitude;
  } else {
    if (tokens.size() < 2) return std::nullopt;
    g.latitude = tokens[at++].number;
    g.longitude = tokens[at++].number;
  }
  if (at < tokens.size() && !tokens[at].isLetter) g.height = tokens[at++].number;
  if (at != tokens.size()) return std::nullopt;
  return g;
}

std::optional<Planar> CoordinateText::ReadPlanar(const std::string& line) {
  std::vector<Token> tokens;
  if (!Tokenise(line, tokens) || tokens.size() != 2 || tokens[0].isLetter || tokens[1].isLetter)
    return std::nullopt;
  return Planar{tokens[0].number, tokens[1].number};
}

}  // namespace kestrix
