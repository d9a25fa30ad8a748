#include "serving/http/Access.h"
#include "serving/http/Answer.h"
#include "store/Error.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace Velora::Http;

int StatusFor(const Access& access, const Head& head) {
  try {
    access.Check(head);
    return 200;
  } catch (const Refusal& refusal) {
    return refusal.Status();
  }
}

TEST(AccessTest, TakesOnlyNamesOfItsOwn) {
  const struct {
    std::string listens, name, host;
    int status;
  } cases[] = {
      {"127.0.0.1", "", "127.0.0.1:8437", 200},
      {"127.0.0.1", "", "LocalHost", 200},
      {"127.0.0.1", "", "localhost:9000", 200},  // through a tunnel
      {"127.0.0.1", "", "[::1]:8437", 200},
      {"127.0.0.1", "Store.lab.example", "store.LAB.example:443", 200},
      {"127.0.0.1", "store.lab.example", "evil.example", 421},
      {"127.0.0.1", "store.lab.example", "lab.example", 421},
      {"127.0.0.1", "", "localhost.evil.example", 421},
      {"127.0.0.1", "", "evil.example:8437", 421},  // which can lead here all the same
      {"127.0.0.1", "", "localhost:80@evil.example", 421},
      {"127.0.0.1", "", "evil.example, localhost", 421},
      {"127.0.0.1", "", "localhost, evil.example", 421},
      {"127.0.0.1", "", "192.0.2.7", 421},
      {"127.0.0.1", "", "", 421},
      {"127.0.0.1", "", "[::1", 421},
      {"127.0.0.1", "", "[]", 421},
      {"127.0.0.1", "", ":8437", 421},
      {"127.0.0.1", "", "localhost:", 421},
      {"127.0.0.1", "", "localhost:8437:1", 421},
      {"192.0.2.7", "", "192.0.2.7:8437", 200},
      {"192.0.2.7", "", "192.0.2.8:8437", 421},
      {"0.0.0.0", "", "192.0.2.8:8437", 200},
      {"::", "", "[2001:db8::7]:8437", 200},
      {"0.0.0.0", "", "evil.example", 421},
      {"0.0.0.0", "", "1.2.3.4.evil.example", 421},
  };
  for (const auto& [listens, name, host, status] : cases) {
    const Access access({listens, 8437}, name.empty() ? std::vector<std::string>{} : std::vector<std::string>{name});
    Head head;
    head.host = host;
    EXPECT_EQ(StatusFor(access, head), status) << "Host: " << host << ", which listens at " << listens;
  }
}

TEST(AccessTest, RefusesPagesOfAnotherPort) {
  const struct {
    std::string host, origin;
    int status;
  } cases[] = {
      {"localhost:8437", "http://localhost:8437", 200},
      {"localhost:8437", "http://localhost:3000", 403},
      {"localhost:8437", "http://localhost", 403},
      {"localhost:80", "http://localhost", 200},
      {"[::1]:8437", "http://[::1]:8437", 200},
      {"[::1]:8437", "http://[::1]", 403},
      {"store.lab.example", "https://store.lab.example", 200},
      {"store.lab.example", "https://store.lab.example:8443", 200},  // a proxy can leave the port out
      {"localhost:8437", "https://store.lab.example", 403},
  };
  const Access access({"127.0.0.1", 8437}, {"store.lab.example"});
  for (const auto& [host, origin, status] : cases) {
    Head head;
    head.host = host;
    head.origin = origin;
    EXPECT_EQ(StatusFor(access, head), status) << origin << " asks " << host;
  }
}

TEST(AccessTest, RefusesPagesOfElsewhere) {
  const struct {
    std::string origin, site, mode, destination;
    int status;
  } cases[] = {
      {"", "", "", "", 200},  // no browser
      {"", "same-origin", "cors", "empty", 200},
      {"", "none", "navigate", "document", 200},        // typed by the reader
      {"", "cross-site", "navigate", "document", 200},  // a link that a colleague sent
      {"", "cross-site", "navigate", "iframe", 403},
      {"", "cross-site", "no-cors", "script", 403},
      {"", "cross-site", "no-cors", "image", 403},
      {"", "same-site", "cors", "empty", 403},  // another port
      {"http://localhost:8437", "", "", "", 200},
      {"http://evil.example", "", "", "", 403},
      {"http://localhost.evil.example", "", "", "", 403},
      {"null", "", "", "", 403},
      {"file://localhost", "", "", "", 403},
      {"http://evil.example", "same-origin", "cors", "empty", 403},
  };
  const Access access({"127.0.0.1", 8437}, {"store.lab.example"});
  for (const auto& [origin, site, mode, destination, status] : cases) {
    Head head;
    head.host = "localhost:8437";
    head.origin = origin;
    head.fetchSite = site;
    head.fetchMode = mode;
    head.fetchDestination = destination;
    EXPECT_EQ(StatusFor(access, head), status) << origin << " " << site << " " << mode << " " << destination;
  }
}

TEST(AddressTest, ReadsWhereToListen) {
  const struct {
    std::string text, words;
    bool isLoopback;
  } cases[] = {
      {"127.0.0.1:8437", "127.0.0.1:8437", true},
      {"[::1]:0", "[::1]:0", true},
      {"localhost:65535", "localhost:65535", true},
      {"0.0.0.0:80", "0.0.0.0:80", false},
      {"[::]:80", "[::]:80", false},
      {"8437", "", false},
      {":8437", "", false},
      {"localhost", "", false},
      {"localhost:", "", false},
      {"localhost:65536", "", false},
      {"localhost:-1", "", false},
      {"localhost:8o", "", false},
      {"::1:8437", "", false},
      {"[::1]", "", false},
      {"http://localhost:80", "", false},
  };
  for (const auto& [text, words, isLoopback] : cases) {
    SCOPED_TRACE(text);
    try {
      const Address address = AddressOf(text);
      EXPECT_EQ(address.InWords(), words);
      EXPECT_EQ(address.IsLoopback(), isLoopback);
    } catch (const Velora::Store::Error& error) {
      EXPECT_EQ(words, "") << error.what();
    }
  }
}

}  // namespace
