// The library's file: the folder that it lies in, and what happens when it leaves memory.

#include "support/ComponentTest.h"

#include <cstdio>
#include <cstdlib>
#include <latch>
#include <thread>

namespace {

using Loading = ComponentTest;

TEST_F(Loading, DataRootIsTheFolderOfTheFileWhateverItsName) {
  if (!System::pathsAreBytes) {
    GTEST_SKIP() << "other names and lengths can be had here: WindowsPathsTest.cpp";
  }
  const std::string half(250, 'l');
  for (const std::string& name :
       {std::string("two  blanks "), std::string("letters \xC3\xBC\xE6\xBC\xA2 \xFF"), std::string("line\nbreak"),
        std::string("a\\012b"), std::string("100%s \"quoted\" '"), std::string("x (deleted)"), half + "/" + half}) {
    const std::filesystem::path place = dataRoot / name;
    create_directories(place);
    copy_file(file, place / "lib.so");
    PutSettings(place);
    Library placed(place / "lib.so");
    placed.Create("i");
    const std::string lines = Check(place.string() + '/', "TSAL SetTsalPath('" + place.string() + "/')");
    EXPECT_NE(Journal().find(lines), std::string::npos) << name;
  }
}

TEST_F(Loading, DataRootDependsNeitherOnLinksNorOnTheDirectoryItWasLoadedFrom) {
  if (!System::pathsAreBytes) {
    GTEST_SKIP() << "a link takes rights here that a test has not; the directory: WindowsPathsTest.cpp";
  }
  create_directory_symlink(dataRoot, current / "link");
  for (const auto& [from, path] :
       {std::pair{current, "./link" / file.filename()}, std::pair{dataRoot, "." / file.filename()}}) {
    Unload();
    std::filesystem::current_path(from);
    library = std::make_unique<Library>(path);
    std::filesystem::current_path("/");
    library->Create("i");
    const std::string lines = DataRootLines(root) + notFound;
    EXPECT_NE(Journal().find(lines), std::string::npos) << path;
  }
}

TEST_F(Loading, DataRootBeyondTheLongestPathOfTheSystemIsStillWhole) {
  if (!System::pathsAreBytes) {
    GTEST_SKIP() << "WindowsPathsTest.cpp does it";
  }
  const std::string step(200, 'd');
  std::string place = root;
  std::filesystem::current_path(dataRoot);
  while (place.size() < 5000) {  // no one call can name this place
    std::filesystem::create_directory(step);
    std::filesystem::current_path(step);
    place += step + '/';
  }
  std::filesystem::copy_file(VELORA_LIBRARY, "lib.so");
  PutSettings(".");
  Library deep("./lib.so");
  deep.Create("i");
  EXPECT_NE(Journal().find(DataRootLines(place) + "TSAL SetTsalPath('')"), std::string::npos);
}

TEST_F(Loading, UnloadReleasesFactoryLoggingAndGatewayInThisOrderAThousandTimes) {
  PutSettings(current);
  constexpr int measured = 700, times = 300 + measured;
  std::size_t inUse = 0;
  for (int time = 0; time < times; ++time) {
    library->Create("i")->SaveInstrumentEvent("A", "g");
    // What a factory's deleter holds is released with the last weak reference, which is the library's.
    library->SetLogging(nullptr, std::make_shared<HostLogging>("logging"));
    library->SetGateway(
        {new Library::IFactory, [slot = std::make_shared<Released>("factory slot")](auto* it) { delete it; }},
        std::make_shared<HostGateway>("gateway"));
    Journal();
    Unload();
    EXPECT_EQ(Journal(), Lines("factory slot released", "logging released", "gateway released"));
    library = std::make_unique<Library>(file);
    // By then the loader has made its tables, and malloc keeps as many of their parts for the thread as it ever does.
    inUse = time == times - measured ? System::MemoryInUse() : inUse;
  }
  // MinGW's thread library keeps 24 bytes for each of the two mutexes of every library that was loaded.
  const std::size_t kept = System::pathsAreBytes ? 0 : 2 * 24 * measured;
  // The smallest allocation takes 32 bytes, so one for each time exceeds this.
  const std::size_t varies = 16 * measured;
  EXPECT_LE(System::MemoryInUse(), inUse + varies + kept);
}

TEST_F(Loading, ObjectsThatAHostHoldsAtItsEndDoNoHarm) {
  const auto endHolding = [this] {
    static std::shared_ptr<Library::ITsLogging> logging;
    static std::shared_ptr<Quor::Velora::Unmanaged::ITsLoggingConfigurator> configurator;
    logging = library->Create("i");
    library->GetConfigurator(configurator);
    library->SetGateway(nullptr, std::make_shared<HostGateway>("gateway"));
    static const Library* const stays = library.release();
    EXPECT_NE(stays, nullptr);
    std::exit(0);
  };
  EXPECT_EXIT(endHolding(), testing::ExitedWithCode(0), "");
}

TEST_F(Loading, ObjectsMayCallBackWhileTheLibraryLeaves) {
  Fakes::TheScene().answers.servicePresent = false;
  const auto callBack = [create = library->Create, getFactory = library->GetFactory] {
    EXPECT_NE(create("i"), nullptr);
    EXPECT_NE(getFactory(), nullptr);
  };
  library->SetLogging(nullptr, std::make_shared<HostLogging>("logging", callBack));
  const auto callBackAndPutAway = [=, setLogging = library->SetLogging, setGateway = library->SetGateway] {
    callBack();
    setLogging(nullptr, nullptr);
    setGateway(nullptr, nullptr);
  };
  library->SetGateway(nullptr, std::make_shared<HostGateway>("gateway", callBackAndPutAway));
  Journal();
  Unload();
  // The first finds no object and the gateway; the second finds the object made then, and no gateway.
  const std::string asked = Scope("CheckTsServiceAvailability", "the host's gateway:", "TSAL IsTsServicePresent()");
  EXPECT_EQ(Journal(),
            Lines("logging released", Scope("CreateTsLoggingSession", asked), Scope("GetInstance", asked, notSupported),
                  "gateway released", Scope("CreateTsLoggingSession", checkedPresence), Scope("GetInstance"),
                  Scope("SetInstance"), Scope("SetTolvaServicesInstance")));
}

// For a process that ends with its library loaded.
const Library* leaving = nullptr;
int successors = 0;

/// Says that it was released, calls back, and puts another of its kind in.
void Leave(void (*putAnother)()) {
  std::fputs("released", stderr);
  leaving->Create("i")->SaveInstrumentEvent("A", "g");
  leaving->NewConfigurator()->SetParentActivityExec("n", "a", "b", "c");
  ++successors < 100 ? putAnother() : void();
}
void PutLogging() {
  leaving->SetLogging(nullptr, std::make_shared<HostLogging>("logging", [] { Leave(PutLogging); }));
}
void PutGateway() {
  leaving->SetGateway(nullptr, std::make_shared<HostGateway>("gateway", [] { Leave(PutGateway); }));
}
void PutFactory() {
  const auto slot = std::make_shared<Released>("factory slot", [] { Leave(PutFactory); });
  leaving->SetGateway({new Library::IFactory, [slot](auto* it) { delete it; }}, nullptr);
}

TEST_F(Loading, EndOfTheProcessReleasesEachSlotOnceWhateverDestructorsPutIn) {
  PutSettings(current);
  const auto endWith = [this](void (*put)()) {
    leaving = library.release();
    put();
    std::exit(0);
  };
  for (const auto put : {PutLogging, PutGateway, PutFactory}) {
    EXPECT_EXIT(endWith(put), testing::ExitedWithCode(0), testing::Eq(std::string("released")));
  }
}

TEST_F(Loading, OperationThatOutlivesMainStillWritesItsExitLine) {
  if (!System::pathsAreBytes) {
    GTEST_SKIP() << "other threads end before the library leaves here";
  }
  const auto endInsideAnOperation = [this] {
    static std::latch inside(1), libraryHasLeft(1);
    static std::thread* thread = nullptr;
    Unload();
    std::atexit([] {  // is done after what the library, loaded later, has to do at the end
      libraryHasLeft.count_down();
      thread->join();
      std::fputs(Journal().c_str(), stderr);
    });
    library = std::make_unique<Library>(file);
    const auto logging = BroughtUp();
    At("TSAL SaveActivityExecution", [] { inside.count_down(), libraryHasLeft.wait(); });
    thread = new std::thread([logging] { logging->UpdateActivityExecution("g"); });
    inside.wait();
    leaving = library.release();
    std::exit(0);
  };
  EXPECT_EXIT(endInsideAnOperation(), testing::ExitedWithCode(0),
              "\ninfo <<Quor::Velora::Infra::TsLogging::TsLogging::UpdateActivityExecution\n$");
}

}  // namespace
