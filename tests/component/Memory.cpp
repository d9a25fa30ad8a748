#include "Memory.h"

#include "fakes/Scene.h"

#include <cstdlib>
#include <memory>
#include <new>
#include <utility>

namespace Memory {
namespace {

struct Refusal {
  bool isOn = false, andLater = false;
  int left = 0;  // allocations before the one that is refused
  std::optional<std::size_t> journalThen;
};
thread_local Refusal refusal;
// A pointer: MinGW frees the variables of a thread before it would call their destructors.
thread_local std::function<void()>* actionAtNext = nullptr;

bool IsRefused() {
  if (!refusal.isOn || Fakes::Aside::IsOpen() || --refusal.left >= 0) {
    return false;
  }
  if (!refusal.journalThen) {
    refusal.journalThen = Fakes::TheScene().journal.size();
  }
  refusal.isOn = refusal.andLater;
  return true;
}

}  // namespace

void RefuseFrom(int number, bool andLater) { refusal = {true, andLater, number, {}}; }

void AtNext(std::function<void()> action) {
  actionAtNext = std::make_unique<std::function<void()>>(std::move(action)).release();
}

std::optional<std::size_t> RefuseNoMore() { return std::exchange(refusal, {}).journalThen; }

}  // namespace Memory

void* operator new(std::size_t size) {
  if (Memory::actionAtNext != nullptr && !Fakes::Aside::IsOpen()) {
    const std::unique_ptr<std::function<void()>> action(std::exchange(Memory::actionAtNext, nullptr));
    (*action)();
  }
  void* const taken = Memory::IsRefused() ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (taken == nullptr) {
    throw std::bad_alloc();
  }
  return taken;
}

void operator delete(void* taken) noexcept { std::free(taken); }
void operator delete(void* taken, std::size_t /*size*/) noexcept { std::free(taken); }
