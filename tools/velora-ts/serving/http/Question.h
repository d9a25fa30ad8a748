#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Velora::Http {

/// The parameters of a request. Each is a text in UTF-8; one that is empty counts as not given. Every operation throws
/// a Refusal with status 400, which names the parameter and what was expected.
class Question {
 public:
  using Parameters = std::multimap<std::string, std::string>;
  explicit Question(Parameters parameters) : parameters(std::move(parameters)) {}

  /// The value of a parameter that may be given once; empty without it.
  std::string Text(const std::string& name);
  /// The same of one that must be given.
  std::string RequiredText(const std::string& name);
  /// All values of a parameter that may be given several times, in their order.
  std::vector<std::string> Texts(const std::string& name);
  /// A whole number between two others, both included.
  std::optional<long long> Whole(const std::string& name, long long lowest, long long highest);
  /// One of some words; empty without it.
  std::string OneOf(const std::string& name, const std::vector<std::string>& words);

  /// Refuses a request with a parameter that nobody asked for. To be called when all were asked for.
  void ExpectNoOthers() const;

 private:
  Parameters parameters;
  std::set<std::string> known;
};

}  // namespace Velora::Http
