#include "CommandReader.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace velka::decode {
namespace {

constexpr uint8_t kEsc = 0x1B;
constexpr uint8_t kGs = 0x1D;

enum class Parameter : uint8_t { None, Byte, Word, SignedWord, Block };

constexpr std::array<size_t, 5> kParameterBytes{0, 1, 2, 2, 3};

struct Form {
  CommandKind kind;
  Parameter parameter;
  uint8_t length;  // of the prefix
  std::array<uint8_t, 5> prefix;
};

constexpr std::array<Form, 14> kForms{{
    {CommandKind::CarriageReturn, Parameter::None, 1, {0x0D}},
    {CommandKind::FormFeed, Parameter::None, 1, {0x0C}},
    {CommandKind::Initialise, Parameter::None, 2, {kEsc, '@'}},
    {CommandKind::LineSpacing, Parameter::None, 2, {kEsc, '2'}},
    {CommandKind::PageLength, Parameter::Byte, 2, {kEsc, 'C'}},
    {CommandKind::SetUnit, Parameter::Byte, 5, {kEsc, '(', 'U', 1, 0}},
    {CommandKind::PaperMove, Parameter::SignedWord, 5, {kEsc, '(', 'v', 2, 0}},
    {CommandKind::PaperAdvance, Parameter::Byte, 2, {kEsc, 'J'}},
    {CommandKind::HeadTo, Parameter::Word, 2, {kEsc, '$'}},
    {CommandKind::HeadBy, Parameter::SignedWord, 2, {kEsc, '\\'}},
    {CommandKind::Colour, Parameter::Byte, 2, {kEsc, 'r'}},
    {CommandKind::BitImage, Parameter::Block, 2, {kEsc, '*'}},
    {CommandKind::EjectMode, Parameter::Byte, 3, {kGs, 4, 'T'}},
    {CommandKind::FeedMode, Parameter::Byte, 2, {kEsc, 0x19}},
}};

constexpr std::array<uint8_t, 3> kMoveStart{kEsc, '(', 'v'};

enum class Match : uint8_t { No, Cut, Yes };

Match match(Bytes rest, const Form& form) {
  const size_t common = std::min<size_t>(rest.size(), form.length);
  if (!std::equal(rest.begin(), rest.begin() + static_cast<std::ptrdiff_t>(common),
                  form.prefix.begin())) {
    return Match::No;
  }
  const size_t whole = form.length + kParameterBytes[static_cast<size_t>(form.parameter)];
  return rest.size() < whole ? Match::Cut : Match::Yes;
}

int32_t word(Bytes bytes) {
  return bytes[0] | (bytes[1] << 8);
}

int32_t parameterOf(Parameter parameter, Bytes bytes) {
  switch (parameter) {
    case Parameter::None:
      return 0;
    case Parameter::Byte:
      return bytes[0];
    case Parameter::Word:
      return word(bytes);
    case Parameter::SignedWord:
      return static_cast<int16_t>(word(bytes));
    case Parameter::Block:
      return word(bytes.subspan(1));
  }
  return 0;
}

bool startsMove(Bytes rest) {
  return rest.size() >= kMoveStart.size() &&
         std::equal(kMoveStart.begin(), kMoveStart.end(), rest.begin());
}

}  // namespace

std::optional<Command> CommandReader::next() {
  if (fault_ || at_ >= stream_.size()) return std::nullopt;
  const Bytes rest = stream_.subspan(at_);
  if (startsMove(rest) && startsMove(rest.subspan(kMoveStart.size()))) return longMove();
  bool cut = false;
  for (const Form& form : kForms) {
    const Match found = match(rest, form);
    cut = cut || found == Match::Cut;
    if (found != Match::Yes) continue;
    const size_t parameters = kParameterBytes[static_cast<size_t>(form.parameter)];
    const Bytes bytes = rest.subspan(form.length, parameters);
    Command command{
        form.kind, at_, form.length + parameters, parameterOf(form.parameter, bytes), {}, {}, 0};
    if (form.kind == CommandKind::BitImage) return block(command);
    if (form.kind == CommandKind::Colour && command.value > highestColour_) {
      return fail("unknown colour " + std::to_string(command.value));
    }
    return taken(command);
  }
  return fail(cut ? "the stream ends inside a command" : unknown());
}

std::optional<Command> CommandReader::taken(const Command& command) {
  at_ += command.size;
  return command;
}

std::optional<Command> CommandReader::fail(std::string what) {
  fault_ = Fault{at_, std::move(what)};
  return std::nullopt;
}

std::string CommandReader::unknown() const {
  std::string text = "unknown command";
  const size_t shown = stream_[at_] == kEsc || stream_[at_] == kGs ? 3 : 1;
  for (size_t i = at_; i < std::min(stream_.size(), at_ + shown); ++i) {
    std::array<char, 4> hex{};
    (void)std::snprintf(hex.data(), hex.size(), " %02X", stream_[i]);
    text += hex.data();
  }
  return text;
}

// A move too long for one command is sent as several that overlap: all but the last
// keep their first three bytes only, and the room of what was cut follows as zeros.
std::optional<Command> CommandReader::longMove() {
  constexpr size_t kCutBytes = 4;
  size_t size = 0;
  while (startsMove(stream_.subspan(at_ + size + kMoveStart.size()))) size += kMoveStart.size();
  const size_t overwritten = size / kMoveStart.size();
  const Bytes last = stream_.subspan(at_ + size);
  constexpr size_t kWhole = 7;
  const size_t padding = overwritten * kCutBytes;
  if (last.size() < kWhole + padding) return fail("the stream ends inside a long paper move");
  if (last[3] != 2 || last[4] != 0) return fail("paper move of unknown length");
  const Bytes zeros = last.subspan(kWhole, padding);
  if (std::any_of(zeros.begin(), zeros.end(), [](uint8_t byte) { return byte != 0; })) {
    return fail("long paper move without its padding");
  }
  return taken({CommandKind::PaperMove,
                at_,
                size + kWhole + padding,
                static_cast<int16_t>(word(last.subspan(5))),
                {},
                {},
                overwritten});
}

std::optional<Command> CommandReader::block(Command command) {
  const uint8_t code = stream_[at_ + 2];
  const auto mode = findMode(code, orlo_);
  if (!mode) return fail("block of unknown mode " + std::to_string(code));
  const size_t bytes = static_cast<size_t>(command.value) * mode->bytesPerColumn;
  const Bytes rest = stream_.subspan(at_ + command.size);
  if (rest.size() < bytes) return fail("the stream ends inside a block");
  command.mode = *mode;
  command.data = rest.first(bytes);
  command.size += bytes;
  return taken(command);
}

}  // namespace velka::decode
