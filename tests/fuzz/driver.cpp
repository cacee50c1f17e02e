#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

// Runs a target of libFuzzer's form without libFuzzer: `driver COUNT [SEED]` gives it COUNT inputs
// that follow from SEED, of growing size. Targets end the process when they find something.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int count, char** arguments) {
  const unsigned long inputs = count > 1 ? std::strtoul(arguments[1], nullptr, 10) : 1000;
  const unsigned long seed = count > 2 ? std::strtoul(arguments[2], nullptr, 10) : 1;
  for (unsigned long number = 0; number < inputs; ++number) {
    // Each input has its own generator, so that one can be repeated alone.
    std::mt19937_64 random(seed * 1000003 + number);
    std::vector<std::uint8_t> bytes(random() % (64 + number % 512));
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
  }
  std::printf("%lu inputs from seed %lu: nothing found\n", inputs, seed);
}
