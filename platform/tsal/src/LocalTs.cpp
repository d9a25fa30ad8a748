#include "LocalTs.h"

#include <TSAL/Error.h>

#include <chrono>
#include <mutex>
#include <utility>

namespace Quor::TolvaServices::Local {
namespace {

using Clock = std::chrono::steady_clock;
using Velora::Store::Writer;

// A session begins right after the check of its store. Later, the server can have ended the connection.
constexpr std::chrono::seconds longestBetween{2};

/// A store that was opened for a check.
struct CheckedStore {
  Velora::Store::Database database;
  std::unique_ptr<Writer> writer;
  Clock::time_point end;
};

std::mutex stateMutex;
std::string settingsFolder;               // guarded by stateMutex
std::string reasonNotAvailable;           // guarded by stateMutex
std::shared_ptr<Session> currentSession;  // guarded by stateMutex
CheckedStore checkedStore;                // guarded by stateMutex

/// The store of a database that was just checked, or null.
std::unique_ptr<Writer> TakeChecked(const Velora::Store::Database& database) {
  CheckedStore checked;
  {
    const std::lock_guard lock(stateMutex);
    std::swap(checked, checkedStore);
  }
  const bool usable = checked.writer && checked.database.kind == database.kind &&
                      checked.database.where == database.where && Clock::now() < checked.end &&
                      checked.writer->IsUsable();
  return usable ? std::move(checked.writer) : nullptr;
}

}  // namespace

void SetSettingsFolder(const std::string& folder) {
  const std::lock_guard lock(stateMutex);
  settingsFolder = folder;
}

Velora::Store::Settings CurrentSettings() {
  std::string folder;
  {
    const std::lock_guard lock(stateMutex);
    folder = settingsFolder;
  }
  return Velora::Store::ReadSettings(folder);
}

void SetReason(const std::string& reason) {
  const std::lock_guard lock(stateMutex);
  reasonNotAvailable = reason;
}

std::string Reason() {
  const std::lock_guard lock(stateMutex);
  return reasonNotAvailable;
}

void OpenStoreOfSettings() {
  const Velora::Store::Database database = CurrentSettings().database;
  CheckedStore checked{database, OpenForWriting(database), Clock::now() + longestBetween};
  checked.writer->EndOperation();
  if (checked.writer->IsFar()) {
    const std::lock_guard lock(stateMutex);
    if (!currentSession) {
      std::swap(checked, checkedStore);
    }
  }
}

std::shared_ptr<Session> BeginSession(const std::string& text1, const std::string& text2, const std::string& text3) {
  const Velora::Store::Settings settings = CurrentSettings();
  auto session = std::make_shared<Session>(settings, TakeChecked(settings.database), text1, text2, text3);
  std::shared_ptr<Session> replaced = session;
  const std::lock_guard lock(stateMutex);
  currentSession.swap(replaced);
  return session;
}

std::shared_ptr<Session> SessionOf(const Types::SessionHandle& handle) {
  if (handle.Session()) {
    return std::static_pointer_cast<Session>(handle.Session());
  }
  const std::lock_guard lock(stateMutex);
  if (!currentSession) {
    throw TsError("no TS session was begun; expected a BeginSession first");
  }
  return currentSession;
}

}  // namespace Quor::TolvaServices::Local
