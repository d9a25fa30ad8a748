#include "page/writer/LogColumns.h"

#include "page/writer/Column.h"
#include "store/values/Json.h"
#include "store/values/StoredText.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace Velora::Page {

using LogFile::Level;
using LogFile::Line;

namespace {

std::string AsJson(const std::string& text) {
  std::string json;
  Store::AppendText(json, Store::ToStoredText(text));
  return json;
}

std::size_t BytesOf(const Line& line) { return line.source.size() + line.text.size(); }

}  // namespace

LogColumns::LogColumns(LogFile::LogFiles& lines) {
  while (lines.Next()) {
    Keep(lines.Current());
  }
  leftOut[Level::Info] += lines.InfosLeftOut();
}

void LogColumns::Keep(const Line& line) {
  Kept& kept = line.level == Level::Info ? infos : others;
  kept.lines.push_back(line);
  for (kept.bytes += BytesOf(line); kept.lines.size() > mostLines || kept.bytes > mostBytes; kept.lines.pop_front()) {
    kept.bytes -= BytesOf(kept.lines.front());
    ++leftOut[kept.lines.front().level];
  }
}

std::string LogColumns::InWords() const {
  std::string words = std::to_string(infos.lines.size() + others.lines.size()) + " lines of the log";
  for (const auto& [level, lines] : leftOut) {
    words += lines > 0 ? " (not " + std::to_string(lines) + ' ' + LogFile::InWords(level) + ')' : "";
  }
  return words;
}

void LogColumns::AppendJson(std::string& json, long long start) const {
  std::vector<const Line*> lines;
  const auto address = [](const Line& line) { return &line; };
  std::transform(infos.lines.begin(), infos.lines.end(), std::back_inserter(lines), address);
  std::transform(others.lines.begin(), others.lines.end(), std::back_inserter(lines), address);
  std::stable_sort(lines.begin(), lines.end(), [](const Line* a, const Line* b) { return a->at < b->at; });
  Column at, level, source, text;
  for (const Line* line : lines) {
    at.AddWhole(line->at - start);
    level.AddText(AsJson(LogFile::InWords(line->level)));
    source.AddText(AsJson(line->source));
    text.AddText(AsJson(line->text));
  }
  json += "{\"at\":";
  at.MoveTo(json);
  json += ",\"level\":";
  level.MoveTo(json);
  json += ",\"source\":";
  source.MoveTo(json);
  json += ",\"text\":";
  text.MoveTo(json);
  json += ",\"left_out\":{";
  const char* separator = "\"";
  for (const Level one : {Level::Error, Level::Warning, Level::Info}) {
    const auto lacking = leftOut.find(one);
    json += separator + std::string(LogFile::InWords(one)) +
            "\":" + std::to_string(lacking == leftOut.end() ? 0 : lacking->second);
    separator = ",\"";
  }
  json += "}}";
}

}  // namespace Velora::Page
