// What a client sends to the server of pages: whatever it is, every answer is one, is guarded, and says in JSON what
// was wrong; nothing of the request gets into the headers of an answer.

#include "Fuzz.h"
#include "serving/http/Responder.h"

#include <VeloraText/Character.h>

#include <set>
#include <string_view>

namespace {

using namespace Velora;

/// A client that has sent all it will ever send.
class SentClient : public Http::Client {
 public:
  SentClient(std::string_view sent, std::size_t portion) : sent(sent), portion(portion) {}

  void AwaitRequest() override {}
  void BeginAnswer() override {}
  std::size_t Receive(char* buffer, std::size_t size) override {
    const std::size_t count = sent.copy(buffer, std::min(size, portion));
    sent.remove_prefix(count);
    return count;
  }
  bool Send(std::string_view bytes) override {
    got += bytes;
    return true;
  }

  std::string got;

 private:
  std::string_view sent;
  const std::size_t portion;
};

Http::Answer Echo(Http::Question& question) {
  Http::Answer answer;
  answer.type = "text/plain";
  answer.body = question.RequiredText("text") + question.OneOf("state", {"running", "stopped"});
  for (const std::string& text : question.Texts("where")) {
    answer.body += text;
  }
  answer.body += std::to_string(question.Whole("limit", 1, 500).value_or(0));
  question.ExpectNoOthers();
  return answer;
}

Http::Answer Pieces(Http::Question&) {
  Http::Answer answer;
  answer.headers["ETag"] = "W/\"7\"";
  answer.write = [](const Http::Send& send) { send("[]"); };
  return answer;
}

bool IsText(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = Text::SequenceLength(text);
    if (length == 0 || static_cast<unsigned char>(text[0]) < ' ') {
      return false;
    }
    text.remove_prefix(length);
  }
  return true;
}

void RequireHeaders(std::string_view lines) {
  static const std::set<std::string_view> known = {"Allow",
                                                   "Cache-Control",
                                                   "Connection",
                                                   "Content-Encoding",
                                                   "Content-Length",
                                                   "Content-Security-Policy",
                                                   "Content-Type",
                                                   "Cross-Origin-Opener-Policy",
                                                   "Cross-Origin-Resource-Policy",
                                                   "ETag",
                                                   "Referrer-Policy",
                                                   "Transfer-Encoding",
                                                   "Vary",
                                                   "X-Content-Type-Options",
                                                   "X-Frame-Options"};
  std::set<std::string_view> names;
  while (!lines.empty()) {
    const std::size_t end = std::min(lines.find("\r\n"), lines.size());
    const std::string_view line = lines.substr(0, end);
    names.insert(line.substr(0, line.find(':')));
    Require(known.count(line.substr(0, line.find(':'))) == 1, "a header is ours: " + std::string(line));
    lines.remove_prefix(std::min(end + 2, lines.size()));
  }
  for (const char* name : {"Cache-Control", "Content-Security-Policy", "X-Content-Type-Options", "X-Frame-Options"}) {
    Require(names.count(name) == 1, std::string("an answer is guarded by ") + name);
  }
}

void RequireAnswer(const std::string& got) {
  static const std::set<std::string> statuses = {"200", "304", "400", "403", "404", "405",
                                                 "413", "414", "421", "431", "505"};
  Require(got.rfind("HTTP/1.1 ", 0) == 0 && statuses.count(got.substr(9, 3)) == 1, "an answer has a status: " + got);
  const std::size_t line = got.find("\r\n") + 2, end = got.find("\r\n\r\n");
  Require(end != std::string::npos, "an answer has a head: " + got);
  const std::string headers = got.substr(line, end - line), body = got.substr(end + 4);
  RequireHeaders(headers);
  const bool isPlain = headers.find("Content-Encoding") == std::string::npos;
  if (got[9] == '4' && isPlain && !body.empty()) {
    Require(body.rfind("{\"error\":\"", 0) == 0 && body.size() > 13 && body.substr(body.size() - 3) == "\"}\n",
            "an error is JSON: " + body);
    Require(IsText(body.substr(0, body.size() - 1)), "an error is a text: " + body);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Http::Responder responder(
      Http::Access({"127.0.0.1", 8437}, {"store.lab.example"}),
      {{"/echo", {Http::Weight::Light, &Echo}}, {"/pieces", {Http::Weight::Heavy, &Pieces}}}, Http::Limits());
  const std::string sent(data, data + size);
  for (const std::size_t portion : {std::size_t{1} << 20U, std::size_t{7}}) {
    SentClient client(sent, portion);
    Http::HeadReader heads(client);
    bool goesOn = true;
    while (goesOn) {
      client.got.clear();
      goesOn = responder.AnswerNext(heads, client);
      if (goesOn || !client.got.empty()) {
        RequireAnswer(client.got);
      }
    }
  }
  return 0;
}
