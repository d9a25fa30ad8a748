#pragma once

#include "support/HostFiles.h"
#include "support/Query.h"
#include "support/ScratchFolder.h"
#include "support/Shell.h"

#include <TSAL/Methods.h>

#include <gtest/gtest.h>

#include <string>

/// The tests of velora-ts run the program itself, in a folder with settings and a store as the first version left it:
/// one finished run with two sections.
class ToolTest : public testing::Test {
 protected:
  ToolTest() {
    folder.Write("TSAL.config", "<TSAL><Database Backend='sqlite3' Connection='ts.db'/></TSAL>");
    WriteHostFiles(folder, "");
    EXPECT_EQ(Shell("sqlite3 ts.db 'PRAGMA journal_mode=WAL' '.read " SOURCE "/tests/local-ts/version-1.sql'"), 0);
  }

  /// Runs a command in the folder; what it says, on both streams, is in `said` afterwards.
  int Shell(const std::string& command) { return RunIn(folder, command, said); }
  int Tool(const std::string& arguments) { return Shell("'" VELORA_TS "' " + arguments); }
  /// Opens the store as a host does, which brings it up to the schema of today.
  void BringUp() const {
    using Quor::TolvaServices::Types::TSInstance;
    TSInstance::SetTsalPath(folder.path.string());
    EXPECT_TRUE(TSInstance::IsConnectable());
  }
  bool Says(const std::string& words) const { return said.find(words) != std::string::npos; }

  const ScratchFolder folder;
  std::string said;
};
