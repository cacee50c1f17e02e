#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "tests/fuzz/choices.h"

// Gives a target its inputs and ends the process when it finds something: as a target of libFuzzer,
// or without that as `driver COUNT [SEED [THREADS]]`, with COUNT inputs that follow from SEED, of
// growing size, on two threads at once, or so many.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string problem = tarvel::lua::fuzz::findProblem({data, size});
  if (problem.empty()) return 0;
  std::fwrite(problem.data(), 1, problem.size(), stderr);
  std::abort();
}

#ifndef TARVELLUA_LIBFUZZER
int main(int count, char** arguments) {
  const auto argument = [&](int index, unsigned long otherwise) {
    return count > index ? std::strtoul(arguments[index], nullptr, 10) : otherwise;
  };
  const unsigned long inputs = argument(1, 1000);
  const unsigned long seed = argument(2, 1);
  const unsigned long threads = argument(3, 2);
  const auto runShare = [&](unsigned long first) {
    for (unsigned long number = first; number < inputs; number += threads) {
      // Each input has its own generator, so that one can be repeated alone.
      std::mt19937_64 random(seed * 1000003 + number);
      std::vector<std::uint8_t> bytes(random() % (64 + number % 512));
      for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
      LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
  };
  {
    std::vector<std::jthread> others;
    for (unsigned long i = 1; i < threads; ++i) others.emplace_back(runShare, i);
    runShare(0);
  }
  std::printf("%lu inputs from seed %lu: nothing found\n", inputs, seed);
}
#endif
