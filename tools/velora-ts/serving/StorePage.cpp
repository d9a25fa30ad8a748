#include "serving/Document.h"
#include "serving/Route.h"

namespace Velora::Ts {

namespace {

// The address says to the page what to show.
Http::Answer StorePage(const Served&, Http::Question&) {
  return DocumentOf(Page::StoreFrame(), R"({"version":")" VELORA_VERSION R"("})");
}

}  // namespace

extern const Route routeStorePage = {"/", &StorePage};
extern const Route routeRunsView = {"/runs", &StorePage};
extern const Route routeCompareView = {"/compare", &StorePage};
extern const Route routeTrendsView = {"/trends", &StorePage};

}  // namespace Velora::Ts
