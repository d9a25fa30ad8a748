#include "store/database/ClientFunction.h"
#include "store/database/DatabaseError.h"

#include <dlfcn.h>

#include <string>

namespace Velora::Store {
namespace {

[[noreturn]] void Fail(const std::string& expected) {
  throw NotReachable("PostgreSQL's client library cannot be used: " + std::string(dlerror()) + "; expected " +
                     expected);
}

void* Load() {
  void* const loaded = dlopen("libpq.so.5", RTLD_NOW | RTLD_LOCAL);
  if (loaded == nullptr) {
    Fail("Debian's package libpq5 or the same library from elsewhere");
  }
  return loaded;
}

}  // namespace

// A program that links with the library itself keeps its own.
void* FindClientFunction(const char* name) {
  if (void* const own = dlsym(RTLD_DEFAULT, name); own != nullptr) {
    return own;
  }
  static void* const library = Load();
  void* const found = dlsym(library, name);
  if (found == nullptr) {
    Fail("the library of PostgreSQL 14 or newer");
  }
  return found;
}

}  // namespace Velora::Store
