// velora-ts: shows, checks, copies and verifies the store of a local TS.

#include "CommandLine.h"
#include "output/Output.h"

#include <VeloraSystem/Console.h>

#include <exception>
#include <new>

int main(int argc, char** argv) {
  using namespace Velora;
  using namespace Velora::Ts;
  const System::StandardStreams streams;
  try {
    return RunCommandLine(System::Arguments(argc, argv));
  } catch (const std::bad_alloc&) {
    Complain("there is not enough memory");
  } catch (const std::exception& reason) {
    Complain(reason.what());
  }
  return Impossible;
}
