#pragma once

#include "serving/http/Access.h"
#include "serving/http/Exchange.h"
#include "serving/http/HeadReader.h"
#include "serving/http/Limits.h"

#include <httplib.h>

namespace Velora::Http {

/// Answers requests. It reads them itself, because the library has no limits for that; the library writes the answers.
class Responder : public httplib::Server {
 public:
  Responder(Access access, Http::Handlers handlers, const Limits& limits);

  /// Answers the next request of a client. @return whether the client can send another one.
  bool AnswerNext(HeadReader& heads, Client& client);

 protected:
  /// Lets no answer wait for others any longer.
  void EndWaiting();

 private:
  void Decide(Exchange& exchange);
  void TakePlace(Exchange& exchange);
  bool Write(Exchange& exchange);

  const Access access;
  const Limits::Time turn;
  const Http::Handlers handlers;
  Places heavy, live;
};

}  // namespace Velora::Http
