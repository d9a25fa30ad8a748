// Files as Windows has them: how folders are named, shares, and files that other programs have open.

#include "LocalTsTest.h"
#include "store/reading/Reader.h"
#include "store/settings/Settings.h"

#include <VeloraSystem/Narrow.h>
#include <VeloraSystem/NewFile.h>
#include <VeloraSystem/Path.h>
#include <VeloraSystem/RegularFile.h>
#include <VeloraSystem/Share.h>

#include <windows.h>

#include <memory>
#include <thread>

namespace {

namespace System = Velora::System;
namespace Store = Velora::Store;

class WindowsFiles : public LocalTsTest {};

std::string InCodePage(const std::wstring& text) {
  std::string narrow(2 * text.size(), '\0');
  narrow.resize(
      static_cast<std::size_t>(WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), narrow.data(),
                                                   static_cast<int>(narrow.size()), nullptr, nullptr)));
  return narrow;
}

// The standard library makes no first folder behind the long form of a root.
void Make(const fs::path& folder) {
  if (!exists(folder)) {
    Make(folder.parent_path());
    create_directory(folder);
  }
}

TEST_F(WindowsFiles, AHostAndAReaderFindAFolderHoweverItIsNamed) {
  const std::string root = System::TextOf(folder.path);
  std::string deep = root;
  while (deep.size() < 600) {
    deep += "\\" + std::string(90, 'd') + "\u6f22\u20ac";
  }
  const fs::path letters = folder.path / L"\u00b5\u20ac\u00c5\u6f22\U0001F52C", few = folder.path / L"\u00e4 \u00b5",
                 other = folder.path / L"\u00c4";
  const struct {
    fs::path place;
    std::string name;
  } rows[] = {
      {letters, System::TextOf(letters)},
      {few, InCodePage(few)},
      {other, System::TextOf(other)},
      {folder.path / "slashes", root + "/slashes/"},
      {folder.path / "long form", "\\\\?\\" + root + "\\long form"},
      {System::PathOf(deep), deep},
  };
  for (const auto& [place, name] : rows) {
    SCOPED_TRACE(name);
    Make(place);
    const std::string settings = System::TextOf(System::PathOf(System::FromNarrow(name)));
    std::ofstream(place / "TSAL.config") << "<TSAL><Database Backend='sqlite3' Connection='\u00b5\u6f22.db'/></TSAL>";
    std::ofstream(place / "activities.xml") << "<Activities/>";
    TSInstance::SetTsalPath(name);
    TSInstance::BeginSession();
    ActivityMethods::RegisterAndGetActivityVersions(name + "\\activities.xml", SessionHandle::Empty);
    SaveEvent(Event("recorded"));
    EXPECT_TRUE(exists(place / L"\u00b5\u6f22.db"));
    Store::Reader reader(Store::ReadSettings(settings).database);
    EXPECT_EQ(Query(reader.Sql(), "SELECT COUNT(*) FROM events"), "1\n");
  }
}

// E: is a network drive that shows C:; scripts/wine makes it.
TEST_F(WindowsFiles, AStoreOnAShareIsReadWhileNobodyRecordsAndNotRecordedInto) {
  std::string store = System::TextOf(folder.path / "ts.db");
  store[0] = 'E';
  const auto read = [&store] {
    Store::Reader reader({Store::Database::Kind::Sqlite, store});
    return Query(reader.Sql(), "SELECT name FROM events");
  };
  Begin();
  SaveEvent(Event("recorded"));
  EXPECT_THROW(read(), Store::Error);
  Begin("other.db");  // which ends the session
  EXPECT_EQ(read(), "recorded\n");
  for (const char* share : {"\\\\veldmar\\share", "//veldmar/share", "\\\\?\\UNC\\veldmar\\share", "E:"}) {
    SCOPED_TRACE(share);
    const std::string there = std::string(share) + "\\ts.db";
    EXPECT_TRUE(System::IsOnShare(there));
    folder.Write("TSAL.config", "<TSAL><Database Backend='sqlite3' Connection='" + there + "'/></TSAL>");
    TSInstance::SetTsalPath(System::TextOf(folder.path));
    ExpectError(TSInstance::IsConnectable, {"is on a share; expected a file on a disk of this computer"});
  }
  for (const char* own : {"C:\\ts.db", "D:\\ts.db", "\\\\?\\C:\\ts.db", "ts.db"}) {
    EXPECT_FALSE(System::IsOnShare(own)) << own;
  }
}

TEST_F(WindowsFiles, WhatAnotherProgramHasOpenIsWaitedForAndNamed) {
  const std::string name = System::TextOf(folder.path / "page.html"), part = name + ".part";
  const auto replaced = [&] {
    System::NewFile fresh(part, 0666);
    fresh.Write("new");
    try {
      fresh.MoveTo(name, System::NewFile::Existing::Replace);
      return std::string("replaced");
    } catch (const System::Failure& failure) {
      return std::string(failure.what());
    }
  };
  const auto read = [&] {
    try {
      System::OpenRegularFile(name);
      return std::string("read");
    } catch (const System::Failure& failure) {
      return std::string(failure.what());
    }
  };
  const std::string busy = "another program has it open and lets nobody else; expected it to be closed there";
  const struct {
    DWORD sharing;
    bool lets;  // go, after a moment
    std::string reading, replacing;
  } rows[] = {
      {0, true, "read", "replaced"},
      {0, false, busy, busy},
      {FILE_SHARE_READ, true, "read", "replaced"},
      {FILE_SHARE_READ, false, "read", busy},
  };
  for (const auto& [sharing, lets, reading, replacing] : rows) {
    for (const bool reads : {true, false}) {
      SCOPED_TRACE(std::to_string(sharing) + (lets ? " lets " : " keeps ") + (reads ? "read" : "replace"));
      folder.Write("page.html", "old");
      const HANDLE held =
          CreateFileW((folder.path / "page.html").c_str(), GENERIC_READ, sharing, nullptr, OPEN_EXISTING, 0, nullptr);
      std::thread other([&, wait = lets] {
        Sleep(300);
        if (wait) {
          CloseHandle(held);
        }
      });
      EXPECT_EQ(reads ? read() : replaced(), reads ? reading : replacing);
      other.join();
      if (!lets) {
        CloseHandle(held);
      }
      EXPECT_EQ(ContentOf(folder / "page.html"), !reads && replacing == "replaced" ? "new" : "old");
      EXPECT_FALSE(exists(folder.path / "page.html.part"));
    }
  }
  // What is only read here is in nobody's way.
  const System::File mine = System::OpenToRead(name);
  folder.Write("page.html", "written meanwhile");
  EXPECT_NO_THROW(fs::rename(folder.path / "page.html", folder.path / "renamed"));
}

TEST_F(WindowsFiles, WhatAnotherProgramOpensAgainAndAgainIsReplacedInBetween) {
  const fs::path file = folder.Write("page.html", "old");
  std::jthread other([&file](const std::stop_token& ends) {
    while (!ends.stop_requested()) {
      static_cast<void>(std::ifstream(file).get());
      Sleep(2);
    }
  });
  for (int time = 0; time < 200; ++time) {
    System::NewFile fresh(System::TextOf(file) + ".part", 0666);
    EXPECT_NO_THROW(fresh.MoveTo(System::TextOf(file), System::NewFile::Existing::Replace)) << time;
  }
}

}  // namespace
