#pragma once

#include "serving/http/Client.h"
#include "serving/http/Handler.h"
#include "serving/http/Head.h"
#include "serving/http/Places.h"

#include <httplib.h>

#include <optional>

namespace Velora::Http {

/// A request and its answer, on one thread.
struct Exchange {
  Client& client;
  Head head = {};
  Weight weight = Weight::Light;
  std::optional<Places::Taken> place = std::nullopt;
  Answer answer = {};

  /// Replaces the answer if the client has it already.
  void LeaveOutWhatIsKnown();
  /// Hands the answer to the library. The exchange has to last until that has written it.
  void Give(httplib::Response& response) const;

 private:
  bool WritePieces(httplib::DataSink& sink) const;
  void ExpectClient() const;
};

/// The answer to a request that gets an error, as JSON.
Answer ErrorAnswer(int status, std::string_view why);

}  // namespace Velora::Http
