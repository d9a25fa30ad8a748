#include "serving/Caller.h"
#include "serving/TestServer.h"
#include "support/Patterns.h"
#include "support/ScarceMemory.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

bool Has(const std::string& answer, const std::string& words) { return answer.find(words) != std::string::npos; }

// The headers without which a page elsewhere could use an answer.
void ExpectGuarded(const std::string& answer) {
  for (const char* header :
       {"Content-Security-Policy: default-src 'none'", "frame-ancestors 'none'", "X-Content-Type-Options: nosniff",
        "X-Frame-Options: DENY", "Cross-Origin-Resource-Policy: same-origin", "Referrer-Policy: no-referrer",
        "Cache-Control: no-"}) {
    EXPECT_TRUE(Has(answer, header)) << header << " in\n" << answer.substr(0, 1000);
  }
  EXPECT_FALSE(Has(answer, "Access-Control-Allow"));
}

std::string WithHeaders(int count) {
  std::string headers;
  for (int number = 0; number < count; ++number) {
    headers += "X-" + std::to_string(number) + ": y\r\n";
  }
  return Get("/echo?text=a", headers);
}

TEST(Answers, ToWhatIsNoRequestAreErrors) {
  const std::string host = "Host: localhost\r\n";
  const std::string good = "GET /echo?text=a HTTP/1.1\r\n";
  const struct {
    std::string what, sent;
    int status;
  } cases[] = {
      {"no version", "GET /\r\n" + host + "\r\n", 400},
      {"nothing", "\r\n\r\n", 400},
      {"zero bytes", std::string(100, '\0') + "\r\n\r\n", 400},
      {"a version to come", "GET / HTTP/3.0\r\n" + host + "\r\n", 505},
      {"the preface of HTTP/2", "PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n", 505},
      {"two blanks", "GET  / HTTP/1.1\r\n" + host + "\r\n", 400},
      {"an absolute address", "GET http://localhost/ HTTP/1.1\r\n" + host + "\r\n", 400},
      {"no path", "GET * HTTP/1.1\r\n" + host + "\r\n", 400},
      {"a tunnel", "CONNECT localhost:80 HTTP/1.1\r\n" + host + "\r\n", 405},
      {"a character that is not encoded", "GET /echo?text=\xc3\xb6 HTTP/1.1\r\n" + host + "\r\n", 400},
      {"a control character", "GET /echo?text=\x01 HTTP/1.1\r\n" + host + "\r\n", 400},
      {"no host", good + "\r\n", 400},
      {"two hosts", good + host + "Host: evil.example\r\n\r\n", 421},
      {"a foreign host", good + "Host: evil.example\r\n\r\n", 421},
      {"a foreign origin", Get("/echo?text=a", "Origin: http://evil.example\r\n"), 403},
      {"a foreign page", Get("/echo?text=a", "Sec-Fetch-Site: cross-site\r\nSec-Fetch-Mode: no-cors\r\n"), 403},
      {"a header without colon", Get("/echo?text=a", "Header\r\n"), 400},
      {"a header with a blank in its name", Get("/echo?text=a", "Content-Length : 5\r\n"), 400},
      {"a folded header", Get("/echo?text=a", "X-A: b\r\n c\r\n"), 400},
      {"a bare line end", Get("/echo?text=a", "X-A: b\nContent-Length: 5\r\n"), 400},
      {"a carriage return", Get("/echo?text=a", "X-A: b\rc\r\n"), 400},
      {"a zero in a header", Get("/echo?text=a", std::string("X-A: b\0c\r\n", 10)), 400},
      {"many headers", WithHeaders(101), 431},
      {"thousands of headers", WithHeaders(5000), 431},
      {"a large header", Get("/echo?text=a", "X-A: " + std::string(100'000, 'b') + "\r\n"), 431},
      {"a long address", Get("/echo?text=" + std::string(9000, 'a')), 414},
      {"an address of 10 MB", Get("/echo?text=" + std::string(10'000'000, 'a')), 414},
      {"a body", "POST /echo?text=a HTTP/1.1\r\n" + host + "Content-Length: 5\r\n\r\nabcde", 413},
      {"a body of a GET", Get("/echo?text=a", "Content-Length: 5\r\n") + "abcde", 413},
      {"a body in chunks", Get("/echo?text=a", "Transfer-Encoding: chunked\r\n") + "0\r\n\r\n", 413},
      {"two lengths", Get("/echo?text=a", "Content-Length: 0\r\nContent-Length: 5\r\n"), 413},
      {"a negative length", Get("/echo?text=a", "Content-Length: -1\r\n"), 413},
      {"PUT", "PUT /echo?text=a HTTP/1.1\r\n" + host + "Connection: close\r\n\r\n", 405},
      {"DELETE", "DELETE /echo?text=a HTTP/1.1\r\n" + host + "Connection: close\r\n\r\n", 405},
      {"a path to above", Get("/../../etc/passwd", "Connection: close\r\n"), 404},
      {"an encoded path to above", Get("/%2e%2e/%2e%2e%2fetc/passwd", "Connection: close\r\n"), 404},
      {"another path", Get("//echo?text=a", "Connection: close\r\n"), 404},
      {"a line end in a parameter", Get("/echo?tex%0d%0aX-Evil:%201=a", "Connection: close\r\n"), 400},
      {"a failure", Get("/fails", "Connection: close\r\n"), 500},
  };
  const TestServer server;
  for (const auto& [what, sent, status] : cases) {
    SCOPED_TRACE(what);
    const Caller caller(server.Port());
    caller.Send(sent);
    const std::string answer = caller.ReceiveUntil("}\n");
    EXPECT_EQ(StatusOf(answer), status) << answer.substr(0, 1000);
    EXPECT_TRUE(Matches(BodyOf(answer), R"(\{"error":"([^"\\]|\\.)+"\}\n)")) << BodyOf(answer);
    EXPECT_FALSE(Has(answer, "\r\nX-Evil"));
    ExpectGuarded(answer);
    EXPECT_EQ(BodyOf(AnswerToGet(server.Port(), "/echo?text=still")), "still");
  }
}

TEST(Answers, GoToSeveralRequestsOfAConnectionInTheirOrder) {
  const TestServer server;
  const Caller caller(server.Port());
  std::string sent;
  for (const char* word : {"one", "two", "three"}) {
    sent += Get("/echo?text=" + std::string(word));
  }
  sent += Get("/none") + Get("/echo?text=four", "Connection: close\r\n") + Get("/echo?text=five");
  for (const char byte : sent) {  // in pieces of any size
    caller.Send({&byte, 1});
  }
  const std::string answers = caller.ReceiveAll();
  std::size_t at = 0;
  for (const char* next : {"\r\n\r\none", "\r\n\r\ntwo", "\r\n\r\nthree", "HTTP/1.1 404 ", "\r\n\r\nfour"}) {
    at = answers.find(next, at);
    ASSERT_NE(at, std::string::npos) << next << " in\n" << answers;
  }
  EXPECT_TRUE(answers.ends_with("\r\n\r\nfour"));
}

TEST(Answers, AreSentAsTheClientTakesThem) {
  const TestServer server;
  const std::string document = AnswerToGet(server.Port(), "/document");
  EXPECT_TRUE(Has(document, "\r\nTransfer-Encoding: chunked\r\n"));
  EXPECT_TRUE(Has(document, "\r\nContent-Type: text/html; charset=utf-8\r\n"));
  EXPECT_TRUE(document.ends_with("\r\n0\r\n\r\n"));
  const std::string old = AnswerTo(server.Port(), "GET /document HTTP/1.0\r\nHost: localhost\r\n\r\n");
  EXPECT_EQ(BodyOf(old).size(), 10'000U);
  EXPECT_FALSE(Has(old, "Transfer-Encoding"));

  const std::string known = AnswerToGet(server.Port(), "/document", "If-None-Match: \"6\", W/\"7\"\r\n");
  EXPECT_EQ(StatusOf(known), 304);
  EXPECT_EQ(BodyOf(known), "");
  EXPECT_EQ(StatusOf(AnswerToGet(server.Port(), "/document", "If-None-Match: W/\"77\"\r\n")), 200);

  const std::string head =
      AnswerTo(server.Port(), "HEAD /document HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n");
  EXPECT_EQ(StatusOf(head), 200);
  EXPECT_EQ(BodyOf(head), "");
  EXPECT_EQ(BodyOf(AnswerToGet(server.Port(), "/echo?text=abc", "Range: bytes=1-1\r\n")), "abc");
}

TEST(Answers, AreCompressedForWhoAsksForIt) {
  const struct {
    std::string path, encodings;
    bool isCompressed;
  } cases[] = {
      {"/document", "gzip, deflate, br", true},
      {"/document", "br, GZIP;q=0.5", true},
      {"/echo?text=abc", "gzip", true},
      {"/document", "", false},
      {"/document", "br", false},
      {"/document", "gzip;q=0", false},
      {"/document", "gzip; q=0.000, br", false},
      {"/document", "xgzip", false},
  };
  const TestServer server;
  for (const auto& [path, encodings, isCompressed] : cases) {
    const std::string answer = AnswerToGet(server.Port(), path, "Accept-Encoding: " + encodings + "\r\n");
    EXPECT_EQ(Has(answer, "\r\nContent-Encoding: gzip\r\n"), isCompressed) << encodings;
    EXPECT_FALSE(Has(answer, "Content-Encoding: br")) << encodings;
    EXPECT_EQ(Has(BodyOf(answer), "\x1f\x8b"), isCompressed) << encodings;
    EXPECT_TRUE(Has(answer, "\r\nVary: Accept-Encoding\r\n"));
  }
}

TEST(Answers, ForWhichMemoryLacksEndTheirConnectionAlone) {
  std::atomic<int> complaints = 0;
  Velora::Http::Handlers handlers;
  handlers["/scarce"] = {Velora::Http::Weight::Light, [](Velora::Http::Question& question) {
                           const int some = std::stoi(question.RequiredText("some"));
                           Velora::Http::Answer answer;
                           answer.body = std::string(100, 'x');
                           ScarceMemory::RefuseAfter(some, 2);
                           return answer;
                         }};
  const auto server = Velora::Http::Listen({"127.0.0.1", 0}, {}, handlers, {}, [&](std::string_view line) {
    EXPECT_TRUE(line.starts_with("a connection was ended: "));
    ++complaints;
  });
  std::thread thread([&] { server->Serve(); });
  for (int some = 0; some < 80; ++some) {
    const std::string answer = AnswerToGet(server->Listens().port, "/scarce?some=" + std::to_string(some));
    EXPECT_TRUE(answer.empty() || StatusOf(answer) != 0) << answer;
  }
  EXPECT_EQ(StatusOf(AnswerToGet(server->Listens().port, "/scarce?some=1000000")), 200);
  server->End();
  thread.join();
  EXPECT_GT(complaints, 0);
}

TEST(Answers, ThatFailHalfwayDoNotLookWhole) {
  const TestServer server;
  const std::string answer = AnswerTo(server.Port(), Get("/breaks"));
  EXPECT_EQ(StatusOf(answer), 200);
  EXPECT_FALSE(answer.ends_with("0\r\n\r\n")) << answer;
}

}  // namespace
