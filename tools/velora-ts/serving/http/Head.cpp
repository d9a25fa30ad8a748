#include "serving/http/Head.h"

#include "serving/http/Answer.h"
#include "serving/http/Limits.h"
#include "serving/http/LowerCase.h"

#include <algorithm>
#include <map>

namespace Velora::Http {

namespace {

constexpr std::string_view lineEnd = "\r\n";

bool IsVisible(char character) { return character > ' ' && character < '\x7f'; }

bool IsToken(std::string_view text) {
  constexpr std::string_view separators = "\"(),/:;<=>?@[\\]{}";
  return !text.empty() && std::all_of(text.begin(), text.end(), [&](char character) {
    return IsVisible(character) && separators.find(character) == std::string_view::npos;
  });
}

// Bytes above ASCII are allowed in values, and mean nothing.
bool IsValue(std::string_view text) {
  return std::none_of(text.begin(), text.end(), [](char character) {
    return (static_cast<unsigned char>(character) < ' ' && character != '\t') || character == '\x7f';
  });
}

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t";
  const std::size_t begin = text.find_first_not_of(blanks);
  return begin == std::string_view::npos ? "" : text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

std::string_view TakeLine(std::string_view& text) {
  const std::size_t end = text.find(lineEnd);
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + lineEnd.size());
  return line;
}

/// Calls back with each element of a list that commas separate, in lower case and without blanks.
template <typename Take>
void ForEachElement(std::string_view list, Take&& take) {
  while (!list.empty()) {
    const std::size_t end = std::min(list.find(','), list.size());
    take(LowerCase(Trimmed(list.substr(0, end))));
    list.remove_prefix(std::min(end + 1, list.size()));
  }
}

void ReadRequestLine(std::string_view line, Head& head) {
  const std::size_t first = line.find(' ');
  const std::size_t last = line.rfind(' ');
  const std::string_view version = last == std::string_view::npos ? "" : line.substr(last + 1);
  if (last == first || !IsToken(line.substr(0, first))) {
    throw Refusal(400, "the request has no request line; expected \"GET PATH HTTP/1.1\"");
  }
  if (version != "HTTP/1.1" && version != "HTTP/1.0") {
    throw Refusal(505, "the request is not of HTTP/1.1 or HTTP/1.0");
  }
  head.isOld = version == "HTTP/1.0";
  head.method = line.substr(0, first);
  head.target = line.substr(first + 1, last - first - 1);
  if (head.target.size() > longestTarget) {
    throw Refusal(414, "the address has more than " + std::to_string(longestTarget) + " bytes");
  }
  if (head.target.empty() || !std::all_of(head.target.begin(), head.target.end(), IsVisible)) {
    throw Refusal(400, "the address has characters in it that are not encoded");
  }
}

using Headers = std::map<std::string, std::string>;

/// By names in lower case. What is given several times is joined, as the standard allows for lists.
Headers ReadHeaders(std::string_view lines) {
  Headers headers;
  std::size_t count = 0;
  for (std::string_view line = TakeLine(lines); !line.empty(); line = TakeLine(lines)) {
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos || !IsToken(line.substr(0, colon)) || !IsValue(line.substr(colon + 1))) {
      throw Refusal(400, "the request has a header that is none; expected \"NAME: VALUE\"");
    }
    if (++count > mostHeaders) {
      throw Refusal(431, "the request has more than " + std::to_string(mostHeaders) + " headers");
    }
    const auto [header, isNew] = headers.try_emplace(LowerCase(line.substr(0, colon)));
    header->second += (isNew ? "" : ", ") + std::string(Trimmed(line.substr(colon + 1)));
  }
  return headers;
}

void RefuseBody(const Headers& headers) {
  const auto length = headers.find("content-length");
  if (headers.contains("transfer-encoding") || (length != headers.end() && length->second != "0")) {
    throw Refusal(413, "the request has a body; expected none");
  }
}

bool Keeps(const std::string& connection) {
  bool keeps = true;
  ForEachElement(connection, [&](const std::string& option) { keeps = keeps && option != "close"; });
  return keeps;
}

bool TakesGzip(const std::string& encodings) {
  bool takes = false;
  ForEachElement(encodings, [&](const std::string& encoding) {
    const std::size_t parameter = encoding.find(';');
    const std::string_view weight = parameter == std::string::npos ? "" : Trimmed(encoding).substr(parameter + 1);
    const bool isRefused = weight.find_first_of("123456789") == std::string_view::npos && !weight.empty();
    takes = takes || (Trimmed(encoding.substr(0, parameter)) == "gzip" && !isRefused);
  });
  return takes;
}

}  // namespace

Head ReadHead(std::string_view text) {
  Head head;
  ReadRequestLine(TakeLine(text), head);
  Headers headers = ReadHeaders(text);
  if (!headers.contains("host")) {
    throw Refusal(400, "the request has no header Host");
  }
  RefuseBody(headers);
  head.host = headers["host"];
  head.origin = headers["origin"];
  head.fetchSite = headers["sec-fetch-site"];
  head.fetchMode = headers["sec-fetch-mode"];
  head.fetchDestination = headers["sec-fetch-dest"];
  head.ifNoneMatch = headers["if-none-match"];
  head.takesGzip = TakesGzip(headers["accept-encoding"]);
  head.keepsOpen = !head.isOld && Keeps(headers["connection"]);
  return head;
}

}  // namespace Velora::Http
