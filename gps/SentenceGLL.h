// "GLL": position, time and status.
#pragma once

#include "gps/DecodedSentence.h"

namespace kx {

class SentenceGLL : public DecodedSentence {
 public:
  SentenceGLL() = default;
  SentenceGLL(NmeaSentence* sentence, int16_t datum) { Parse(sentence, datum); }
  ~SentenceGLL() override;

  //   $GPGLL,4916.45,N,12311.12,W,225444,A*31
  //          latitude  longitude  time   status (the old form ends after the time)
  void Parse(NmeaSentence* sentence, int16_t datum);
  void Close() override;

  bool GetValid() const { return m_valid; }
  void SetValid(bool valid) { Change(m_valid, valid); }
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
  Position* m_position = nullptr;
  DateTime* m_time = nullptr;
};

}  // namespace kx
