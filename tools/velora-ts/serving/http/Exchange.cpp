#include "serving/http/Exchange.h"

#include "store/Error.h"
#include "store/values/Json.h"

#include <cstddef>
#include <exception>
#include <map>
#include <string>

namespace Velora::Http {

namespace {

constexpr std::size_t portion = std::size_t{32} * 1024;  // of an answer that is written in pieces

// A browser keeps nothing of an answer, shows it nowhere but in a page of this server, and runs nothing in it. An
// answer can say otherwise.
const std::map<std::string, std::string> headersOfAll = {
    {"Cache-Control", "no-store"},
    {"Content-Security-Policy", "default-src 'none'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'"},
    {"Cross-Origin-Opener-Policy", "same-origin"},
    {"Cross-Origin-Resource-Policy", "same-origin"},
    {"Referrer-Policy", "no-referrer"},
    {"Vary", "Accept-Encoding"},
    {"X-Content-Type-Options", "nosniff"},
    {"X-Frame-Options", "DENY"}};

std::string TypeOf(const Answer& answer) {
  const bool lacksCharacterSet = answer.type == "text/html" || answer.type == "text/plain";
  return lacksCharacterSet ? answer.type + "; charset=utf-8" : answer.type;
}

}  // namespace

void Exchange::LeaveOutWhatIsKnown() {
  const auto tag = answer.headers.find("ETag");
  if (answer.status == 200 && tag != answer.headers.end() && head.ifNoneMatch.find(tag->second) != std::string::npos) {
    answer.status = 304;
    answer.body.clear();
    answer.write = nullptr;
  }
}

void Exchange::Give(httplib::Response& response) const {
  response.status = answer.status;
  std::map<std::string, std::string> headers = answer.headers;
  headers.insert(headersOfAll.begin(), headersOfAll.end());
  for (const auto& [name, value] : headers) {
    response.set_header(name, value);
  }
  const auto write = [this](std::size_t, httplib::DataSink& sink) { return WritePieces(sink); };
  if (!answer.write) {
    response.set_content(answer.body, TypeOf(answer));
  } else if (head.isOld) {
    response.set_content_provider(TypeOf(answer), write);
  } else {
    response.set_chunked_content_provider(TypeOf(answer), write);
  }
}

/// @return false to break the connection off: what is missing must not look like the end.
bool Exchange::WritePieces(httplib::DataSink& sink) const {
  std::string gathered;
  const auto send = [&] {
    if (!gathered.empty() && !sink.write(gathered.data(), gathered.size())) {
      throw Store::Error("the client has left, or does not read");
    }
    gathered.clear();
  };
  try {
    answer.write([&](std::string_view piece) {
      gathered += piece;
      if (weight == Weight::Live) {
        ExpectClient();
      }
      if (weight == Weight::Live || gathered.size() >= portion) {
        send();
      }
    });
    send();
    sink.done();
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

// A live answer may go on for days: each piece has a time of its own.
void Exchange::ExpectClient() const {
  client.BeginAnswer();
  if (!client.Send({})) {
    throw Store::Error("the client has left");
  }
}

Answer ErrorAnswer(int status, std::string_view why) {
  Answer answer;
  answer.status = status;
  answer.body = R"({"error":)";
  Store::AppendText(answer.body, why);
  answer.body += "}\n";
  if (status == 405) {
    answer.headers["Allow"] = "GET, HEAD";
  }
  return answer;
}

}  // namespace Velora::Http
