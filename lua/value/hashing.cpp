#include "lua/value/hashing.h"

#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstddef>

namespace tarvel::lua::internal {

namespace {

bool readRandomDevice(HashSecrets& secrets) noexcept {
  const int device = open("/dev/urandom", O_RDONLY | O_CLOEXEC);
  if (device < 0) return false;
  const ssize_t count = read(device, &secrets, sizeof secrets);
  close(device);
  return count == static_cast<ssize_t>(sizeof secrets);
}

// For a system that has no random source to offer: the time and where the process was loaded to.
HashSecrets guessSecrets() noexcept {
  const auto now =
      static_cast<std::uint64_t>(std::chrono::system_clock::now().time_since_epoch().count());
  const auto process = static_cast<std::uint64_t>(getpid());
  const int local = 0;
  std::uint64_t state = now ^ process << 48 ^ reinterpret_cast<std::uintptr_t>(&local);
  const auto next = [&state] {
    state += 0x9E3779B97F4A7C15;
    return HashProduct::of(state, state ^ 0xBF58476D1CE4E5B9).folded();
  };
  return {next(), next(), next(), next()};
}

}  // namespace

HashSecrets drawHashSecrets() noexcept {
  HashSecrets secrets{};
  if (getentropy(&secrets, sizeof secrets) == 0 || readRandomDevice(secrets)) return secrets;
  return guessSecrets();
}

std::uint64_t hashRounds(std::string_view bytes, const HashSecrets& secrets) noexcept {
  std::uint64_t state = secrets.right;
  for (; bytes.size() > 16; bytes.remove_prefix(16)) {
    state = HashProduct::of(wordAt<std::uint64_t>(bytes.data()) ^ secrets.left,
                            wordAt<std::uint64_t>(bytes.data() + 8) ^ state)
                .folded();
  }
  return state;
}

}  // namespace tarvel::lua::internal
