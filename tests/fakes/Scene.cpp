#include "fakes/Scene.h"

#include <mutex>

namespace Fakes {
namespace {

// Made when this library is loaded, before everything that can write into it, and so destroyed after it.
Scene scene;
std::mutex journalMutex;
thread_local int openAsides = 0;

}  // namespace

Scene& TheScene() { return scene; }

const Answers& Call(const std::string& entry) {
  Note(entry);
  UnwrittenCall(entry);
  return scene.answers;
}

void UnwrittenCall(const std::string& entry) {
  if (const auto hook = scene.hook) {  // a copy: the hook may replace itself
    hook(entry);
  }
}

void Note(std::string_view entry) {
  const Aside aside;
  const std::lock_guard lock(journalMutex);
  scene.journal.append(entry) += '\n';
}

Aside::Aside() { ++openAsides; }
Aside::~Aside() { --openAsides; }
bool Aside::IsOpen() { return openAsides != 0; }

}  // namespace Fakes
