#include "page/writer/RunPage.h"

#include "page/writer/Against.h"
#include "page/writer/Frame.h"
#include "store/reading/Reader.h"
#include "store/reading/Runs.h"

#include <utility>

namespace Velora::Page {

namespace {

// In a script element that contains data, a "<" could begin the end tag or a comment.
std::string WithoutTags(std::string_view json) {
  std::string text;
  for (const char character : json) {
    if (character == '<') {
      text += "\\u003c";
    } else {
      text += character;
    }
  }
  return text;
}

}  // namespace

RunPage::RunPage(const Store::Reader& store, const Store::Run& run, Beside beside)
    : store(store), run(run), beside(std::move(beside)), kept(store, run.root) {}

long long RunPage::Events() const {
  return kept.Recorded() + (beside.against != nullptr ? beside.against->Kept().Recorded() : 0);
}

void RunPage::Write(const std::function<void(std::string_view)>& write, const std::function<void()>& step) const {
  for (const std::string_view piece : frameHead) {
    write(piece);
  }
  WriteRunData(
      store, run, kept, beside, [&write](std::string_view json) { write(WithoutTags(json)); }, step);
  for (const std::string_view piece : frameTail) {
    write(piece);
  }
}

}  // namespace Velora::Page
