#include "platform/posix/StreamObject.h"

#include <mutex>
#include <unordered_set>

namespace platform {

namespace {

// The streams alive in the process. Never destroyed: handles may be closed after main.
struct LiveStreams {
  std::mutex mutex;
  std::unordered_set<const KernelObject*> objects;
};

LiveStreams& Live() {
  static auto* live = new LiveStreams;
  return *live;
}

}  // namespace

StreamObject::StreamObject() : KernelObject(Kind::kStream, true) {
  std::lock_guard<std::mutex> lock(Live().mutex);
  Live().objects.insert(this);
}

StreamObject::~StreamObject() {
  std::lock_guard<std::mutex> lock(Live().mutex);
  Live().objects.erase(this);
}

StreamObject* StreamObject::Acquire(HANDLE handle) {
  {
    std::lock_guard<std::mutex> lock(Live().mutex);
    auto* object = static_cast<const KernelObject*>(handle);
    if (Live().objects.count(object)) {
      auto* stream = static_cast<StreamObject*>(const_cast<KernelObject*>(object));
      if (stream->TryAddRef()) return stream;
    }
  }
  SetLastError(ERROR_INVALID_HANDLE);
  return nullptr;
}

}  // namespace platform
