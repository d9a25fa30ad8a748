#pragma once

#include "serving/http/Server.h"

namespace Velora::Http {

/// What the library of the server has: Listen(), whose result belongs to the caller.
constexpr char listenInLibrary[] = "VeloraListen";
using ListenInLibrary = Server*(const Address&, const std::vector<std::string>&, Handlers, const Limits&, Complaint);

}  // namespace Velora::Http
