#pragma once

#include "store/database/Connection.h"

#include <filesystem>
#include <set>
#include <string>

using Records = std::multiset<std::string>;

/// What hosts said of their records: what they were about to save, and what they were told is saved.
struct Told {
  Records announced;
  Records acknowledged;
};

/// What is wrong with a store, in numbers and words.
struct Findings {
  std::size_t lost = 0;  ///< acknowledged records that are not there
  std::size_t half = 0;  ///< records that differ from what was announced, or are stored twice
  int damaged = 0;       ///< stores that cannot be used
  std::string text;

  Findings& operator+=(const Findings& other);
};

/// The records in a store, one line for each, as Recording announces them. An incomplete record gives another line.
Records StoredRecords(Velora::Store::Connection& sql);
Records StoredRecords(const std::filesystem::path& database);

/// Compares the records in a store with what was told.
Findings CompareRecords(const Records& stored, const Told& told);

/// Opens the store "ts.db" of a folder through TSAL and with plain SQL, and compares it with what was told.
Findings Compare(const std::filesystem::path& folder, const Told& told);
