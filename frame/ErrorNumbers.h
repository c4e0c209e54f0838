// Error numbers of the library. A number names the class of a failure; the text says
// what happened. Where a platform call failed, its last-error value is the number.
#pragma once

#include <cstdint>

namespace kx {

enum ErrorNumber : int32_t {
  kErrNone = 0,
  kErrInvalidArgument = 10003,    // invalid argument or unknown value
  kErrIndexOutOfRange = 10004,    // index out of range
  kErrInternal = 10005,           // internal failure
  kErrInvalidState = 10006,       // operation not allowed in the present state
  kErrSerialPort = 10007,         // serial port
  kErrFileIO = 10010,             // file input or output
  kErrOutOfMemory = 10012,        // memory
  kErrFileFormat = 10013,         // file format
  kErrFileVersion = 10014,        // file version
  kErrMapLibState = 10015,        // map library state
  kErrStartup = 10018,            // start-up of a window or companion program
  kErrFileDelete = 10019,         // file deletion
  kErrNotFound = 10022,           // item not found
  kErrAlreadyConnected = 10024,   // connection already made
  kErrConnectionBroken = 10026,   // connection broken
  kErrConnectionMissing = 10027,  // connection missing
  kErrCompanionMissing = 10029,   // companion program missing
  kErrShapeMapConflict = 10035,   // shape and map settings in conflict
  kErrNotSupported = 10037,       // not supported
};

// Texts that belong to the frame itself; each subsystem keeps its own beside its code.
namespace text {
constexpr const char* kInvalidParameter = "Invalid parameter!";
constexpr const char* kIndexOutOfBounds = "Index out of bounds";
constexpr const char* kUnexpected = "Unexcpected error";
constexpr const char* kNullCopyError = "NULL argument to m_copy_err()";
constexpr const char* kOutOfMemory = "Out of memory";
constexpr const char* kCouldNotCreateThread = "Could not create thread";
}  // namespace text

}  // namespace kx
