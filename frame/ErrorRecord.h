// The record of the last failure of one object. Its address is the error handle.
#pragma once

#include <cstdint>

namespace kx {

class ErrorRecord {
 public:
  ErrorRecord() = default;
  ~ErrorRecord();
  ErrorRecord(const ErrorRecord&) = delete;
  ErrorRecord& operator=(const ErrorRecord&) = delete;

  // Number 0 stores no text; any other number keeps a private copy (null as "").
  void SetError(int32_t number, const char* text);
  void ClearError();
  // Takes over another record's failure; a null record is itself a failure (10005).
  // Returns the number cut to 16 bits.
  int16_t m_copy_err(const ErrorRecord* other);

  int32_t GetNumber() const { return m_number; }
  const char* GetText() const { return m_text; }
  bool Failed() const { return m_number != 0; }

 private:
  int32_t m_number = 0;
  char* m_text = nullptr;
};

}  // namespace kx
