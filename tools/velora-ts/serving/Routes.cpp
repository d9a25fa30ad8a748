#include "serving/Routes.h"

#include "RegisteredRoutes.h"
#include "asking/UsageError.h"
#include "serving/Served.h"
#include "store/database/DatabaseError.h"
#include "store/reading/WrittenMeanwhile.h"

namespace Velora::Ts {

namespace {

/// Asks once more where the first answer can be of two states: then the file is in use, and has one.
Http::Answer AnswerOfOneState(const Route& route, const Served& served, Http::Question& question) {
  try {
    return route.answer(served, question);
  } catch (const Store::WrittenMeanwhile&) {
    return route.answer(served, question);
  }
}

Http::Answer AnswerOf(const Route& route, const Served& served, Http::Question& question) {
  try {
    return AnswerOfOneState(route, served, question);
  } catch (const UsageError& error) {
    throw Http::Refusal(400, error.what());
  } catch (const Http::Refusal&) {
    throw;
  } catch (const Store::NotOffered& reason) {
    throw Http::Refusal(404, reason.what());
  } catch (const Store::Error& error) {  // the store, or its server, cannot be read now
    throw Http::Refusal(503, error.what());
  }
}

}  // namespace

Http::Handlers HandlersOf(const Served& served) {
  Http::Handlers handlers;
  for (const Route* const route : registeredRoutes) {
    handlers[route->path] = {route->weight,
                             [route, &served](Http::Question& question) { return AnswerOf(*route, served, question); }};
  }
  return handlers;
}

}  // namespace Velora::Ts
