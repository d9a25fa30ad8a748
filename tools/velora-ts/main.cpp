// velora-ts: shows, checks, copies and verifies the store of a local TS.

#include "CommandLine.h"
#include "output/Output.h"

#include <exception>
#include <new>

int main(int argc, char** argv) {
  using namespace Velora::Ts;
  try {
    return RunCommandLine(argc, argv);
  } catch (const std::bad_alloc&) {
    Complain("there is not enough memory");
  } catch (const std::exception& reason) {
    Complain(reason.what());
  }
  return Impossible;
}
