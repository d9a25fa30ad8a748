#pragma once

#include "store/reading/Hosts.h"
#include "store/reading/Reader.h"
#include "store/reading/Runs.h"

#include <filesystem>
#include <string>

/// "one running, two stopped": each run of a store in a file and what is said of it, in the order of recording.
inline std::string StatesOfRuns(const std::filesystem::path& database) {
  const Velora::Store::Reader reader({Velora::Store::Database::Kind::Sqlite, database.string()});
  Velora::Store::Hosts hosts(reader);
  std::string said;
  for (const Velora::Store::Run& run : RunsBetween(reader, "", "3")) {
    said += (said.empty() ? "" : ", ") + run.node + ' ' + NameOf(hosts.Of(run).state);
    for (const auto& one : hosts.UnfinishedOf(run)) {
      said += one.key == run.root ? "" : std::string(" (") + NameOf(one.known.state) + ')';
    }
  }
  return said;
}
