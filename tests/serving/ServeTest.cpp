#include "serving/Caller.h"
#include "support/Program.h"
#include "support/ScratchFolder.h"
#include "support/Shell.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>

namespace {

class InFolder : public testing::Test {
 protected:
  const ScratchFolder folder;
};

/// velora-ts serve, as a lab starts it, over a store that no host has made yet.
class ServeTest : public WithShell<InFolder> {
 protected:
  ServeTest() { folder.Write("TSAL.config", "<TSAL><Database Backend='sqlite3' Connection='ts.db'/></TSAL>"); }

  /// Starts it at a free port. @return the port
  int Start(const std::string& options = "", const std::string& address = "127.0.0.1") {
    program.emplace(VELORA_TS " serve --config '" + folder.path.string() + "' --listen " + address + ":0 " + options +
                        " 2>'" + (folder / "complaints").string() + "'",
                    folder / "line");
    std::string line;
    while (line.find('\n') == std::string::npos) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
      line = ContentOf(folder / "line");
    }
    const std::string before = "serving '" + (folder / "ts.db").string() + "' at http://" + address + ":";
    EXPECT_TRUE(line.starts_with(before)) << line;
    return std::stoi(line.substr(before.size()));
  }

  std::optional<Program> program;
};

TEST_F(ServeTest, EndsWhenItIsAskedToWhateverClientsDo) {
  for (const int signal : {SIGINT, SIGTERM}) {
    const int port = Start();
    EXPECT_EQ(StatusOf(AnswerToGet(port, "/none")), 404);
    const Caller silent(port);
    const Caller slow(port);
    slow.Send("GET / HT");
    program->Signal(signal);
    EXPECT_TRUE(silent.IsClosed());
    EXPECT_TRUE(slow.IsClosed());
    EXPECT_EQ(program->ExitCode(), 0);
    EXPECT_TRUE(ContentOf(folder / "complaints").find("ts.db' is not there yet") != std::string::npos);
    std::filesystem::remove(folder / "line");
  }
  EXPECT_FALSE(exists(folder / "ts.db")) << "it made a store";
}

TEST_F(ServeTest, EndsAlthoughAServerDoesNotAnswer) {
  const int server = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);  // accepts nothing
  ASSERT_EQ(listen(server, 9), 0);
  sockaddr_in address{};
  socklen_t size = sizeof address;
  getsockname(server, reinterpret_cast<sockaddr*>(&address), &size);
  folder.Write("TSAL.config", "<TSAL><Database Backend='postgresql' Connection='postgresql://127.0.0.1:" +
                                  std::to_string(ntohs(address.sin_port)) + "/ts?connect_timeout=600'/></TSAL>");
  for (const std::string verb : {"serve --listen 127.0.0.1:0", "watch --stopped"}) {
    program.emplace(VELORA_TS " " + verb + " --config '" + folder.path.string() + "' 2>&1", folder / "line");
    const int connection = accept(server, nullptr, nullptr);
    program->Signal(SIGTERM);
    EXPECT_EQ(program->ExitCode(), 0) << verb;
    close(connection);
  }
  close(server);
}

TEST_F(ServeTest, AllowsTheNamesThatItIsGiven) {
  const int port = Start("--host store.lab.example --host other.lab.example");
  const auto statusFor = [port](const std::string& host) {
    return StatusOf(AnswerTo(port, "GET /none HTTP/1.1\r\nConnection: close\r\nHost: " + host + "\r\n\r\n"));
  };
  EXPECT_EQ(statusFor("store.lab.example"), 404);
  EXPECT_EQ(statusFor("other.lab.example:443"), 404);
  EXPECT_EQ(statusFor("evil.example"), 421);
}

TEST_F(ServeTest, SaysWhyItCannotBegin) {
  const std::string port = std::to_string(Start());
  const struct {
    std::string options;
    int code;
    std::string words;
  } cases[] = {
      {"--config . --listen 127.0.0.1:" + port, 3, "cannot listen at 127.0.0.1:" + port},
      {"--config . --listen 192.0.2.1:8437", 3, "cannot listen at 192.0.2.1:8437"},
      {"--config . --listen 8437", 2, "expected ADDRESS:PORT"},
      {"--config nowhere", 3, "nowhere"},
  };
  for (const auto& [options, code, words] : cases) {
    EXPECT_EQ(Shell(VELORA_TS " serve " + options), code) << options;
    EXPECT_TRUE(Says(words)) << said;
  }
}

TEST_F(ServeTest, AloneNeedsTheLibraryOfTheServer) {
  ASSERT_EQ(Shell("LD_TRACE_LOADED_OBJECTS=1 " VELORA_TS), 0);
  EXPECT_FALSE(Says("httplib")) << said;
  copy(VELORA_TS, folder / "velora-ts");
  const std::string alone = "'" + (folder / "velora-ts").string() + "'";
  EXPECT_EQ(Shell(alone + " serve --config '" + folder.path.string() + "'"), 3);
  EXPECT_TRUE(Says("velora-ts-server.so")) << said;
}

TEST_F(ServeTest, SaysWhatItMeansThatOtherComputersReachIt) {
  for (const char* address : {"0.0.0.0", "127.0.0.1"}) {
    std::filesystem::remove(folder / "line");
    Start("", address);
    program->Signal(SIGTERM);
    EXPECT_EQ(program->ExitCode(), 0);
    const bool isSaid = ContentOf(folder / "complaints").find("no login and no encryption") != std::string::npos;
    EXPECT_EQ(isSaid, std::string(address) == "0.0.0.0");
  }
}

}  // namespace
