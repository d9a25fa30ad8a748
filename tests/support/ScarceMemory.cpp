#include "support/ScarceMemory.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

thread_local int granted = 0, refused = 0;

bool IsGranted() {
  if (refused == 0 || granted > 0) {
    granted -= refused == 0 ? 0 : 1;
    return true;
  }
  --refused;
  return false;
}

}  // namespace

void ScarceMemory::RefuseAfter(int some, int number) {
  granted = some;
  refused = number;
}

void* operator new(std::size_t size) {
  void* const taken = IsGranted() ? std::malloc(size == 0 ? 1 : size) : nullptr;
  if (taken == nullptr) {
    throw std::bad_alloc();
  }
  return taken;
}

void operator delete(void* taken) noexcept { std::free(taken); }
void operator delete(void* taken, std::size_t /*size*/) noexcept { std::free(taken); }
