#include "ambrelio/win32/thread_state.h"

#include <algorithm>
#include <vector>

#include "ambrelio/platform/thread_value.h"
#include "ambrelio/win32/server_object.h"

namespace ambrelio::win32 {

ThreadState& ThreadState::Current() { return ThreadValue<ThreadState>(); }

ThreadState::ThreadState() : session_(Session::Current()), pump_(session_.Events()) {}

ThreadState::~ThreadState() {
  while (!objects_.empty()) {
    ServerObject& object = **objects_.begin();
    objects_.erase(objects_.begin());
    object.Disconnect();
  }
}

void ThreadState::Add(ServerObject& object) {
  pump_.Open();
  objects_.insert(&object);
}

void ThreadState::Remove(ServerObject& object) {
  objects_.erase(&object);
  if (!objects_.empty()) return;
  pump_.Close();
  try {
    session_.ReleaseEngine();
  } catch (...) {
    // The client let go of its last object: there is nobody left to tell.
  }
}

Variant::ObjectPtr ThreadState::Find(const IUnknown* identity) const {
  const auto found = std::find_if(
      objects_.begin(), objects_.end(),
      [identity](const ServerObject* object) { return object->Identity() == identity; });
  return found == objects_.end() ? nullptr : (*found)->object();
}

void ThreadState::DestroyAbandoned() {
  if (!abandoned_.exchange(false)) return;
  const std::vector<ServerObject*> objects(objects_.begin(), objects_.end());
  for (ServerObject* const object : objects) object->DestroyIfAbandoned();
}

}  // namespace ambrelio::win32
