#pragma once

#include <VeloraTsLogging/ITolvaServicesClass.h>
#include <velora_ts.h>

#include <cstddef>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <variant>

namespace Velora::CInterface {

/// What a callback answers. Its handle is open as long as it lives.
class Answer {
 public:
  using Text = std::optional<std::string>;
  using Versions = Quor::Velora::Infra::TsLogging::ActivityVersionMap;
  using Execution = Quor::TolvaServices::Types::ActivityExecution;
  using Value = std::variant<Text, Versions, Execution>;

  /// @param callback its name, for the words of errors.
  /// @param nothing the answer of a callback that gives none; its type says which answers are right.
  /// @param longest how many bytes a text may have.
  Answer(const char* callback, Value nothing, std::size_t longest = std::string::npos);
  Answer(const Answer&) = delete;
  Answer& operator=(const Answer&) = delete;
  ~Answer();

  velora_ts_answer* Handle() const { return handle; }

  /// The answer to be given by this thread.
  /// @throws Misuse if the callback answers with another function, or if this is another thread.
  template <typename Expected>
  Expected& Of() {
    ExpectKind(Value(Expected()).index());
    return std::get<Expected>(value);
  }
  /// @throws Misuse if the text is too long.
  void Take(std::string text);

  /// The answer, after the callback has returned.
  template <typename Expected>
  Expected Given() {
    return std::move(std::get<Expected>(value));
  }

 private:
  void ExpectKind(std::size_t kind) const;

  const char* callback;
  Value value;
  std::size_t longest;
  std::thread::id thread = std::this_thread::get_id();
  velora_ts_answer* handle;
};

}  // namespace Velora::CInterface
