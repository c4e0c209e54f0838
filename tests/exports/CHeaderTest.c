/* The public header compiled as C11, with a program that uses the library through it
 * alone: a Position set in radians, degrees and DMS, read back as numbers and texts, a
 * refused value read through the error handle. Exits non-zero at the first mismatch. */
#include <math.h>
#include <stdio.h>
#include <string.h>

#include "KestrixCE.h"

static int failures = 0;

static void expect(int condition, const char* what) {
  if (!condition) {
    fprintf(stderr, "FAILED: %s\n", what);
    ++failures;
  }
}

/* Compares a BSTR with ASCII text, and frees it unless told not to. */
static int text_is(BSTR text, const char* expected, int free_it) {
  unsigned int i, n = SysStringLen(text);
  int same = n == strlen(expected);
  for (i = 0; same && i < n; ++i) same = text[i] == (WCHAR)expected[i];
  if (free_it) SysFreeString(text);
  return same;
}

int main(void) {
  static const WCHAR south[] = {'S', 0}, west[] = {'W', 0};
  const double pi = 3.14159265358979323846;
  double value, d = 33, m = 52, s = 4.5, lonD = 151, lonM = 12, lonS = 30;
  short degrees, minutes;
  double seconds;
  BSTR text;
  KxPosition position = Position_New();
  KxError error = Position_GetErrHandle(position);
  expect(position != NULL && error != NULL, "Position_New gives a handle and an error handle");
  expect(Error_ErrNum(error) == 0, "a new object has no error");
  expect(text_is(Error_ErrDesc(error, &text), "", 0), "a new object has an empty error text");

  value = pi / 4;
  Position_SetLatitudeRads(position, &value);
  Position_GetLatitudeDecDeg(position, &value);
  expect(fabs(value - 45.0) < 1e-12, "radians in, degrees out");

  value = -122.5;
  Position_SetLongitudeDecDeg(position, &value);
  Position_GetLongitudeRads(position, &value);
  expect(fabs(value - -122.5 / 180 * pi) < 1e-15, "degrees in, radians out");

  Position_SetLatitudeDMS(position, &d, &m, &s, south);
  Position_SetLongitudeDMS(position, &lonD, &lonM, &lonS, west);
  Position_GetLatitudeDMS(position, &degrees, &minutes, &seconds, &text);
  expect(degrees == 33 && minutes == 52 && fabs(seconds - 4.5) < 1e-9, "DMS round trip");
  expect(text_is(text, "S", 1), "hemisphere S");
  Position_GetLatitudeString(position, &text, 0);
  expect(text_is(text, "33 52'4.50 S", 1), "display form of the latitude");
  Position_GetLongitudeString(position, &text, 1);
  expect(text_is(text, "15112.50001", 1), "NMEA form of the longitude");

  value = 2.0; /* radians: beyond the pole */
  Position_SetLatitudeRads(position, &value);
  expect(Error_ErrNum(error) == KX_ERR_INVALID_ARGUMENT, "a refused latitude is error 10003");
  expect(text_is(Error_ErrDesc(error, &text), "Invalid latitude. Must be between -PI/2 and PI/2", 0),
         "the text of a refused latitude");
  Position_GetLatitudeDecDeg(position, &value);
  expect(Error_ErrNum(error) == 0, "the next good call clears the error");
  expect(fabs(value - -(33 + 52 / 60.0 + 4.5 / 3600)) < 1e-12, "the refused value changed nothing");

  Position_Delete(position);
  if (failures == 0) printf("C header test: all passed\n");
  return failures == 0 ? 0 : 1;
}
