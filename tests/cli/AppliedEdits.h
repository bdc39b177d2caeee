// Applies the replacements of `--format json --edits` as a tool would.
#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "files/writing/Digest.h"
#include "platform/text/Conversions.h"
#include "platform/text/FileText.h"

namespace soca::testing {

// The bytes of the file after the edits of one result, which must be in order, belong to this file,
// and change the text that they name.
inline std::string applyEdits(const nlohmann::json& result, const std::string& bytes) {
  EXPECT_EQ(result.at("sha256"), sha256(bytes));
  const auto encoding = fl::decodeFileText(bytes).encoding;
  std::string newBytes;
  std::size_t position = 0;
  for (const auto& edit : result.at("edits")) {
    const std::size_t offset = edit.at("offset");
    const std::size_t length = edit.at("length");
    const auto text = fl::i18n::to_ustring(edit.at("text").get<std::string>());
    const std::string newPart = fl::encodeFileText(text, encoding).value();
    EXPECT_TRUE(position == 0 || offset > position) << result.dump(1);
    EXPECT_NE(bytes.substr(offset, length), newPart) << result.dump(1);
    newBytes += bytes.substr(position, offset - position) + newPart;
    position = offset + length;
  }
  return newBytes + bytes.substr(position);
}

}  // namespace soca::testing
