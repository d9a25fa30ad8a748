#include "serving/http/Connections.h"

namespace Velora::Http {

namespace {

void Shut(socket_t socket) {
#ifdef _WIN32
  shutdown(socket, SD_BOTH);
#else
  shutdown(socket, SHUT_RDWR);
#endif
}

}  // namespace

Connections::Connection::Connection(Connections& all, socket_t socket) : all(all), socket(socket) {
  const std::lock_guard lock(all.mutex);
  all.open.insert(this);
}

Connections::Connection::~Connection() {
  const std::lock_guard lock(all.mutex);
  all.open.erase(this);
}

void Connections::Connection::AwaitsRequest() { Enter(State::AwaitsRequest); }
void Connections::Connection::AwaitsReader() { Enter(State::AwaitsReader); }
void Connections::Connection::Acts() { Enter(State::Acts); }

void Connections::Connection::Enter(State next) {
  const std::lock_guard lock(all.mutex);
  state = next;
  since = Clock::now();
}

void Connections::EndOne() {
  const std::lock_guard lock(mutex);
  const Connection* longest = nullptr;
  for (const Connection* const each : open) {
    const bool canGo = each->state == Connection::State::AwaitsRequest ||
                       (each->state == Connection::State::AwaitsReader && Clock::now() - each->since > stalled);
    if (canGo && (longest == nullptr || each->since < longest->since)) {
      longest = each;
    }
  }
  if (longest != nullptr) {
    Shut(longest->socket);
  }
}

void Connections::EndAll() {
  const std::lock_guard lock(mutex);
  for (const Connection* const each : open) {
    Shut(each->socket);
  }
}

}  // namespace Velora::Http
