// Conversions are independent: the edits of each give the text with only this one, and a later
// update makes the others.
#include "conversions/ConversionEdits.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "conversions/ClassMembers.h"
#include "platform/analyzer/Analyzer.h"
#include "platform/paths/Overlay.h"
#include "platform/paths/PathDispatcher.h"
#include "platform/text/Conversions.h"
#include "tests/Places.h"
#include "tests/cases/CaseFile.h"
#include "tests/conversions/EditedBytes.h"
#include "tests/platform/TemporaryFolder.h"

namespace soca::cli {
namespace {

namespace fs = std::filesystem;
using fl::i18n::to_string;
using fl::i18n::to_ustring;
using testing::applyAll;
using testing::Case;

// The declarations and bodies of the class after repeated updates. Its blocks depend on the
// conversions that are made together.
std::vector<std::string> settledMembers(const PlannedClass& whole, fl::ustring text) {
  for (int i = 0; i < 3; ++i) {
    const fl::filesystem::OverlayScope overlay(to_string(whole.result.fileName), text);
    text = planUpdate(whole.result.className, allFamilies, false).front().text();
  }
  const auto analysis = ca::analyzeText(text);
  std::vector<std::string> members;
  const auto add = [&](const ca::astapi::Node& node) {
    members.push_back(to_string(analysis->nodeTextView(node)));
  };
  for (const DeclaredProperty& property : declaredProperties(*analysis)) add(*property.node);
  for (const DeclaredMethod& method : declaredMethods(*analysis)) add(*method.node);
  return members;
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
  if (whole.newText == nullptr) return;
  auto conversions = describeConversions(whole);
  findEditsOfEach(whole, fl::EncodingType::utf8, conversions);
  const auto settled = settledMembers(whole, fl::ustring(whole.text()));
  for (std::size_t i = 0; i < conversions.size(); ++i) {
    SCOPED_TRACE(conversions[i].id);
    std::vector<bool> made(conversions.size());
    made[i] = true;
    const fl::ustring expected(planConversions(whole, made).text());
    EXPECT_EQ(applyAll(conversions[i].edits, to_string(*whole.oldText)), to_string(expected));
    EXPECT_FALSE(conversions[i].edits.empty());
    EXPECT_EQ(settledMembers(whole, expected), settled);
  }
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
