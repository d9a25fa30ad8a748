#pragma once

#include "Memory.h"
#include "support/Lines.h"

#include <functional>
#include <new>
#include <sstream>
#include <string>
#include <vector>

// An operation with a fault at one place of its way, and what the journal tells about it.

struct Fault {
  enum Kind { CallRaises, MemoryRunsOutOnce, MemoryStaysOut } kind;
  int at;  // the number of the call or allocation
};

struct Outcome {
  bool faulty = false;          // false: the operation has no such place
  bool raised = false;          // the very thing that was raised came out
  std::string call;             // what raised, when it was a call
  std::string before, written;  // the journal at the fault and afterwards, without releases
};

inline std::vector<std::string> LinesOf(const std::string& journal) {
  std::vector<std::string> lines;
  std::istringstream stream(journal);
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

inline std::string WithoutReleases(const std::string& journal) {
  std::string rest;
  for (const std::string& line : LinesOf(journal)) {
    rest += line.ends_with(" released") ? "" : line + '\n';
  }
  return rest;
}

/// The exit lines that the journal lacks, those of its operations that are still open, the last one first.
inline std::vector<std::string> MissingExits(const std::string& journal) {
  std::vector<std::string> missing;
  for (std::string line : LinesOf(journal)) {
    if (StartsWith(line, "info >>")) {
      missing.insert(missing.begin(), line.replace(5, 2, "<<"));
    } else if (StartsWith(line, "info <<")) {
      missing.erase(missing.begin());
    }
  }
  return missing;
}

inline Outcome Disturb(const std::function<void()>& operate, const Fault& fault) {
  Outcome outcome;
  int left = fault.at;
  if (fault.kind == Fault::CallRaises) {
    Fakes::TheScene().hook = [&](const std::string& entry) {
      if (left-- == 0) {
        outcome = {true, false, entry, WithoutReleases(Fakes::TheScene().journal), {}};
        throw fault.at;  // no std::exception
      }
    };
  } else {
    Memory::RefuseFrom(fault.at, fault.kind == Fault::MemoryStaysOut);
  }
  try {
    operate();
  } catch (const std::bad_alloc&) {
    outcome.raised = fault.kind != Fault::CallRaises;
  } catch (int which) {
    outcome.raised = which == fault.at;
  }
  const auto journalAtRefusal = Memory::RefuseNoMore();
  Fakes::TheScene().hook = nullptr;
  const std::string journal = Journal();
  outcome.written = WithoutReleases(journal);
  if (journalAtRefusal) {
    outcome.faulty = true;
    outcome.before = WithoutReleases(journal.substr(0, *journalAtRefusal));
  }
  return outcome;
}
