// "RMC": time and date, status, position, speed, course and magnetic variation.
#pragma once

#include "gps/DecodedSentence.h"

namespace kx {

class SentenceRMC : public DecodedSentence {
 public:
  SentenceRMC() = default;
  SentenceRMC(NmeaSentence* sentence, int16_t datum) { Parse(sentence, datum); }
  // Status, speed, course and variation only: what a movement needs, without the
  // position and the time.
  struct MovementOnly {};
  SentenceRMC(NmeaSentence* sentence, MovementOnly) {
    if (Adopt(sentence, NmeaSentence::kRMC)) ParseMovement();
  }
  ~SentenceRMC() override;

  //   $GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*6A
  //          time   s latitude   longitude   knots course date  variation
  void Parse(NmeaSentence* sentence, int16_t datum);
  void Close() override;

  bool GetValid() const { return m_valid; }
  void SetValid(bool valid) { Change(m_valid, valid); }
  double GetSpeed(int32_t unit) const;
  void SetSpeed(double speed, int32_t unit);
  double GetCourse() const { return m_course; }
  void SetCourse(double degrees) { Change(m_course, degrees); }
  double GetMagneticVariation() const { return m_magneticVariation; }
  void SetMagneticVariation(double degrees) { Change(m_magneticVariation, degrees); }
  // Speed and course from east and north components in metres per second.
  void SetVelocity(double x, double y);
  Position* GetPosition() const { return Share(m_position); }
  Position* TakePosition() { return Take(m_position); }
  Position* GetPositionCopy() const { return CopyOf(m_position); }
  void SetPosition(Position* position);  // keeps a copy
  DateTime* GetDateTime() const { return Share(m_dateTime); }
  DateTime* TakeDateTime() { return Take(m_dateTime); }
  void SetDateTime(DateTime* dateTime) { Replace(m_dateTime, dateTime); }

 private:
  void Compose(NmeaSentence& sentence) override;
  void ParseMovement();

  double m_speed = 0;  // knots
  bool m_valid = false;
  double m_course = 0;
  double m_magneticVariation = 0;
  Position* m_position = nullptr;
  DateTime* m_dateTime = nullptr;
};

}  // namespace kx
