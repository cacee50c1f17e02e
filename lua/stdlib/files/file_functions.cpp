#include <unistd.h>

#include <climits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "lua/lua_vm_impl.h"
#include "lua/stdlib/arguments.h"
#include "lua/stdlib/files/buffered_file.h"
#include "lua/stdlib/files/file_reading.h"
#include "lua/stdlib/files/native_handles.h"
#include "lua/stdlib/files/standard_streams.h"
#include "lua/stdlib/library.h"
#include "lua/stdlib/short_text.h"
#include "lua/stdlib/text_builder.h"
#include "lua/value/errors.h"
#include "lua/value/metered_work.h"
#include "lua/value/native_class.h"

// io.open, io.write, and the methods of files and streams.

namespace tarvel::lua {

namespace internal {

namespace {

constexpr const char* kFailedToWrite = "failed to write file";

// Runs `action` with the file that is the receiver. What the file throws becomes the script's
// error.
template <class Action>
MultiValue withOpenFile(const char* name, ValueSpan args, Site site, const Action& action) {
  NativeObject& object = requireUserData(name, args, 0, site, NativeObject::Kind::File);
  FileHandle& handle = static_cast<FileHandle&>(*object.handle);
  if (handle.file == nullptr) failRuntime(site, "file is not open");
  try {
    return action(handle);
  } catch (const FileError& error) {
    failRuntime(site, error.what());
  }
}

// Passes the printable form of each argument from `first` on to `write`, in order.
template <class Writer>
void writeArguments(LuaVM& vm, ValueSpan args, std::size_t first, Site site, const Writer& write) {
  LuaVM::Impl::of(vm).heap.meter().spend(args.size() / kElementsPerStep, site);
  for (std::size_t i = first; i < args.size(); ++i) write(PrintableText(args[i]).view());
}

// Standard error is not buffered, and a function of the host's gets each argument by itself.
bool mayBeJoined(StandardStream stream, LuaVM& vm) {
  return stream == StandardStream::Output && !LuaVM::Impl::of(vm).options.output;
}

void writeToStream(StandardStream stream, LuaVM& vm, ValueSpan args, std::size_t first, Site site) {
  const ValueSpan values(args.begin() + first, args.size() - first);
  if (ShortText text; mayBeJoined(stream, vm) && text.addAll(values)) {
    if (!writeToStandard(stream, vm, text.view(), site)) failRuntime(site, kFailedToWrite);
    return;
  }
  writeArguments(vm, args, first, site, [&](std::string_view text) {
    if (!writeToStandard(stream, vm, text, site)) failRuntime(site, kFailedToWrite);
  });
}

// What file:read is asked for: 'a', 'l', 'L' or 'n' as scripts write them, or a number of bytes.
struct ReadRequest {
  static constexpr char kBytes = '#';

