#include "shapes/ShapeFile.h"

#include <algorithm>
#include <limits>
#include <new>

#include "frame/ErrorNumbers.h"
#include "frame/LibraryLock.h"
#include "shapes/ShapeFileTexts.h"
#include "shapes/ShapeRecordDecoder.h"
#include "shapes/ShapeRecordEncoder.h"

namespace kx {

namespace {

using namespace shapefile_text;

// The read-ahead that serves the many small reads of a record-structured file.
constexpr int32_t kReadBuffer = 8192;
// File offsets are 32-bit signed: a record that would end beyond them is refused.
constexpr int64_t kLargestFile = std::numeric_limits<int32_t>::max();

// Shape-file modes to the File modes: read, create, update.
int16_t FileModeOf(int32_t mode) {
  return mode == ShapeFile::kRead     ? File::kRead
         : mode == ShapeFile::kCreate ? File::kCreate
                                      : File::kUpdate;
}

Ref<String> WithExtension(const String* base, const std::string& extension) {
  return Ref<String>(new String(base, Ref<String>(new String(("." + extension).c_str())).get()));
}

// The extension with the case of each letter taken from `mask`, bit 0 for the first.
std::string InCase(const std::string& extension, int mask) {
  std::string cased = extension;
  for (size_t i = 0; i < cased.size(); ++i) {
    const char c = char(cased[i] | 0x20);
    cased[i] = mask & (1 << i) ? char(c & ~0x20) : c;
  }
  return cased;
}

// The name of the file with this base and extension that stands there, whatever the
// case of its extension, the case asked for first: the files of a device, which finds
// names without regard to case, open here too. None there: the name as asked, which is
// what a new file is called.
Ref<String> ExistingOrAsked(const String* base, const std::string& asked) {
  Ref<String> name = WithExtension(base, asked);
  if (File::Exists(name.get())) return name;
  for (int mask = 0; mask < 8; ++mask) {
    const std::string cased = InCase(asked, mask);
    if (cased == asked) continue;
    Ref<String> other = WithExtension(base, cased);
    if (File::Exists(other.get())) return other;
  }
  return name;
}

// The index's extension in the case of the main file's: "SHP" gives "SHX".
std::string IndexExtensionOf(const String* mainName) {
  const char* last = mainName->GetText() + mainName->GetLength() - 3;
  return {last[0], last[1], char((last[2] & 0x20) | 'X')};
}

// Characters from `start` to the end of a name, which holds UTF-8: a byte that continues
// a character isn't one.
int32_t CharactersFrom(const String* name, int32_t start) {
  int32_t characters = 0;
  for (int32_t i = start; i < name->GetLength(); ++i)
    if ((static_cast<unsigned char>(name->GetText()[i]) & 0xC0) != 0x80) ++characters;
  return characters;
}

}  // namespace

ShapeFile::~ShapeFile() { Close(); }

// ---- opening and closing -------------------------------------------------------------

// The index is opened once the main file's header has passed: a file refused in update
// mode leaves no index behind. In update mode an index that doesn't describe the main
// file's records (none, empty, refused, or ending elsewhere) is made again from them
// before anything is appended, so that the pair is whole after every record.
void ShapeFile::Open(const String* name, int32_t mode) {
  ClearError();
  Ref<String> base;
  std::string extension;
  if (!SplitName(name, base, extension)) return;
  if (mode < kRead || mode > kUpdate) {
    SetError(kErrInvalidState, kIllegalOperation);
    return;
  }
  Close();
  const Ref<String> mainName = ExistingOrAsked(base.get(), extension);
  if (!OpenMain(mainName.get(), mode)) return;
  m_baseName = base;
  const Ref<String> indexName = ExistingOrAsked(base.get(), IndexExtensionOf(mainName.get()));
  if (mode == kCreate || (mode == kUpdate && m_mainSize == 0)) {
    OpenIndex(indexName.get(), mode);
    StartEmptyFiles();
    return;
  }
  if (!ReadMainHeader()) {
    Close();
    return;
  }
  m_readPosition = shp::kHeaderBytes;
  OpenIndex(indexName.get(), mode);
  if (m_indexOpen) ReadIndexHeader();
  if (mode == kUpdate && !IndexDescribesMain()) RebuildIndex(indexName.get());
}

// The name is the base name as it stands, or that with ".shp" in any case, which is the
// extension asked for. Only a "." in the file name counts: one in a directory's name is
// no extension.
bool ShapeFile::SplitName(const String* name, Ref<String>& base, std::string& extension) {
  if (!name || name->GetLength() == 0) {
    SetError(kErrInvalidArgument, kInvalidFileName);
    return false;
  }
  const int32_t dot = name->ReverseFind(".", -1);
  const int32_t separator = std::max(name->ReverseFind("/", -1), name->ReverseFind("\\", -1));
  if (dot < 0 || dot < separator) {
    base = Ref<String>::Share(const_cast<String*>(name));
    extension = "shp";
    return true;
  }
  if (CharactersFrom(name, dot) != 4) {
    SetError(kErrInvalidArgument, kInvalidFileName);
    return false;
  }
  if (!name->EqualsAt("shp", 3, dot + 1)) {
    SetError(kErrInvalidArgument, kInvalidFileType);
    return false;
  }
  base = Ref<String>(name->Mid(0, dot));
  extension.assign(name->GetText() + dot + 1, 3);
  return true;
}

bool ShapeFile::OpenMain(const String* fileName, int32_t mode) {
  m_main = Ref<File>(new File());
  if (mode == kRead) m_main->SetBufferSize(kReadBuffer);
  if (!m_main->Open(fileName, FileModeOf(mode))) {
    Error().m_copy_err(&m_main->Error());
    m_main.Reset();
    return false;
  }
  m_mainOpen = true;
  m_openMode = mode;
  return MeasureMain();
}

bool ShapeFile::MeasureMain() {
  m_mainSize = m_main->Seek(0, File::kFromEnd);
  if (m_mainSize < 0 || m_main->Seek(0, File::kFromStart) < 0) {
    Error().m_copy_err(&m_main->Error());
    Close();
    return false;
  }
  return true;
}

// The system works without an index when there is none: its failure is no failure.
void ShapeFile::OpenIndex(const String* fileName, int32_t mode) {
  m_index = Ref<File>(new File());
  m_indexOpen = m_index->Open(fileName, FileModeOf(mode));
  if (!m_indexOpen) m_index.Reset();
}

// The index holds an entry for each record that the main file's header counts: its last
// entry ends where the header says the records end.
bool ShapeFile::IndexDescribesMain() {
  if (!m_indexOpen || m_indexLength < shp::kHeaderBytes ||
      (m_indexLength - shp::kHeaderBytes) % shp::kIndexEntryBytes != 0)
    return false;
  if (m_indexLength == shp::kHeaderBytes) return m_mainLength == shp::kHeaderBytes;
  uint8_t entry[shp::kIndexEntryBytes];
  if (m_index->Seek(m_indexLength - shp::kIndexEntryBytes, File::kFromStart) < 0 ||
      m_index->Read(entry, shp::kIndexEntryBytes) != shp::kIndexEntryBytes)
    return false;
  const int64_t end =
      2 * (int64_t(shp::BigInt32(entry)) + shp::BigInt32(entry + 4)) + shp::kRecordHeaderBytes;
  return end == m_mainLength;
}

// An entry for each whole record, from the first up to the end that both the main
// file's header and its size allow, then the header. A failure leaves the file without
// an index, as when there is none.
void ShapeFile::RebuildIndex(const String* fileName) {
  if (!m_indexOpen) OpenIndex(fileName, kUpdate);
  if (!m_indexOpen) return;
  std::vector<uint8_t> entries;
  const int64_t end = std::min(m_mainLength, m_mainSize);
  int64_t at = shp::kHeaderBytes;
  uint8_t head[shp::kRecordHeaderBytes];
  while (at + shp::kRecordHeaderBytes <= end && m_main->Seek(int32_t(at), File::kFromStart) >= 0 &&
         m_main->Read(head, shp::kRecordHeaderBytes) == shp::kRecordHeaderBytes) {
    const int32_t words = shp::BigInt32(head + 4);
    const int64_t next = at + shp::kRecordHeaderBytes + 2 * int64_t(words);
    if (words < 0 || next > end) break;
    uint8_t entry[shp::kIndexEntryBytes];
    shp::PutBigInt32(entry, int32_t(at / 2));
    shp::PutBigInt32(entry + 4, words);
    entries.insert(entries.end(), entry, entry + shp::kIndexEntryBytes);
    at = next;
  }
  const int32_t length = shp::kHeaderBytes + int32_t(entries.size());
  if ((!entries.empty() &&
       !WriteAt(*m_index, shp::kHeaderBytes, entries.data(), int32_t(entries.size()))) ||
      !WriteHeader(*m_index, length)) {
    CloseIndex();
    return;
  }
  m_indexLength = length;
}

bool ShapeFile::ReadMainHeader() {
  uint8_t bytes[shp::kHeaderBytes];
  if (!ReadExactly(*m_main, bytes, shp::kHeaderBytes)) return false;
  const ShapeFileHeader header = ShapeFileHeader::Decode(bytes, shp::kHeaderBytes);
  m_fileCode = header.fileCode;
  m_version = header.version;
  if (!header.IsKnownFormat()) {
    SetError(kErrInvalidArgument, kUnknownType);
    return false;
  }
  m_mainLength = header.lengthBytes;
  m_geometryWritten = m_mainLength > shp::kHeaderBytes;
  m_type = header.type;
  std::copy(header.bounds, header.bounds + 8, m_bounds);
  m_mArraysPresent = !(m_bounds[Shape::kMinM] == 0 && m_bounds[Shape::kMaxM] == 0);
  return true;
}

// A wrong index is closed and its failure stays in the record; the main file reads on.
void ShapeFile::ReadIndexHeader() {
  const int32_t size = m_index->Seek(0, File::kFromEnd);
  if (size == 0) return;
  uint8_t bytes[shp::kIndexHeaderBytes];
  if (size < 0 || m_index->Seek(0, File::kFromStart) < 0 ||
      !ReadExactly(*m_index, bytes, shp::kIndexHeaderBytes)) {
    if (!Error().Failed()) Error().m_copy_err(&m_index->Error());
    CloseIndex();
    return;
  }
  const ShapeFileHeader header = ShapeFileHeader::Decode(bytes, shp::kIndexHeaderBytes);
  m_indexLength = header.lengthBytes;
  if (header.type != m_type)
    SetError(kErrInvalidArgument, kIndexMismatch);
  else if (!header.IsKnownFormat())
    SetError(kErrInvalidArgument, kUnknownType);
  if (Error().Failed()) CloseIndex();
}

void ShapeFile::CloseIndex() {
  if (m_index) m_index->Close();
  m_index.Reset();
  m_indexOpen = false;
  m_indexLength = 0;
}

void ShapeFile::Close() {
  if (m_main) m_main->Close();
  m_main.Reset();
  CloseIndex();
  m_baseName.Reset();
  m_mainOpen = false;
  m_fileCode = m_version = m_mainLength = m_indexLength = m_mainSize = 0;
  std::fill(m_bounds, m_bounds + 8, 0.0);
  m_mArraysPresent = true;
  m_recordHasM = m_recordHasZ = false;
  m_recordNumber = m_recordLength = m_recordsWritten = m_readPosition = 0;
  m_geometryWritten = false;
  m_scratch = std::vector<NodeRecord>();
  m_record = std::vector<uint8_t>();
}

// A new file is a valid file without records from the start: both headers go out now,
// and again whenever the type changes to a known one before the first record.
void ShapeFile::StartEmptyFiles() {
  m_mainLength = m_indexLength = shp::kHeaderBytes;
  m_mainSize = std::max(m_mainSize, shp::kHeaderBytes);
  if (!WriteHeader(*m_main, m_mainLength)) return;
  if (m_indexOpen) WriteHeader(*m_index, m_indexLength);
}

// ---- reading -------------------------------------------------------------------------------

Shape* ShapeFile::Read() {
  ClearError();
  if (!m_mainOpen) {
    SetError(kErrFileIO, kFileFailed);
    return nullptr;
  }
  if (m_readPosition >= m_mainLength) return nullptr;
  const ShapeFileKind kind = ShapeFileKind::Of(m_type);
  m_recordHasZ = kind.hasZ;
  m_recordHasM = kind.hasM;
  if (kind.family == ShapeFileKind::kUnknown) {
    SetError(kErrInvalidArgument, kUnknownType);
    return nullptr;
  }
  Ref<Shape> shape(new Shape());
  if (m_readOnly) shape->SetFixedSize(true);
  if (!ReadRecordInto(*shape)) {
    // The position stays on the record, so that the same failure comes again.
    m_main->Seek(m_readPosition, File::kFromStart);
    return nullptr;
  }
  m_readPosition += shp::kRecordHeaderBytes + 2 * m_recordLength;
  return shape.Detach();
}

// False with an error for a damaged record, without one for a record of no length.
bool ShapeFile::ReadRecordInto(Shape& shape) {
  if (m_main->Tell() != m_readPosition && m_main->Seek(m_readPosition, File::kFromStart) < 0) {
    Error().m_copy_err(&m_main->Error());
    return false;
  }
  uint8_t head[shp::kRecordHeaderBytes];
  if (!ReadExactly(*m_main, head, shp::kRecordHeaderBytes)) return false;
  m_recordNumber = shp::BigInt32(head);
  m_recordLength = shp::BigInt32(head + 4);
  if (m_type == kShpNull && m_recordLength != 2) {
    SetError(kErrShapeMapConflict, kNullWithGeometry);
    return false;
  }
  if (m_recordLength <= 0) return false;
  // The content must lie in the file before a byte of it is allocated.
  const int64_t bytes = 2 * int64_t(m_recordLength);
  if (bytes > int64_t(m_mainSize) - m_readPosition - shp::kRecordHeaderBytes) {
    SetError(kErrFileIO, kFileFailed);
    return false;
  }
  uint8_t* content = RecordBuffer(bytes);
  if (!content || !ReadExactly(*m_main, content, int32_t(bytes))) return false;
  shape.SetShapeID(m_recordNumber);
  const ShapeRecordDecoder::Settings settings{m_type, ShapeFileKind::Of(m_type), m_readOnly,
                                              m_mArraysPresent};
  return ShapeRecordDecoder(content, int32_t(bytes), settings, m_scratch)
      .DecodeInto(shape, Error());
}

uint8_t* ShapeFile::RecordBuffer(int64_t bytes) {
  try {
    if (m_record.size() < size_t(bytes)) m_record.resize(size_t(bytes));
    return m_record.data();
  } catch (const std::bad_alloc&) {
    SetError(kErrOutOfMemory, kAllocationFailed);
    return nullptr;
  }
}

// A read that comes short of the count is a failure: the file ends inside what its
// headers announce.
bool ShapeFile::ReadExactly(File& file, void* buffer, int32_t count) {
  const int32_t got = file.Read(buffer, count);
  if (file.Error().Failed()) {
    Error().m_copy_err(&file.Error());
    return false;
  }
  if (got == count) return true;
  SetError(kErrFileIO, kFileFailed);
  return false;
}

// ---- writing -------------------------------------------------------------------------------

// The record goes in place first, then the index entry, then the index header, and the
// main header last: whatever point a crash interrupts, the headers describe records
// that are whole. A failed write leaves the headers as they were.
void ShapeFile::Write(Shape* shape) {
  ClearError();
  if (!m_mainOpen) {
    SetError(kErrFileIO, kFileFailed);
    return;
  }
  if (!shape) {
    SetError(kErrInvalidArgument, kInvalidShape);
    return;
  }
  if (m_openMode == kRead) {
    SetError(kErrInvalidState, kIllegalOperation);
    return;
  }
  const ShapeFileKind kind = ShapeFileKind::Of(m_type);
  if (kind.family == ShapeFileKind::kUnknown) {
    SetError(kErrInvalidArgument, kUnknownType);
    return;
  }
  LockScope lock;
  shape->RecomputeBounds();  // also brings the working node into storage
  const int32_t nodes = shape->GetTotalNodeCount();
  const ShapeRecordEncoder encoder(*shape, m_type, shape->GetPartIndex());
  if (kind.family == ShapeFileKind::kNull && nodes > 0) {
    SetError(kErrInvalidState, kWritingGeometryToNull);
    return;
  }
  // Behind everything the main file holds, and never inside the header: the first
  // record after opening an existing file lands behind its records.
  const int32_t place = std::max(m_mainSize, shp::kHeaderBytes);
  const int64_t recordBytes = shp::kRecordHeaderBytes + encoder.ContentLength();
  if (place + recordBytes > kLargestFile) {
    SetError(kErrFileIO, kFileFailed);
    return;
  }
  uint8_t* record = RecordBuffer(recordBytes);
  if (!record) return;
  m_recordNumber = shape->GetShapeID();
  m_recordLength = int32_t(recordBytes - shp::kRecordHeaderBytes);
  encoder.Write(m_recordNumber, record);
  if (!WriteAt(*m_main, place, record, int32_t(recordBytes))) return;
  const int32_t end = place + int32_t(recordBytes);
  m_mainSize = std::max(m_mainSize, end);
  if (kind.family != ShapeFileKind::kNull && nodes > 0) TakeBounds(*shape);
  if (m_indexOpen) {
    uint8_t entry[shp::kIndexEntryBytes];
    shp::PutBigInt32(entry, place / 2);
    shp::PutBigInt32(entry + 4, m_recordLength / 2);
    if (!WriteAt(*m_index, m_indexLength, entry, shp::kIndexEntryBytes) ||
        !WriteHeader(*m_index, m_indexLength + shp::kIndexEntryBytes))
      return;
    m_indexLength += shp::kIndexEntryBytes;
  }
  if (!WriteHeader(*m_main, end)) return;
  m_mainLength = end;
  ++m_recordsWritten;
  m_main->Seek(end, File::kFromStart);
}

bool ShapeFile::WriteAt(File& file, int32_t offset, const void* data, int32_t count) {
  if (file.Seek(offset, File::kFromStart) < 0 ||
      file.Write(data, uint32_t(count)) != uint32_t(count)) {
    Error().m_copy_err(&file.Error());
    return false;
  }
  return true;
}

bool ShapeFile::WriteHeader(File& file, int32_t length) {
  ShapeFileHeader header;
  header.fileCode = shp::kFileCode;
  header.version = shp::kVersion;
  header.lengthBytes = length;
  header.type = m_type;
  std::copy(m_bounds, m_bounds + 8, header.bounds);
  uint8_t bytes[shp::kHeaderBytes];
  header.Encode(bytes);
  return WriteAt(file, 0, bytes, shp::kHeaderBytes);
}

// The first record with nodes sets the bounds and later ones widen them: null records
// before it don't pull the bounds to 0, as other readers expect.
void ShapeFile::TakeBounds(Shape& shape) {
  const double* b = shape.Bounds();
  const bool first = !m_geometryWritten;
  m_geometryWritten = true;
  for (int k = 0; k < 8; k += 2) {
    m_bounds[k] = first ? b[k] : std::min(m_bounds[k], b[k]);
    m_bounds[k + 1] = first ? b[k + 1] : std::max(m_bounds[k + 1], b[k + 1]);
  }
}

// ---- seeking -------------------------------------------------------------------------------

void ShapeFile::Seek(int32_t record) {
  ClearError();
  if (!m_mainOpen) {
    SetError(kErrFileIO, kFileFailed);
    return;
  }
  if (m_openMode != kRead) return;
  const bool found = m_indexOpen ? SeekByIndex(record) : SeekByNumber(record);
  if (!found && !Error().Failed()) SetError(kErrIndexOutOfRange, text::kIndexOutOfBounds);
}

bool ShapeFile::SeekByIndex(int32_t record) {
  const int64_t entry = shp::kHeaderBytes + shp::kIndexEntryBytes * int64_t(record);
  if (record < 0 || entry >= m_indexLength) return false;
  uint8_t words[4];
  if (m_index->Seek(int32_t(entry), File::kFromStart) < 0) {
    Error().m_copy_err(&m_index->Error());
    return false;
  }
  if (!ReadExactly(*m_index, words, 4)) return false;
  const int64_t offset = 2 * int64_t(shp::BigInt32(words));
  if (offset < shp::kHeaderBytes || offset >= m_mainLength) return false;
  if (m_main->Seek(int32_t(offset), File::kFromStart) < 0) {
    Error().m_copy_err(&m_main->Error());
    return false;
  }
  m_readPosition = int32_t(offset);
  return true;
}

// Record headers from the first on, each record skipped by its length, up to the end
// that both the header and the file allow. A length that leads backwards ends the walk.
bool ShapeFile::SeekByNumber(int32_t number) {
  const int64_t end = std::min(m_mainLength, m_mainSize);
  int64_t at = shp::kHeaderBytes;
  while (at + shp::kRecordHeaderBytes <= end) {
    uint8_t head[shp::kRecordHeaderBytes];
    if (m_main->Seek(int32_t(at), File::kFromStart) < 0) {
      Error().m_copy_err(&m_main->Error());
      break;
    }
    if (!ReadExactly(*m_main, head, shp::kRecordHeaderBytes)) break;
    if (shp::BigInt32(head) == number) {
      m_readPosition = int32_t(at);
      m_main->Seek(m_readPosition, File::kFromStart);
      return true;
    }
    const int32_t words = shp::BigInt32(head + 4);
    if (words < 0) break;
    at += shp::kRecordHeaderBytes + 2 * int64_t(words);
  }
  m_main->Seek(m_readPosition, File::kFromStart);
  return false;
}

// ---- fields --------------------------------------------------------------------------------

void ShapeFile::GetBoundingBox(double bounds[8]) {
  ClearError();
  std::copy(m_bounds, m_bounds + 8, bounds);
}

int32_t ShapeFile::GetShapeFileType() { return ReadField(m_type); }
void ShapeFile::SetShapeFileType(int32_t type) {
  WriteField(m_type, type);
  // An unknown type never reaches a header: the file keeps saying what it can hold.
  const bool known = ShapeFileKind::Of(type).family != ShapeFileKind::kUnknown;
  if (known && m_mainOpen && m_openMode != kRead && m_mainLength == shp::kHeaderBytes)
    StartEmptyFiles();
}
bool ShapeFile::GetReadOnly() { return ReadField(m_readOnly); }
void ShapeFile::SetReadOnly(bool readOnly) { WriteField(m_readOnly, readOnly); }

}  // namespace kx
