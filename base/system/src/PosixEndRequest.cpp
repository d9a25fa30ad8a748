#include <VeloraSystem/EndRequest.h>
#include <VeloraSystem/Failure.h>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <system_error>

namespace Velora::System {
namespace {

constexpr std::array<int, 2> asking{SIGINT, SIGTERM};

std::atomic<int> told{-1};  // the end of the pipe at which the handler writes

void Tell(int) {
  const int before = errno;
  static_cast<void>(write(told, "", 1) == 1);  // a full pipe says the same
  errno = before;
}

}  // namespace

struct EndRequest::Place {
  std::array<int, 2> pipe{-1, -1};
};

EndRequest::EndRequest() : place(std::make_unique<Place>()) {
  if (pipe2(place->pipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
    throw Failure("the process cannot listen to signals: " + std::system_category().message(errno));
  }
  told = place->pipe[1];
  struct sigaction action {};
  action.sa_handler = &Tell;
  action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
  for (const int signal : asking) {
    sigaction(signal, &action, nullptr);
  }
}

EndRequest::~EndRequest() {
  for (const int signal : asking) {
    static_cast<void>(std::signal(signal, SIG_DFL));
  }
  close(place->pipe[0]);
  close(place->pipe[1]);
}

bool EndRequest::Await(std::chrono::milliseconds longest) const {
  pollfd asked{place->pipe[0], POLLIN, 0};
  return poll(&asked, 1, static_cast<int>(longest.count())) > 0 || poll(&asked, 1, 0) > 0;  // after a signal
}

}  // namespace Velora::System
