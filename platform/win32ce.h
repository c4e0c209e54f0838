// The operating-system calls the library makes, under their Windows CE names.
//
// Exactly the subset in use is declared here: on the device this file gives way to
// <windows.h>; on POSIX the functions are implemented in platform/posix/.
#pragma once

#include <cstddef>
#include <cstdint>

// ---- basic types -------------------------------------------------------------------
typedef int BOOL;
typedef unsigned char BYTE;
typedef uint16_t WORD;
typedef uint32_t DWORD;
typedef int32_t LONG;
typedef uint32_t UINT;
typedef void* HANDLE;
typedef void* LPVOID;
typedef const void* LPCVOID;
typedef char16_t WCHAR;
typedef const WCHAR* LPCWSTR;
typedef WCHAR* BSTR;
typedef uint64_t ULONGLONG;

#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif

// Functions an application needs directly are visible outside the shared library.
#define WINAPI_EXPORT __attribute__((visibility("default")))

// ---- last error (thread local) ---------------------------------------------------------
DWORD GetLastError();
void SetLastError(DWORD error);

constexpr DWORD ERROR_SUCCESS = 0;
constexpr DWORD ERROR_FILE_NOT_FOUND = 2;
constexpr DWORD ERROR_PATH_NOT_FOUND = 3;
constexpr DWORD ERROR_TOO_MANY_OPEN_FILES = 4;
constexpr DWORD ERROR_ACCESS_DENIED = 5;
constexpr DWORD ERROR_INVALID_HANDLE = 6;
constexpr DWORD ERROR_NOT_ENOUGH_MEMORY = 8;
constexpr DWORD ERROR_INVALID_DATA = 13;
constexpr DWORD ERROR_GEN_FAILURE = 31;
constexpr DWORD ERROR_SHARING_VIOLATION = 32;
constexpr DWORD ERROR_FILE_EXISTS = 80;
constexpr DWORD ERROR_INVALID_PARAMETER = 87;
constexpr DWORD ERROR_DISK_FULL = 112;
constexpr DWORD ERROR_NEGATIVE_SEEK = 131;
constexpr DWORD ERROR_ALREADY_EXISTS = 183;
constexpr DWORD ERROR_FILENAME_EXCED_RANGE = 206;
constexpr DWORD ERROR_MORE_DATA = 234;
constexpr DWORD ERROR_NO_MORE_ITEMS = 259;
constexpr DWORD ERROR_KEY_DELETED = 1018;
constexpr DWORD ERROR_TIMEOUT = 1460;
constexpr DWORD ERROR_INVALID_WINDOW_HANDLE = 1400;
constexpr DWORD ERROR_CANNOT_FIND_WND_CLASS = 1407;
constexpr DWORD ERROR_CLASS_ALREADY_EXISTS = 1410;

// ---- critical sections and interlocked counts ----------------------------------------
// Recursive, like the real thing. The implementation lives behind one pointer.
struct CRITICAL_SECTION {
  void* impl;
};
void InitializeCriticalSection(CRITICAL_SECTION* cs);
void DeleteCriticalSection(CRITICAL_SECTION* cs);
void EnterCriticalSection(CRITICAL_SECTION* cs);
void LeaveCriticalSection(CRITICAL_SECTION* cs);

// Inline: every reference count goes through these.
inline LONG InterlockedIncrement(volatile LONG* value) {
  return __atomic_add_fetch(value, 1, __ATOMIC_SEQ_CST);
}
inline LONG InterlockedDecrement(volatile LONG* value) {
  return __atomic_sub_fetch(value, 1, __ATOMIC_SEQ_CST);
}

// ---- events, waits, threads -----------------------------------------------------------
constexpr DWORD INFINITE = 0xFFFFFFFFu;
constexpr DWORD WAIT_OBJECT_0 = 0;
constexpr DWORD WAIT_TIMEOUT = 258;
constexpr DWORD WAIT_FAILED = 0xFFFFFFFFu;
constexpr DWORD MAXIMUM_WAIT_OBJECTS = 64;
constexpr DWORD EVENT_RESET = 2;
constexpr DWORD EVENT_SET = 3;

// Security attributes are never used by the library; the pointer is always null.
struct SECURITY_ATTRIBUTES;

HANDLE CreateEventW(SECURITY_ATTRIBUTES* attributes, BOOL manualReset, BOOL initialState,
                    LPCWSTR name);
BOOL EventModify(HANDLE event, DWORD func);
inline BOOL SetEvent(HANDLE event) { return EventModify(event, EVENT_SET); }
inline BOOL ResetEvent(HANDLE event) { return EventModify(event, EVENT_RESET); }
DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds);
// Wait-any only (waitAll must be FALSE): returns WAIT_OBJECT_0 + index of the earliest
// signalled handle in the array, WAIT_TIMEOUT, or WAIT_FAILED.
DWORD WaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL waitAll, DWORD milliseconds);
BOOL CloseHandle(HANDLE handle);

typedef DWORD (*LPTHREAD_START_ROUTINE)(LPVOID parameter);
HANDLE CreateThread(SECURITY_ATTRIBUTES* attributes, size_t stackSize, LPTHREAD_START_ROUTINE start,
                    LPVOID parameter, DWORD creationFlags, DWORD* threadId);
void Sleep(DWORD milliseconds);

