#pragma once

namespace Velora::Ts {

/// The exit codes of the program, for scripts.
enum ExitCode {
  Done = 0,        ///< Success.
  Found = 1,       ///< The store has a fault, or does not contain what was asked for.
  WrongUsage = 2,  ///< The command line is wrong.
  Impossible = 3,  ///< The store could not be read or written.
  Unsealed = 4,    ///< What is sealed was not changed, but not everything is sealed or could be compared.
};

}  // namespace Velora::Ts
