// One delivered event as a line of text or of JSON.
#pragma once

#include <string>

#include "KestrixCE.h"

namespace kestrix {

class EventText {
 public:
  // `object` is the event's object for its type (1, 5, 6, 7, 8 or 9).
  static std::string Describe(int type, void* object, short grid, bool json);
  // Gives the object up with its family's Delete.
  static void Release(int type, void* object);
};

}  // namespace kestrix
