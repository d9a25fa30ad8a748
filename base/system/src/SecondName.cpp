#include <VeloraSystem/Path.h>
#include <VeloraSystem/SecondName.h>
#include <VeloraSystem/System.h>

#include <filesystem>
#include <system_error>

namespace Velora::System {

SecondName::~SecondName() {
  if (!kept && IdOf(name) == IdOf(file)) {  // never the last one
    std::error_code ignored;
    std::filesystem::remove(PathOf(name), ignored);
  }
}

bool IsReadOnly(const std::string& file) {
  using std::filesystem::perms;
  std::error_code unknown;
  const perms rights = std::filesystem::status(PathOf(file), unknown).permissions();
  return !unknown && (rights & (perms::owner_write | perms::group_write | perms::others_write)) == perms::none;
}

}  // namespace Velora::System
