#pragma once

#include "reading/Source.h"

#include <sqlite3.h>

#include <filesystem>
#include <string>

namespace Velora::Ts {

/// A file of SQLite.
class SqliteSource : public Source {
 public:
  /// @throws TsError when there is no such file or it cannot be read.
  explicit SqliteSource(const std::string& path);

  bool IsStore() override;
  std::unique_ptr<Cursor> Prepare(const std::string& question) override;
  void ExpectUntouched() const override;
  sqlite3* Handle() const { return handle.get(); }

 private:
  void Open(const std::string& name, const char* how);
  void ExpectOneName() const;
  void Begin();

  const std::string path;
  std::string file;     // where the path leads
  bool closed = false;  // nobody had it open: read without the files that its users share
  std::filesystem::file_time_type written;
  std::unique_ptr<sqlite3, decltype(&sqlite3_close)> handle{nullptr, &sqlite3_close};
};

}  // namespace Velora::Ts
