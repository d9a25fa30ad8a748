#pragma once

#include "store/database/Connection.h"

#include <filesystem>
#include <memory>
#include <string>
#include <utility>

using SqlConnection = std::unique_ptr<Velora::Store::Connection>;

/// Opens a file of SQLite for plain SQL, which makes it where there is none.
SqlConnection OpenFile(const std::filesystem::path& file);

/// Connects to a server for plain SQL.
SqlConnection OpenServer(const std::string& address);

/// A store that a test names by a file: that file, or a database of the server that VELORA_TEST_SERVER says how to
/// connect to, where that is set.
class TestStore {
 public:
  explicit TestStore(std::filesystem::path file) : file(std::move(file)) {}

  static bool OnServer();

  /// The attributes of the element that names it in TSAL.config.
  /// @param path of the file, as the element must have it.
  std::string Attributes(const std::string& path) const;
  /// Makes its database where the server has none of that name yet.
  void Make() const;
  SqlConnection Open() const;

 private:
  std::string Name() const;
  std::string Address() const;

  std::filesystem::path file;
};
