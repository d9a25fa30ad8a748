// velora-ts-describe FORM SOURCE FILE: writes the manual page or the completion of velora-ts, from what its command
// line says of itself and from SOURCE, which has what it does not say. Run by the build.

#include "CommandLine.h"
#include "describing/Completion.h"
#include "describing/ManualPage.h"

#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace {

std::string Read(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  std::string content{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  return stream ? content : throw std::runtime_error("it cannot be read");
}

void Write(const std::string& file, const std::string& content) {
  std::ofstream stream(file, std::ios::binary);
  if (!(stream << content << std::flush)) {
    throw std::runtime_error("'" + file + "' cannot be written");
  }
}

std::string Described(const std::string& form, const std::string& source) {
  using namespace Velora::Ts::Describing;
  const Velora::CommandLine::Description program = Velora::Ts::DescribeCommandLine();
  if (form == "manual") {
    return ManualPage(program, VELORA_VERSION, source);
  }
  if (form == "bash") {
    return BashCompletion(program, source);
  }
  if (form == "zsh") {
    return ZshCompletion(program, source);
  }
  throw std::runtime_error("there is no form '" + form + '\'');
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::cerr << "velora-ts-describe: expected FORM SOURCE FILE\n";
    return 2;
  }
  try {
    Write(argv[3], Described(argv[1], Read(argv[2])));
    return 0;
  } catch (const std::exception& reason) {
    std::cerr << argv[2] << ": " << reason.what() << '\n';
    return 1;
  }
}
