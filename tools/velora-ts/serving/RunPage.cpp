#include "page/writer/Frame.h"
#include "serving/Route.h"

namespace Velora::Ts {

namespace {

// Without data, which the page asks for.
Http::Answer RunPage(const Served&, Http::Question&) {
  const Page::Frame frame = Page::RunFrame();
  Http::Answer answer;
  answer.type = "text/html";
  answer.write = [frame](const Http::Send& send) {
    Page::WriteFramed(frame, send, [](const Page::Write& write) { write("null"); });
  };
  return answer;
}

}  // namespace

extern const Route routeRunPage = {"/run", &RunPage};

}  // namespace Velora::Ts
