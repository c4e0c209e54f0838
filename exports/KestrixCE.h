/*
 * KestrixCE: GPS input, coordinates, shapes and raster maps behind flat C functions.
 *
 * Every object is reached through an opaque handle and is reference counted: a handle
 * that a function returns holds one reference for the caller, given up with that
 * family's Family_Delete. Failures never cross as return codes: each object keeps the
 * record of its last failure, read through its error handle with Error_ErrNum and
 * Error_ErrDesc. Doubles travel by pointer, text goes in as 16-bit wide text and comes
 * out as a BSTR that the caller frees with SysFreeString (Error_ErrDesc excepted).
 *
 * Valid C11 and C++17.
 */
#ifndef KESTRIXCE_H
#define KESTRIXCE_H

#ifdef __cplusplus
extern "C" {
#else
#include <uchar.h>
#endif

#if defined(KESTRIXCE_BUILD)
#define KX_API __attribute__((visibility("default")))
#else
#define KX_API
#endif

/* ---- text ------------------------------------------------------------------------- */
typedef char16_t WCHAR;
typedef WCHAR* BSTR;
/* A boolean is one byte: 0 is false, anything else true. */
typedef unsigned char KxBool;

KX_API BSTR SysAllocStringLen(const WCHAR* source, unsigned int length);
KX_API void SysFreeString(BSTR text);
KX_API unsigned int SysStringLen(BSTR text);

/* ---- windows and messages ---------------------------------------------------------- */
/* Events reach an application's window as messages, as on the device: a Linux
 * application makes its callback window with these and pumps its thread's queue with
 * GetMessageW and DispatchMessageW. Within one process; a posted message arrives, in
 * order, on the thread that made the window. */
#include <stdint.h>
typedef struct KxWindow_* HWND;
typedef struct KxInstance_* HINSTANCE;
typedef HINSTANCE HMODULE;
typedef struct KxMenu_* HMENU;
typedef struct KxIcon_* HICON;
typedef struct KxCursor_* HCURSOR;
typedef struct KxBrushHandle_* HBRUSH;
typedef uintptr_t WPARAM;
typedef intptr_t LPARAM;
typedef intptr_t LRESULT;
typedef uintptr_t UINT_PTR;
typedef LRESULT (*WNDPROC)(HWND window, unsigned int message, WPARAM wParam, LPARAM lParam);
typedef void (*TIMERPROC)(HWND window, unsigned int message, UINT_PTR id, uint32_t time);
typedef struct tagPOINT {
  int32_t x, y;
} POINT;
typedef struct tagMSG {
  HWND hwnd;
  unsigned int message;
  WPARAM wParam;
  LPARAM lParam;
  uint32_t time;
  POINT pt;
} MSG;
typedef struct tagWNDCLASSW {
  unsigned int style;
  WNDPROC lpfnWndProc;
  int cbClsExtra;
  int cbWndExtra;
  HINSTANCE hInstance;
  HICON hIcon;
  HCURSOR hCursor;
  HBRUSH hbrBackground;
  const WCHAR* lpszMenuName;
  const WCHAR* lpszClassName;
} WNDCLASSW;

#define WM_QUIT 0x0012
#define WM_TIMER 0x0113
#define WM_USER 0x0400
#define PM_NOREMOVE 0x0000
#define PM_REMOVE 0x0001

KX_API unsigned short RegisterClassW(const WNDCLASSW* windowClass);
KX_API HWND CreateWindowExW(uint32_t exStyle, const WCHAR* className, const WCHAR* windowName,
                            uint32_t style, int x, int y, int width, int height, HWND parent,
                            HMENU menu, HINSTANCE instance, void* parameter);
KX_API int DestroyWindow(HWND window);
KX_API int PostMessageW(HWND window, unsigned int message, WPARAM wParam, LPARAM lParam);
KX_API LRESULT SendMessageW(HWND window, unsigned int message, WPARAM wParam, LPARAM lParam);
/* 0 on WM_QUIT, -1 on an error, else 1 */
KX_API int GetMessageW(MSG* message, HWND window, unsigned int first, unsigned int last);
KX_API int PeekMessageW(MSG* message, HWND window, unsigned int first, unsigned int last,
                        unsigned int remove);
KX_API LRESULT DispatchMessageW(const MSG* message);
KX_API LRESULT DefWindowProcW(HWND window, unsigned int message, WPARAM wParam, LPARAM lParam);
KX_API void PostQuitMessage(int exitCode);
KX_API UINT_PTR SetTimer(HWND window, UINT_PTR id, unsigned int elapse, TIMERPROC function);
KX_API int KillTimer(HWND window, UINT_PTR id);
KX_API HMODULE GetModuleHandleW(const WCHAR* moduleName);

/* ---- registry ---------------------------------------------------------------------- */
/* The library finds its COM ports in a registry kept in a file: KESTRIX_REGISTRY names it,
 * else $XDG_CONFIG_HOME/kestrix/registry (~/.config/...). Serial devices present
 * (ttyS, ttyUSB, ttyACM, rfcomm) are listed by themselves; any other device becomes a COM
 * port by a key under HKEY_LOCAL_MACHINE\Drivers\Active with the text values "Name"
 * ("COM5:") and "DevicePath" ("/dev/pts/4"). Types as on Windows: 1 text (UTF-16 with its
 * NUL), 3 binary, 4 a 32-bit number. The calls return 0 or a Windows error code. */
typedef struct HKEY__* HKEY;
struct SECURITY_ATTRIBUTES;
#define HKEY_CURRENT_USER ((HKEY)(uintptr_t)0x80000001u)
#define HKEY_LOCAL_MACHINE ((HKEY)(uintptr_t)0x80000002u)
KX_API int32_t RegCreateKeyExW(HKEY key, const WCHAR* subKey, uint32_t reserved, WCHAR* keyClass,
                               uint32_t options, uint32_t access,
                               struct SECURITY_ATTRIBUTES* security, HKEY* result,
                               uint32_t* disposition);
KX_API int32_t RegOpenKeyExW(HKEY key, const WCHAR* subKey, uint32_t options, uint32_t access,
                             HKEY* result);
KX_API int32_t RegCloseKey(HKEY key);
KX_API int32_t RegDeleteKeyW(HKEY key, const WCHAR* subKey);
KX_API int32_t RegDeleteValueW(HKEY key, const WCHAR* name);
KX_API int32_t RegQueryValueExW(HKEY key, const WCHAR* name, uint32_t* reserved, uint32_t* type,
                                unsigned char* data, uint32_t* dataLength);
KX_API int32_t RegSetValueExW(HKEY key, const WCHAR* name, uint32_t reserved, uint32_t type,
                              const unsigned char* data, uint32_t dataLength);
/* The name of the index-th subkey (0 upwards), ERROR_NO_MORE_ITEMS (259) past the last;
 * class and time are not kept and may be null. */
struct FILETIME;
KX_API int32_t RegEnumKeyExW(HKEY key, uint32_t index, WCHAR* name, uint32_t* nameLength,
                             uint32_t* reserved, WCHAR* keyClass, uint32_t* classLength,
                             struct FILETIME* lastWriteTime);

/* ---- handles ---------------------------------------------------------------------- */
typedef struct KxErrorRecord_* KxError;
typedef struct KxPosition_* KxPosition;
typedef struct KxCustomDatum_* KxCustomDatum;
typedef struct KxCustomGrid_* KxCustomGrid;
typedef struct KxNmeaSentence_* KxNmeaSentence;
typedef struct KxGpsFix_* KxGpsFix;
typedef struct KxMovement_* KxMovement;
typedef struct KxQuality_* KxQuality;
typedef struct KxSatellite_* KxSatellite;
typedef struct KxSatellites_* KxSatellites;
typedef struct KxComStatus_* KxComStatus;
typedef struct KxNmeaParser_* KxNmeaParser;
typedef struct KxShape_* KxShape;
typedef struct KxShapeFile_* KxShapeFile;

/* ---- errors ----------------------------------------------------------------------- */
/* Classes of failure. A failing system call reports its own last-error value instead. */
#define KX_ERR_INVALID_ARGUMENT 10003
#define KX_ERR_INDEX_OUT_OF_RANGE 10004
#define KX_ERR_INTERNAL 10005
#define KX_ERR_INVALID_STATE 10006
#define KX_ERR_SERIAL_PORT 10007
#define KX_ERR_FILE_IO 10010
#define KX_ERR_OUT_OF_MEMORY 10012
#define KX_ERR_FILE_FORMAT 10013
#define KX_ERR_FILE_VERSION 10014
#define KX_ERR_MAPLIB_STATE 10015
#define KX_ERR_STARTUP 10018
#define KX_ERR_FILE_DELETE 10019
#define KX_ERR_NOT_FOUND 10022
#define KX_ERR_ALREADY_CONNECTED 10024
#define KX_ERR_CONNECTION_BROKEN 10026
#define KX_ERR_CONNECTION_MISSING 10027
#define KX_ERR_COMPANION_MISSING 10029
#define KX_ERR_SHAPE_MAP_CONFLICT 10035
#define KX_ERR_NOT_SUPPORTED 10037

/* The number of the last failure, cut to 16 bits; 0 after a call that succeeded. */
KX_API short Error_ErrNum(KxError error);
/* The text of the last failure, stored in *text and returned. The BSTR stays the
 * library's and lives until the next Error_ErrDesc call on any handle: do not free it.
 * Call from one thread at a time. */
KX_API BSTR Error_ErrDesc(KxError error, BSTR* text);

/* ---- Position: a point in a datum, optionally in a grid ---------------------------- */
KX_API KxPosition Position_New(void);
KX_API void Position_Delete(KxPosition position);
KX_API KxError Position_GetErrHandle(KxPosition position);
KX_API KxPosition Position_Copy(KxPosition position);

KX_API void Position_GetLatitudeRads(KxPosition position, double* value);
KX_API void Position_SetLatitudeRads(KxPosition position, const double* value);
KX_API void Position_GetLongitudeRads(KxPosition position, double* value);
KX_API void Position_SetLongitudeRads(KxPosition position, const double* value);
KX_API void Position_GetLatitudeDecDeg(KxPosition position, double* value);
KX_API void Position_SetLatitudeDecDeg(KxPosition position, const double* value);
KX_API void Position_GetLongitudeDecDeg(KxPosition position, double* value);
KX_API void Position_SetLongitudeDecDeg(KxPosition position, const double* value);
KX_API void Position_GetLatitudeDMS(KxPosition position, short* degrees, short* minutes,
                                    double* seconds, BSTR* hemisphere);
KX_API void Position_SetLatitudeDMS(KxPosition position, const double* degrees,
                                    const double* minutes, const double* seconds,
                                    const WCHAR* hemisphere);
KX_API void Position_GetLongitudeDMS(KxPosition position, short* degrees, short* minutes,
                                     double* seconds, BSTR* hemisphere);
KX_API void Position_SetLongitudeDMS(KxPosition position, const double* degrees,
                                     const double* minutes, const double* seconds,
                                     const WCHAR* hemisphere);
/* format 0: "59 18'7.25 N"; format 1: NMEA form "5918.12083" / "01801.00000" */
KX_API void Position_GetLatitudeString(KxPosition position, BSTR* text, short format);
KX_API void Position_GetLongitudeString(KxPosition position, BSTR* text, short format);
/* kind 0: above mean sea level; kind 1: above the ellipsoid of the datum */
KX_API void Position_GetAltitude(KxPosition position, short kind, double* value);
KX_API void Position_SetAltitude(KxPosition position, const double* value, short kind);

KX_API void Position_GetEasting(KxPosition position, double* value);
KX_API void Position_SetEasting(KxPosition position, const double* value);
KX_API void Position_GetNorthing(KxPosition position, double* value);
KX_API void Position_SetNorthing(KxPosition position, const double* value);
KX_API void Position_GetZone(KxPosition position, BSTR* text);
KX_API void Position_SetZone(KxPosition position, short zone);

KX_API short Position_GetDatum(KxPosition position);
KX_API void Position_SetDatum(KxPosition position, short datum);
KX_API short Position_GetGrid(KxPosition position);
KX_API void Position_SetGrid(KxPosition position, short grid);
KX_API void Position_SetCustomDatum(KxPosition position, KxCustomDatum datum);
KX_API void Position_SetCustomGrid(KxPosition position, KxCustomGrid grid);
KX_API void Position_MakeSameDatum(KxPosition position, KxPosition other);
KX_API void Position_MakeSameGrid(KxPosition position, KxPosition other);
KX_API KxBool Position_IsSameDatum(KxPosition position, KxPosition other);
KX_API KxBool Position_IsSameGrid(KxPosition position, KxPosition other);
/* method 1: metres on a sphere of radius 6366710 m; 2: radians of arc; 3: metres in the
 * grid plane (the other position is brought into this one's datum or grid; it doesn't
 * change) */
KX_API void Position_Distance(KxPosition position, KxPosition other, int method, double* value);
/* degrees clockwise from north (grid north in method 3), from 0 up to 360 */
KX_API void Position_Bearing(KxPosition position, KxPosition other, int method, double* value);
/* moves the position by a distance (units as Position_Distance) along a bearing in degrees */
KX_API void Position_Move(KxPosition position, const double* distance, const double* bearing,
                          int method);

/* ---- CustomDatum: an ellipsoid and the seven parameters that lead to WGS 84 -------- */
KX_API KxCustomDatum CustomDatum_New(void);
KX_API void CustomDatum_Delete(KxCustomDatum datum);
KX_API KxError CustomDatum_GetErrHandle(KxCustomDatum datum);
KX_API void CustomDatum_GetSemiMajorAxis(KxCustomDatum datum, double* metres);
KX_API void CustomDatum_SetSemiMajorAxis(KxCustomDatum datum, const double* metres);
KX_API void CustomDatum_GetE2(KxCustomDatum datum, double* value);
KX_API void CustomDatum_SetE2(KxCustomDatum datum, const double* value);
KX_API void CustomDatum_GetDeltaX(KxCustomDatum datum, double* metres);
KX_API void CustomDatum_SetDeltaX(KxCustomDatum datum, const double* metres);
KX_API void CustomDatum_GetDeltaY(KxCustomDatum datum, double* metres);
KX_API void CustomDatum_SetDeltaY(KxCustomDatum datum, const double* metres);
KX_API void CustomDatum_GetDeltaZ(KxCustomDatum datum, double* metres);
KX_API void CustomDatum_SetDeltaZ(KxCustomDatum datum, const double* metres);
/* rotations in seconds of arc */
KX_API void CustomDatum_GetRotX(KxCustomDatum datum, double* seconds);
KX_API void CustomDatum_SetRotX(KxCustomDatum datum, const double* seconds);
KX_API void CustomDatum_GetRotY(KxCustomDatum datum, double* seconds);
KX_API void CustomDatum_SetRotY(KxCustomDatum datum, const double* seconds);
KX_API void CustomDatum_GetRotZ(KxCustomDatum datum, double* seconds);
KX_API void CustomDatum_SetRotZ(KxCustomDatum datum, const double* seconds);
/* the difference of the scale factor from 1 */
KX_API void CustomDatum_GetScaleFactor(KxCustomDatum datum, double* value);
KX_API void CustomDatum_SetScaleFactor(KxCustomDatum datum, const double* value);

/* ---- CustomGrid: a projection with its parameters, on a datum ----------------------- */
KX_API KxCustomGrid CustomGrid_New(void);
KX_API void CustomGrid_Delete(KxCustomGrid grid);
KX_API KxError CustomGrid_GetErrHandle(KxCustomGrid grid);
KX_API void CustomGrid_GetFalseEasting(KxCustomGrid grid, double* metres);
KX_API void CustomGrid_SetFalseEasting(KxCustomGrid grid, const double* metres);
KX_API void CustomGrid_GetFalseNorthing(KxCustomGrid grid, double* metres);
KX_API void CustomGrid_SetFalseNorthing(KxCustomGrid grid, const double* metres);
KX_API void CustomGrid_GetScaleFactor(KxCustomGrid grid, double* value);
KX_API void CustomGrid_SetScaleFactor(KxCustomGrid grid, const double* value);
/* angles in degrees */
KX_API void CustomGrid_GetLongitudeOfOrigin(KxCustomGrid grid, double* degrees);
KX_API void CustomGrid_SetLongitudeOfOrigin(KxCustomGrid grid, const double* degrees);
KX_API void CustomGrid_GetLatitudeOfOrigin(KxCustomGrid grid, double* degrees);
KX_API void CustomGrid_SetLatitudeOfOrigin(KxCustomGrid grid, const double* degrees);
KX_API void CustomGrid_GetLatitudeSP1(KxCustomGrid grid, double* degrees);
KX_API void CustomGrid_SetLatitudeSP1(KxCustomGrid grid, const double* degrees);
KX_API void CustomGrid_GetLatitudeSP2(KxCustomGrid grid, double* degrees);
KX_API void CustomGrid_SetLatitudeSP2(KxCustomGrid grid, const double* degrees);
KX_API int CustomGrid_GetAlgorithm(KxCustomGrid grid);
KX_API void CustomGrid_SetAlgorithm(KxCustomGrid grid, int algorithm);
KX_API short CustomGrid_GetDatum(KxCustomGrid grid);
KX_API void CustomGrid_SetDatum(KxCustomGrid grid, short datum);
KX_API KxCustomDatum CustomGrid_GetCustomDatum(KxCustomGrid grid);
KX_API void CustomGrid_SetCustomDatum(KxCustomGrid grid, KxCustomDatum datum);

/* ---- NmeaSentence: one NMEA 0183 sentence as text and as fields -------------------- */
KX_API KxNmeaSentence NmeaSentence_New(void);
KX_API void NmeaSentence_Delete(KxNmeaSentence sentence);
KX_API KxError NmeaSentence_GetErrHandle(KxNmeaSentence sentence);
/* the whole text, "$" to the checksum; shorter than 6 characters empties the sentence */
KX_API void NmeaSentence_SetSentence(KxNmeaSentence sentence, const WCHAR* text);
/* rebuilt with a fresh checksum after a field or the command changed */
KX_API void NmeaSentence_GetSentence(KxNmeaSentence sentence, BSTR* text);
KX_API short NmeaSentence_GetFieldCount(KxNmeaSentence sentence);
/* field index from 1; an empty text beyond the field count */
KX_API void NmeaSentence_Fields(KxNmeaSentence sentence, short index, BSTR* text);
KX_API void NmeaSentence_SetField(KxNmeaSentence sentence, short index, const WCHAR* text);
KX_API void NmeaSentence_GetCommand(KxNmeaSentence sentence, BSTR* text);
KX_API void NmeaSentence_GetFullCommand(KxNmeaSentence sentence, BSTR* text);
/* both take a three-letter ("GGA") or a five-letter ("GPGGA") command */
KX_API void NmeaSentence_SetCommand(KxNmeaSentence sentence, const WCHAR* command);
KX_API void NmeaSentence_SetFullCommand(KxNmeaSentence sentence, const WCHAR* command);

/* ---- GPS snapshots: made by the parser, never changed after; no Family_New ---------- */
KX_API void GpsFix_Delete(KxGpsFix fix);
KX_API KxError GpsFix_GetErrHandle(KxGpsFix fix);
/* 0 no fix, 2 two-dimensional, 3 three-dimensional */
KX_API int GpsFix_GetFixType(KxGpsFix fix);
/* a new copy of the fix's position, the caller's to change and delete; 0 if none */
KX_API KxPosition GpsFix_GetPosition(KxGpsFix fix);
KX_API short GpsFix_GetYear(KxGpsFix fix);
KX_API short GpsFix_GetMonth(KxGpsFix fix);
KX_API short GpsFix_GetDay(KxGpsFix fix);
KX_API short GpsFix_GetHour(KxGpsFix fix);
KX_API short GpsFix_GetMinute(KxGpsFix fix);
KX_API short GpsFix_GetSecond(KxGpsFix fix);
KX_API short GpsFix_GetMilliSecond(KxGpsFix fix);

KX_API void Movement_Delete(KxMovement movement);
KX_API KxError Movement_GetErrHandle(KxMovement movement);
/* unit 0 knots, 1 metres per second, 2 kilometres per hour, 3 miles per hour */
KX_API void Movement_GetSpeed(KxMovement movement, short unit, double* value);
KX_API void Movement_GetHeading(KxMovement movement, double* degrees);
KX_API void Movement_GetMagneticVariation(KxMovement movement, double* degrees);

KX_API void Quality_Delete(KxQuality quality);
KX_API KxError Quality_GetErrHandle(KxQuality quality);
KX_API void Quality_GetHDOP(KxQuality quality, double* value);
KX_API void Quality_GetVDOP(KxQuality quality, double* value);
KX_API void Quality_GetPDOP(KxQuality quality, double* value);

KX_API void Satellite_Delete(KxSatellite satellite);
KX_API KxError Satellite_GetErrHandle(KxSatellite satellite);
KX_API short Satellite_GetID(KxSatellite satellite);
KX_API short Satellite_GetElevation(KxSatellite satellite);
KX_API short Satellite_GetAzimuth(KxSatellite satellite);
KX_API short Satellite_GetSNR(KxSatellite satellite);
KX_API KxBool Satellite_GetUsedForFix(KxSatellite satellite);

KX_API void Satellites_Delete(KxSatellites satellites);
KX_API KxError Satellites_GetErrHandle(KxSatellites satellites);
KX_API short Satellites_GetCount(KxSatellites satellites);
/* position from 1; a new reference for the caller */
KX_API KxSatellite Satellites_Item(KxSatellites satellites, short position);

KX_API void ComStatus_Delete(KxComStatus status);
KX_API KxError ComStatus_GetErrHandle(KxComStatus status);
KX_API KxBool ComStatus_GetValidNmea(KxComStatus status);
KX_API KxBool ComStatus_GetValidFix(KxComStatus status);
/* -1 when the data comes over the multiplexer link */
KX_API short ComStatus_GetComPort(KxComStatus status);
KX_API int ComStatus_GetBaudRate(KxComStatus status);

/* ---- NmeaParser: the GPS engine ----------------------------------------------------- */
/* Event types: the wParam of message 1125 (WM_USER + 101) whose lParam is the object,
 * and the type out of NmeaParser_GetEventData. The receiver gives the object up with its
 * family's Delete. */
#define KX_NMEA_MESSAGE 1125
#define KX_EVENT_SENTENCE 1
#define KX_EVENT_FIX 5
#define KX_EVENT_SATELLITES 6
#define KX_EVENT_MOVEMENT 7
#define KX_EVENT_QUALITY 8
#define KX_EVENT_STATUS 9

KX_API KxNmeaParser NmeaParser_New(void);
KX_API void NmeaParser_Delete(KxNmeaParser parser);
KX_API KxError NmeaParser_GetErrHandle(KxNmeaParser parser);
/* final: the engine stops and doesn't start again */
KX_API void NmeaParser_Close(KxNmeaParser parser);
/* 0 find automatically, -1 the multiplexer only, above 0 that COM port */
KX_API void NmeaParser_SetComPort(KxNmeaParser parser, short port);
/* 0 find automatically; 4800 by default */
KX_API void NmeaParser_SetBaudRate(KxNmeaParser parser, int baudRate);
KX_API void NmeaParser_SetGpsDatum(KxNmeaParser parser, short datum);
KX_API void NmeaParser_SetNoEvents(KxNmeaParser parser, KxBool noEvents);
KX_API void NmeaParser_SetChecksumMandatory(KxNmeaParser parser, KxBool mandatory);
/* milliseconds of GPS time between events of type 5 to 8; below 0 turns the type off */
KX_API void NmeaParser_EventInterval(KxNmeaParser parser, int interval, int type);
/* a window for the events; null turns the queue of NmeaParser_GetEventData on instead */
KX_API void NmeaParser_SetCallbackHWND(KxNmeaParser parser, HWND window);
KX_API void NmeaParser_SetPortEnabled(KxNmeaParser parser, KxBool enabled);
/* blocks until an event comes or the parser closes (0); the object is the caller's */
KX_API void* NmeaParser_GetEventData(KxNmeaParser parser, int* type);
/* with events off: the last object at once (timeout below 1), or the next one to come */
KX_API KxGpsFix NmeaParser_GetGpsFix(KxNmeaParser parser, int timeout, short fixType);
KX_API KxSatellites NmeaParser_GetSatellites(KxNmeaParser parser, int timeout);
KX_API KxMovement NmeaParser_GetMovement(KxNmeaParser parser, int timeout);
KX_API KxQuality NmeaParser_GetQuality(KxNmeaParser parser, int timeout);
/* a new copy of the status, at any time */
KX_API KxComStatus NmeaParser_GetComStatus(KxNmeaParser parser);
KX_API void NmeaParser_WriteData(KxNmeaParser parser, const WCHAR* data, short length);
/* text as if from a port; complete sentences are handled at once, on this thread */
KX_API void NmeaParser_Parse(KxNmeaParser parser, const WCHAR* text);

/* ---- Shape: parts of nodes with X, Y, Z, M, walked through one cursor --------------- */
/* Values are read and written at the cursor (PartIndex, NodeIndex) through a working
 * copy that goes to storage when the cursor moves. Coordinates mean what the
 * DatumGridTemplate says: easting and northing of its grid, else longitude and latitude
 * in degrees. ModifiedCount goes up with every change. Each call holds the library's
 * lock; Shape_LockObject and Shape_UnlockObject (they nest) make a sequence atomic. */
KX_API KxShape Shape_New(void);
KX_API void Shape_Delete(KxShape shape);
KX_API KxError Shape_GetErrHandle(KxShape shape);
KX_API void Shape_LockObject(KxShape shape);
KX_API void Shape_UnlockObject(KxShape shape);

KX_API int Shape_GetPartIndex(KxShape shape);
/* -1 is the last part; each change of part lands on its first node */
KX_API void Shape_SetPartIndex(KxShape shape, int part);
KX_API int Shape_GetNodeIndex(KxShape shape);
/* -1 is the last node */
KX_API void Shape_SetNodeIndex(KxShape shape, int node);
KX_API int Shape_GetPartCount(KxShape shape);
/* nodes in the active part */
KX_API int Shape_GetNodeCount(KxShape shape);
KX_API int Shape_GetTotalNodeCount(KxShape shape);
KX_API int Shape_GetModifiedCount(KxShape shape);
KX_API int Shape_GetShapeID(KxShape shape);
KX_API void Shape_SetShapeID(KxShape shape, int id);
KX_API int Shape_GetNodeID(KxShape shape);
/* a new reference for the caller, or 0 */
KX_API KxPosition Shape_GetDatumGridTemplate(KxShape shape);
KX_API void Shape_SetDatumGridTemplate(KxShape shape, KxPosition position);
KX_API KxBool Shape_GetPixelShape(KxShape shape);
KX_API void Shape_SetPixelShape(KxShape shape, KxBool pixels);

KX_API void Shape_GetX(KxShape shape, double* value);
KX_API void Shape_SetX(KxShape shape, const double* value);
KX_API void Shape_GetY(KxShape shape, double* value);
KX_API void Shape_SetY(KxShape shape, const double* value);
KX_API void Shape_GetZ(KxShape shape, double* value);
KX_API void Shape_SetZ(KxShape shape, const double* value);
KX_API void Shape_GetM(KxShape shape, double* value);
KX_API void Shape_SetM(KxShape shape, const double* value);
KX_API void Shape_GetNode(KxShape shape, double* x, double* y, double* z, double* m);
KX_API void Shape_SetNode(KxShape shape, const double* x, const double* y, const double* z,
                          const double* m);
/* the position brought to the template (which it becomes if there is none) into X and
 * Y; Z and M become 0. The two are one operation. */
KX_API void Shape_SetPosition(KxShape shape, KxPosition position);
KX_API void Shape_SetNode2(KxShape shape, KxPosition position);
/* the shape's one position object, holding X and Y; a later call overwrites it */
KX_API KxPosition Shape_GetPosition(KxShape shape);
/* a node with the next NodeID at the index (-1 appends), holding the values of the node
 * that was active until others are set */
KX_API void Shape_NewNode(KxShape shape, int index);
KX_API void Shape_DeleteNode(KxShape shape);

/* -1 appends; a shape without nodes keeps its one empty part */
KX_API void Shape_NewPart(KxShape shape, int index);
KX_API void Shape_ClearPart(KxShape shape);
KX_API void Shape_DeletePart(KxShape shape);
/* also forgets the DatumGridTemplate */
KX_API void Shape_ClearShape(KxShape shape);
/* new shapes for the caller; Shape_Copy2 copies nodes first to last (-1: the last) of
 * the active part */
KX_API KxShape Shape_Copy(KxShape shape);
KX_API KxShape Shape_Copy2(KxShape shape, int first, int last);
KX_API void Shape_GetBoundingBox(KxShape shape, double* minX, double* maxX, double* minY,
                                 double* maxY, double* minZ, double* maxZ, double* minM,
                                 double* maxM);
/* fixed-size shapes: set FixedSize before the first use, then announce the part count
 * and each part's node count before filling it */
KX_API KxBool Shape_GetFixedSize(KxShape shape);
KX_API void Shape_SetFixedSize(KxShape shape, KxBool fixed);
KX_API void Shape_FixedPartCount(KxShape shape, int parts);
KX_API void Shape_FixedNodeCount(KxShape shape, int part, int nodes);

/* Geometry. Polygons follow the shape-file convention: outer rings clockwise, holes
 * counter-clockwise, first node equal to last. Comparisons are exact. The measures
 * store their result in *out and return out. */
/* signed, positive clockwise; in the shape's units squared, refused for a datum */
KX_API double* Shape_Area(KxShape shape, double* out);
KX_API double* Shape_PartArea(KxShape shape, double* out);
/* along the active part from node first to last (-1: the last), in metres through
 * Position_Distance: in the grid plane, or on the sphere for a datum */
KX_API double* Shape_Distance(KxShape shape, int first, int last, double* out);
/* strictly inside the bounds, by the crossings of a ray; parts combine even-odd */
KX_API KxBool Shape_IsInside(KxShape shape, const double* x, const double* y);
KX_API KxBool Shape_IsInside2(KxShape shape, KxPosition position);
KX_API KxBool Shape_IsIntersecting(KxShape shape, KxShape other);
KX_API KxBool Shape_IsCleanPolygon(KxShape shape);
/* the distance in the shape's units; the cursor stays on the node found, or on the
 * first node of the edge found */
KX_API double* Shape_FindClosestNode(KxShape shape, const double* x, const double* y,
                                     double* out);
KX_API double* Shape_FindClosestNode2(KxShape shape, KxPosition position, double* out);
KX_API double* Shape_FindClosestVector(KxShape shape, const double* x, const double* y,
                                       double* out);
KX_API double* Shape_FindClosestVector2(KxShape shape, KxPosition position, double* out);
/* reverses the nodes of the active part: a ring becomes a hole and back */
KX_API void Shape_InvertPart(KxShape shape);
/* rewrites every node into the target's datum or grid, which becomes the template */
KX_API void Shape_ConvertDatumGrid(KxShape shape, KxPosition target);

/* ---- ShapeFile: ESRI shape files, ".shp" with its ".shx", one Shape to a record ------ */
/* File types: 0 Null, 1 Point, 3 PolyLine, 5 Polygon, 8 MultiPoint; + 10 for the Z
 * forms (11, 13, 15, 18), + 20 for the M forms (21, 23, 25, 28). */
#define KX_SHAPEFILE_READ 1
#define KX_SHAPEFILE_CREATE 2
#define KX_SHAPEFILE_UPDATE 3

KX_API KxShapeFile ShapeFile_New(void);
KX_API void ShapeFile_Delete(KxShapeFile file);
KX_API KxError ShapeFile_GetErrHandle(KxShapeFile file);
/* the name with or without ".shp"; a missing or damaged ".shx" leaves the main file
 * usable. Both headers are right after every write: closing writes nothing. */
KX_API void ShapeFile_Open(KxShapeFile file, const WCHAR* name, int mode);
KX_API void ShapeFile_Close(KxShapeFile file);
/* the next record as a new Shape for the caller; 0 with error number 0 at the end */
KX_API KxShape ShapeFile_Read(KxShapeFile file);
/* a record of the file's type, numbered with the shape's ShapeID; a shape without
 * nodes becomes a null record */
KX_API void ShapeFile_Write(KxShapeFile file, KxShape shape);
/* with a ".shx": the record counted from 0; without one: the record of that number */
KX_API void ShapeFile_Seek(KxShapeFile file, int record);
KX_API void ShapeFile_GetBoundingBox(KxShapeFile file, double* minX, double* maxX,
                                     double* minY, double* maxY, double* minZ, double* maxZ,
                                     double* minM, double* maxM);
/* opening an existing file takes its type; a new file takes it from here */
KX_API int ShapeFile_GetShapeFileType(KxShapeFile file);
KX_API void ShapeFile_SetShapeFileType(KxShapeFile file, int type);
/* set (the default): shapes read are fixed-size, sized exactly; else dynamic */
KX_API KxBool ShapeFile_GetReadOnly(KxShapeFile file);
KX_API void ShapeFile_SetReadOnly(KxShapeFile file, KxBool readOnly);

#ifdef __cplusplus
}
#endif

#endif /* KESTRIXCE_H */
