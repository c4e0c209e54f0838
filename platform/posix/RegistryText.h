// The registry as a text file, in the manner of a .reg file:
//
//   ; KestrixCE registry, format 1
//
//   [HKEY_LOCAL_MACHINE\Software\Tarvik\Velomux]
//   "InstallPath"="\\Program Files\\Velomux"
//   "Port"=dword:00000003
//   "Key"=hex:0a,ff,00
//   "Ports"=multi:"COM1:","COM2:"
//   @="the key's default value"
//   "Other"=hex(2):41,00,00,00
//
// A key stands in brackets with its path from the root; keys without values appear only
// when nothing below them would make them. Strings are UTF-8 in quotes, with \\, \" and
// \xHH for a byte below 32 as escapes; a string becomes REG_SZ with its terminator. A
// value that the readable forms would not give back byte for byte, and a value of any
// other type, is written in hex with its type in parentheses. Names are quoted the same
// way; only a lone surrogate in a name is lost, to U+FFFD.
#pragma once

#include <string>

#include "platform/posix/RegistryNode.h"

namespace platform {

class RegistryText {
 public:
  static std::string Write(const RegistryNode& top);
  // Into a tree that holds the roots. Lines that can't be read, and keys under a root
  // that isn't there, are passed over: a hand-edited file loses only its broken lines.
  static void Read(const std::string& text, RegistryNode& top);
};

}  // namespace platform
