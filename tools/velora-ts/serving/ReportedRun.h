#pragma once

#include "page/writer/ComparedPage.h"
#include "serving/NamedRun.h"

#include <functional>
#include <memory>
#include <string_view>

namespace Velora::Ts {

/// The page of a run that a request names, and of the one with which it is to be compared.
class ReportedRun {
 public:
  explicit ReportedRun(NamedPair pair);

  const Store::Run& Run() const { return pair.first.run; }
  /// Lets the page be written. @throws Error when a host began to write meanwhile to a store that was not in use.
  void Write(const std::function<void(const Page::RunPage& page)>& write) const;

 private:
  const NamedPair pair;
  const Page::ComparedPage page;
};

}  // namespace Velora::Ts