// ---- time -----------------------------------------------------------------------------
struct SYSTEMTIME {
  WORD wYear;
  WORD wMonth;
  WORD wDayOfWeek;
  WORD wDay;
  WORD wHour;
  WORD wMinute;
  WORD wSecond;
  WORD wMilliseconds;
};
// 100-nanosecond intervals since 1 January 1601 UTC.
struct FILETIME {
  DWORD dwLowDateTime;
  DWORD dwHighDateTime;
};
// Milliseconds since an arbitrary start, wrapping at 2^32.
DWORD GetTickCount();
void GetSystemTime(SYSTEMTIME* time);
BOOL SystemTimeToFileTime(const SYSTEMTIME* time, FILETIME* fileTime);

// ---- files and other byte streams ---------------------------------------------------
// CreateFileW opens files, and serial ports by their device names "COM1:", "COM2:" and
// on. The handles are closed with CloseHandle.
constexpr DWORD GENERIC_READ = 0x80000000u;
constexpr DWORD GENERIC_WRITE = 0x40000000u;
constexpr DWORD FILE_SHARE_READ = 1;
constexpr DWORD FILE_SHARE_WRITE = 2;
constexpr DWORD CREATE_NEW = 1;
constexpr DWORD CREATE_ALWAYS = 2;
constexpr DWORD OPEN_EXISTING = 3;
constexpr DWORD OPEN_ALWAYS = 4;
constexpr DWORD FILE_ATTRIBUTE_NORMAL = 128;
constexpr DWORD FILE_BEGIN = 0;
constexpr DWORD FILE_CURRENT = 1;
constexpr DWORD FILE_END = 2;
constexpr DWORD INVALID_SET_FILE_POINTER = 0xFFFFFFFFu;
#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(intptr_t(-1)))

// Overlapped input and output is never used by the library; the pointer is always null.
struct OVERLAPPED;

HANDLE CreateFileW(LPCWSTR name, DWORD access, DWORD shareMode, SECURITY_ATTRIBUTES* attributes,
                   DWORD disposition, DWORD flagsAndAttributes, HANDLE templateFile);
BOOL ReadFile(HANDLE file, LPVOID buffer, DWORD count, DWORD* read, OVERLAPPED* overlapped);
BOOL WriteFile(HANDLE file, LPCVOID data, DWORD count, DWORD* written, OVERLAPPED* overlapped);
// Without a high part the distance is signed 32-bit and so must be the new position.
DWORD SetFilePointer(HANDLE file, LONG distance, LONG* distanceHigh, DWORD moveMethod);
BOOL FlushFileBuffers(HANDLE file);
BOOL DeleteFileW(LPCWSTR name);

// ---- registry ---------------------------------------------------------------------------
// Key names are compared without regard to case. Deleting a key deletes its sub-keys, as on
// the device.
typedef struct HKEY__* HKEY;
typedef DWORD REGSAM;
#define HKEY_CLASSES_ROOT (reinterpret_cast<HKEY>(uintptr_t(0x80000000u)))
#define HKEY_CURRENT_USER (reinterpret_cast<HKEY>(uintptr_t(0x80000001u)))
#define HKEY_LOCAL_MACHINE (reinterpret_cast<HKEY>(uintptr_t(0x80000002u)))
#define HKEY_USERS (reinterpret_cast<HKEY>(uintptr_t(0x80000003u)))

constexpr DWORD REG_NONE = 0;
constexpr DWORD REG_SZ = 1;
constexpr DWORD REG_BINARY = 3;
constexpr DWORD REG_DWORD = 4;
constexpr DWORD REG_MULTI_SZ = 7;
constexpr DWORD REG_CREATED_NEW_KEY = 1;
constexpr DWORD REG_OPENED_EXISTING_KEY = 2;

// The functions return ERROR_SUCCESS or an error code; they leave the last error alone.
// Options, access masks, classes, security and reserved arguments are ignored, as the
// device ignores them.
LONG RegCreateKeyExW(HKEY key, LPCWSTR subKey, DWORD reserved, WCHAR* keyClass, DWORD options,
                     REGSAM access, SECURITY_ATTRIBUTES* security, HKEY* result,
                     DWORD* disposition);
LONG RegOpenKeyExW(HKEY key, LPCWSTR subKey, DWORD options, REGSAM access, HKEY* result);
LONG RegCloseKey(HKEY key);
LONG RegDeleteKeyW(HKEY key, LPCWSTR subKey);
LONG RegDeleteValueW(HKEY key, LPCWSTR name);
LONG RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* nameLength, DWORD* reserved,
                   WCHAR* keyClass, DWORD* classLength, FILETIME* lastWriteTime);
LONG RegEnumValueW(HKEY key, DWORD index, WCHAR* name, DWORD* nameLength, DWORD* reserved,
                   DWORD* type, BYTE* data, DWORD* dataLength);
LONG RegQueryValueExW(HKEY key, LPCWSTR name, DWORD* reserved, DWORD* type, BYTE* data,
                      DWORD* dataLength);
LONG RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data,
                    DWORD dataLength);
LONG RegQueryInfoKeyW(HKEY key, WCHAR* keyClass, DWORD* classLength, DWORD* reserved,
                      DWORD* subKeys, DWORD* maxSubKeyLength, DWORD* maxClassLength, DWORD* values,
                      DWORD* maxValueNameLength, DWORD* maxValueLength,
                      DWORD* securityDescriptorLength, FILETIME* lastWriteTime);

// ---- BSTR, windows and messages --------------------------------------------------------
// What an application calls as well is declared once, in the public header: the BSTR
// functions (length-prefixed wide text, a 32-bit byte count in front of the characters
// and a wide NUL behind them) and the windows and their message queues.
#include "exports/KestrixCE.h"
