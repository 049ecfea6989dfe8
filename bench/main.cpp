#include <benchmark/benchmark.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "KELXStStorage.h"
#include "bench/Floors.h"
#include "bench/Inputs.h"
#include "bench/Targets.h"

// Each case stands beside its floor, and all take turns in random order, so that whatever else the
// machine does falls on both. Files are in the page cache; buffers are fresh each time.

namespace kelx::bench {

namespace {

using Work = std::function<void()>;
using Storage = std::unique_ptr<KELIStorage>;
using test::Placement;
using test::Siblings;

void Register(const std::string& name, const Work& work) {
  benchmark::RegisterBenchmark(name.c_str(),
                               [work](benchmark::State& state) {
                                 for ([[maybe_unused]] auto step : state) work();
                               })
      ->UseRealTime()
      ->Unit(benchmark::kMillisecond);
}

KELXFilePath PathOf(const std::string& path) { return KELXFilePath(path.c_str()); }

/// Opens and reads the stream `name` whole; ends the program when it cannot.
void ReadWhole(KELIStorage& storage, const KELXString& name, std::vector<char>& buffer) {
  const std::unique_ptr<KELIStream> stream(OpenStream(&storage, name));
  unsigned long size = 0;
  GetStreamSize(stream.get(), size);
  buffer.resize(std::max(buffer.size(), size));
  if (!ReadStream(stream.get(), buffer.data(), size)) std::abort();
}

std::vector<KELXString> Names(int count) {
  std::vector<KELXString> names;
  for (int i = 0; i < count; ++i) {
    names.emplace_back(reinterpret_cast<const unsigned short*>(NameOf(i).c_str()));
  }
  return names;
}

void RegisterSmallStreams(int count, Siblings siblings) {
  const std::string path = SmallStreams(count, siblings);
  const std::string name = std::string("small/") +
                           (siblings == Siblings::kRightList ? "list/" : "tree/") +
                           std::to_string(count);
  const auto names = std::make_shared<std::vector<KELXString>>(Names(count));
  Register(name, [path, names] {
    const Storage root(KELStgOpenStorageRoot(PathOf(path)));
    std::vector<char> buffer;
    for (const KELXString& stream : *names) ReadWhole(*root, stream, buffer);
  });
  Register(name + "/floor:fread", [path] { ReadPlainly(path, FileSize(path)); });
  Register("open/" + name, [path] { const KELStStorageFileInfo image(PathOf(path)); });
  Register("list/" + name, [path] {
    const Storage root(KELStgOpenStorageRoot(PathOf(path)));
    KELXDynamicArray<KELXString> listed;
    GetStreamNames(root.get(), listed);
  });
}

/// Only the opening and copying of the stream: what the caller then does with it is not measured.
void RegisterLargeStream(std::uint64_t mebibytes, Placement placement) {
  const std::uint64_t bytes = mebibytes << 20;
  const std::string path = LargeStream(bytes, placement);
  const bool isScattered = placement == Placement::kScattered;
  const std::string name = (isScattered ? "scattered/" : "contiguous/") + std::to_string(mebibytes);
  Register(name, [path] {
    const Storage root(KELStgOpenStorageRoot(PathOf(path)));
    const std::unique_ptr<KELIStream> stream(OpenStream(root.get(), KELXString(L"Large")));
    if (!stream) std::abort();
  });
  Register(name + "/floor:fread", [path, bytes] { ReadPlainly(path, bytes); });
  Register(name + "/floor:huge", [path, bytes] { ReadIntoHugePages(path, bytes); });
  if (isScattered) Register(name + "/floor:pread", [path, bytes] { ReadSectors(path, bytes); });
}

void RegisterSubStorages(int count) {
  const std::string path = SubStorages(count);
  const auto names = std::make_shared<std::vector<KELXString>>(Names(count));
  Register("storages/" + std::to_string(count), [path, names] {
    const Storage root(KELStgOpenStorageRoot(PathOf(path)));
    for (const KELXString& name : *names) {
      const Storage opened(OpenStorage(root.get(), name));
      if (!opened) std::abort();
    }
  });
  Register("storages/" + std::to_string(count) + "/floor:fread",
           [path] { ReadPlainly(path, FileSize(path)); });
}

void RegisterProperties(int count) {
  const auto bytes = std::make_shared<std::vector<unsigned char>>(PropertySet(count));
  Register("properties/" + std::to_string(count), [bytes] {
    const KELIPropertyStorageHandle set(new KELIPropertyStorage);
    if (!set->InitializeFromBuffer(bytes->data(), static_cast<int>(bytes->size()))) std::abort();
  });
  Register("properties/" + std::to_string(count) + "/floor:copy", [bytes] {
    std::vector<unsigned char> copy(*bytes);
    benchmark::DoNotOptimize(copy.data());
  });
}

void RegisterSort(int count) {
  std::vector<std::string> names;
  for (const KELXString& name : Names(count)) names.push_back(name.toUtf8());
  Register("list/small/tree/" + std::to_string(count) + "/floor:sort", [names] {
    std::vector<std::string> sorted(names);
    std::ranges::sort(sorted);
  });
}

void RegisterAll() {
  for (const int count : {5'000, 20'000, 80'000}) {
    RegisterSmallStreams(count, Siblings::kBalanced);
    RegisterSmallStreams(count, Siblings::kRightList);
  }
  RegisterSort(80'000);
  RegisterLargeStream(256, Placement::kContiguous);
  RegisterLargeStream(64, Placement::kScattered);
  RegisterLargeStream(256, Placement::kScattered);
  for (const int count : {200, 2'000}) RegisterSubStorages(count);
  for (const int count : {500, 5'000, 50'000}) RegisterProperties(count);
  const std::string fat = LargeFat(200'000);
  Register("open/fat/200000", [fat] { const KELStStorageFileInfo image(PathOf(fat)); });
  Register("open/fat/200000/floor:fread", [fat] { ReadPlainly(fat, FileSize(fat)); });
}

}  // namespace

}  // namespace kelx::bench

int main(int argc, char** argv) {
  std::vector<char*> arguments(argv, argv + argc);
  std::string interleaving = "--benchmark_enable_random_interleaving=true";
  std::string repetitions = "--benchmark_repetitions=5";
  std::string minTime = "--benchmark_min_time=0.05";
  arguments.insert(arguments.begin() + 1,
                   {interleaving.data(), repetitions.data(), minTime.data()});
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
  kelx::bench::RegisterAll();
  kelx::bench::TimeKeeper keeper;
  benchmark::RunSpecifiedBenchmarks(&keeper);
  return keeper.PrintTargets() ? 0 : 1;
}
