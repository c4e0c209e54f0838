#include "frame/Value.h"

namespace kx {

namespace {
template <class T>
T* Shared(T* object) {
  if (object) object->AddRef();
  return object;
}
}  // namespace

Value::Value(String* text) { SetString(text); }

Value::Value(const char* text) {
  m_string = new String(text);
  m_type = kText;
}

Value::Value(int32_t integer) { SetInteger(integer); }

Value::Value(ByteBuffer* binary) { SetBinary(binary); }

Value::~Value() { Close(); }

void Value::Close() {
  ReleaseObject(m_string);
  ReleaseObject(m_binary);
  m_type = kEmpty;
}

String* Value::GetString() const { return Shared(m_string); }

ByteBuffer* Value::GetBinary() const { return Shared(m_binary); }

void Value::SetString(String* text) {
  Close();
  m_string = Shared(text);
  m_type = kText;
}

void Value::SetInteger(int32_t integer) {
  Close();
  m_integer = integer;
  m_type = kInteger;
}

void Value::SetBinary(ByteBuffer* binary) {
  Close();
  m_binary = Shared(binary);
  m_type = kBinary;
}

}  // namespace kx
