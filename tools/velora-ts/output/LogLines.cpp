#include "output/LogLines.h"

#include "store/values/Json.h"
#include "store/values/StoredText.h"
#include "store/values/StoredTime.h"

namespace Velora::Ts {

using namespace Store;

std::string StoredTimeOf(const LogFile::Line& line) { return ToStoredTime(Time(std::chrono::microseconds(line.at))); }

std::string LogLineAsJson(const LogFile::Line& line) {
  std::string json = "{\"at\":";
  AppendText(json, StoredTimeOf(line));
  json += std::string(",\"level\":\"") + LogFile::InWords(line.level) + "\",\"source\":";
  AppendText(json, ToStoredText(line.source));
  json += ",\"text\":";
  AppendText(json, ToStoredText(line.text));
  return json + '}';
}

}  // namespace Velora::Ts
