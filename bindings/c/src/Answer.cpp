#include "Answer.h"

#include "Boundary.h"
#include "Handles.h"
#include "Records.h"
#include "Text.h"

#include <array>

using namespace Velora::CInterface;

namespace Velora::CInterface {
namespace {

// In the order of Answer::Value.
constexpr std::array functions{"velora_ts_answer_text", "velora_ts_answer_version", "velora_ts_answer_execution"};

}  // namespace

Answer::Answer(const char* callback, Value nothing, std::size_t longest)
    : callback(callback), value(std::move(nothing)), longest(longest) {
  const Inside inside;
  handle = Handles::Open<velora_ts_answer>(this);
}

Answer::~Answer() {
  const Inside inside;
  Handles::Close(handle);
}

void Answer::Take(std::string text) {
  Text& taken = Of<Text>();
  if (text.size() > longest) {
    throw Misuse("the guid has " + std::to_string(text.size()) + " bytes; " + callback + " answers with at most " +
                 std::to_string(longest));
  }
  taken = std::move(text);
}

void Answer::ExpectKind(std::size_t kind) const {
  if (std::this_thread::get_id() != thread) {
    throw Misuse(std::string("the answer of ") + callback + " belongs to another thread");
  }
  if (kind != value.index()) {
    throw Misuse(std::string(callback) + " answers with " + functions.at(value.index()));
  }
}

}  // namespace Velora::CInterface

velora_ts_status velora_ts_answer_text(velora_ts_answer* answer, const char* text, size_t size) {
  return Boundary(__func__, [&] { Handles::Of(answer)->Take(TextOf("text", text, size)); });
}

velora_ts_status velora_ts_answer_version(velora_ts_answer* answer, const velora_ts_version_of_activity* version) {
  return Boundary(__func__, [&] {
    auto& versions = Handles::Of(answer)->Of<Answer::Versions>();
    if (version == nullptr) {
      throw Misuse("version is null");
    }
    auto taken = VersionOf(*version);
    const std::string name = taken.Name;
    if (!versions.emplace(name, std::move(taken)).second) {
      throw Misuse("a version of the name '" + name + "' was answered already");
    }
  });
}

velora_ts_status velora_ts_answer_execution(velora_ts_answer* answer, const velora_ts_execution* execution) {
  return Boundary(__func__, [&] {
    auto& taken = Handles::Of(answer)->Of<Answer::Execution>();
    if (execution == nullptr) {
      throw Misuse("execution is null");
    }
    taken = ExecutionOf(*execution);
  });
}
