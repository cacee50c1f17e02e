#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "lua/value/errors.h"
#include "lua/value/work_meter.h"

// Work of the library whose length scripts choose, cut into pieces between which a supervised run
// can end. What is not supervised is done in one piece.

namespace tarvel::lua::internal {

// How many elements of a table are read, moved or copied in a step.
constexpr std::size_t kElementsPerStep = 8;
// A piece is as much as may be done between two looks at the clock.
constexpr std::size_t kStepsPerPiece = 256;

// Calls work(offset, count) for piece after piece of `total` units, each counted before it is done.
template <class Work>
void inPieces(WorkMeter& meter, std::size_t total, std::size_t unitsPerStep, Site site,
              const Work& work) {
  const std::size_t most = meter.isSupervised() ? unitsPerStep * kStepsPerPiece : SIZE_MAX;
  for (std::size_t offset = 0; offset < total;) {
    const std::size_t count = std::min(most, total - offset);
    meter.spend(count / unitsPerStep, site);
    work(offset, count);
    offset += count;
  }
}

// Calls work(piece) for the pieces of a text.
template <class Work>
void inPieces(WorkMeter& meter, std::string_view text, Site site, const Work& work) {
  inPieces(meter, text.size(), kBytesPerStep, site,
           [&](std::size_t offset, std::size_t count) { work(text.substr(offset, count)); });
}

// As find(next, end), which gives the address of the first byte that it looks for, or `end`. Counts
// the bytes that were looked at; for supervised interpreters only.
template <class Find>
const char* findInPieces(WorkMeter& meter, const char* next, const char* end, Site site,
                         const Find& find) {
  constexpr auto kMost = static_cast<std::ptrdiff_t>(kBytesPerStep * kStepsPerPiece);
  while (next != end) {
    const char* const pieceEnd = next + std::min(kMost, end - next);
    const char* const found = find(next, pieceEnd);
    meter.spend(stepsForBytes(static_cast<std::uint64_t>(found - next)), site);
    if (found != pieceEnd) return found;
    next = pieceEnd;
  }
  return end;
}

// Where `byte` stands first in [next, end), or `end`.
inline const char* findByte(const char* next, const char* end, char byte) {
  const void* const found = std::memchr(next, byte, static_cast<std::size_t>(end - next));
  return found != nullptr ? static_cast<const char*>(found) : end;
}
// The same, counted as work: a few bytes are none.
inline const char* findByte(WorkMeter& meter, const char* next, const char* end, char byte,
                            Site site) {
  if (end - next < static_cast<std::ptrdiff_t>(kBytesPerStep) || !meter.isSupervised())
    return findByte(next, end, byte);
  return findInPieces(meter, next, end, site, [byte](const char* from, const char* to) {
    return findByte(from, to, byte);
  });
}

}  // namespace tarvel::lua::internal
