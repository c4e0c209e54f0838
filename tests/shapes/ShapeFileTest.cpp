// ShapeFile through the flat functions: names, writing and reading back every family of
// types, the file's bounds, seeking with and without an index, update mode, the 2 GB
// limit, and every damaged file of tests/data/shp/bad with what it must give.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "ShapeFileSupport.h"
#include "support/TempDirectory.h"

using namespace kxtest;

namespace {

// A file of `type` holding the shapes in order, each with its ShapeID.
void WriteFile(const std::string& name, int type, const std::vector<std::vector<Part>>& shapes,
               const std::vector<int>& ids) {
  KxShapeFile file = ShapeFile_New();
  ShapeFile_SetShapeFileType(file, type);
  ShapeFile_Open(file, Wide(name).c_str(), KX_SHAPEFILE_CREATE);
  ASSERT_EQ(ErrorOf(file), "0");
  for (size_t k = 0; k < shapes.size(); ++k) {
    KxShape shape = MakeShape(shapes[k]);
    Shape_SetShapeID(shape, ids[k]);
    ShapeFile_Write(file, shape);
    EXPECT_EQ(ErrorOf(file), "0");
    Shape_Delete(shape);
  }
  ShapeFile_Delete(file);
}

FileContents ReadFile(const std::string& name, bool readOnly = true) {
  KxShapeFile file = OpenShapeFile(name, KX_SHAPEFILE_READ);
  ShapeFile_SetReadOnly(file, readOnly);
  FileContents contents = ReadAll(file);
  ShapeFile_Delete(file);
  return contents;
}

std::string OpenFailure(const std::string& name, int mode = KX_SHAPEFILE_READ) {
  KxShapeFile file = OpenShapeFile(name, mode);
  const std::string failure = ErrorOf(file);
  ShapeFile_Delete(file);
  return failure;
}

Box FileBounds(KxShapeFile file) {
  Box b{};
  ShapeFile_GetBoundingBox(file, &b.minX, &b.maxX, &b.minY, &b.maxY, &b.minZ, &b.maxZ, &b.minM,
                           &b.maxM);
  return b;
}

std::vector<uint8_t> Bytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

int32_t Big(const std::vector<uint8_t>& b, size_t at) {
  return int32_t(uint32_t(b[at]) << 24 | uint32_t(b[at + 1]) << 16 | uint32_t(b[at + 2]) << 8 |
                 b[at + 3]);
}

int32_t Little(const std::vector<uint8_t>& b, size_t at) {
  return int32_t(uint32_t(b[at + 3]) << 24 | uint32_t(b[at + 2]) << 16 | uint32_t(b[at + 1]) << 8 |
                 b[at]);
}

// What shapelib and GDAL need of a pair of files, which they check before they read a
// record: headers that give the files' lengths, an index entry for each record of the
// main file and nothing else, and in each record of parts, part starts that rise from 0
// and stay below the node count. Empty when the pair is whole.
std::string PairProblem(const std::string& base, const std::string& shp = ".shp",
                        const std::string& shx = ".shx") {
  const std::vector<uint8_t> main = Bytes(base + shp), index = Bytes(base + shx);
  if (main.size() < 100 || index.size() < 100) return "a file without its header";
  if (size_t(2 * Big(main, 24)) != main.size()) return "main length";
  if (size_t(2 * Big(index, 24)) != index.size()) return "index length";
  size_t at = 100, entry = 100;
  for (; at + 8 <= main.size(); at += 8 + 2 * size_t(Big(main, at + 4)), entry += 8) {
    if (entry + 8 > index.size()) return "a record without an index entry";
    if (size_t(2 * Big(index, entry)) != at || Big(index, entry + 4) != Big(main, at + 4))
      return "index entry " + std::to_string((entry - 100) / 8);
    const int32_t type = Little(main, at + 8);
    if (type != 3 && type != 5 && type != 13 && type != 15 && type != 23 && type != 25) continue;
    const int32_t parts = Little(main, at + 44), nodes = Little(main, at + 48);
    for (int32_t p = 0; p < parts; ++p) {
      const int32_t start = Little(main, at + 52 + 4 * size_t(p));
      const int32_t previous = p ? Little(main, at + 48 + 4 * size_t(p)) : -1;
      if ((p == 0 && start != 0) || start <= previous || start >= nodes)
        return "part start " + std::to_string(p);
    }
  }
  if (at != main.size()) return "a record beyond the end";
  return entry == index.size() ? "" : "index entries without records";
}

const Part kSquare = {{0, 0, 1, 2}, {0, 10, 3, 4}, {10, 10, 5, 6}, {10, 0, 7, 8}, {0, 0, 1, 2}};
const Part kHole = {{2, 2}, {8, 2}, {8, 8}, {2, 8}, {2, 2}};

TEST(ShapeFile, NamesWithAndWithoutExtensionOpenTheSameFiles) {
  TempDirectory dir;
  WriteFile(dir / "track", 1, {{{{1, 2}}}}, {1});
  EXPECT_TRUE(std::filesystem::exists(dir / "track.shp"));
  EXPECT_TRUE(std::filesystem::exists(dir / "track.shx"));
  for (const char* name : {"track", "track.shp", "track.SHP"})
    EXPECT_EQ(ReadFile(dir / name).shapes.size(), 1u) << name;
  WriteFile(dir / "a.b.shp", 1, {{{{1, 2}}}}, {1});
  EXPECT_TRUE(std::filesystem::exists(dir / "a.b.shx"));
  EXPECT_EQ(OpenFailure(dir / "track.dbf"), "10003 Invalid file type");
  EXPECT_EQ(OpenFailure(dir / "tr.a"), "10003 Invalid file name");
  EXPECT_EQ(OpenFailure(""), "10003 Invalid file name");
  EXPECT_EQ(OpenFailure(dir / "track", 4), "10006 Illegal file operation");
  EXPECT_EQ(OpenFailure(dir / "missing").substr(0, 2), "2 ");  // the system's ENOENT
}

// Each family of types, written and read back in both forms of Shape.
TEST(ShapeFile, EveryTypeReadsBackWhatWasWritten) {
  TempDirectory dir;
  const Part line = {{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}};
  struct Case {
    int type;
    std::vector<Part> written, read;
  } cases[] = {
      {1, {{{1, 2, 3, 4}}}, {{{1, 2}}}},
      {11, {{{1, 2, 3, 4}}}, {{{1, 2, 3, 4}}}},
      {21, {{{1, 2, 3, 4}}}, {{{1, 2, 0, 4}}}},
      {3, {line, line}, {{{1, 2}, {5, 6}, {9, 10}}, {{1, 2}, {5, 6}, {9, 10}}}},
      {13, {line, line}, {line, line}},
      {23, {line}, {{{1, 2, 0, 4}, {5, 6, 0, 8}, {9, 10, 0, 12}}}},
      {15, {kSquare, kHole}, {kSquare, kHole}},
      {8, {line}, {{{1, 2}, {5, 6}, {9, 10}}}},
      {18, {line}, {line}},
      {28, {line}, {{{1, 2, 0, 4}, {5, 6, 0, 8}, {9, 10, 0, 12}}}},
  };
  for (const Case& c : cases) {
    const std::string name = dir / ("t" + std::to_string(c.type));
    WriteFile(name, c.type, {c.written, {}}, {7, 8});
    for (bool readOnly : {true, false}) {
      const FileContents contents = ReadFile(name, readOnly);
      EXPECT_EQ(contents.end, "0") << c.type;
      ASSERT_EQ(contents.shapes.size(), 2u) << c.type;
      EXPECT_EQ(contents.shapes[0], c.read) << c.type;
      EXPECT_TRUE(contents.shapes[1].empty()) << "a shape without nodes is a null record";
      EXPECT_EQ(contents.ids, (std::vector<int>{7, 8}));
    }
  }
}

TEST(ShapeFile, ReadOnlyShapesAreFixedAndTheOthersDynamic) {
  TempDirectory dir;
  WriteFile(dir / "p", 5, {{kSquare}}, {1});
  for (bool readOnly : {true, false}) {
    KxShapeFile file = OpenShapeFile(dir / "p", KX_SHAPEFILE_READ);
    ShapeFile_SetReadOnly(file, readOnly);
    KxShape shape = ShapeFile_Read(file);
    EXPECT_EQ(Shape_GetFixedSize(shape), readOnly);
    Shape_DeleteNode(shape);
    EXPECT_EQ(ErrorOf(shape), readOnly ? "10037 This feature is not supported for fixedsize shape."
                                       : "0");
    EXPECT_EQ(ShapeFile_Read(file), nullptr);
    EXPECT_EQ(ErrorOf(file), "0");
    Shape_Delete(shape);
    ShapeFile_Delete(file);
  }
}

TEST(ShapeFile, BoundsEncloseEveryRecordAlsoAfterAnUpdate) {
  TempDirectory dir;
  WriteFile(dir / "b", 13, {{}, {{{5, 5, 1, 1}, {6, 7, 2, 2}}}}, {1, 2});
  KxShapeFile file = OpenShapeFile(dir / "b", KX_SHAPEFILE_UPDATE);
  const Box before = FileBounds(file);
  EXPECT_EQ(before.minX, 5);  // the null record doesn't pull the bounds to 0
  EXPECT_EQ(before.maxY, 7);
  KxShape shape = MakeShape({{{-1, 20, -3, 9}, {0, 0}}});
  ShapeFile_Write(file, shape);
  Shape_Delete(shape);
  ShapeFile_Delete(file);
  file = OpenShapeFile(dir / "b", KX_SHAPEFILE_READ);
  const Box b = FileBounds(file);
  EXPECT_EQ((std::vector<double>{b.minX, b.maxX, b.minY, b.maxY, b.minZ, b.maxZ, b.minM, b.maxM}),
            (std::vector<double>{-1, 6, 0, 20, -3, 2, 0, 9}));
  EXPECT_EQ(ReadAll(file).ids, (std::vector<int>{1, 2, 0}));  // appended behind the old ones
  ShapeFile_Delete(file);
}

TEST(ShapeFile, SeekCountsRecordsWithAnIndexAndFindsNumbersWithout) {
  TempDirectory dir;
  WriteFile(dir / "s", 1, {{{{1, 1}}}, {{{2, 2}}}, {{{3, 3}}}}, {1, 2, 3});
  auto seekThenRead = [&](int record) {
    KxShapeFile file = OpenShapeFile(dir / "s", KX_SHAPEFILE_READ);
    ShapeFile_Seek(file, record);
    std::string result = ErrorOf(file);
    if (result == "0") {
      const FileContents rest = ReadAll(file);
      result = std::to_string(rest.ids.front()) + "+" + std::to_string(rest.ids.size() - 1);
    }
    ShapeFile_Delete(file);
    return result;
  };
  EXPECT_EQ(seekThenRead(2), "3+0");  // the last record, then the end
  EXPECT_EQ(seekThenRead(0), "1+2");
  EXPECT_EQ(seekThenRead(3), "10004 Index out of bounds");
  EXPECT_EQ(seekThenRead(-1), "10004 Index out of bounds");
  std::filesystem::remove(dir / "s.shx");
  EXPECT_EQ(seekThenRead(2), "2+1");  // the record numbered 2
  EXPECT_EQ(seekThenRead(0), "10004 Index out of bounds");
  EXPECT_EQ(ReadFile(dir / "s").ids, (std::vector<int>{1, 2, 3}));
}

TEST(ShapeFile, WritesThatTheFileCannotTakeAreRefused) {
  TempDirectory dir;
  KxShapeFile file = ShapeFile_New();
  KxShape shape = MakeShape({{{1, 2}}});
  ShapeFile_Write(file, shape);
  EXPECT_EQ(ErrorOf(file), "10010 Error opening, reading, writing or seeking file");
  ShapeFile_Open(file, Wide(dir / "n").c_str(), KX_SHAPEFILE_CREATE);  // type Null
  ShapeFile_Write(file, shape);
  EXPECT_EQ(ErrorOf(file), "10006 Null shapes may not contain any gemetric data.");
  ShapeFile_Write(file, nullptr);
  EXPECT_EQ(ErrorOf(file), "10003 Invalid shape value.");
  ShapeFile_SetShapeFileType(file, 7);
  ShapeFile_Write(file, shape);
  EXPECT_EQ(ErrorOf(file), "10003 Unknown shape type.");
  ShapeFile_Close(file);
  EXPECT_EQ(ShapeFile_GetShapeFileType(file), 7);  // the type stays over Close
  ShapeFile_SetShapeFileType(file, 1);
  ShapeFile_Open(file, Wide(dir / "n").c_str(), KX_SHAPEFILE_READ);
  ShapeFile_Write(file, shape);
  EXPECT_EQ(ErrorOf(file), "10006 Illegal file operation");
  EXPECT_EQ(ShapeFile_GetShapeFileType(file), 0);  // the empty file's header says Null
  ShapeFile_Delete(file);
  Shape_Delete(shape);
}

// A file of 32-bit offsets ends short of 2 GB: the record that would pass it is refused
// and the file stays as it was. The file is sparse, so the test costs no disk.
TEST(ShapeFile, ARecordThatWouldPassTwoGigabytesIsRefused) {
  TempDirectory dir;
  WriteFile(dir / "big", 1, {{{{1, 2}}}}, {1});
  const std::string main = dir / "big.shp";
  const auto nearLimit = std::filesystem::file_size(main);
  std::filesystem::resize_file(main, 0x7FFFFFF0);
  KxShapeFile file = OpenShapeFile(dir / "big", KX_SHAPEFILE_UPDATE);
  KxShape shape = MakeShape({{{3, 4}}});
  ShapeFile_Write(file, shape);
  EXPECT_EQ(ErrorOf(file), "10010 Error opening, reading, writing or seeking file");
  ShapeFile_Delete(file);
  Shape_Delete(shape);
  EXPECT_EQ(std::filesystem::file_size(main), 0x7FFFFFF0u);
  std::filesystem::resize_file(main, nearLimit);
  EXPECT_EQ(ReadFile(dir / "big").shapes.size(), 1u);
}

// The damaged files of tests/data/shp/bad: the records before the damage, then the
// failure. A reader that trusts a count or an offset would crash or allocate here.
TEST(ShapeFile, DamagedFilesGiveTheirRecordsThenAClearFailure) {
  const std::string kFile = "10010 Error opening, reading, writing or seeking file";
  const std::string kBeyond = "10004 Index out of bounds";
  struct Case {
    const char* name;
    size_t records;
    std::string open, end;
  } cases[] = {
      {"derived/header_truncated", 0, kFile, kFile},
      {"derived/bad_file_code", 0, "10003 Unknown shape type.", kFile},
      {"derived/bad_version", 0, "10003 Unknown shape type.", kFile},
      {"derived/unknown_type_7", 0, "0", "10003 Unknown shape type."},
      {"derived/header_length_too_big", 1, "0", kFile},
      {"derived/shx_type_mismatch", 1, "10003 Shape type missmatched.", "0"},
      {"derived/shx_bad_file_code", 1, "10003 Unknown shape type.", "0"},
      {"derived/shx_offset_wrong", 2, "0", "0"},
      {"derived/shx_truncated", 2, "0", "0"},
      {"derived/record_type_differs", 0, "0",
       "10003 Different shape types were defined in this shape file."},
      {"derived/zero_parts", 0, "0", "10003 Part number is less than one."},
      {"derived/negative_parts", 0, "0", "10003 Part number is less than one."},
      {"derived/node_count_huge", 0, "0", kBeyond},
      {"derived/part_start_past_nodes", 0, "0", kBeyond},
      {"derived/part_start_negative", 0, "0", kBeyond},
      {"derived/multipoint_empty", 0, "0", "10003 Multipoint shape is empty."},
      {"derived/record_length_huge", 1, "0", kFile},
      {"derived/record_length_negative", 1, "0", "0"},  // a record of no length ends
      {"derived/record_length_zero", 1, "0", "0"},
      {"derived/record_truncated", 1, "0", kFile},
      {"derived/record_header_truncated", 1, "0", kFile},
      {"derived/record_length_short", 0, "0", kBeyond},
      {"derived/null_file_with_geometry", 0, "0",
       "10035 Null shape may not contain geometeric data."},
      {"derived/pointz_28_bytes", 3, "0", "0"},
      {"derived/polygonz_header_m_zero", 1, "0", "0"},
      {"derived/record_numbers_descending", 2, "0", "0"},
      {"pyshp_corrupt_too_long", 10, "0", kFile},
      {"mapshaper_geo_lines", 6, "0", kFile},
      {"nts_Volume2", 1, "0", "0"},
      {"nts_Issue167", 201, "0", "0"},
      {"nts_christchurch-canterbury-h", 0, "10003 Unknown shape type.", kFile},
      {"shapefile-js_bad", 0, "10003 Unknown shape type.", kFile},
      {"shapefile-js_ipra_dresden_polygon", 1, "0", "0"},
      {"shapefile-js_T8Th4_6n_POLYLINE", 1, "0", "0"},
      {"shapefile-js_export_multipointz", 1, "0", "0"},
      {"shapelib_3dpoints", 22, "0", "0"},
      {"go-shp_multipatch", 0, "0", "10003 Unknown shape type."},
      {"sf_storms_xyzm", 71, "0", "0"},
  };
  for (const Case& c : cases) {
    KxShapeFile file = OpenShapeFile(DataFile(std::string("bad/") + c.name), KX_SHAPEFILE_READ);
    EXPECT_EQ(ErrorOf(file), c.open) << c.name;
    const FileContents contents = ReadAll(file);
    EXPECT_EQ(contents.shapes.size(), c.records) << c.name;
    EXPECT_EQ(contents.end, c.end) << c.name;
    ShapeFile_Delete(file);
  }
}

// What the format allows and this library reads in its own way.
TEST(ShapeFile, ZAndMFollowTheRecordLengthAndTheHeaderRange) {
  const FileContents points = ReadFile(DataFile("bad/derived/pointz_28_bytes"));
  ASSERT_FALSE(points.shapes.empty());
  EXPECT_EQ(points.shapes[0][0][0].m, 0);  // 28 bytes: no M
  const FileContents full = ReadFile(DataFile("good/postgis/PointZ"));
  EXPECT_NE(full.shapes[0][0][0].m, 0);  // 36 bytes: its M
  const FileContents polygon = ReadFile(DataFile("bad/derived/polygonz_header_m_zero"));
  ASSERT_EQ(polygon.shapes.size(), 1u);
  for (const Part& part : polygon.shapes[0])
    for (const Node& n : part) EXPECT_EQ(n.m, 0);
  const FileContents holes = ReadFile(DataFile("good/postgis/Polygon"));
  ASSERT_EQ(holes.shapes[0].size(), 4u);  // the second part starts at its own index
  EXPECT_EQ(holes.shapes[0][1][0], (Node{5, 5}));
}

// A part left empty (made and never filled, cleared, or its nodes deleted) is no part of
// the record: a part start at the node count, or two parts at one start, make shapelib
// and GDAL refuse the record. A shape whose parts are all empty is a null record.
TEST(ShapeFile, EmptyPartsAreLeftOutOfWrittenRecords) {
  TempDirectory dir;
  KxShapeFile file = ShapeFile_New();
  ShapeFile_SetShapeFileType(file, 15);
  ShapeFile_Open(file, Wide(dir / "e").c_str(), KX_SHAPEFILE_CREATE);
  KxShape shapes[] = {MakeShape({{}, kSquare, {}, {}, kHole, {}}),
                      MakeShape({{{1, 1}}, {{2, 2}, {3, 3}}}), MakeShape({{{4, 4}}})};
  Shape_SetPartIndex(shapes[1], 0);
  Shape_DeleteNode(shapes[1]);   // the first part loses its only node
  Shape_NewPart(shapes[2], -1);  // and a part without nodes stands last
  for (KxShape shape : shapes) ShapeFile_Write(file, shape);
  Shape_SetPartIndex(shapes[2], 0);
  Shape_ClearPart(shapes[2]);  // two parts, neither with a node
  ShapeFile_Write(file, shapes[2]);
  EXPECT_EQ(ErrorOf(file), "0");
  ShapeFile_Delete(file);
  for (KxShape shape : shapes) Shape_Delete(shape);
  EXPECT_EQ(PairProblem(dir / "e"), "");
  const FileContents contents = ReadFile(dir / "e", false);
  const std::vector<std::vector<Part>> expected = {
      {kSquare, kHole}, {{{2, 2}, {3, 3}}}, {{{4, 4}}}, {}};
  EXPECT_EQ(contents.shapes, expected);
}

// A .shp without its .shx is common: in update mode the index is made from the main
// file's records before anything is appended, so that the pair is whole after every
// record, and merely opening and closing leaves a whole pair too. So does an index that
// ends short of the records, and a main file refused in update mode leaves no index.
TEST(ShapeFile, UpdateModeMakesAMissingOrShortIndexFromTheRecords) {
  TempDirectory dir;
  const std::string base = dir / "u";
  WriteFile(base, 3, {{{{1, 1}, {2, 2}}}, {}, {{{3, 3}, {4, 4}}}}, {1, 2, 3});
  const std::vector<uint8_t> written = Bytes(base + ".shx");
  std::filesystem::remove(base + ".shx");
  ShapeFile_Delete(OpenShapeFile(base, KX_SHAPEFILE_UPDATE));
  EXPECT_EQ(Bytes(base + ".shx"), written);
  std::filesystem::resize_file(base + ".shx", written.size() - 8);
  KxShapeFile file = OpenShapeFile(base, KX_SHAPEFILE_UPDATE);
  KxShape shape = MakeShape({{{5, 5}, {6, 6}}});
  Shape_SetShapeID(shape, 4);
  ShapeFile_Write(file, shape);
  EXPECT_EQ(PairProblem(base), "");  // whole after each record
  ShapeFile_Delete(file);
  std::filesystem::remove(base + ".shx");
  file = OpenShapeFile(base, KX_SHAPEFILE_UPDATE);
  ShapeFile_Write(file, shape);
  ShapeFile_Delete(file);
  Shape_Delete(shape);
  EXPECT_EQ(PairProblem(base), "");
  file = OpenShapeFile(base, KX_SHAPEFILE_READ);
  ShapeFile_Seek(file, 4);  // through the index
  EXPECT_EQ(ReadAll(file).ids, (std::vector<int>{4}));
  ShapeFile_Delete(file);
  EXPECT_EQ(ReadFile(base).ids, (std::vector<int>{1, 2, 3, 4, 4}));

  std::ofstream(dir / "junk.shp") << std::string(200, 'j');
  EXPECT_EQ(OpenFailure(dir / "junk", KX_SHAPEFILE_UPDATE), "10003 Unknown shape type.");
  EXPECT_FALSE(std::filesystem::exists(dir / "junk.shx"));
}

// Names find existing files whatever the case of their extension, as on the device, and
// the index goes with its main file; a new file takes the name as it was asked for.
TEST(ShapeFile, ExtensionsInAnyCaseFindTheExistingFiles) {
  TempDirectory dir;
  WriteFile(dir / "up", 1, {{{{1, 2}}}, {{{3, 4}}}}, {1, 2});
  std::filesystem::rename(dir / "up.shp", dir / "up.SHP");
  std::filesystem::rename(dir / "up.shx", dir / "up.SHX");
  for (const char* name : {"up", "up.shp", "up.SHP", "up.Shp"}) {
    KxShapeFile file = OpenShapeFile(dir / name, KX_SHAPEFILE_READ);
    ShapeFile_Seek(file, 1);  // the index was found too
    EXPECT_EQ(ReadAll(file).ids, (std::vector<int>{2})) << name;
    ShapeFile_Delete(file);
  }
  std::filesystem::rename(dir / "up.SHX", dir / "up.shx");
  KxShapeFile file = OpenShapeFile(dir / "up", KX_SHAPEFILE_UPDATE);
  KxShape shape = MakeShape({{{5, 6}}});
  ShapeFile_Write(file, shape);
  ShapeFile_Delete(file);
  EXPECT_EQ(PairProblem(dir / "up", ".SHP", ".shx"), "");
  EXPECT_FALSE(std::filesystem::exists(dir / "up.shp"));
  EXPECT_FALSE(std::filesystem::exists(dir / "up.SHX"));
  WriteFile(dir / "new.SHP", 1, {{{{1, 2}}}}, {1});
  EXPECT_EQ(PairProblem(dir / "new", ".SHP", ".SHX"), "");
  WriteFile(dir / "new.shp", 1, {{{{1, 2}}}}, {1});  // the same files, made again
  EXPECT_FALSE(std::filesystem::exists(dir / "new.shp"));
  Shape_Delete(shape);
}

// Offsets are 32-bit: a main file over 2 GiB is refused when it is opened, in every mode,
// and left as it is. The files are sparse, so the test costs no disk.
TEST(ShapeFile, AMainFileOverTwoGigabytesIsRefusedAtOpen) {
  TempDirectory dir;
  WriteFile(dir / "huge", 1, {{{{1, 2}}}}, {1});
  const std::string main = dir / "huge.shp";
  for (uintmax_t size : {uintmax_t(0x80000000), uintmax_t(0x100000010)}) {
    std::filesystem::resize_file(main, size);
    for (int mode : {KX_SHAPEFILE_READ, KX_SHAPEFILE_UPDATE}) {
      KxShapeFile file = OpenShapeFile(dir / "huge", mode);
      EXPECT_EQ(ErrorOf(file), "10010 Error opening, reading, writing or seeking file") << size;
      EXPECT_EQ(ShapeFile_Read(file), nullptr);
      EXPECT_EQ(ErrorOf(file), "10010 Error opening, reading, writing or seeking file");
      ShapeFile_Delete(file);
    }
    EXPECT_EQ(std::filesystem::file_size(main), size);
  }
}

// A name reaches the file system as the caller wrote it, in UTF-8, whatever its
// characters: not cut to 8 bits on the way.
TEST(ShapeFile, FileNamesReachTheFileSystemAsWritten) {
  TempDirectory dir;
  const std::u16string folder = Wide(dir.Path()) + u"/";
  for (const char16_t* name : {u"\u0416\u043er", u"caf\u00e9", u"map\U0001F5FA"}) {
    KxShapeFile file = ShapeFile_New();
    ShapeFile_SetShapeFileType(file, 1);
    ShapeFile_Open(file, (folder + name + u".shp").c_str(), KX_SHAPEFILE_CREATE);
    KxShape shape = MakeShape({{{1, 2}}});
    ShapeFile_Write(file, shape);
    Shape_Delete(shape);
    ShapeFile_Open(file, (folder + name).c_str(), KX_SHAPEFILE_READ);
    EXPECT_EQ(ReadAll(file).ids.size(), 1u);
    ShapeFile_Delete(file);
  }
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(dir.Path()))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (std::vector<std::string>{"caf\u00e9.shp", "caf\u00e9.shx", "map\U0001F5FA.shp",
                                             "map\U0001F5FA.shx", "\u0416\u043er.shp",
                                             "\u0416\u043er.shx"}));
}

}  // namespace
