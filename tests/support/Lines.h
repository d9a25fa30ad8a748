#pragma once

#include "fakes/Scene.h"
#include "support/System.h"

#include <string>
#include <utility>

// What a test expects to find in the journal. A block is text of whole lines; it is put together out of entries, which
// have no line end of their own, and of other blocks.

inline std::string Lines() { return {}; }
template <typename... Parts>
std::string Lines(std::string first, const Parts&... rest) {
  if (!first.empty() && first.back() != '\n') {
    first += '\n';
  }
  return first + Lines(rest...);
}

/// The lines of one operation of the component: between its entry line and its exit line.
template <typename... Parts>
std::string Scope(const std::string& operation, const Parts&... parts) {
  const std::string name = "Quor::Velora::Infra::TsLogging::TsLogging::" + operation;
  return Lines("info >>" + name, parts..., "info <<" + name);
}

inline const std::string notFound =
    "error Cannot load TSAL.config file.Please ensure it exists in the correct directory\n";
inline const std::string notSupported =
    "warning Kv7 for Velora is not supported because TS Server is not installed or available\n";
inline const std::string cannotCreate =
    "error Cannot create an activity execution because Tolva Services server is not available\n";

inline std::string DataRootLines(const std::string& root) {
  return Scope("GetDataRootDirectory", "info dataRootDirectory path: " + root);
}

/// A check that ends with the presence question, and one that finds TS present; `search` is what the search led to.
inline const std::string checkedPresence = Scope("CheckTsServiceAvailability", "TSAL IsTsServicePresent()");
template <typename... Parts>
std::string Check(const std::string& root, const Parts&... search) {
  return Scope("CheckTsServiceAvailability", "TSAL IsTsServicePresent()", DataRootLines(root), search...,
               "TSAL IsConnectable()");
}

inline std::string InstrumentLines(const std::string& fileText, bool available, const std::string& options,
                                   const std::string& model) {
  return Lines("KivAccess GetFactory", "KivAccess CreateInstrumentAccess", "KivAccess factory released",
               "KivAccess IsAvailable",
               available ? Lines("KivAccess GetInstrument", "KivAccess GetConfiguration", "KivAccess GetMicroscopeType",
                                 "KivAccess GetOptionText")
                         : Lines(),
               "TSAL SaveInstrumentConfigWithResult('" + fileText + "', '', 'Brantor Scientific', '" +
                   System::HostName() + "', '" + options + "', 'TEM', '" + model + "', '', '')",
               "KivAccess access released");
}

inline std::string Registration(const std::string& path) {
  return "TSAL RegisterAndGetActivityVersions('" + path + "', Empty)";
}

/// What bring-up does from the start of a session on, with the answers that the fakes give without being told.
inline std::string SessionLines(const std::string& registration, const std::string& instrumentFile) {
  return Lines("TSAL BeginSession()", "session released", registration,
               "TSAL ReadAllTextFromFile('" + instrumentFile + "')",
               InstrumentLines("text of the file", true, "options", "Kelmor"));
}

/// What was written since the last look.
inline std::string Journal() { return std::exchange(Fakes::TheScene().journal, {}); }

inline bool StartsWith(const std::string& text, const std::string& start) { return text.rfind(start, 0) == 0; }

/// Lets the hook act at each entry that starts with `start`, until it is taken away.
template <typename Action>
void At(const std::string& start, Action action) {
  Fakes::TheScene().hook = [=](const std::string& entry) { StartsWith(entry, start) ? action() : void(); };
}

/// A text with what could end or change it on its way: a zero byte, quotes, a sign of formats, bytes that are no UTF-8.
inline const std::string oddText("a\0b\"'%s\xFF\xC3", 9);
