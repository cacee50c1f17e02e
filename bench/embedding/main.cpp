#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

#include "rows.h"

// Measures all engines in turn, several times, and prints the median of each.

namespace embedding {

std::vector<Engine>& engines() {
  static std::vector<Engine> all;
  return all;
}

namespace {

constexpr int kRuns = 9;

struct RowText {
  const char* text;
  long rounds;
};
constexpr RowText kRows[kRowCount] = {
    {"host to script, no arguments", 400000},
    {"host to script, add(a, b)", 400000},
    {"host to script, add(a, b), by name", 400000},
    {"host to script, a record of three in and out", 200000},
    {"script to host, two numbers (with the loop)", 400000},
    {"script to host, a string in and out (with the loop)", 400000},
    {"a prepared script of 800 lines", 5000},
};

double cpuNanoseconds() {
  timespec time;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

double measure(const Engine& engine, int row) {
  const double start = cpuNanoseconds();
  engine.rows[row](kRows[row].rounds);
  return (cpuNanoseconds() - start) / static_cast<double>(kRows[row].rounds);
}

void printRow(int row) {
  std::vector<std::vector<double>> times(engines().size());
  for (int run = 0; run < kRuns; ++run) {
    for (std::size_t i = 0; i < engines().size(); ++i) {
      if (engines()[i].rows[row]) times[i].push_back(measure(engines()[i], row));
    }
  }
  std::printf("%-52s", kRows[row].text);
  for (std::vector<double>& runs : times) {
    if (runs.empty()) {
      std::printf("%12s", "-");
      continue;
    }
    std::sort(runs.begin(), runs.end());
    std::printf("%12.1f", runs[runs.size() / 2]);
  }
  std::printf("\n");
}

}  // namespace

}  // namespace embedding

int main() {
  using embedding::engines;
  std::sort(engines().begin(), engines().end(),
            [](const auto& a, const auto& b) { return a.name > b.name; });
  std::printf("%-52s", "nanoseconds of CPU time, median of 9");
  for (const auto& engine : engines()) std::printf("%12s", engine.name.c_str());
  std::printf("\n");
  for (int row = 0; row < embedding::kRowCount; ++row) embedding::printRow(row);
  for (const auto& engine : engines()) engine.end();
}
