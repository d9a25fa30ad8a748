#pragma once

#include "ScriptedHost.h"
#include "store/settings/Settings.h"
#include "support/ScratchFolder.h"
#include "support/TestStore.h"
#include "watching/Watch.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// A fixture with the folder of a store of "Scope 7", which is not made yet, on either database.
class Watching : public testing::Test {
 protected:
  Watching() {
    permissions(folder.path, std::filesystem::perms{0711});  // who runs a server in it passes through
    create_directory(host);
    store.Make();
    Configure(store.Attributes("ts.db"));
    folder.Write("host/activities.xml",
                 "<Activities><Activity Name='Tomography'><ActivityVersion Name='TiltSeries' Version='1'/>"
                 "<ActivityVersion Name='Expose' Version='2'/><ActivityVersion Name='Focus' Version='3'/></Activity>"
                 "</Activities>");
  }
  void Configure(const std::string& attributes, const std::string& more = "") const {
    folder.Write("host/TSAL.config", "<TSAL Instrument='Scope 7'><Database " + attributes + "/>" + more + "</TSAL>");
  }

  Velora::Ts::WatchedStore Watched() const { return {1, host.string(), Velora::Store::ReadSettings(host.string())}; }
  std::unique_ptr<Velora::Ts::Watch> Begin(std::vector<std::string> values = {}) const {
    return std::make_unique<Velora::Ts::Watch>(
        std::vector<Velora::Ts::WatchedStore>{Watched()},
        Velora::Ts::WatchOptions{std::move(values), std::chrono::milliseconds(20)});
  }

  /// "Scope 7 running, 1 alive | run running in run > hole #1, 2 events, Exposed Dose=3 | newest run".
  static std::string InWords(const Velora::Ts::StoreNow& store);
  /// What a watch says once it says that, or after a minute.
  static std::string SaidOnce(const Velora::Ts::Watch& watch, const std::string& expected) {
    return SaidOnce(watch, [&](const std::string& said) { return said == expected; });
  }
  static std::string SaidOnce(const Velora::Ts::Watch& watch,
                              const std::function<bool(const std::string&)>& isExpected);

  const ScratchFolder folder;
  const std::filesystem::path host = folder / "host";
  const TestStore store{host / "ts.db"};
};
