// The texts of the failures of ShapeFile, byte for byte.
#pragma once

namespace kx::shapefile_text {

constexpr const char* kInvalidFileName = "Invalid file name";
constexpr const char* kInvalidFileType = "Invalid file type";
constexpr const char* kIllegalOperation = "Illegal file operation";
constexpr const char* kUnknownType = "Unknown shape type.";
constexpr const char* kIndexMismatch = "Shape type missmatched.";
constexpr const char* kDifferentTypes = "Different shape types were defined in this shape file.";
constexpr const char* kNoParts = "Part number is less than one.";
constexpr const char* kEmptyMultiPoint = "Multipoint shape is empty.";
constexpr const char* kNullWithGeometry = "Null shape may not contain geometeric data.";
constexpr const char* kWritingGeometryToNull = "Null shapes may not contain any gemetric data.";
constexpr const char* kInvalidShape = "Invalid shape value.";
constexpr const char* kFileFailed = "Error opening, reading, writing or seeking file";
constexpr const char* kAllocationFailed = "Memory allocation failure";

}  // namespace kx::shapefile_text
