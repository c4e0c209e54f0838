// "VTG": course over ground, true and magnetic, and speed in knots and km/h.
#pragma once

#include "gps/DecodedSentence.h"

namespace kx {

class SentenceVTG : public DecodedSentence {
 public:
  SentenceVTG() = default;
  explicit SentenceVTG(NmeaSentence* sentence) { Parse(sentence); }
  ~SentenceVTG() override;

  //   $GPVTG,054.7,T,034.4,M,005.5,N,010.2,K*48
  //          true    magnetic knots   km/h
  void Parse(NmeaSentence* sentence);
  void Close() override;

  bool GetValid() const { return m_valid; }
  void SetValid(bool valid) { Change(m_valid, valid); }
  double GetSpeed(int32_t unit) const;
  void SetSpeed(double speed, int32_t unit);
  double GetCourse() const { return m_course; }
  void SetCourse(double degrees) { Change(m_course, degrees); }
  double GetMagneticVariation() const { return m_magneticVariation; }
  void SetMagneticVariation(double degrees) { Change(m_magneticVariation, degrees); }
  void SetVelocity(double x, double y);

 private:
  void Compose(NmeaSentence& sentence) override;

  double m_speed = 0;  // knots
  double m_course = 0;
  double m_magneticVariation = 0;
  bool m_valid = false;
};

}  // namespace kx
