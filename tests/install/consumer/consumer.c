#include <KestrixCE.h>

int main(void) {
  double lat = 45.0, back = 0.0;
  KxPosition position = Position_New();
  Position_SetLatitudeDecDeg(position, &lat);
  Position_GetLatitudeDecDeg(position, &back);
  Position_Delete(position);
  return back == lat ? 0 : 1;
}
