// Wide text of the Windows names (UTF-16) and the 8-bit text of the system (UTF-8).
#pragma once

#include <string>

#include "platform/win32ce.h"

namespace platform {

// A lone surrogate comes out as U+FFFD.
std::string ToUtf8(const std::u16string& text);
// Malformed bytes come out as U+FFFD.
std::u16string FromUtf8(const std::string& utf8);
// False, and `text` unfinished, at the first malformed byte.
bool FromUtf8Exactly(const std::string& utf8, std::u16string& text);

}  // namespace platform
