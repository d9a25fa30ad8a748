#include "serving/ServerLibrary.h"

#include <utility>

extern "C" [[gnu::visibility("default")]] Velora::Http::ListenInLibrary VeloraListen;

Velora::Http::Server* VeloraListen(const Velora::Http::Address& address, const std::vector<std::string>& names,
                                   Velora::Http::Handlers handlers, const Velora::Http::Limits& limits,
                                   Velora::Http::Complaint complain) {
  return Listen(address, names, std::move(handlers), limits, std::move(complain)).release();
}
