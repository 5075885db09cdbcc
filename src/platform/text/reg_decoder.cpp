// Byte order marks and characters that lie across two blocks.
#include "platform/text/reg_decoder.h"

#include <utility>

namespace korvex::platform {
namespace {

constexpr std::string_view kUtf16Mark = "\xFF\xFE";
constexpr std::string_view kUtf16BigEndianMark = "\xFE\xFF";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

bool endsInHighSurrogate(std::string_view bytes) {
  return bytes.size() >= 2 && (static_cast<unsigned char>(bytes.back()) & 0xFC) == 0xD8;
}

}  // namespace

void RegTextDecoder::decide() {
  const std::string_view start = kept_;
  std::size_t mark = 0;
  if (start.starts_with(kUtf16Mark)) {
    encoding_ = Encoding::Utf16;
    mark = kUtf16Mark.size();
  } else if (start.starts_with(kUtf16BigEndianMark)) {
    encoding_ = Encoding::Utf16BigEndian;
    mark = kUtf16BigEndianMark.size();
  } else if (start.starts_with(kUtf8Mark)) {
    encoding_ = Encoding::Utf8;
    mark = kUtf8Mark.size();
  } else {
    encoding_ = Encoding::CodePage;
  }
  kept_.erase(0, mark);
}

void RegTextDecoder::decode(std::string_view block, std::string& text) {
  if (encoding_ == Encoding::Undecided) {
    kept_.append(block);
    if (kept_.size() < kUtf8Mark.size()) return;
    decide();
    const std::string start = std::exchange(kept_, {});
    decodeKnown(start, text);
  } else {
    decodeKnown(block, text);
  }
}

void RegTextDecoder::decodeKnown(std::string_view block, std::string& text) {
  switch (encoding_) {
    case Encoding::Utf16:
      decodeUtf16(block, text);
      break;
    case Encoding::CodePage:
      codePage_.appendDecoded(block, text);
      break;
    case Encoding::Utf8:
      text.append(block);
      break;
    case Encoding::Utf16BigEndian:  // no registry editor writes it: the reader refuses the file
    case Encoding::Undecided:
      break;
  }
}

void RegTextDecoder::decodeUtf16(std::string_view block, std::string& text) {
  while (!kept_.empty() && !block.empty()) {
    kept_ += block.front();
    block.remove_prefix(1);
    if (kept_.size() % 2 == 0 && !(kept_.size() == 2 && endsInHighSurrogate(kept_))) {
      appendUtf8(kept_, text);
      kept_.clear();
    }
  }
  std::size_t whole = block.size() - block.size() % 2;
  if (endsInHighSurrogate(block.substr(0, whole))) whole -= 2;
  appendUtf8(block.substr(0, whole), text);
  kept_.append(block.substr(whole));
}

bool RegTextDecoder::finish(std::string& text) {
  if (encoding_ == Encoding::Undecided) {
    decide();
    const std::string start = std::exchange(kept_, {});
    decodeKnown(start, text);
  }
  const std::size_t whole = kept_.size() - kept_.size() % 2;
  appendUtf8(std::string_view(kept_).substr(0, whole), text);  // a lone surrogate at the very end
  const bool clean = whole == kept_.size();
  kept_.clear();
  return clean;
}

}  // namespace korvex::platform
