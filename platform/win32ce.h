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
constexpr DWORD ERROR_NOT_SUPPORTED = 50;
constexpr DWORD ERROR_INVALID_PARAMETER = 87;
constexpr DWORD ERROR_DISK_FULL = 112;
constexpr DWORD ERROR_NEGATIVE_SEEK = 131;
constexpr DWORD ERROR_ALREADY_EXISTS = 183;
constexpr DWORD ERROR_FILENAME_EXCED_RANGE = 206;
constexpr DWORD ERROR_MORE_DATA = 234;
constexpr DWORD ERROR_NO_MORE_ITEMS = 259;
constexpr DWORD ERROR_INSUFFICIENT_BUFFER = 122;
constexpr DWORD ERROR_NO_UNICODE_TRANSLATION = 1113;
constexpr DWORD ERROR_KEY_DELETED = 1018;
constexpr DWORD ERROR_OPERATION_ABORTED = 995;
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
constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 16;
constexpr DWORD FILE_ATTRIBUTE_NORMAL = 128;
constexpr DWORD INVALID_FILE_ATTRIBUTES = 0xFFFFFFFFu;
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
// INVALID_FILE_ATTRIBUTES, with the last error, when nothing stands under the name.
DWORD GetFileAttributesW(LPCWSTR name);

// ---- text ---------------------------------------------------------------------------------
// Only the UTF-8 code page is used: names reach the file system as their caller wrote
// them. A length of -1 takes the text with its NUL; a size of 0 asks for the length
// needed. 0 on failure: ERROR_NO_UNICODE_TRANSLATION for bytes that aren't UTF-8 under
// MB_ERR_INVALID_CHARS (without it they come out as U+FFFD), ERROR_INSUFFICIENT_BUFFER.
constexpr UINT CP_UTF8 = 65001;
constexpr DWORD MB_ERR_INVALID_CHARS = 8;
int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR wide, int wideLength, char* bytes,
                        int size, const char* defaultChar, BOOL* usedDefaultChar);
int MultiByteToWideChar(UINT codePage, DWORD flags, const char* bytes, int length, WCHAR* wide,
                        int size);

// ---- serial ports -------------------------------------------------------------------------
// A port opened by CreateFileW("COMn:") answers these besides ReadFile and WriteFile.
// CloseHandle on another thread ends a read, a write or a WaitCommEvent that blocks.
struct DCB {
  DWORD DCBlength;
  DWORD BaudRate;
  DWORD fBinary : 1;
  DWORD fParity : 1;
  DWORD fOutxCtsFlow : 1;
  DWORD fOutxDsrFlow : 1;
  DWORD fDtrControl : 2;
  DWORD fDsrSensitivity : 1;
  DWORD fTXContinueOnXoff : 1;
  DWORD fOutX : 1;
  DWORD fInX : 1;
  DWORD fErrorChar : 1;
  DWORD fNull : 1;
  DWORD fRtsControl : 2;
  DWORD fAbortOnError : 1;
  DWORD fDummy2 : 17;
  WORD wReserved;
  WORD XonLim;
  WORD XoffLim;
  BYTE ByteSize;
  BYTE Parity;
  BYTE StopBits;
  char XonChar;
  char XoffChar;
  char ErrorChar;
  char EofChar;
  char EvtChar;
  WORD wReserved1;
};
constexpr DWORD NOPARITY = 0;
constexpr DWORD ODDPARITY = 1;
constexpr DWORD EVENPARITY = 2;
constexpr DWORD MARKPARITY = 3;
constexpr DWORD SPACEPARITY = 4;
constexpr DWORD ONESTOPBIT = 0;
constexpr DWORD ONE5STOPBITS = 1;
constexpr DWORD TWOSTOPBITS = 2;
constexpr DWORD DTR_CONTROL_DISABLE = 0;
constexpr DWORD DTR_CONTROL_ENABLE = 1;
constexpr DWORD DTR_CONTROL_HANDSHAKE = 2;
constexpr DWORD RTS_CONTROL_DISABLE = 0;
constexpr DWORD RTS_CONTROL_ENABLE = 1;
constexpr DWORD RTS_CONTROL_HANDSHAKE = 2;

// Milliseconds. A read returns when its buffer is full or the total time
// (multiplier x bytes + constant) is over; with interval and multiplier both MAXDWORD it
// returns as soon as any byte is there, waiting up to the constant for the first.
// All zero: a read waits until the buffer is full.
struct COMMTIMEOUTS {
  DWORD ReadIntervalTimeout;
  DWORD ReadTotalTimeoutMultiplier;
  DWORD ReadTotalTimeoutConstant;
  DWORD WriteTotalTimeoutMultiplier;
  DWORD WriteTotalTimeoutConstant;
};
constexpr DWORD MAXDWORD = 0xFFFFFFFFu;

