#include "serving/Document.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Velora::Ts {

namespace {

/// Tells contents apart (FNV-1a). Nobody gains anything by making two of the same.
class Mark {
 public:
  void Add(std::string_view text) {
    for (const char character : text) {
      hash = (hash ^ static_cast<unsigned char>(character)) * 0x100000001b3U;
    }
  }
  // Weak, because the same content can be sent compressed.
  std::string InWords() const { return "W/\"" + std::to_string(hash) + "\""; }

 private:
  std::uint64_t hash = 0xcbf29ce484222325U;
};

/// The policy that stands in a page; a header can also say who may show it in a frame.
std::string PolicyOf(const Page::Frame& frame) {
  std::string head;
  for (const std::string_view piece : frame.beforeData) {
    head += piece;
  }
  constexpr std::string_view before = R"("Content-Security-Policy" content=")";
  const std::size_t begin = head.find(before) + before.size();
  return head.substr(begin, head.find('"', begin) - begin) + "; frame-ancestors 'none'";
}

}  // namespace

Http::Answer DocumentOf(const Page::Frame& frame, const std::string& data) {
  const auto writeTo = [frame, data](const Page::Write& write) {
    Page::WriteFramed(frame, write, [&data](const Page::Write& writeData) { writeData(data); });
  };
  Mark mark;
  writeTo([&mark](std::string_view piece) { mark.Add(piece); });
  Http::Answer answer;
  answer.type = "text/html";
  answer.headers = {
      {"Cache-Control", "no-cache"}, {"Content-Security-Policy", PolicyOf(frame)}, {"ETag", mark.InWords()}};
  answer.write = writeTo;
  return answer;
}

}  // namespace Velora::Ts
