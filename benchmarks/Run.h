#pragma once

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <iostream>

/// Runs what the arguments choose, in a build that says something.
inline int Run(int count, char** arguments) {
#ifdef NDEBUG
  constexpr bool optimised = true;
#else
  constexpr bool optimised = false;
#endif
  if (!optimised) {
    std::cerr << "A debug build says nothing of what recording costs; build the preset 'benchmark'\n";
    return EXIT_FAILURE;
  }
  benchmark::Initialize(&count, arguments);
  benchmark::RunSpecifiedBenchmarks();
  return EXIT_SUCCESS;
}
