// The library for tests of hosts, which ends one that is inside on two threads at once.

#include "support/ComponentTest.h"

#include <thread>

namespace {

class OneThread : public ComponentTest {
 protected:
  OneThread() {
    create_directory(folder / "checked");
    std::filesystem::copy_file(ONE_THREAD_LIBRARY, checkedFile);
    checked = std::make_unique<Library>(checkedFile);
    PutSettings(current);
    logging = checked->Create("instrument.txt");
  }
  ~OneThread() override {
    Fakes::TheScene().hook = nullptr;
    logging = nullptr;
  }
  /// Saves an event, and does something while TS is asked to.
  void Save(const std::function<void()>& meanwhile) const {
    Fakes::TheScene().hook = [=](const std::string& entry) {
      if (entry.find("SaveEvent") != std::string::npos) {
        meanwhile();
      }
    };
    logging->SaveInstrumentEvent("A", "");
  }

  const std::filesystem::path checkedFile = folder / "checked" / std::filesystem::path(ONE_THREAD_LIBRARY).filename();
  std::unique_ptr<Library> checked;
  std::shared_ptr<Library::ITsLogging> logging;
};

TEST_F(OneThread, MayCallBackInAndBeFollowedByAnother) {
  Save([this] { logging->CreateInstrumentEvent("B"); });
  std::thread([this] { Save([] {}); }).join();
  logging->CreateInstrumentEvent("C");
}

TEST_F(OneThread, EndsTheHostThatHasTwoInside) {
  const auto onASecondOne = [this] { std::thread([this] { logging->CreateInstrumentEvent("B"); }).join(); };
  EXPECT_DEATH(
      Save(onASecondOne),
      "::CreateInstrumentEvent was called while another thread was inside .*::SaveInstrumentEvent; a host runs "
      "one operation at a time");
  logging = library->Create("instrument.txt");  // as it is shipped
  Save(onASecondOne);
}

}  // namespace
