// A counted object with a tag: a sentence (1) or a status (2) on its way to dispatch, or
// an event of that type number through the event queue.
#pragma once

#include <cstdint>

#include "frame/BaseObject.h"

namespace kx {

class EventItem : public BaseObject {
 public:
  // Shares the payload.
  EventItem(BaseObject* payload, int32_t tag) : m_payload(payload), m_tag(tag) {
    if (m_payload) m_payload->AddRef();
  }
  ~EventItem() override { ReleaseObject(m_payload); }

  // With a reference for the caller.
  BaseObject* GetPayload() const {
    if (m_payload) m_payload->AddRef();
    return m_payload;
  }
  int32_t GetTag() const { return m_tag; }

 private:
  BaseObject* m_payload;
  int32_t m_tag;
};

}  // namespace kx
