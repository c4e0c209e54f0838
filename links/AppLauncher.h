// Starts a program and leaves it to run.
#pragma once

#include "frame/BaseObject.h"
#include "frame/String.h"

namespace kx {

class AppLauncher : public BaseObject {
 public:
  // A null file does nothing; null parameters start the program without any.
  void Launch(const String* file, const String* parameters);
};

}  // namespace kx
