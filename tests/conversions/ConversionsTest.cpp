// Conversions are independent: when any one is made alone, the file is still a class, and a later
// update makes the others.
#include "conversions/Conversions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "platform/paths/Overlay.h"
#include "platform/paths/PathDispatcher.h"
#include "platform/text/Conversions.h"
#include "tests/Places.h"
#include "tests/cases/CaseFile.h"
#include "tests/platform/TemporaryFolder.h"

namespace soca::cli {
namespace {

namespace fs = std::filesystem;
using fl::i18n::to_string;
using fl::i18n::to_ustring;
using testing::Case;

std::string applyOne(const FileEdits& all, const Conversion& conversion, const std::string& text) {
  std::string newText;
  std::size_t position = 0;
  for (const std::size_t number : conversion.edits) {
    const FileEdit& edit = all.edits[number];
    newText += text.substr(position, edit.offset - position) + edit.text;
    position = edit.offset + edit.length;
  }
  return newText + text.substr(position);
}

// Without blanks at the ends of lines and blank lines, which depend on the edits made together.
std::string withoutBlanks(std::string text) {
  std::erase_if(text, [](char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; });
  return text;
}

// The text after repeated updates, until an update changes nothing.
std::string settle(const PlannedClass& whole, fl::ustring text) {
  for (int i = 0; i < 3; ++i) {
    const fl::filesystem::OverlayScope overlay(to_string(whole.result.fileName), text);
    text = planUpdate(whole.result.className, allFamilies, false).front().text();
  }
  return withoutBlanks(to_string(text));
}

void expectIndependence(const std::string& className) {
  SCOPED_TRACE(className);
  std::vector<PlannedClass> planned;
  try {
    planned = planUpdate(to_ustring(className), allFamilies, false, {.keepLines = true});
  } catch (const std::exception&) {
    // Other tests check this result.
    return;
  }
  const PlannedClass& whole = planned.front();
  if (whole.missingDelimiter) return;
  const auto edits = findFileEdits(whole, fl::EncodingType::utf8);
  const auto conversions = findConversions(whole, edits);
  const auto settled = settle(whole, fl::ustring(whole.text()));
  std::size_t count = 0;
  for (const Conversion& conversion : conversions) {
    count += conversion.edits.size();
    EXPECT_FALSE(conversion.message.empty());
    const auto text = applyOne(edits, conversion, to_string(whole.analysis->sourceTextView()));
    EXPECT_EQ(settle(whole, to_ustring(text)), settled) << text;
  }
  EXPECT_EQ(count, edits.edits.size());
}

void expectIndependenceBelow(const fs::path& root) {
  PathDispatcher::getDispatcher().setClassPath({root.string()});
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    if (entry.path().extension() != ".vlm") continue;
    auto name = entry.path().lexically_relative(root).replace_extension().string();
    std::ranges::replace(name, '/', '.');
    expectIndependence(name);
  }
}

TEST(Conversions, AreIndependentInTheExamples) {
  expectIndependenceBelow(testing::projectPath("examples"));
}

TEST(Conversions, AreIndependentInTheCases) {
  for (const Case& each : testing::findCases(testing::projectPath("tests/cases"))) {
    SCOPED_TRACE(each.name);
    if (each.find("again") != nullptr || each.find("table") != nullptr) continue;
    const TemporaryFolder folder;
    for (const auto& section : each.sections) {
      if (!section.name.starts_with("before/") || section.name.ends_with('/')) continue;
      folder.write(section.name.substr(7), section.text);
    }
    expectIndependenceBelow(folder.path());
  }
}

}  // namespace
}  // namespace soca::cli
