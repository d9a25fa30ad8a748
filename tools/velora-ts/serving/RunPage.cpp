#include "serving/Document.h"
#include "serving/Route.h"

namespace Velora::Ts {

namespace {

// Without data, which the page asks for.
Http::Answer RunPage(const Served&, Http::Question&) { return DocumentOf(Page::LiveRunFrame(), "null"); }

}  // namespace

extern const Route routeRunPage = {"/run", &RunPage};

}  // namespace Velora::Ts
