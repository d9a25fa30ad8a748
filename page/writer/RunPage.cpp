#include "page/writer/RunPage.h"

#include "page/writer/Against.h"
#include "page/writer/Frame.h"
#include "store/reading/Reader.h"
#include "store/reading/Runs.h"

#include <utility>

namespace Velora::Page {

RunPage::RunPage(const Store::Reader& store, const Store::Run& run, Beside beside)
    : store(store), run(run), beside(std::move(beside)), kept(store, run.root) {}

long long RunPage::Events() const {
  return kept.Recorded() + (beside.against != nullptr ? beside.against->Kept().Recorded() : 0);
}

void RunPage::Write(const Frame& frame, const std::function<void(std::string_view)>& write,
                    const std::function<void()>& step) const {
  WriteFramed(frame, write, [&](const Page::Write& json) { WriteData(json, step); });
}

void RunPage::WriteData(const std::function<void(std::string_view)>& write, const std::function<void()>& step) const {
  WriteRunData(store, run, kept, beside, write, step);
}

}  // namespace Velora::Page
