// Shape files in the tests of the exported functions: opened by a plain name, read whole.
#pragma once

#include <string>
#include <vector>

#include "KestrixCE.h"
#include "ShapeSupport.h"

namespace kxtest {

inline std::u16string Wide(const std::string& text) { return {text.begin(), text.end()}; }

inline std::string ErrorOf(KxShapeFile file) { return Failure(ShapeFile_GetErrHandle(file)); }

// A new ShapeFile, opened; the caller deletes it.
inline KxShapeFile OpenShapeFile(const std::string& name, int mode) {
  KxShapeFile file = ShapeFile_New();
  ShapeFile_Open(file, Wide(name).c_str(), mode);
  return file;
}

// What reading a file record by record gives: each shape's parts and ShapeID, and the
// failure that ended the reading ("0" at a clean end).
struct FileContents {
  std::vector<std::vector<Part>> shapes;
  std::vector<int> ids;
  std::string end;
};

inline FileContents ReadAll(KxShapeFile file) {
  FileContents contents;
  while (KxShape shape = ShapeFile_Read(file)) {
    contents.shapes.push_back(Shape_GetTotalNodeCount(shape) ? ReadShape(shape)
                                                              : std::vector<Part>{});
    contents.ids.push_back(Shape_GetShapeID(shape));
    Shape_Delete(shape);
  }
  contents.end = ErrorOf(file);
  return contents;
}

inline std::string DataFile(const std::string& name) {
  return std::string(KX_TEST_SOURCE_DIR) + "/data/shp/" + name;
}

}  // namespace kxtest
