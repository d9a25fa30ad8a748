#pragma once

namespace Velora::Ts {

/// What the program answers a script.
enum ExitCode {
  Done = 0,        ///< Nothing to complain of.
  Found = 1,       ///< Something is wrong with the store, or what was asked for is not in it.
  WrongUsage = 2,  ///< The command line is wrong.
  Impossible = 3,  ///< The store could not be read or written.
  Unsealed = 4,    ///< What is sealed is as it was, but not all is sealed, or could be compared.
};

}  // namespace Velora::Ts
