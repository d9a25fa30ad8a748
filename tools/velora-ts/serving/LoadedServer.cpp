#include "serving/ServerLibrary.h"
#include "store/Error.h"

#include <VeloraSystem/LoadedLibrary.h>
#include <VeloraSystem/System.h>

#include <stdexcept>
#include <utility>

namespace Velora::Http {

namespace {

// The library is beside this program, of the same build.
ListenInLibrary* LoadListen() {
  try {
    const System::LoadedLibrary library(System::ProgramFolder() + "/" SERVER_LIBRARY);
    return library.Find<ListenInLibrary>(listenInLibrary);
  } catch (const std::runtime_error& error) {
    throw Store::Error(std::string("serve needs a library that is installed with velora-ts: ") + error.what());
  }
}

}  // namespace

std::unique_ptr<Server> Listen(const Address& address, const std::vector<std::string>& names, Handlers handlers,
                               const Limits& limits, Complaint complain) {
  return std::unique_ptr<Server>(LoadListen()(address, names, std::move(handlers), limits, std::move(complain)));
}

}  // namespace Velora::Http
