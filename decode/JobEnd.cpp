#include "JobEnd.h"

namespace velka::decode {

void JobEnd::note(CommandKind kind) {
  const bool whole = state_ == State::Fed || state_ == State::Blank;
  if (kind == CommandKind::FormFeed) {
    state_ = State::Fed;
  } else if (kind == CommandKind::Initialise) {
    if (state_ != State::Inside) state_ = whole ? State::Ended : State::Started;
  } else if (kind == CommandKind::LineSpacing &&
             (state_ == State::Ended || state_ == State::Started)) {
    state_ = State::Started;
  } else if (kind == CommandKind::PageLength && state_ == State::Started) {
    state_ = State::Blank;
  } else {
    state_ = State::Inside;
  }
}

std::optional<Fault> JobEnd::missing(size_t size) const {
  switch (state_) {
    case State::Ended:
      return std::nullopt;
    case State::Nothing:
      return Fault{size, "the stream is empty"};
    case State::Inside:
      return Fault{size, "the stream ends inside a page"};
    default:
      return Fault{size, "the stream ends before its job does"};
  }
}

}  // namespace velka::decode
