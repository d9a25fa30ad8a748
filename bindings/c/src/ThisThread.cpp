#include "ThisThread.h"

#include <pthread.h>

#include <atomic>
#include <memory>
#include <new>
#include <utility>

// A key of the system and no variables of threads: MinGW frees a thread's variables before it runs their destructors.

namespace Velora::CInterface::ThisThread {
namespace {

constexpr std::string_view noMemory = "velora_ts: there is no memory for the text of the error";

struct Texts {
  std::string error, raised;
  bool errorIsLost = false, raisedIsLost = false;
  unsigned long errors = 0;
};

/// Stands for the texts of a thread for which there is no memory.
Texts lost{"", "", true, true, 0};

void Free(void* texts) {
  if (texts != &lost) {
    delete static_cast<Texts*>(texts);
  }
}

/// The key lives as long as the library is loaded. Threads that outlive it keep their few bytes: one of them can be
/// reading its text at this moment.
class Key {
 public:
  Key() noexcept : isThere(pthread_key_create(&key, &Free) == 0) {}
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  ~Key() {
    if (isThere) {
      Free(Known());
      isThere = false;
      pthread_key_delete(key);
    }
  }

  /// The texts of this thread; null if it has none.
  Texts* Known() const noexcept { return isThere ? static_cast<Texts*>(pthread_getspecific(key)) : nullptr; }

  /// The texts of this thread, which are made if it has none; null if there is no memory.
  Texts* Made() const noexcept {
    Texts* const known = Known();
    if ((known != nullptr && known != &lost) || !isThere) {
      return known;
    }
    try {
      auto made = std::make_unique<Texts>();
      return pthread_setspecific(key, made.get()) == 0 ? made.release() : nullptr;
    } catch (...) {
      pthread_setspecific(key, &lost);
      return nullptr;
    }
  }

 private:
  pthread_key_t key{};
  std::atomic<bool> isThere;
};

Key key;

}  // namespace

void KeepError(std::string_view function, std::string_view words) noexcept {
  if (Texts* const texts = key.Made()) {
    ++texts->errors;
    try {
      texts->error = std::string(function).append(": ").append(words);
      texts->errorIsLost = false;
    } catch (...) {
      texts->errorIsLost = true;
    }
  }
}

std::string_view LastError() noexcept {
  const Texts* const texts = key.Known();
  if (texts == nullptr) {
    return "";
  }
  return texts->errorIsLost ? noMemory : texts->error;
}

unsigned long ErrorCount() noexcept {
  const Texts* const texts = key.Known();
  return texts == nullptr ? 0 : texts->errors;
}

void KeepRaised(std::string_view reason) noexcept {
  if (Texts* const texts = key.Made()) {
    try {
      texts->raised = reason;
      texts->raisedIsLost = false;
    } catch (...) {
      texts->raisedIsLost = true;
    }
  }
}

std::string TakeRaised() {
  Texts* const texts = key.Known();
  if (texts == nullptr) {
    return "";
  }
  if (texts->raisedIsLost) {
    if (texts != &lost) {
      texts->raisedIsLost = false;
    }
    throw std::bad_alloc();
  }
  return std::exchange(texts->raised, "");
}

}  // namespace Velora::CInterface::ThisThread
