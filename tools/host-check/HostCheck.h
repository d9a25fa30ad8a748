#pragma once

#include "store/settings/Settings.h"

#include <functional>
#include <optional>
#include <string>

namespace Velora::HostCheck {

/// The start of a host, as far as recording depends on it.
struct HostStart {
  std::string folder;                            ///< The current directory of the host; empty for that of this program.
  std::string library;                           ///< The file of the TS logging library; empty if it is not known.
  bool isLoaded = false;                         ///< Whether this process is the host, and has that library in memory.
  std::string activities = "activities.xml";     ///< The name of the activities file.
  std::string configuration = "instrument.xml";  ///< The name of the instrument configuration.
};

/// A step of the start that was tried, and its outcome.
struct HostStep {
  enum class Outcome {
    Works,     ///< A host can use it.
    Warns,     ///< A host records, but its user should know.
    Prevents,  ///< No host can record.
  };
  Outcome outcome;
  std::string words;  ///< What was found, for a person.
};

/// A step as a line: "ok: ", "warning: " or "finding: " and its words.
std::string InWords(const HostStep& step);

/// The file of the TS logging library that was installed with this program; empty if there is none.
std::string LibraryBesideProgram();

/// The outcome of all steps.
struct HostOutcome {
  bool records = true;                      ///< Whether a host would record.
  bool hasStore = false;                    ///< Whether the store exists.
  std::optional<Store::Settings> settings;  ///< What TSAL.config says; empty if a host cannot read it.
  std::string folder;                       ///< The folder in which that is.
};

/// Does what the start of a host does, step by step, and undoes it: no store is made or upgraded, and no file is left.
/// @param tell is called after each step.
HostOutcome CheckHost(const HostStart& start, const std::function<void(const HostStep&)>& tell);

}  // namespace Velora::HostCheck