  char format;
  std::uint64_t count = 0;
};

ReadRequest requireReadRequest(ValueSpan args, Site site) {
  if (args.size() < 2) return {'l'};
  if (args[1].isNumber()) {
    const std::int64_t count = args[1].asInteger();
    if (count >= 0) return {ReadRequest::kBytes, static_cast<std::uint64_t>(count)};
  } else if (args[1].isString()) {
    std::string_view format = args[1].string->view();
    if (format.starts_with('*')) format.remove_prefix(1);
    if (format == "a" || format == "l" || format == "L" || format == "n") return {format[0]};
  }
  failRuntime(site, "invalid read format");
}

Value readRequested(LuaVM& vm, BufferedFile& file, ReadRequest request, Site site) {
  switch (request.format) {
    case 'a':
      return readRest(vm, file, site);
    case 'n':
      return readNumber(vm, file, site);
    case ReadRequest::kBytes:
      return readBytes(vm, file, request.count, site);
    default:
      return readLine(vm, file, request.format == 'L', site);
  }
}

MultiValue fileRead(LuaVM& vm, ValueSpan args, Site site) {  // file:read
  requireArgumentCount("file:read", args.size(), 1, 2);
  return withOpenFile("file:read", args, site, [&](FileHandle& handle) {
    const ReadRequest request = requireReadRequest(args, site);
    handle.file->startReading();
    return MultiValue(readRequested(vm, *handle.file, request, site));
  });
}

MultiValue fileWrite(LuaVM& vm, ValueSpan args, Site site) {  // file:write
  requireArgumentCount("file:write", args.size(), 2, kAnyCount);
  return withOpenFile("file:write", args, site, [&vm, args, site](FileHandle& handle) {
    writeArguments(vm, args, 1, site, [&](std::string_view text) {
      inPieces(LuaVM::Impl::of(vm).heap.meter(), text, site,
               [&handle](std::string_view piece) { handle.file->write(piece); });
    });
    return MultiValue(retain(args[0]));
  });
}

int requireWhence(ValueSpan args, Site site) {
  if (args.size() < 2) return SEEK_CUR;
  const std::string_view name = requireString("file:seek", args, 1, site).view();
  if (name == "set") return SEEK_SET;
  if (name == "cur") return SEEK_CUR;
  if (name == "end") return SEEK_END;
  failRuntime(site, "invalid seek mode");
}

MultiValue fileSeek(LuaVM&, ValueSpan args, Site site) {  // file:seek
  requireArgumentCount("file:seek", args.size(), 1, 3);
  return withOpenFile("file:seek", args, site, [args, site](FileHandle& handle) {
    const int whence = requireWhence(args, site);
    const std::int64_t offset = args.size() < 3 ? 0 : requireInteger("file:seek", args, 2, site);
    const std::optional<std::int64_t> position = handle.file->seek(offset, whence);
    if (!position) failRuntime(site, "seek failed");
    return MultiValue(Value(*position));
  });
}

MultiValue fileClose(LuaVM&, ValueSpan args, Site site) {  // file:close
  requireArgumentCount("file:close", args.size(), 1, 1);
  return withOpenFile("file:close", args, site, [](FileHandle& handle) {
    const std::unique_ptr<BufferedFile> file = std::move(handle.file);
    handle.forgetFile();
    file->close();
    return MultiValue(Value(true));
  });
}

MultiValue streamWrite(LuaVM& vm, ValueSpan args, Site site) {  // stream:write
  requireArgumentCount("stream:write", args.size(), 2, kAnyCount);
  NativeObject& object = requireUserData("stream:write", args, 0, site, NativeObject::Kind::Stream);
  writeToStream(static_cast<const StreamHandle&>(*object.handle).stream, vm, args, 1, site);
  return MultiValue(retain(args[0]));
}

void addMethod(LuaVM::Impl& interpreter, NativeClass& type, std::string_view field,
               const OwnedValue& method) {
  const OwnedValue name(Value(interpreter.strings.intern(field)));
  type.setMethod(name.get().string, method);
}

}  // namespace

namespace {

Value failedToOpen(Heap& heap, std::string_view path, Site site) {
  constexpr std::string_view kText = "failed to open file: ";
  TextBuilder message(heap, kText.size() + path.size(), site);
  message.append(kText);
  message.append(path);
  return message.take();
}

}  // namespace

// Failing to open is a result, not an error.
MultiValue ioOpen(LuaVM& vm, ValueSpan args, Site site) {
  requireArgumentCount("io.open", args.size(), 1, 2);
  const std::string_view path = requireString("io.open", args, 0, site).view();
  const std::string_view letters =
      isGiven(args, 1) ? requireString("io.open", args, 1, site).view() : "r";
  LuaVM::Impl& interpreter = LuaVM::Impl::of(vm);
  interpreter.heap.meter().spend(stepsForBytes(letters.size()), site);
  std::unique_ptr<BufferedFile> file;
  if (path.size() < PATH_MAX) {  // the system refuses longer ones
    file = BufferedFile::open(std::string(path), OpenMode::fromLetters(letters));
  }
  if (file == nullptr) return MultiValue{Value(), failedToOpen(interpreter.heap, path, site)};
  return MultiValue(Value(NativeObject::create(
      interpreter.heap, NativeObject::Kind::File, *interpreter.standard.fileClass,
      std::make_unique<FileHandle>(interpreter.heap, std::move(file)))));
}

MultiValue ioWrite(LuaVM& vm, ValueSpan args, Site site) {
  requireArgumentCount("io.write", args.size(), 1, kAnyCount);
  writeToStream(StandardStream::Output, vm, args, 0, site);
  return MultiValue(retain(LuaVM::Impl::of(vm).standard.output.get()));
}

}  // namespace internal

void LuaVM::Impl::defineFileClasses() {
  using namespace internal;
  standard.fileClass = &NativeClass::create(heap, "file");
  standard.streamClass = &NativeClass::create(heap, "stream");
  const auto make = [this](const char* name, MultiValue (*function)(LuaVM&, ValueSpan, Site)) {
    return OwnedValue(makeNative(name, function));
  };
  // A stream has the other methods of files, too, which then refuse it.
  const struct {
    const char* field;
    OwnedValue method;
  } shared[] = {{"read", make("file:read", fileRead)},
                {"seek", make("file:seek", fileSeek)},
                {"close", make("file:close", fileClose)}};
  for (const auto& [field, method] : shared) {
    addMethod(*this, *standard.fileClass, field, method);
    addMethod(*this, *standard.streamClass, field, method);
  }
  addMethod(*this, *standard.fileClass, "write", make("file:write", fileWrite));
  addMethod(*this, *standard.streamClass, "write", make("stream:write", streamWrite));
}

}  // namespace tarvel::lua
