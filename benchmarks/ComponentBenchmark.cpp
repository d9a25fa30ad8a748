// What the component itself costs: the logger drops the lines, and the gateway does nothing.

#include "Allocations.h"
#include "EventTasks.h"
#include "Run.h"

#include <algorithm>
#include <random>

namespace TsLogging = Quor::Velora::Infra::TsLogging;

namespace {

const std::string exposure = "Exposure";

template <typename Task>
void Repeat(benchmark::State& state, const Task& task) {
  task();  // the tables are there
  const std::size_t before = Allocations();
  for (auto _ : state) {
    task();
  }
  state.counters["allocations"] =
      benchmark::Counter(static_cast<double>(Allocations() - before), benchmark::Counter::kAvgIterations);
}

template <typename Way>
void Event(benchmark::State& state) {
  Way way;
  Repeat(state, [&] { RecordEvent(way, exposure); });
}
BENCHMARK(Event<ComponentWay>)->Name("event/component");
BENCHMARK(Event<ObviousWay>)->Name("event/obvious");
BENCHMARK(Event<Floor>)->Name("event/floor");

/// Among so many others that were left pending.
template <typename Way>
void EventAmongMany(benchmark::State& state) {
  Way way;
  std::vector<std::string> names;
  for (std::int64_t number = 0; number < state.range(0); ++number) {
    names.push_back("Exposure " + std::to_string(number));
    way.Create(names.back());
  }
  std::shuffle(names.begin(), names.end(), std::mt19937(1));
  std::size_t next = 0;
  Repeat(state, [&] {
    RecordEvent(way, names[next]);
    next = (next + 1) % names.size();
  });
}
BENCHMARK(EventAmongMany<ComponentWay>)->Name("pending/component")->Arg(10)->Arg(1'000'000)->Iterations(100'000);
BENCHMARK(EventAmongMany<Floor>)->Name("pending/floor")->Arg(10)->Arg(1'000'000)->Iterations(100'000);

void Parameters(benchmark::State& state) {
  ComponentWay way;
  Repeat(state, [&] {
    way.Create(exposure);
    for (std::int64_t fours = 0; fours < state.range(0); fours += 4) {
      way.AddFour(exposure);
    }
    way.Save(exposure);
  });
}
BENCHMARK(Parameters)->Name("parameters")->Arg(4)->Arg(100)->Arg(1'000)->Arg(10'000);

void Execution(benchmark::State& state) {
  ComponentWay way;
  Repeat(state, [&] {
    static_cast<void>(way.logging->CreateActivityExecution("Section", "ZValue 17", "a section of a tilt series"));
    way.logging->UpdateActivityExecution("01234567-89ab-4def-8123-456789abcdef");
  });
}
BENCHMARK(Execution)->Name("execution");

void BringUp(benchmark::State& state) {
  ComponentWay way;
  Repeat(state, [&] { benchmark::DoNotOptimize(TsLogging::IFactory::CreateTsLogging("")); });
}
BENCHMARK(BringUp)->Name("bring-up");

void Unsupported(benchmark::State& state) {
  ComponentWay way(false);
  Repeat(state, [&] { way.Create(exposure); });
}
BENCHMARK(Unsupported)->Name("unsupported/component");

void TwoLines(benchmark::State& state) {
  const Floor floor;
  Repeat(state, [&] { floor.WriteTraceLines(); });
}
BENCHMARK(TwoLines)->Name("unsupported/lines");

/// TS takes 200 µs for each; threads that waited on one another would take it one after the other.
void Threads(benchmark::State& state) {
  static std::unique_ptr<ComponentWay> way;
  if (state.thread_index() == 0) {
    way = std::make_unique<ComponentWay>();
    TsLogging::SetFactory(way->factory, IdleGateway(true, 200));
  }
  while (state.KeepRunning()) {
    way->logging->UpdateActivityExecution("01234567-89ab-4def-8123-456789abcdef");
  }
}
BENCHMARK(Threads)->Name("threads")->Threads(1)->Threads(2)->Threads(4)->UseRealTime();

}  // namespace

int main(int count, char** arguments) { return Run(count, arguments); }
