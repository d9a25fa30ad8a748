#pragma once

#include <VeloraLogFile/LogFile.h>

#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace Velora::LogFile {

/// Which lines of logs are wanted.
struct Selection {
  std::vector<std::string> files;  ///< In any order: of rotated files, or of several programs.
  LineForm form;
  bool infos = false;  ///< Informational lines too.
};

/// The lines of several logs of some time, in the order of their times.
class LogFiles {
 public:
  /// @param from,to microseconds since 1970; lines before and after are left out.
  /// @throws std::runtime_error as LogFile does.
  LogFiles(const Selection& selection, long long from, long long to, bool following = false);

  /// Goes to the next line. @return whether there is one.
  bool Next();
  const Line& Current() const { return chosen->file.Current(); }
  /// How many informational lines of that time were left out so far, because they were not asked for.
  long long InfosLeftOut() const { return infosLeftOut; }

 private:
  struct Source {
    LogFile file;
    bool ready = false;  // whether its current line is still to come
  };

  bool Step();

  const bool infos;
  const long long from, to;
  long long infosLeftOut = 0;
  std::vector<std::unique_ptr<Source>> sources;
  Source* chosen = nullptr;
};

}  // namespace Velora::LogFile
