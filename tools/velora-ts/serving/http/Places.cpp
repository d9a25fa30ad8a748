#include "serving/http/Places.h"

#include "serving/http/Answer.h"

namespace Velora::Http {

Places::Taken::Taken(Places& places, std::chrono::milliseconds longest) : places(places) {
  std::unique_lock lock(places.mutex);
  const auto isFree = [&places] { return places.taken < places.mostTaken; };
  if (!isFree() && places.waiting < places.mostWaiting) {
    ++places.waiting;
    places.changed.wait_for(lock, longest, [&] { return isFree() || places.ended; });
    --places.waiting;
  }
  if (!isFree() || places.ended) {
    throw Refusal(503, "the server is busy with answers of this kind; try again later");
  }
  ++places.taken;
}

Places::Taken::~Taken() {
  const std::lock_guard lock(places.mutex);
  --places.taken;
  places.changed.notify_one();
}

void Places::End() {
  const std::lock_guard lock(mutex);
  ended = true;
  changed.notify_all();
}

}  // namespace Velora::Http
