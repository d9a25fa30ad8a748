#pragma once

#include "state/ProcessState.h"
#include "state/TsLogging.h"
#include "support/Lines.h"

#include <gtest/gtest.h>

#include <mutex>
#include <string>

/// What the calls of the system answer.
struct SystemCalls {
  bool moduleIsFound = true;
  std::wstring moduleFile = System::Path("/opt/lab/lib.so").wstring();  // empty: the call fails
  std::string hostName = "scope";                                       // empty: the call fails
  std::size_t furtherBytes = 0;  // more than there are characters, of a text made narrow
};
extern SystemCalls systemCalls;

struct Failure {};

/// A test of the component's own objects, which starts with the state that a freshly loaded library has.
class InternalsTest : public testing::Test {
 protected:
  InternalsTest() { Reset(); }

  static void Reset();

  /// Whether another thread could take it.
  static bool IsFree(std::recursive_mutex& mutex);

  /// Runs something with Failure raised at an entry, nowhere when it is empty; whether Failure came out of it.
  template <typename Action>
  static bool RaisesAt(const std::string& entry, const Action& action) {
    At(entry.empty() ? "nowhere" : entry, [] { throw Failure(); });
    try {
      action();
    } catch (const Failure&) {
      return true;
    }
    return false;
  }
};
