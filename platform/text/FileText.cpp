#include "platform/text/FileText.h"

#include <algorithm>

#include "platform/text/Utf8.h"

namespace fl {
namespace {

void decodeLatin1(std::string_view bytes, char16_t* out) {
  const char* next = bytes.data();
  const char* const end = next + bytes.size();
  for (; end - next >= 32; next += 32, out += 32) utf8::widen<32>(next, out);
  for (; next != end; ++next) *out++ = static_cast<unsigned char>(*next);
}

std::optional<std::string> encodeLatin1(ustring_view text) {
  std::string bytes(text.size(), '\0');
  const char16_t* const start = text.data();
  const std::size_t run = utf8::narrowRun<0xFF>(start, start + text.size(), bytes.data());
  if (run != text.size()) return std::nullopt;
  return bytes;
}

bool isAscii(std::string_view bytes) {
  const char* next = bytes.data();
  const char* const end = next + bytes.size();
  for (; end - next >= 32; next += 32) {
    if ((utf8::bitsOf32Bytes(next) & utf8::notAsciiBytes) != 0) return false;
  }
  return std::all_of(next, end, [](unsigned char byte) { return byte < 0x80; });
}

}  // namespace

DecodedText decodeFileText(std::string_view bytes) {
  // The usual case, which makes the text without zeroing its memory first.
  if (isAscii(bytes)) return {ustring(bytes.begin(), bytes.end()), EncodingType::utf8};
  DecodedText decoded;
  decoded.text.resize(bytes.size());
  char16_t* const text = decoded.text.data();
  if (const auto length = utf8::decodeText(bytes, utf8::FaultType::refuse, text)) {
    decoded.text.resize(*length);
    return decoded;
  }
  decoded.encoding = EncodingType::latin1;
  decodeLatin1(bytes, text);
  return decoded;
}

std::optional<std::string> encodeFileText(ustring_view text, EncodingType encoding) {
  return encoding == EncodingType::latin1 ? encodeLatin1(text)
                                          : utf8::encodeText(text, utf8::FaultType::refuse);
}

}  // namespace fl
