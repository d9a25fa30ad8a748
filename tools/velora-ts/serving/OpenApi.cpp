#include "serving/OpenApiDocument.h"
#include "serving/Route.h"

namespace Velora::Ts {

namespace {

Http::Answer AnswerOpenApi(const Served& /*served*/, Http::Question& question) {
  question.ExpectNoOthers();
  Http::Answer answer;
  answer.body.assign(openApiDocument.begin(), openApiDocument.end());
  return answer;
}

}  // namespace

extern const Route routeOpenApi = {"/api/openapi.json", &AnswerOpenApi};

}  // namespace Velora::Ts
