#pragma once

#include "support/HostFiles.h"
#include "support/Query.h"
#include "support/ScratchFolder.h"
#include "support/Shell.h"

#include <TSAL/Methods.h>

#include <gtest/gtest.h>

#include <string>

/// Skips the rest of a test, which needs the page, in a build without it.
#define NEEDS_PAGE() \
  if (!WITH_PAGE) GTEST_SKIP() << "velora-ts was built without pages; npm brings them"

/// A fixture whose tests run velora-ts in its folder.
template <typename Fixture>
class WithTool : public WithShell<Fixture> {
 protected:
  int Tool(const std::string& arguments) { return this->Shell("'" VELORA_TS "' " + arguments); }
};

/// A fixture with a folder.
class InFolder : public testing::Test {
 protected:
  const ScratchFolder folder;
};

/// A folder with settings and a store as the first version left it: one finished run with two sections.
class ToolTest : public WithTool<InFolder> {
 protected:
  ToolTest() {
    folder.Write("TSAL.config", "<TSAL><Database Backend='sqlite3' Connection='ts.db'/></TSAL>");
    WriteHostFiles(folder, "");
    EXPECT_EQ(Shell("sqlite3 ts.db 'PRAGMA journal_mode=WAL' '.read " SOURCE "/tests/local-ts/version-1.sql'"), 0);
  }

  /// Opens the store as a host does, which brings it up to the schema of today.
  void BringUp() const {
    using Quor::TolvaServices::Types::TSInstance;
    TSInstance::SetTsalPath(folder.path.string());
    EXPECT_TRUE(TSInstance::IsConnectable());
  }
};
