// "GGA": time, position with altitudes, fix quality, satellites in use and HDOP.
#pragma once

#include "gps/DecodedSentence.h"

namespace kx {

class SentenceGGA : public DecodedSentence {
 public:
  SentenceGGA() = default;
  SentenceGGA(NmeaSentence* sentence, int16_t datum) { Parse(sentence, datum); }
  ~SentenceGGA() override;

  //   $GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47
  //          time   latitude   longitude  q sat hdop alt     sep
  void Parse(NmeaSentence* sentence, int16_t datum);
  void Close() override;

  bool GetValid() const { return m_valid; }
  void SetValid(bool valid) { Change(m_valid, valid); }
  int16_t GetSatellites() const { return m_satellites; }
  void SetSatellites(int16_t count) { Change(m_satellites, count); }
  double GetHDOP() const { return m_hdop; }
  void SetHDOP(double hdop) { Change(m_hdop, hdop); }
  Position* GetPosition() const { return Share(m_position); }
  Position* TakePosition() { return Take(m_position); }
  Position* GetPositionCopy() const { return CopyOf(m_position); }
  void SetPosition(Position* position);  // keeps a copy
  DateTime* GetTime() const { return Share(m_time); }
  DateTime* TakeTime() { return Take(m_time); }
  void SetTime(DateTime* time) { Replace(m_time, time); }

 private:
  void Compose(NmeaSentence& sentence) override;

  bool m_valid = false;
  int16_t m_satellites = 0;
  double m_hdop = 0;
  Position* m_position = nullptr;
  DateTime* m_time = nullptr;
};

}  // namespace kx
