#pragma once

#include "serving/http/Server.h"
#include "store/Error.h"

#include <atomic>
#include <memory>
#include <string>
#include <thread>

/// A server of a few answers, on a thread.
class TestServer {
 public:
  explicit TestServer(const Velora::Http::Limits& limits = {})
      : server(Velora::Http::Listen({"127.0.0.1", 0}, {}, Handlers(), limits)), thread([this] { server->Serve(); }) {}
  TestServer(const TestServer&) = delete;
  TestServer& operator=(const TestServer&) = delete;
  ~TestServer() { End(); }

  void End() {
    if (thread.joinable()) {
      server->End();
      thread.join();
    }
  }
  int Port() const { return server->Listens().port; }

  static constexpr std::size_t sizeOfLarge = 16 * 1024 * 1024;
  std::atomic<int> largeBegun{0}, largeEnded{0};  // of the path /large
  std::atomic<int> liveOnes{0};

 private:
  using Question = Velora::Http::Question;
  using Answer = Velora::Http::Answer;
  using Send = Velora::Http::Send;
  using Weight = Velora::Http::Weight;

  struct Counted {
    explicit Counted(std::atomic<int>& count) : count(count) { ++count; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    ~Counted() { --count; }
    std::atomic<int>& count;
  };

  Velora::Http::Handlers Handlers() {
    return {{"/echo", {Weight::Light, [](Question& question) { return Echo(question); }}},
            {"/document", {Weight::Light, [](Question&) { return Document(); }}},
            {"/large", {Weight::Heavy, [this](Question&) { return Large(); }}},
            {"/live", {Weight::Live, [this](Question&) { return Live(); }}},
            {"/breaks", {Weight::Light, [](Question&) { return Breaks(); }}},
            {"/fails", {Weight::Light, [](Question&) -> Answer { throw std::runtime_error("no\r\nsuch\xff thing"); }}}};
  }
  static Answer Echo(Question& question) {
    Answer answer;
    answer.type = "text/plain";
    answer.body = question.RequiredText("text");
    question.ExpectNoOthers();
    return answer;
  }
  static Answer Document() {
    Answer answer;
    answer.type = "text/html";
    answer.headers = {{"ETag", "W/\"7\""}, {"Cache-Control", "no-cache"}};
    answer.write = [](const Send& send) {
      for (int count = 0; count < 1000; ++count) {
        send("0123456789");
      }
    };
    return answer;
  }
  Answer Large() {
    ++largeBegun;
    Answer answer;
    answer.write = [this](const Send& send) {
      const std::string piece(64 * 1024, 'x');
      try {
        for (std::size_t sent = 0; sent < sizeOfLarge; sent += piece.size()) {
          send(piece);
        }
      } catch (const Velora::Store::Error&) {
        ++largeEnded;
        throw;
      }
      ++largeEnded;
    };
    return answer;
  }
  Answer Live() {
    Answer answer;
    answer.type = "text/event-stream";
    answer.write = [this](const Send& send) {
      const Counted counted(liveOnes);
      send("data: first\n\n");
      for (;;) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        send("");
      }
    };
    return answer;
  }
  static Answer Breaks() {
    Answer answer;
    answer.write = [](const Send& send) {
      send("[1, ");
      throw Velora::Store::Error("the store is gone");
    };
    return answer;
  }

  const std::unique_ptr<Velora::Http::Server> server;
  std::thread thread;
};
