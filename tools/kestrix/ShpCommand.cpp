#include "tools/kestrix/ShpCommand.h"

#include <string>

#include "KestrixCE.h"

namespace kestrix {

namespace {

// The length of the UTF-8 sequence that `lead` starts, and the bits it carries; 0 for a
// byte that starts none.
int SequenceOf(unsigned char lead, char32_t& c) {
  if (lead < 0x80) return c = lead, 1;
  if ((lead & 0xE0) == 0xC0) return c = lead & 0x1F, 2;
  if ((lead & 0xF0) == 0xE0) return c = lead & 0x0F, 3;
  if ((lead & 0xF8) == 0xF0) return c = lead & 0x07, 4;
  return 0;
}

// A file name from the command line, UTF-8, as the wide text that the library takes; a
// byte that isn't part of UTF-8 stands for the character of its value.
std::u16string Wide(const std::string& bytes) {
  std::u16string wide;
  for (size_t at = 0; at < bytes.size();) {
    char32_t c;
    const size_t length = size_t(SequenceOf((unsigned char)bytes[at], c));
    bool whole = length > 0 && at + length <= bytes.size();
    for (size_t i = 1; whole && i < length; ++i) {
      whole = ((unsigned char)bytes[at + i] & 0xC0) == 0x80;
      c = (c << 6) | ((unsigned char)bytes[at + i] & 0x3F);
    }
    if (!whole || c > 0x10FFFF) {
      wide += char16_t((unsigned char)bytes[at++]);
      continue;
    }
    if (c >= 0x10000) {
      wide += char16_t(0xD800 + ((c - 0x10000) >> 10));
      wide += char16_t(0xDC00 + ((c - 0x10000) & 0x3FF));
    } else {
      wide += char16_t(c);
    }
    at += length;
  }
  return wide;
}

std::string Narrow(BSTR text) {
  std::string out;
  for (unsigned i = 0; text && i < SysStringLen(text); ++i) out += static_cast<char>(text[i]);
  return out;
}

// "10003 Unknown shape type."; empty when the last call succeeded.
std::string Failure(KxError error) {
  const short number = Error_ErrNum(error);
  if (number == 0) return "";
  return std::to_string(number) + " " + Narrow(Error_ErrDesc(error, nullptr));
}

const char* TypeName(int type) {
  switch (type) {
    case 0:
      return "NullShape";
    case 1:
      return "Point";
    case 3:
      return "Arc";
    case 5:
      return "Polygon";
    case 8:
      return "MultiPoint";
    case 11:
      return "PointZ";
    case 13:
      return "ArcZ";
    case 15:
      return "PolygonZ";
    case 18:
      return "MultiPointZ";
    case 21:
      return "PointM";
    case 23:
      return "ArcM";
    case 25:
      return "PolygonM";
    case 28:
      return "MultiPointM";
    default:
      return "UnknownShapeType";
  }
}

bool IsPolygonType(int type) { return type == 5 || type == 15 || type == 25; }

// A file open for reading, given up at the end of the scope.
class OpenFile {
 public:
  OpenFile(const std::string& name, int mode) : m_file(ShapeFile_New()) {
    ShapeFile_Open(m_file, Wide(name).c_str(), mode);
    KxError error = ShapeFile_GetErrHandle(m_file);
    m_failure = Failure(error);
    if (!m_failure.empty())
      m_message = name + ": error " + std::to_string(Error_ErrNum(error)) + ": " +
                  Narrow(Error_ErrDesc(error, nullptr));
  }
  ~OpenFile() { ShapeFile_Delete(m_file); }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  KxShapeFile get() const { return m_file; }
  // A refused open; a damaged index alone leaves the file open, with its text here.
  const std::string& failure() const { return m_failure; }
  // The same as a line for the user: "roads.shp: error 2: ...".
  const std::string& message() const { return m_message; }
  // Whether the main file is open: a seek to the first record tells, as only a closed
  // file refuses it with 10010 (an open one at most has no such record).
  bool IsOpen() const {
    if (m_failure.empty()) return true;
    ShapeFile_Seek(m_file, 0);
    return Error_ErrNum(ShapeFile_GetErrHandle(m_file)) != 10010;
  }

