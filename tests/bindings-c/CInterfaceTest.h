#pragma once

#include "bindings-c/CLibrary.h"
#include "support/Lines.h"
#include "support/ScratchFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

/// A test of the C interface as it is shipped, over the component as it is shipped, on fakes: each has a copy of both
/// in a folder of its own, and the host's files in the current directory.
class CInterfaceTest : public testing::Test {
 protected:
  using Path = std::filesystem::path;

  CInterfaceTest() {
    Fakes::TheScene() = {};
    for (const Path& from : {Path(VELORA_TS_LIBRARY), Path(VELORA_LIBRARY)}) {
      copy_file(from, folder / from.filename().string());
    }
    std::filesystem::current_path(folder.path);
    std::ofstream("TSAL.config");
    std::ofstream("activities.xml");
    Load();
  }
  ~CInterfaceTest() override {
    Unload();
    std::filesystem::current_path("/");
  }

  void Load() {
    library = std::make_unique<CLibrary>(file);
    EXPECT_EQ(library->create_logging("instrument.txt", zero, nullptr, 0, &logging), VELORA_TS_OK) << Error();
    Journal();
  }
  void Unload() {
    Fakes::TheScene().hook = nullptr;
    library.reset();
    EXPECT_EQ(System::IsLoaded(file), staysLoaded);
    EXPECT_EQ(System::IsLoaded(component), staysLoaded);
  }

  std::string Error() const {
    std::size_t size = 0;
    const char* const text = library->last_error(&size);
    EXPECT_EQ(text[size], '\0');
    return {text, size};
  }

  static constexpr std::size_t zero = VELORA_TS_ZERO_TERMINATED;

  const ScratchFolder folder;
  const Path file = folder.path / Path(VELORA_TS_LIBRARY).filename();
  const Path component = folder.path / Path(VELORA_LIBRARY).filename();
  std::unique_ptr<CLibrary> library;
  velora_ts_logging* logging = nullptr;
  bool staysLoaded = false;  // because it had a table of callbacks
};
