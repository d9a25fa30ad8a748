// In place of what `page/embed.js` generates, in a build without pages.

#include "page/writer/Frame.h"

#include "store/database/DatabaseError.h"

namespace Velora::Page {

namespace {

[[noreturn]] void Refuse() {
  throw Store::NotOffered(
      "this velora-ts was built without pages, for which npm was missing, reached nothing or was not wanted; to have "
      "them, build it with npm and -D VELORA_PAGE=ON (docs/report.md)");
}

}  // namespace

Frame RunFrame() { Refuse(); }
Frame LiveRunFrame() { Refuse(); }
Frame StatisticsFrame() { Refuse(); }
Frame StoreFrame() { Refuse(); }

}  // namespace Velora::Page
