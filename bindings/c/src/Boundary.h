#pragma once

#include <velora_ts.h>

#include <exception>
#include <string>
#include <utility>

namespace Velora::CInterface {

/// Ends a function of the interface with a status of its own. The words can contain zero bytes.
class Failure : public std::exception {
 public:
  Failure(velora_ts_status status, std::string words) : status(status), words(std::move(words)) {}

  const char* what() const noexcept override { return words.c_str(); }

  velora_ts_status status;
  std::string words;
};

/// The arguments of a function cannot be used. Raised before anything is done.
class Misuse : public Failure {
 public:
  explicit Misuse(std::string words) : Failure(VELORA_TS_MISUSE, std::move(words)) {}
};

/// While one of these lives, its thread cannot be cancelled: the component catches everything and would not let it end.
class Uncancelled {
 public:
  Uncancelled();
  Uncancelled(const Uncancelled&) = delete;
  Uncancelled& operator=(const Uncancelled&) = delete;
  ~Uncancelled();

 private:
  int before = 0;
};

/// Makes this thread the only one inside the component, until the scope ends. Can be repeated on one thread.
class Inside {
 public:
  Inside();
  Inside(const Inside&) = delete;
  Inside& operator=(const Inside&) = delete;
  ~Inside();

 private:
  const Uncancelled uncancelled;
};

/// A session of TS begins here, if no gateway of the host is in place: from now on, a child that this process forks
/// cannot use the component. What a session has open serves one process: the locks of an SQLite file stay with the
/// parent, and a connection has one user.
void SessionBegins() noexcept;

/// @throws Misuse in a child that was forked too late.
void ExpectNotForkedTooLate();

/// For the end of the library: keeps all other threads outside from now on. Those that still run while the process ends
/// wait for that, and do not use what is destroyed already. Waits some seconds for a thread that is inside, so that its
/// record is saved. Can be repeated.
/// @return false if a thread stayed inside, or did so when this child was forked: nothing may be released then.
bool StayInsideAlone() noexcept;

/// The status of a function that is left by the present exception. Keeps the text of the error for this thread.
velora_ts_status StatusOfException(const char* function) noexcept;

/// Runs the body of a function of the interface, alone in the process, and lets no exception out.
template <typename Body>
velora_ts_status Boundary(const char* function, const Body& body) noexcept {
  try {
    ExpectNotForkedTooLate();
    const Inside inside;
    body();
    return VELORA_TS_OK;
  } catch (...) {
    return StatusOfException(function);
  }
}

}  // namespace Velora::CInterface
