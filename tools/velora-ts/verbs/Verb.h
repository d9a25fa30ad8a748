#pragma once

#include "asking/UsageError.h"
#include "verbs/ExitCode.h"

#include <VeloraCommandLine/Options.h>

#include <memory>

namespace Velora::Ts {

using CommandLine::Options;

/// A verb of the command line. Its constructor declares its options; when it is executed, they have their values.
class Verb {
 public:
  Verb() = default;
  Verb(const Verb&) = delete;
  Verb& operator=(const Verb&) = delete;
  virtual ~Verb() = default;

  /// @throws UsageError when values do not fit together or are not understood.
  virtual ExitCode Execute() = 0;
};

/// Makes a verb known to the program. verbs/VERB.cpp defines one as registeredVERB, and CMakeLists.txt lists it.
struct Registration {
  const char* name;
  const char* help;                                 ///< One or two sentences about what it does.
  const char* example;                              ///< Command lines without the name of the program, one a line.
  std::unique_ptr<Verb> (*make)(Options& options);  ///< Makes the verb, which declares its options.
};

/// Makes a verb of this type, for its registration.
template <typename OneVerb>
std::unique_ptr<Verb> Make(Options& options) {
  return std::make_unique<OneVerb>(options);
}

}  // namespace Velora::Ts
