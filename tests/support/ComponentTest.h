#pragma once

#include "support/HostObjects.h"
#include "support/Library.h"
#include "support/Lines.h"
#include "support/ScratchFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

/// A test of the library as it is shipped, on fakes: each has a copy of it in a folder of its own, which is the data
/// root, and another folder as the current directory. Both are empty otherwise.
class ComponentTest : public testing::Test {
 protected:
  ComponentTest() {
    Fakes::TheScene() = {};
    create_directory(current);
    create_directory(dataRoot);
    std::filesystem::copy_file(VELORA_LIBRARY, file);
    std::filesystem::current_path(current);
    library = std::make_unique<Library>(file);
  }
  ~ComponentTest() override {
    Unload();
    std::filesystem::current_path("/");
  }

  void Unload() {
    Fakes::TheScene().hook = nullptr;
    library.reset();
    EXPECT_FALSE(System::IsLoaded(file));
  }

  /// Lets the next call make a logging object and a gateway that knows nothing; nothing is in the journal then.
  void EmptySlots() {
    library->SetLogging(nullptr, nullptr);
    library->SetGateway(nullptr, nullptr);
    Journal();
  }

  static void PutSettings(const std::filesystem::path& place) {
    std::ofstream(place / "TSAL.config");
    std::ofstream(place / "activities.xml");
  }

  /// A logging object after a bring-up with the settings in the current directory, and nothing in the journal.
  std::shared_ptr<Library::ITsLogging> BroughtUp() {
    PutSettings(current);
    auto logging = library->Create("instrument.txt");
    Journal();
    return logging;
  }

  const ScratchFolder folder;
  const std::filesystem::path current = canonical(folder.path) / "current";
  const std::filesystem::path dataRoot = canonical(folder.path) / "data root";
  const std::filesystem::path file = dataRoot / std::filesystem::path(VELORA_LIBRARY).filename();
  const std::string root = dataRoot.string() + System::separator;  // as TS and the log are told of it
  std::unique_ptr<Library> library;
};
