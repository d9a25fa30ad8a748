#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#ifdef _WIN32
#define FAKES_API  // a DLL without marks exports everything
#else
#define FAKES_API __attribute__((visibility("default")))
#endif

/// What the fakes of TSAL, of the logger and of the instrument access share. They write into one journal, so that it
/// shows in which order lines were written and calls were made.
namespace Fakes {

/// What the fakes answer.
struct Answers {
  bool servicePresent = true;
  bool connectable = true;
  std::vector<std::string> versions = {"Section", "TiltSeries"};  // what every activities file describes
  std::string newGuid = "new guid";                               // given to an execution that is saved without one
  std::string fetchedGuid;  // Id of every fetched execution; empty for the one that was asked for
  std::string fetchedDescription = "fetched description";
  std::string configurationGuid = "configuration";
  std::string fileText = "text of the file";
  bool instrumentAvailable = true;
  std::int32_t microscopeType = 0;
  std::string optionText = "options";
};

struct Scene {
  std::string journal;  // entries such as `info >>Quor::…::GetInstance` or `TSAL SetTsalPath('')`, each a line
  Answers answers;
  /// Told of each entry before it is answered; may do or raise anything.
  std::function<void(const std::string& entry)> hook;
};

FAKES_API Scene& TheScene();

/// A call that a fake was asked for: into the journal, then to the hook; what there is to answer.
FAKES_API const Answers& Call(const std::string& entry);

/// A call that comes with every line: to the hook alone.
FAKES_API void UnwrittenCall(const std::string& entry);

/// Something that cannot raise, a release: into the journal alone.
FAKES_API void Note(std::string_view entry);

/// While one of these lives, a test that lets memory run out spares the thread: what happens is always written down.
class FAKES_API Aside {
 public:
  Aside();
  Aside(const Aside&) = delete;
  Aside& operator=(const Aside&) = delete;
  ~Aside();
  static bool IsOpen();
};

}  // namespace Fakes
