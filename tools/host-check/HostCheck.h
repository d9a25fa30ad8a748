#pragma once

#include <functional>
#include <string>

namespace Velora::HostCheck {

/// What a host is started with, as far as it decides whether the host can record.
struct HostStart {
  std::string folder;                            ///< Its current directory.
  std::string library;                           ///< The file of the TS logging library; empty where none is known.
  std::string activities = "activities.xml";     ///< The activities file that it names.
  std::string configuration = "instrument.xml";  ///< The instrument configuration that it names.
};

/// One thing that was tried, and what came of it.
struct HostStep {
  enum class Outcome {
    Holds,     ///< As a host needs it.
    Mind,      ///< A host records all the same, but its user should know.
    Prevents,  ///< No host records.
  };
  Outcome outcome;
  std::string words;
};

/// "ok: ", "mind: " or "finding: " and the words.
std::string InWords(const HostStep& step);

/// The file of the TS logging library that was installed with this program; empty where there is none.
std::string LibraryBesideProgram();

/// What the steps came to.
struct HostOutcome {
  bool records = true;    ///< Whether a host would record.
  bool hasStore = false;  ///< Whether there is a store already.
};

/// Does what the start of a host does, step by step, and takes it back: nothing is made, brought up or left behind.
/// @param tell hears each step when it is done.
HostOutcome CheckHost(const HostStart& start, const std::function<void(const HostStep&)>& tell);

}  // namespace Velora::HostCheck
