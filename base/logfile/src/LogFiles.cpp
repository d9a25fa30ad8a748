#include <VeloraLogFile/LogFiles.h>

namespace Velora::LogFile {

LogFiles::LogFiles(const Selection& selection, long long from, long long to, bool following)
    : infos(selection.infos), from(from), to(to) {
  for (const std::string& path : selection.files) {
    sources.push_back(std::make_unique<Source>(Source{LogFile(path, selection.form, following)}));
  }
}

bool LogFiles::Next() {
  while (Step()) {
    const Line& line = Current();
    if (line.at < from || line.at > to) {
      continue;
    }
    if (infos || line.level != Level::Info) {
      return true;
    }
    ++infosLeftOut;
  }
  return false;
}

bool LogFiles::Step() {
  chosen = nullptr;
  for (const auto& source : sources) {
    source->ready = source->ready || source->file.Next();
    if (source->ready && (chosen == nullptr || source->file.Current().at < chosen->file.Current().at)) {
      chosen = source.get();
    }
  }
  if (chosen == nullptr) {
    return false;
  }
  chosen->ready = false;
  return true;
}

}  // namespace Velora::LogFile
