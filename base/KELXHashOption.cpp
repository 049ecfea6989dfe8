#include "base/KELXHashOption.h"

#include <atomic>

namespace {

std::atomic<bool> useStandardHash = false;

}  // namespace

bool KELXHashOption::GetUseStdHash() { return useStandardHash.load(std::memory_order_relaxed); }

void KELXHashOption::SetUseStdHash(bool useStdHash) {
  useStandardHash.store(useStdHash, std::memory_order_relaxed);
}
