#include <VeloraSystem/Turn.h>

#include <sys/ipc.h>
#include <sys/sem.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <iterator>

// A semaphore of System V for each file: the kernel lets those that wait go on in the order in which they came, hands
// over rather than lets the fastest snatch, and undoes what a process leaves behind. Files share a user's set of them
// by chance, which costs no more than some waiting. The set stays until the computer ends.

namespace Velora::System {
namespace {

using Clock = std::chrono::steady_clock;

constexpr unsigned short places = 256;
constexpr key_t name = 0x54530000;  // "TS", and the user's number

int SetOfUser() {
  return semget(name | static_cast<key_t>(geteuid() & 0xFFFFU), places, IPC_CREAT | S_IRUSR | S_IWUSR);
}

// Takes the semaphore once it is zero.
int Take(int set, unsigned short place, Clock::duration longest) {
  sembuf steps[] = {{place, 0, 0}, {place, 1, SEM_UNDO}};
  const auto left = std::chrono::ceil<std::chrono::nanoseconds>(std::max(longest, Clock::duration::zero()));
  const auto seconds = std::chrono::floor<std::chrono::seconds>(left);
  const timespec limit{seconds.count(), (left - seconds).count()};
  return semtimedop(set, steps, std::size(steps), &limit);
}

}  // namespace

Turn::Turn(const std::string& file, std::chrono::milliseconds longest) {
  struct stat status {};
  const int set = SetOfUser();
  if (set < 0 || stat(file.c_str(), &status) != 0) {
    return;
  }
  queue = set;
  place = static_cast<unsigned short>((status.st_ino + status.st_dev) % places);
  const Clock::time_point end = Clock::now() + longest;
  int result = 0;
  do {
    result = Take(set, place, end - Clock::now());
  } while (result != 0 && errno == EINTR);
  ours = result == 0;
}

Turn::~Turn() {
  if (ours) {
    sembuf back{place, -1, SEM_UNDO | IPC_NOWAIT};
    semop(static_cast<int>(queue), &back, 1);
  }
}

}  // namespace Velora::System
