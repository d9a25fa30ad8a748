#include "page/writer/Frame.h"

#include <string>

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

void WritePart(const FramePart& part, const Write& write) {
  for (const std::string_view piece : part) {
    write(piece);
  }
}

}  // namespace

void WriteFramed(const Frame& frame, const Write& write, const std::function<void(const Write& json)>& writeData) {
  WritePart(frame.beforeData, write);
  writeData([&write](std::string_view json) { write(WithoutTags(json)); });
  WritePart(frame.behindData, write);
  WritePart(frame.library, write);
  WritePart(frame.end, write);
}

}  // namespace Velora::Page
