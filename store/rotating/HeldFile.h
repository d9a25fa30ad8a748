#pragma once

#include "store/database/SqliteConnection.h"

#include <string>

namespace Velora::Store {

/// A store in a file that this process alone has open. All of its content is in the file, and no log is beside it.
/// Who opens the file meanwhile waits.
class HeldFile {
 public:
  /// Waits some seconds for others to close the file.
  /// @param file its path, without links.
  /// @throws Error when they do not. Then the store is as before, but for the log, which hosts turn on.
  explicit HeldFile(const std::string& file);

 private:
  bool Hold();

  SqliteConnection connection;
};

}  // namespace Velora::Store
