// One delivered event as a line of text or of JSON.
#pragma once

#include <string>

#include "KestrixCE.h"

namespace kestrix {

class EventText {
 public:
  // The --grid that follows the fix: UTM in the form of the fix's hemisphere, the
  // northern (grid 1) or the southern (grid 2).
  static constexpr short kUtm = -1;
  // The --grid option: a grid id, or "utm" for kUtm. False for anything else.
  static bool ReadGrid(const std::string& text, short& grid);

  // `object` is the event's object for its type (1, 5, 6, 7, 8 or 9); fixes also in
  // `grid` unless it is 0.
  static std::string Describe(int type, void* object, short grid, bool json);
  // Gives the object up with its family's Delete.
  static void Release(int type, void* object);
};

}  // namespace kestrix
