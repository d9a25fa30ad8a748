#pragma once

#include "verbs/ExitCode.h"
#include "verbs/Options.h"

#include <memory>
#include <stdexcept>

namespace Velora::Ts {

/// What a verb of the command line does. Its constructor names its options, whose values are there when it runs.
class Verb {
 public:
  Verb() = default;
  Verb(const Verb&) = delete;
  Verb& operator=(const Verb&) = delete;
  virtual ~Verb() = default;

  /// @throws UsageError when values were given that do not go together, or that are not understood.
  virtual ExitCode Execute() = 0;
};

/// A mistake in the command line; its text says which.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// How the program knows a verb. The file of each verb defines one, under the name by which CMakeLists.txt puts it into
/// the list of all verbs.
struct Registration {
  const char* name;
  const char* help;     ///< One or two sentences on what it does.
  const char* example;  ///< Its command line without the program's name.
  std::unique_ptr<Verb> (*make)(Options& options);
};

/// Makes a verb, for its registration.
template <typename OneVerb>
std::unique_ptr<Verb> Make(Options& options) {
  return std::make_unique<OneVerb>(options);
}

}  // namespace Velora::Ts
