#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "lua/stdlib/patterns/byte_tables.h"

namespace tarvel::lua::internal {

// What an expression of the simple kind (terms.h) is compiled to: instructions, and what every
// match is known to have in common, so that a search skips places and a failed attempt does not try
// what cannot help. None of that changes a result.

struct Instruction {
  enum class Kind : std::uint8_t {
    // Consume.
    Byte,
    Text,
    Set,
    // A repetition, as often as possible. Giving bytes back would not help.
    Run,
    RunUntil,  // up to a byte
    // The same as a group of its own.
    CapturedRun,
    CapturedRunUntil,
    // A repetition that gives bytes back, and one that takes more only when it has to.
    Greedy,
    Lazy,
    // Once or not at all: once where it can be, and that is it; or with the other way as a choice.
    Possible,
    PossibleGreedy,
    PossibleLazy,
    GroupOpen,
    GroupClose,
    Start,
    End,
    Accept,
  };

  Kind kind;
  bool needsOne = false;  // repetitions
  bool isFirst = false;   // the repetition of MatcherProgram::startsWithRun
  char byte = 0;          // Byte, RunUntil
  // Greedy, Lazy: what follows can match nothing at the end of the subject.
  bool followsAtEnd = false;
  std::uint16_t group = 0;
  std::uint32_t text = 0;  // Text: offset in the texts, and length
  std::uint32_t length = 0;
  TableSet set;
  TableSet follow;  // Greedy, Lazy: what the bytes that follow can start with
  TableSet stop;    // Lazy: `follow`, and all that is not in `set`

  bool isRun() const noexcept { return kind == Kind::Run || kind == Kind::RunUntil; }
};

// Text that stands in a match.
struct MatcherText {
  std::uint32_t offset = 0;
  std::uint32_t length = 0;
};

struct MatcherProgram {
  // Where attempts are made.
  enum class Attempts : std::uint8_t {
    Once,    // where the search begins
    AtText,  // `prefix`
    AtByte,  // `firstByte`
    AtSet,   // `firstSet`, and at the end if `matchesAtEnd`
    Everywhere,
  };

  std::vector<Instruction> instructions;
  std::string texts;
  ByteTables tables;
  std::size_t groups = 0;
  std::size_t choices = 0;  // at once, at most

  Attempts attempts = Attempts::Everywhere;
  MatcherText prefix;
  char firstByte = 0;
  TableSet firstSet;
  bool matchesAtEnd = false;
  // It starts with a repetition of bytes that cannot start what follows: where it does not match at
  // one place of such a run, it does not at the later ones.
  bool startsWithRun = false;
  // It is such a repetition of at least one byte, and nothing else, not even a group.
  bool isRun = false;
  // Behind the prefix; empty if there is none.
  MatcherText required;
  // A match ends at the end of the subject, and starts with at most so many bytes before the bytes
  // of `lastRun` that stand there (all bytes that stand there; none if there is no such run).
  bool hasKnownTail = false;
  bool endsWithRun = false;
  bool lastRunNeedsOne = false;
  std::size_t mostBeforeTail = 0;
  TableSet lastRun;

  std::size_t memory() const noexcept {  // bytes
    return instructions.capacity() * sizeof(Instruction) + texts.capacity() + tables.bytes();
  }
};

}  // namespace tarvel::lua::internal
