#pragma once

#include "support/HostFiles.h"
#include "support/Query.h"
#include "support/ScratchFolder.h"
#include "support/Shell.h"

#include <TSAL/Methods.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>

/// Skips the rest of a test, which needs the page, in a build without it.
#define NEEDS_PAGE() \
  if (!WITH_PAGE) GTEST_SKIP() << "velora-ts was built without pages; npm brings them"

/// Whether the tests run velora-ts.exe: VELORA_TEST_TOOLS names a folder where a program velora-ts does so.
inline const bool underWine = std::getenv("VELORA_TEST_TOOLS") != nullptr;
/// Skips the rest of a test of what Wine does not have, or shows to no Windows program.
#define SKIP_UNDER_WINE(reason) \
  if (underWine) GTEST_SKIP() << (reason)
/// Where shells find velora-ts.
inline const int toolIsFound = setenv(
    "PATH", ((underWine ? std::getenv("VELORA_TEST_TOOLS") : TOOLS) + (':' + std::string(std::getenv("PATH")))).c_str(),
    1);

/// A fixture whose tests run velora-ts in its folder.
template <typename Fixture>
class WithTool : public WithShell<Fixture> {
 protected:
  int Tool(const std::string& arguments) { return Shell("velora-ts " + arguments); }
  /// As that of the base, but paths are said as they are here.
  int Shell(const std::string& command) {
    const int code = WithShell<Fixture>::Shell(command);
    for (std::size_t at = 0; underWine && (at = this->said.find("'Z:\\", at)) != std::string::npos;) {
      this->said.erase(at + 1, 2);
      const auto path = this->said.begin() + static_cast<std::ptrdiff_t>(at) + 1;
      std::replace(path, std::find(path, this->said.end(), '\''), '\\', '/');
    }
    return code;
  }
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
