// kestrix shp: a shape file as text, record by record, in the manner of shpdump; and
// kestrix shp copy, which reads every record and writes them to a new file, or with
// --append behind the records of an existing one.
#pragma once

#include <cstdio>
#include <string>

namespace kestrix {

struct ShpOptions {
  std::string file;
  bool geometry = false;  // length, area, point count and the clean-polygon verdict
  std::string copyFrom, copyTo;
  bool append = false;  // open the copy in update mode
};

class ShpCommand {
 public:
  // 0 when every record was read; 1 when one failed (the records before it are
  // printed, then the failure); 2 when the file doesn't open, said on stderr in one line
  // with the library's error number and text.
  static int Dump(const ShpOptions& options, std::FILE* out);
  // 0 when every record was copied; 1 when reading or writing failed; 2 when the file
  // doesn't open, the new file couldn't be made, or an appended one holds another type.
  static int Copy(const ShpOptions& options);
};

}  // namespace kestrix
