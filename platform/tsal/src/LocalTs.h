#pragma once

#include "Session.h"

#include <TSAL/Types.h>

#include <memory>
#include <string>

// The state of the local TS, which is the state of the process: the folder of the settings, the session begun last, and
// why TS was not available last.
// Safe to use from several threads.

namespace Quor::TolvaServices::Local {

void SetSettingsFolder(const std::string& folder);
Velora::Store::Settings CurrentSettings();

/// Why TS was last found not to be available; empty when it was.
void SetReason(const std::string& reason);
std::string Reason();

/// Opens the store of the settings, which shows whether a session can begin. The first session uses what was opened.
/// @throws NotReachable or Error with the reason why none can.
void OpenStoreOfSettings();

/// Begins a session; the one begun before stays the current one when that raises.
std::shared_ptr<Session> BeginSession(const std::string& text1, const std::string& text2, const std::string& text3);

/// The session that a handle stands for.
/// @throws TsError when the handle is empty and no session was begun.
std::shared_ptr<Session> SessionOf(const Types::SessionHandle& handle);

}  // namespace Quor::TolvaServices::Local
