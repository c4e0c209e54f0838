/* A first look at the library from C: a Position set in degrees, minutes and seconds,
 * read back as numbers and texts, and a refused value read through the error handle. */
#include <stdio.h>

#include "KestrixCE.h"

/* Prints a BSTR of plain ASCII. */
static void print_text(const char* label, BSTR text) {
  unsigned int i, n = SysStringLen(text);
  printf("%-26s \"", label);
  for (i = 0; i < n; ++i) putchar(text[i] < 128 ? (int)text[i] : '?');
  printf("\"\n");
}

static void print_error(KxPosition position) {
  KxError error = Position_GetErrHandle(position);
  BSTR description;
  Error_ErrDesc(error, &description); /* the library's own text: not freed here */
  printf("%-26s %d\n", "Error_ErrNum", Error_ErrNum(error));
  print_text("Error_ErrDesc", description);
}

int main(void) {
  static const WCHAR north[] = {'N', 0}, east[] = {'E', 0};
  const double latD = 59, latM = 18, latS = 7.25;
  const double lonD = 18, lonM = 4, lonS = 15.5;
  double value;
  short degrees, minutes;
  double seconds;
  BSTR text;
  KxPosition position = Position_New();
  if (!position) return 1;

  Position_SetLatitudeDMS(position, &latD, &latM, &latS, north);
  Position_SetLongitudeDMS(position, &lonD, &lonM, &lonS, east);
  printf("Stockholm, set as 59 18'7.25 N, 18 4'15.5 E (WGS 84)\n");

  Position_GetLatitudeDecDeg(position, &value);
  printf("%-26s %.9f\n", "latitude, degrees", value);
  Position_GetLongitudeDecDeg(position, &value);
  printf("%-26s %.9f\n", "longitude, degrees", value);
  Position_GetLatitudeRads(position, &value);
  printf("%-26s %.12f\n", "latitude, radians", value);

  Position_GetLatitudeDMS(position, &degrees, &minutes, &seconds, &text);
  printf("%-26s %d %d %.3f ", "latitude, DMS", degrees, minutes, seconds);
  print_text("", text);
  SysFreeString(text);

  Position_GetLatitudeString(position, &text, 0);
  print_text("latitude text", text);
  SysFreeString(text);
  Position_GetLongitudeString(position, &text, 0);
  print_text("longitude text", text);
  SysFreeString(text);
  Position_GetLatitudeString(position, &text, 1);
  print_text("latitude, NMEA form", text);
  SysFreeString(text);
  Position_GetLongitudeString(position, &text, 1);
  print_text("longitude, NMEA form", text);
  SysFreeString(text);

  printf("\nSetting latitude 91 degrees:\n");
  value = 91.0;
  Position_SetLatitudeDecDeg(position, &value);
  print_error(position);
  Position_GetLatitudeDecDeg(position, &value);
  printf("%-26s %.9f (unchanged)\n", "latitude, degrees", value);
  print_error(position);

  Position_Delete(position);
  return 0;
}
