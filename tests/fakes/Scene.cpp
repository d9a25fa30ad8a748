#include "fakes/Scene.h"

namespace Fakes {
namespace {

// Made when this library is loaded, before everything that can write into it, and so destroyed after it.
Scene scene;

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

void Note(const std::string& entry) { scene.journal += entry + '\n'; }

}  // namespace Fakes
