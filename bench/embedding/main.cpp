#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

#include "rows.h"

// Measures all engines in turn, many short times, and prints the least and the median of each. On a
// core whose other half is busy, or one that is shared with other machines, everything takes up to
// twice its time: then the least is what a call costs and the median what that day was like.

namespace embedding {

std::vector<Engine>& engines() {
  static std::vector<Engine> all;
  return all;
}

namespace {

constexpr int kRuns = 101;

struct RowText {
  const char* text;
  long rounds;
};
constexpr RowText kRows[kRowCount] = {
    {"host to script, no arguments", 40000},
    {"host to script, add(a, b)", 40000},
    {"host to script, add(a, b), by name", 40000},
    {"host to script, a record of three in and out", 20000},
    {"script to host, two numbers (with the loop)", 40000},
    {"script to host, a string in and out (with the loop)", 40000},
    {"a prepared script of 800 lines", 500},
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
      std::printf("%18s", "-");
      continue;
    }
    std::sort(runs.begin(), runs.end());
    std::printf("%9.1f%9.1f", runs.front(), runs[runs.size() / 2]);
  }
  std::printf("\n");
}

}  // namespace

}  // namespace embedding

int main() {
  using embedding::engines;
  std::sort(engines().begin(), engines().end(),
            [](const auto& a, const auto& b) { return a.name > b.name; });
  std::printf("%-52s", "nanoseconds of CPU time, least and median");
  for (const auto& engine : engines()) std::printf("%18s", engine.name.c_str());
  std::printf("\n");
  for (int row = 0; row < embedding::kRowCount; ++row) embedding::printRow(row);
  for (const auto& engine : engines()) engine.end();
}
