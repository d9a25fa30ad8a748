#pragma once

#include "serving/http/Handler.h"

namespace Velora::Ts {

struct Served;

/// What answers the GET requests of one path. serving/NAME.cpp defines one as routeNAME, and CMakeLists.txt lists it.
struct Route {
  const char* path;  ///< Such as "/api/runs".
  /// Called on the thread of the request, of several at once.
  /// @throws Refusal, or UsageError, which becomes status 400; any other error becomes status 500 or 503.
  Http::Answer (*answer)(const Served& served, Http::Question& question);
  Http::Weight weight = Http::Weight::Light;
};

}  // namespace Velora::Ts
