#include "lua/stdlib/text_builder.h"

#include <algorithm>
#include <new>
#include <utility>

#include "lua/value/errors.h"
#include "lua/value/metered_work.h"

namespace tarvel::lua::internal {

void failNotEnoughMemory(Site site) { failRuntime(site, "not enough memory", FailureKind::Memory); }

StringObject* createText(Heap& heap, std::size_t length, Site site) {
  try {
    return StringObject::createUninitialized(heap, length);
  } catch (const std::bad_alloc&) {
    failNotEnoughMemory(site);
  }
}

Value makeLongText(Heap& heap, std::string_view bytes, Site site) {
  OwnedValue text(Value(StringObject::createUninitialized(heap, bytes.size())));
  char* next = text.get().string->data();
  inPieces(heap.meter(), bytes, site,
           [&next](std::string_view piece) { next = std::copy(piece.begin(), piece.end(), next); });
  return text.take();
}

TextBuilder::TextBuilder(Heap& heap, std::size_t expectedLength, Site site)
    : heap_(heap), site_(site), text_(createText(heap, expectedLength, site)) {
  text_.string->length = 0;
}

void TextBuilder::appendSlowly(std::string_view bytes) {
  makeRoom(bytes.size());
  inPieces(heap_.meter(), bytes, site_,
           [this](std::string_view piece) { text_.string->append(piece); });
}

void TextBuilder::makeRoom(std::size_t bytes) {
  try {
    text_.string = StringObject::reserveInPlace(heap_, text_.string, bytes);
  } catch (const std::bad_alloc&) {
    failNotEnoughMemory(site_);
  }
}

void TextBuilder::addFilled(std::size_t bytes) noexcept {
  StringObject& text = *text_.string;
  text.length += bytes;
  text.data()[text.length] = '\0';
}

void TextBuilder::append(const Value& value) {
  if (value.isString()) return append(value.string->view());
  rendering_.clear();
  value.appendTo(rendering_);
  append(rendering_);
}

Value TextBuilder::take() noexcept { return std::exchange(text_, Value()); }

}  // namespace tarvel::lua::internal
