#include "LocalTs.h"

#include <TSAL/Error.h>

#include <mutex>
#include <utility>

namespace Quor::TolvaServices::Local {
namespace {

std::mutex stateMutex;
std::string settingsFolder;               // guarded by stateMutex
std::string reasonNotAvailable;           // guarded by stateMutex
std::shared_ptr<Session> currentSession;  // guarded by stateMutex

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

std::shared_ptr<Session> BeginSession(const std::string& text1, const std::string& text2, const std::string& text3) {
  auto session = std::make_shared<Session>(CurrentSettings(), text1, text2, text3);
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
