#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "lua/lua_vm_impl.h"
#include "lua/stdlib/arguments.h"
#include "lua/stdlib/library.h"
#include "lua/stdlib/results.h"
#include "lua/stdlib/text_builder.h"
#include "lua/value/metered_work.h"

// string.sub, rep, format, unpack. Positions count bytes from 1.

namespace tarvel::lua::internal {

namespace {

// A negative position counts from the end.
std::int64_t fromStart(std::int64_t position, std::int64_t length) noexcept {
  return position < 0 ? position + length + 1 : position;
}

// Once the text is there, each step copies all that is there, so that short texts are not copied
// one by one.
void fillWithRepetitions(WorkMeter& meter, char* target, std::size_t length, std::string_view text,
                         Site site) {
  inPieces(meter, text.size(), kBytesPerStep, site, [=](std::size_t offset, std::size_t count) {
    text.substr(offset, count).copy(target + offset, count);
  });
  const std::size_t most = meter.isSupervised() ? kBytesPerStep * kStepsPerPiece : length;
  for (std::size_t filled = text.size(); filled < length;) {
    const std::size_t start = filled % text.size();
    const std::size_t count = std::min({filled - start, length - filled, most});
    meter.spend(stepsForBytes(count), site);
    std::copy_n(target + start, count, target + filled);
    filled += count;
  }
}

}  // namespace

Value stringSub(LuaVM& vm, ValueSpan args, Site site) {
  requireArgumentCount("string.sub", args.size(), 2, 3);
  const std::string_view text = requireString("string.sub", args, 0, site).view();
  const std::int64_t from = requireInteger("string.sub", args, 1, site);
  const std::int64_t to = isGiven(args, 2) ? requireInteger("string.sub", args, 2, site) : -1;

  const auto length = static_cast<std::int64_t>(text.size());
  const std::int64_t first = std::max<std::int64_t>(fromStart(from, length), 1);
  const std::int64_t last = std::min(fromStart(to, length), length);
  if (first == 1 && last == length) return retain(args[0]);
  const std::int64_t count = last >= first ? last - first + 1 : 0;
  const char* const start = count > 0 ? text.data() + (first - 1) : text.data();
  return makeText(LuaVM::Impl::of(vm).strings, {start, static_cast<std::size_t>(count)}, site);
}

Value stringRep(LuaVM& vm, ValueSpan args, Site site) {
  requireArgumentCount("string.rep", args.size(), 2, 2);
  const std::string_view text = requireString("string.rep", args, 0, site).view();
  const std::int64_t times = requireInteger("string.rep", args, 1, site);

  LuaVM::Impl& interpreter = LuaVM::Impl::of(vm);
  if (times < 1 || text.empty()) return interpreter.makeString({});
  if (times == 1) return retain(args[0]);
  const std::size_t most = StringObject::kMaximumLength / text.size();
  if (static_cast<std::uint64_t>(times) > most) failNotEnoughMemory(site);
  const std::size_t length = text.size() * static_cast<std::size_t>(times);
  OwnedValue repeated(Value(createText(interpreter.heap, length, site)));
  fillWithRepetitions(interpreter.heap.meter(), repeated.get().string->data(), length, text, site);
  return repeated.take();
}

// ---- string.format ------------------------------------------------------------------------------

namespace {

const Value& requireNumberFor(const Value& value, const char* message, Site site) {
  if (!value.isNumber()) failRuntime(site, message);
  return value;
}

// Deliberate: `%f` is not a fixed notation but the printable form of a float, with six significant
// digits, so that a number looks the same wherever it is printed.
void appendFormatted(TextBuilder& out, char token, const Value& value, Site site) {
  switch (token) {
    case 'd':
    case 'i':
      out.append(
          Value(requireNumberFor(value, "integer format expects a number", site).asInteger()));
      return;
    case 'f':
      out.append(Value(requireNumberFor(value, "float format expects a number", site).asFloat()));
      return;
    case 's':
      out.append(value);
      return;
    default:
      failRuntime(site, std::string("unsupported format token %") + token);
  }
}

constexpr std::size_t kUsualArgumentLength = 8;  // bytes

}  // namespace

Value stringFormat(LuaVM& vm, ValueSpan args, Site site) {
  requireArgumentCount("string.format", args.size(), 1, kAnyCount);
  std::string_view rest = requireString("string.format", args, 0, site).view();
  Heap& heap = LuaVM::Impl::of(vm).heap;
  TextBuilder out(heap, rest.size() + args.size() * kUsualArgumentLength, site);
  for (std::size_t next = 1;; heap.meter().step(site)) {
    const char* const end = rest.data() + rest.size();
    const char* const percent = findByte(heap.meter(), rest.data(), end, '%', site);
    const auto before = static_cast<std::size_t>(percent - rest.data());
    out.append(rest.substr(0, before));
    if (percent == end) return out.take();
    if (percent + 1 == end) failRuntime(site, "unterminated format token");
    const char token = percent[1];
    rest.remove_prefix(before + 2);
    if (token == '%') {
      out.append("%");
      continue;
    }
    if (next == args.size()) failRuntime(site, "missing format argument");
    appendFormatted(out, token, args[next++], site);
  }
}

// ---- string.unpack ------------------------------------------------------------------------------

namespace {

constexpr std::size_t kFieldBytes = 4;

bool isWhiteSpace(char byte) noexcept { return byte == ' ' || (byte >= '\t' && byte <= '\r'); }

bool isDigit(char byte) noexcept { return byte >= '0' && byte <= '9'; }

// The width after an `I`. Without digits, or with too many, the call ends with the conversion's own
// exception.
int takeFieldWidth(WorkMeter& meter, std::string_view& format, Site site) {
  constexpr std::size_t kMostDigits = 12;  // more than any width has
  std::string width;
  for (; !format.empty() && isDigit(format.front()); format.remove_prefix(1)) {
    meter.step(site);
    if (width == "0") width.clear();
    if (width.size() < kMostDigits) width.push_back(format.front());
  }
  return std::stoi(width);
}

// The unsigned field at `offset`, which it moves behind the field.
std::int64_t takeField(std::string_view data, std::uint64_t& offset, bool bigEndian, Site site) {
  if (offset + kFieldBytes > data.size()) {
    failRuntime(site, "string.unpack ran past the end of the buffer");
  }
  std::uint32_t field = 0;
  for (std::size_t i = 0; i < kFieldBytes; ++i) {
    const std::size_t place = bigEndian ? i : kFieldBytes - 1 - i;
    field = field << 8 | static_cast<unsigned char>(data[offset + place]);
  }
  offset += kFieldBytes;
  return field;
}

}  // namespace

// Returns the fields and the position behind the last of them.
Value stringUnpack(LuaVM::Impl& interpreter, Value* frame, std::uint32_t count, Site site) {
  const ValueSpan args(frame + 1, count);
  requireArgumentCount("string.unpack", args.size(), 2, 3);
  std::string_view format = requireString("string.unpack", args, 0, site).view();
  const std::string_view data = requireString("string.unpack", args, 1, site).view();
  const std::int64_t position =
      args.size() > 2 ? requireInteger("string.unpack", args, 2, site) : 1;

  // The results stand where the heap does not count them, and whoever keeps them in a table that
  // grows takes twice as much again.
  const std::size_t mostResults = std::min(format.size() / 2, data.size() / kFieldBytes) + 1;
  Heap& heap = interpreter.heap;
  heap.requireRoom(3 * sizeof(Value) * mostResults);

  auto offset = static_cast<std::uint64_t>(std::max<std::int64_t>(position, 1) - 1);
  bool bigEndian = false;
  Results results(interpreter.stack, interpreter.heap.meter(), site);
  while (!format.empty()) {
    heap.meter().step(site);
    const char token = format.front();
    format.remove_prefix(1);
    if (token == '<' || token == '>') {
      bigEndian = token == '>';
    } else if (token == 'I') {
      if (takeFieldWidth(heap.meter(), format, site) != kFieldBytes) {
        failRuntime(site, "TarvelLua only supports string.unpack I4 fields");
      }
      results.push(Value(takeField(data, offset, bigEndian, site)));
    } else if (!isWhiteSpace(token)) {
      failRuntime(site, "unsupported string.unpack format");
    }
  }
  results.push(Value(static_cast<std::int64_t>(offset + 1)));
  return results.take();
}

}  // namespace tarvel::lua::internal
