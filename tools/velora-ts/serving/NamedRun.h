#pragma once

#include "serving/Served.h"
#include "serving/http/Question.h"
#include "store/comparing/Comparison.h"
#include "store/reading/Reader.h"
#include "store/reading/Runs.h"

#include <memory>
#include <optional>

namespace Velora::Ts {

/// A run that a request names, and its store, opened for it.
struct NamedRun {
  const ServedStore* place;
  std::shared_ptr<const Store::Reader> store;
  Store::Run run;

  Store::Comparison::Side Side() const { return {*store, run}; }
};

/// Two runs that a request compares.
struct NamedPair {
  NamedRun first;
  std::optional<NamedRun> second;
  Store::ComparisonRules rules;
};

/// The run that the parameters `store` and `run` name; without `store`, in the first store that has it.
/// @throws Refusal with status 404 when no run matches, and with status 400 when several do.
NamedRun RunNamed(const Served& served, Http::Question& question);

/// That run, and the one that `with` and `with_store` name; without `with_store`, it is looked for in the store of the
/// first run before the others. The rules are those of `tolerance` and `ignore`, which can be given several times.
/// @param orLastGood without `with`, the newest finished run like the first one, or a Refusal with status 404 when
/// there is none; otherwise there is no second run.
NamedPair PairNamed(const Served& served, Http::Question& question, bool orLastGood);

}  // namespace Velora::Ts
