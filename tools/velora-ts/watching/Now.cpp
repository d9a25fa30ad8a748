#include "watching/Now.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <tuple>

namespace Velora::Ts {

namespace {

bool AreEqual(const std::shared_ptr<const RunNow>& one, const std::shared_ptr<const RunNow>& other) {
  return one == other || (one && other && *one == *other);
}

}  // namespace

bool operator==(const InstrumentNow& one, const InstrumentNow& other) {
  const auto parts = [](const InstrumentNow& instrument) {
    return std::tie(instrument.name, instrument.state, instrument.hostsAlive, instrument.lastRecordedAt,
                    instrument.moreRuns, instrument.forwarder);
  };
  return parts(one) == parts(other) && AreEqual(one.newest, other.newest) &&
         std::equal(one.runs.begin(), one.runs.end(), other.runs.begin(), other.runs.end(), &AreEqual);
}

// What is not a number does not equal itself, but looks the same.
bool operator==(const ValueNow& one, const ValueNow& other) {
  return std::tie(one.instrument, one.parameter, one.at, one.run) ==
             std::tie(other.instrument, other.parameter, other.at, other.run) &&
         std::bit_cast<std::uint64_t>(one.value) == std::bit_cast<std::uint64_t>(other.value);
}

const RunNow* NewStopOf(const InstrumentNow& instrument) {
  const auto isNew = [&newest = instrument.newest](const RunNow& run) {
    return !newest || newest->root == run.root || newest->startedAt <= run.lastRecordedAt;
  };
  const auto run = std::find_if(instrument.runs.begin(), instrument.runs.end(),
                                [&](const auto& one) { return one->state == Store::RunState::Stopped && isNew(*one); });
  return run != instrument.runs.end() ? run->get() : nullptr;
}

}  // namespace Velora::Ts