 private:
  KxShapeFile m_file;
  std::string m_failure, m_message;
};

void PrintBounds(std::FILE* out, const char* first, const char* second, const double b[8],
                 bool fileForm) {
  const char* gap = fileForm ? "," : ", ";
  std::fprintf(out, "%s(%.17g,%.17g%s%.17g%s%.17g)\n", first, b[0], b[2], gap, b[4], gap, b[6]);
  std::fprintf(out, "%s(%.17g,%.17g%s%.17g%s%.17g)\n", second, b[1], b[3], gap, b[5], gap, b[7]);
}

// Geometry with the coordinates in the file's own units: a grid as template makes
// lengths plane lengths.
void PrintGeometry(std::FILE* out, KxShape shape, int type, int nodes) {
  KxPosition plane = Position_New();
  Position_SetGrid(plane, 1);
  Shape_SetDatumGridTemplate(shape, plane);
  Position_Delete(plane);
  double length = 0;
  for (int part = 0; part < Shape_GetPartCount(shape); ++part) {
    Shape_SetPartIndex(shape, part);
    double piece = 0;
    length += *Shape_Distance(shape, 0, -1, &piece);
  }
  std::fprintf(out, "  Geometry: length=%.17g points=%d", length, nodes);
  if (IsPolygonType(type)) {
    const bool clean = Shape_IsCleanPolygon(shape) != 0;
    double area = 0;
    if (clean) Shape_Area(shape, &area);
    std::fprintf(out, " clean=%s area=%.17g", clean ? "yes" : "no", area);
  }
  std::fprintf(out, "\n");
}

void PrintShape(std::FILE* out, KxShape shape, int index, int type, bool geometry) {
  const int nodes = Shape_GetTotalNodeCount(shape);
  const int parts = nodes == 0 ? 0 : Shape_GetPartCount(shape);
  std::fprintf(out, "\nShape:%d (%s)  nVertices=%d, nParts=%d, id=%d\n", index,
               TypeName(nodes == 0 ? 0 : type), nodes, parts, Shape_GetShapeID(shape));
  if (nodes == 0) return;
  double b[8];
  Shape_GetBoundingBox(shape, &b[0], &b[1], &b[2], &b[3], &b[4], &b[5], &b[6], &b[7]);
  PrintBounds(out, "  Bounds:", "      to ", b, false);
  for (int part = 0; part < parts; ++part) {
    Shape_SetPartIndex(shape, part);
    for (int k = 0; k < Shape_GetNodeCount(shape); ++k) {
      Shape_SetNodeIndex(shape, k);
      double x, y, z, m;
      Shape_GetNode(shape, &x, &y, &z, &m);
      std::fprintf(out, "   %s (%.17g,%.17g, %.17g, %.17g)\n", part > 0 && k == 0 ? "+" : " ", x, y,
                   z, m);
    }
  }
  if (geometry) PrintGeometry(out, shape, type, nodes);
}

}  // namespace

int ShpCommand::Dump(const ShpOptions& options, std::FILE* out) {
  OpenFile file(options.file, KX_SHAPEFILE_READ);
  KxShapeFile shp = file.get();
  if (!file.IsOpen()) {
    std::fprintf(stderr, "kestrix shp: %s\n", file.message().c_str());
    return 2;
  }
  const int type = ShapeFile_GetShapeFileType(shp);
  double b[8];
  ShapeFile_GetBoundingBox(shp, &b[0], &b[1], &b[2], &b[3], &b[4], &b[5], &b[6], &b[7]);
  std::fprintf(out, "Shapefile Type: %s (%d)\n", TypeName(type), type);
  if (!file.failure().empty()) std::fprintf(out, "Open: %s\n", file.failure().c_str());
  std::fprintf(out, "\n");
  PrintBounds(out, "File Bounds: ", "         to  ", b, true);
  int index = 0;
  for (;; ++index) {
    KxShape shape = ShapeFile_Read(shp);
    if (!shape) break;
    PrintShape(out, shape, index, type, options.geometry);
    Shape_Delete(shape);
  }
  const std::string failure = Failure(ShapeFile_GetErrHandle(shp));
  std::fprintf(out, "\n# of Shapes: %d\n", index);
  if (failure.empty()) return 0;
  std::fprintf(out, "Error at shape %d: %s\n", index, failure.c_str());
  return 1;
}

int ShpCommand::Copy(const ShpOptions& options) {
  // A damaged index is no reason to stop, a main file that won't open is.
  OpenFile in(options.copyFrom, KX_SHAPEFILE_READ);
  KxShapeFile source = in.get();
  if (!in.IsOpen()) {
    std::fprintf(stderr, "kestrix shp: %s\n", in.message().c_str());
    return 2;
  }
  OpenFile out(options.copyTo, options.append ? KX_SHAPEFILE_UPDATE : KX_SHAPEFILE_CREATE);
  if (!out.failure().empty()) {
    std::fprintf(stderr, "kestrix shp: %s\n", out.message().c_str());
    return 2;
  }
  // A file made now is of type Null until it is told; one with records keeps its type.
  const int type = ShapeFile_GetShapeFileType(source), held = ShapeFile_GetShapeFileType(out.get());
  if (options.append && held != 0 && held != type) {
    std::fprintf(stderr, "kestrix shp: %s: holds %s, not %s\n", options.copyTo.c_str(),
                 TypeName(held), TypeName(type));
    return 2;
  }
  ShapeFile_SetShapeFileType(out.get(), type);
  for (int index = 0;; ++index) {
    KxShape shape = ShapeFile_Read(source);
    if (!shape) {
      const std::string failure = Failure(ShapeFile_GetErrHandle(source));
      if (failure.empty()) return 0;
      std::fprintf(stderr, "%s: shape %d: %s\n", options.copyFrom.c_str(), index, failure.c_str());
      return 1;
    }
    ShapeFile_Write(out.get(), shape);
    Shape_Delete(shape);
    const std::string failure = Failure(ShapeFile_GetErrHandle(out.get()));
    if (!failure.empty()) {
      std::fprintf(stderr, "%s: shape %d: %s\n", options.copyTo.c_str(), index, failure.c_str());
      return 1;
    }
  }
}

}  // namespace kestrix
