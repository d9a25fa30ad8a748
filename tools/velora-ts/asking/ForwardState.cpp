#include "asking/ForwardState.h"

#include "output/FreshFile.h"
#include "store/Error.h"
#include "store/database/Connection.h"
#include "store/reading/Rows.h"
#include "store/settings/WholeFile.h"
#include "store/values/Json.h"
#include "store/values/StoredTime.h"

#include <VeloraSystem/Path.h>

#include <filesystem>
#include <system_error>
#include <utility>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr std::uintmax_t largest = 65536;
constexpr unsigned onlyOwner = 0600;
constexpr double stillAtWork = 150;  // seconds since it was written

// Hosts keep their files beside the file to which links lead.
std::string WithoutLinks(const std::string& path) {
  std::error_code unknown;
  const auto whole = std::filesystem::canonical(System::PathOf(path), unknown);
  return unknown ? path : System::TextOf(whole);
}

// The umask of the forwarder must not keep out others that may read the store. Where the store can only be read, this
// file is written all the same; on Windows no file takes the place of a read-only one.
void GivePermissionsOf(const std::string& store, const std::string& file) {
  using std::filesystem::perms;
  std::error_code unknown;
  const auto permissions = std::filesystem::status(System::PathOf(store), unknown).permissions();
  std::filesystem::permissions(System::PathOf(file), (permissions & perms(0666)) | perms::owner_write, unknown);
}

std::string AsJson(const ForwardState& state) {
  std::string json;
  const auto add = [&json](const char* name, const std::string& text) {
    json += json.empty() ? '{' : ',';
    AppendText(json, name);
    json += ':';
    AppendText(json, text);
  };
  add("facility", state.facility);
  add("written_at", state.writtenAt);
  add("reached_at", state.reachedAt);
  add("store", state.store);
  add("failing_since", state.failingSince);
  add("error", state.error);
  json += std::string(",\"ended\":") + (state.ended ? "true" : "false") + ",\"marks\":{";
  const char* separator = "";
  for (const auto& [table, number] : state.marks) {
    json += std::exchange(separator, ",");
    AppendText(json, table);
    json += ':';
    AppendInteger(json, number);
  }
  return json + "}}\n";
}

ForwardState FromJson(const std::string& json) {
  const auto sqlite = ConnectToMemory();
  const auto text = [&](const char* name) {
    return sqlite->Find<std::string>("SELECT COALESCE(json_extract(?1, '$.' || ?2), '')", json, std::string(name))
        .value();
  };
  ForwardState state{text("facility"),      text("written_at"), text("ended") == "1",
                     text("reached_at"),    text("store"),      {},
                     text("failing_since"), text("error")};
  Rows marks(*sqlite, "SELECT key, value FROM json_each(?1, '$.marks')");
  marks.Ask(json);
  while (marks.Next()) {
    state.marks.emplace(std::string(marks.Text(0)), marks.Integer(1));
  }
  return state;
}

}  // namespace

bool ForwardState::IsAtWork() const {
  const auto age = SecondsBetween(writtenAt, ToStoredTime(Now()));
  return !ended && age && *age < stillAtWork;
}

ForwardStateFile::ForwardStateFile(const Database& store)
    : store(WithoutLinks(store.where)), path(this->store + "-forward") {}

void ForwardStateFile::Write(const ForwardState& state) const {
  FreshFile fresh("file '" + path + "'", path, onlyOwner);
  fresh.Write(AsJson(state));
  GivePermissionsOf(store, fresh.Path());
  fresh.TakeName(FreshFile::Existing::Replace);
}

std::optional<ForwardState> ForwardStateFile::Read() const {
  std::error_code unknown;
  if (!std::filesystem::exists(System::PathOf(path), unknown)) {
    return std::nullopt;
  }
  const std::string json = ReadWholeFile(path, largest);
  try {
    return FromJson(json);
  } catch (const Error&) {
    throw Error("file '" + path + "' is broken; expected what velora-ts forward writes there");
  }
}

}  // namespace Velora::Ts
