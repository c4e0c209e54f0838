// ESRI shape files: a main file ".shp" and an index ".shx", one Shape to a record, both
// handled together through two File objects. Attribute files are not touched.
//
// Reading takes a record in two reads, header and content, through the read-ahead of
// File, and decodes it from memory; nothing is allocated before the record's length is
// checked against the bytes the file still holds. Writing puts the record in place
// first and then both headers, so that the files are whole after every record and a
// crash at any point leaves headers that describe complete records only.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "frame/BaseObject.h"
#include "frame/Ref.h"
#include "frame/String.h"
#include "links/File.h"
#include "shapes/NodeRecord.h"
#include "shapes/Shape.h"
#include "shapes/ShapeFileHeader.h"

namespace kx {

class ShapeFile : public BaseObject {
 public:
  enum Mode : int32_t { kRead = 1, kCreate = 2, kUpdate = 3 };

  ShapeFile() = default;
  ~ShapeFile() override;

  // The name with or without ".shp" (any case), in UTF-8. Existing files are found
  // whatever the case of their extension; in update mode the index is made whole first.
  void Open(const String* name, int32_t mode);
  // Closes both files; nothing remains to be written. The type and ReadOnly stay.
  void Close() override;
  // The record at the read position, with a reference for the caller. Null with no
  // error at the end; null with the failure in the record otherwise, and the position
  // stays on the record.
  Shape* Read();
  void Write(Shape* shape);
  // With an index: the record counted from 0. Without one: the record whose header
  // carries that number.
  void Seek(int32_t record);
  // min X, max X, min Y, max Y, min Z, max Z, min M, max M.
  void GetBoundingBox(double bounds[8]);
  int32_t GetShapeFileType();
  void SetShapeFileType(int32_t type);
  bool GetReadOnly();
  void SetReadOnly(bool readOnly);

 private:
  bool SplitName(const String* name, Ref<String>& base, std::string& extension);
  bool OpenMain(const String* fileName, int32_t mode);
  void OpenIndex(const String* fileName, int32_t mode);
  bool IndexDescribesMain();
  void RebuildIndex(const String* fileName);
  void StartEmptyFiles();
  bool ReadMainHeader();
  void ReadIndexHeader();
  void CloseIndex();
  // The bytes the main file holds, from the end of the file.
  bool MeasureMain();

  bool ReadRecordInto(Shape& shape);
  // Room for one record, header and content; null with 10012 when memory can't be had.
  uint8_t* RecordBuffer(int64_t bytes);
  bool ReadExactly(File& file, void* buffer, int32_t count);

  bool WriteAt(File& file, int32_t offset, const void* data, int32_t count);
  bool WriteHeader(File& file, int32_t length);
  void TakeBounds(Shape& shape);

  bool SeekByIndex(int32_t record);
  bool SeekByNumber(int32_t number);

  Ref<File> m_main;
  Ref<File> m_index;
  int32_t m_fileCode = 0;
  int32_t m_version = 0;
  int32_t m_mainLength = 0;  // bytes, from the header or as grown
  int32_t m_type = 0;
  int32_t m_indexLength = 0;
  double m_bounds[8] = {};
  bool m_mArraysPresent = true;
  bool m_recordHasM = false;
  bool m_recordHasZ = false;
  int32_t m_openMode = kRead;
  int32_t m_recordNumber = 0;
  int32_t m_recordLength = 0;
  Ref<String> m_baseName;
  bool m_mainOpen = false;
  bool m_indexOpen = false;
  int32_t m_recordsWritten = 0;
  bool m_readOnly = true;
  int32_t m_readPosition = 0;
  // A record with nodes stands in the file: the bounds are its, not 0.
  bool m_geometryWritten = false;
  // What the main file really holds, which a damaged header may overstate.
  int32_t m_mainSize = 0;
  // The nodes of one part on their way from a record into a Shape.
  std::vector<NodeRecord> m_scratch;
  // The record at hand. It serves the next one too, so that a file costs one allocation
  // for its largest record rather than one for every record.
  std::vector<uint8_t> m_record;
};

}  // namespace kx
