#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "lua/value/errors.h"
#include "lua/value/heap.h"
#include "lua/value/string_object.h"
#include "lua/value/string_pool.h"
#include "lua/value/value.h"

namespace tarvel::lua::internal {

[[noreturn]] void failNotEnoughMemory(Site site);

// A string of `length` bytes for the caller to fill in, owned. Raises "not enough memory" at
// `site`.
StringObject* createText(Heap& heap, std::size_t length, Site site);

// For texts that are not short; see makeText.
Value makeLongText(Heap& heap, std::string_view bytes, Site site);

// A string of these bytes, owned; they are counted as work.
inline Value makeText(StringPool& strings, std::string_view bytes, Site site) {
  return bytes.size() < kBytesPerStep ? strings.make(bytes)
                                      : makeLongText(strings.heap(), bytes, site);
}

// A string that a library function puts together piece by piece. It grows in the interpreter's own
// memory, so a text that cannot be held raises "not enough memory" at the line of the call instead
// of taking what the machine has not got. Long pieces are counted as work; whoever appends many
// short ones counts those.
class TextBuilder {
 public:
  // `expectedLength` is a guess that saves growing; whoever knows the length exactly gets a string
  // without spare room.
  TextBuilder(Heap& heap, std::size_t expectedLength, Site site);
  ~TextBuilder() { drop(text_); }
  TextBuilder(const TextBuilder&) = delete;
  TextBuilder& operator=(const TextBuilder&) = delete;

  void append(std::string_view bytes) {
    if (bytes.size() < kBytesPerStep && bytes.size() <= text_.string->room()) [[likely]] {
      text_.string->append(bytes);
    } else {
      appendSlowly(bytes);
    }
  }
  // Appends the printable form.
  void append(const Value& value);

  // Room for so many more bytes behind the text; those that the caller fills there are added.
  char* makeSpace(std::size_t bytes) {
    makeRoom(bytes);
    return text_.string->data() + text_.string->length;
  }
  void addFilled(std::size_t bytes) noexcept;

  // The finished string, owned by the caller. The builder is empty afterwards and of no further
  // use.
  Value take() noexcept;

 private:
  void makeRoom(std::size_t bytes);
  void appendSlowly(std::string_view bytes);

  Heap& heap_;
  Site site_;
  Value text_;
  std::string rendering_;
};

}  // namespace tarvel::lua::internal
