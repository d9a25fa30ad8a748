#include "Handles.h"

#include "Boundary.h"
#include "Callback.h"
#include "Immortal.h"

#include <array>
#include <map>
#include <string>

namespace Velora::CInterface {
namespace {

struct HandleTable {
  using Objects = std::map<std::uintptr_t, Handled>;

  // Odd numbers cannot be the address of an object.
  static constexpr std::uintptr_t first = 0x7500001;
  static constexpr std::uintptr_t step = 2;

  Objects objects;
  std::uintptr_t next = first;

  bool WasOnceOpen(std::uintptr_t number) const { return number >= first && number < next && number % step == 1; }
};

Immortal<HandleTable> table;

constexpr std::array kinds{"a logging object", "a configurator", "an answer"};

/// Releases what the host has not closed, while the component is still there.
struct AtUnload {
  AtUnload() = default;
  AtUnload(const AtUnload&) = delete;
  AtUnload& operator=(const AtUnload&) = delete;
  ~AtUnload() {
    EndCallbacks();
    if (StayInsideAlone()) {
      HandleTable::Objects().swap(table.object.objects);
    }
  }
} const atUnload;

}  // namespace

std::uintptr_t Handles::Add(Handled object) {
  const std::uintptr_t number = table.object.next;
  table.object.objects.emplace(number, std::move(object));
  table.object.next += HandleTable::step;
  return number;
}

Handled& Handles::Find(std::uintptr_t number, std::size_t kind) {
  const std::string expected = kinds.at(kind);
  if (number == 0) {
    throw Misuse("the handle of " + expected + " is null");
  }
  const auto found = table.object.objects.find(number);
  if (found == table.object.objects.end()) {
    throw Misuse("the handle of " + expected +
                 (table.object.WasOnceOpen(number) ? " is closed" : " is no handle of this library"));
  }
  if (found->second.index() != kind) {
    throw Misuse("the handle is that of " + std::string(kinds.at(found->second.index())) + "; expected that of " +
                 expected);
  }
  return found->second;
}

void Handles::Remove(std::uintptr_t number) { table.object.objects.erase(number); }

}  // namespace Velora::CInterface
