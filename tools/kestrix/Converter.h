// One conversion from a datum or grid to another, a line at a time, through the
// library's public functions.
#pragma once

#include <string>

#include "KestrixCE.h"
#include "tools/kestrix/Catalogue.h"

namespace kestrix {

struct Side {
  Reference reference;
  short zone = 0;  // 0: none given
};

class Converter {
 public:
  Converter(const Side& from, const Side& to);
  ~Converter();
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  // Empty when the sides are acceptable, else the library's text for what isn't.
  std::string Check();
  // The converted coordinates; or, with `ok` false, why not: the library's error number
  // and text of the first call that failed ("error 10003: Invalid latitude..."), or what
  // the line should have been when it holds no coordinates.
  std::string Convert(const std::string& line, bool& ok);

 private:
  void Place(KxPosition position, const Side& side);
  std::string Read(KxPosition position, std::string& failure);

  Side m_from, m_to;
};

}  // namespace kestrix
