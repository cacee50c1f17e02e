#include "lua/stdlib/text_builder.h"

#include <new>
#include <utility>

#include "lua/value/errors.h"

namespace tarvel::lua::internal {

void failNotEnoughMemory(Site site) { failRuntime(site, "not enough memory", FailureKind::Memory); }

StringObject* createText(Heap& heap, std::size_t length, Site site) {
  try {
    return StringObject::createUninitialized(heap, length);
  } catch (const std::bad_alloc&) {
    failNotEnoughMemory(site);
  }
}

TextBuilder::TextBuilder(Heap& heap, std::size_t expectedLength, Site site)
    : heap_(heap), site_(site), text_(createText(heap, expectedLength, site)) {
  text_.string->length = 0;
}

void TextBuilder::append(std::string_view bytes) {
  try {
    text_.string = StringObject::reserveInPlace(heap_, text_.string, bytes.size());
  } catch (const std::bad_alloc&) {
    failNotEnoughMemory(site_);
  }
  text_.string->append(bytes);
}

void TextBuilder::append(const Value& value) {
  if (value.isString()) return append(value.string->view());
  rendering_.clear();
  value.appendTo(rendering_);
  append(rendering_);
}

Value TextBuilder::take() noexcept { return std::exchange(text_, Value()); }

}  // namespace tarvel::lua::internal