// Events of WaitCommEvent: bytes received, and changes of the modem's input lines.
constexpr DWORD EV_RXCHAR = 0x0001;
constexpr DWORD EV_CTS = 0x0008;
constexpr DWORD EV_DSR = 0x0010;
constexpr DWORD EV_RLSD = 0x0020;
constexpr DWORD EV_RING = 0x0100;
// Input lines of GetCommModemStatus. A port without modem lines reports them all off.
constexpr DWORD MS_CTS_ON = 0x0010;
constexpr DWORD MS_DSR_ON = 0x0020;
constexpr DWORD MS_RING_ON = 0x0040;
constexpr DWORD MS_RLSD_ON = 0x0080;
// EscapeCommFunction. Output lines of a port without modem lines take any setting.
constexpr DWORD SETRTS = 3;
constexpr DWORD CLRRTS = 4;
constexpr DWORD SETDTR = 5;
constexpr DWORD CLRDTR = 6;
constexpr DWORD SETBREAK = 8;
constexpr DWORD CLRBREAK = 9;
constexpr DWORD SETIR = 10;
constexpr DWORD CLRIR = 11;
// PurgeComm: what waits to be sent, what waits to be read.
constexpr DWORD PURGE_TXCLEAR = 0x0004;
constexpr DWORD PURGE_RXCLEAR = 0x0008;

BOOL GetCommState(HANDLE port, DCB* dcb);
BOOL SetCommState(HANDLE port, DCB* dcb);
BOOL GetCommTimeouts(HANDLE port, COMMTIMEOUTS* timeouts);
BOOL SetCommTimeouts(HANDLE port, COMMTIMEOUTS* timeouts);
// A SetCommMask while WaitCommEvent waits ends the wait with no event.
BOOL SetCommMask(HANDLE port, DWORD mask);
BOOL WaitCommEvent(HANDLE port, DWORD* mask, OVERLAPPED* overlapped);
BOOL GetCommModemStatus(HANDLE port, DWORD* status);
BOOL EscapeCommFunction(HANDLE port, DWORD function);
BOOL PurgeComm(HANDLE port, DWORD flags);

// ---- registry ---------------------------------------------------------------------------
// Key names are compared without regard to case. Deleting a key deletes its sub-keys, as on
// the device.
typedef struct HKEY__* HKEY;
typedef DWORD REGSAM;
#define HKEY_CLASSES_ROOT (reinterpret_cast<HKEY>(uintptr_t(0x80000000u)))
// HKEY_CURRENT_USER and HKEY_LOCAL_MACHINE come with the public header.
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
// device ignores them. Those an application needs to declare its ports are in the public
// header: RegCreateKeyExW, RegOpenKeyExW, RegCloseKey, RegDeleteKeyW, RegDeleteValueW,
// RegQueryValueExW, RegSetValueExW and RegEnumKeyExW.
LONG RegEnumValueW(HKEY key, DWORD index, WCHAR* name, DWORD* nameLength, DWORD* reserved,
                   DWORD* type, BYTE* data, DWORD* dataLength);
LONG RegQueryInfoKeyW(HKEY key, WCHAR* keyClass, DWORD* classLength, DWORD* reserved,
                      DWORD* subKeys, DWORD* maxSubKeyLength, DWORD* maxClassLength, DWORD* values,
                      DWORD* maxValueNameLength, DWORD* maxValueLength,
                      DWORD* securityDescriptorLength, FILETIME* lastWriteTime);

// ---- BSTR, windows and messages --------------------------------------------------------
// What an application calls as well is declared once, in the public header: the BSTR
// functions (length-prefixed wide text, a 32-bit byte count in front of the characters
// and a wide NUL behind them), the windows and their message queues, and the registry
// calls that declare ports.
#include "exports/KestrixCE.h"

// ---- programs -------------------------------------------------------------------------
// Starts a program with a command line of parameters; it is not waited for. With
// SEE_MASK_NOCLOSEPROCESS, hProcess receives a handle that is signalled when the program
// has ended, for the caller to close.
struct SHELLEXECUTEINFO {
  DWORD cbSize;
  DWORD fMask;
  HWND hwnd;
  LPCWSTR lpVerb;
  LPCWSTR lpFile;
  LPCWSTR lpParameters;
  LPCWSTR lpDirectory;
  int nShow;
  HINSTANCE hInstApp;
  LPVOID lpIDList;
  LPCWSTR lpClass;
  HKEY hkeyClass;
  DWORD dwHotKey;
  HANDLE hIcon;
  HANDLE hProcess;
};
constexpr DWORD SEE_MASK_NOCLOSEPROCESS = 0x00000040;
constexpr DWORD SEE_MASK_FLAG_NO_UI = 0x00000400;
constexpr int SW_SHOWNORMAL = 1;
BOOL ShellExecuteEx(SHELLEXECUTEINFO* info);
