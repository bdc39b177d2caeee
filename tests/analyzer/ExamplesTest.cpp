// Checks on the example classes that the tree has every name of their texts.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <set>

#include "platform/analyzer/Analyzer.h"
#include "platform/analyzer/tree/NodeVisitor.h"
#include "platform/paths/SourceReader.h"
#include "platform/text/Conversions.h"
#include "tests/Places.h"

namespace ca {
namespace {

bool isWordCharacter(char16_t c) {
  return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') ||
         c == u'_';
}

// Blanks out comments and literals, by simple rules that suffice for the examples: a quote is a
// transpose directly after a word, a closing bracket or another quote.
fl::ustring withoutCommentsAndLiterals(fl::ustring text) {
  bool inBlock = false;
  for (std::size_t start = 0, end = 0; start < text.size(); start = end + 1) {
    end = std::min(text.find(u'\n', start), text.size());
    const fl::ustring line = text.substr(start, end - start);
    const std::size_t first = line.find_first_not_of(u" \t\r");
    const fl::ustring trimmed =
        first == line.npos ? u"" : line.substr(first, line.find_last_not_of(u" \t\r") + 1 - first);
    if (trimmed == u"%{") inBlock = true;
    std::size_t blankFrom = inBlock ? 0 : line.size();
    if (trimmed == u"%}") inBlock = false;
    for (std::size_t at = 0; at < blankFrom; ++at) {
      const char16_t c = line[at];
      if (c == u'%' || line.compare(at, 3, u"...") == 0) {
        blankFrom = at;
      } else if (c == u'"' || c == u'\'') {
        const char16_t before = at > 0 ? line[at - 1] : u' ';
        const bool behindKeyword = at >= 4 && line.compare(at - 4, 4, u"case") == 0;
        const bool isTranspose = c == u'\'' && !behindKeyword &&
                                 (isWordCharacter(before) || before == u')' || before == u']' ||
                                  before == u'}' || before == u'.');
        if (isTranspose) continue;
        std::size_t close = line.find(c, at + 1);
        while (close + 1 < line.size() && line[close + 1] == c) close = line.find(c, close + 2);
        text.replace(start + at, close + 1 - at, close + 1 - at, u' ');
        at = close;
      }
    }
    text.replace(start + blankFrom, line.size() - blankFrom, line.size() - blankFrom, u' ');
  }
  return text;
}

// The words of the text by their places, without numbers.
std::map<std::size_t, std::string> wordsOf(const fl::ustring& text) {
  std::map<std::size_t, std::string> words;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (!isWordCharacter(text[at])) continue;
    std::size_t end = at;
    while (end < text.size() && isWordCharacter(text[end])) ++end;
    const bool isNumber = text[at] >= u'0' && text[at] <= u'9';
    if (!isNumber) words[at] = fl::i18n::to_string(text.substr(at, end - at));
    at = end;
  }
  return words;
}

// Words of the texts that are no names: keywords, words of blocks, words of commands.
const std::set<std::string> otherWords{
    "break",     "case",   "catch",      "classdef", "continue", "else",
    "elseif",    "end",    "for",        "function", "global",   "if",
    "otherwise", "parfor", "persistent", "return",   "spmd",     "switch",
    "try",       "while",  "properties", "methods",  "events",   "enumeration",
    "arguments", "off",    "on",         "enabled",  "equal"};

TEST(Examples, EveryNameAndEveryReturnIsReached) {
  std::size_t files = 0;
  for (const auto& entry :
       std::filesystem::recursive_directory_iterator(soca::testing::projectPath("examples"))) {
    if (entry.path().extension() != ".vlm") continue;
    SCOPED_TRACE(entry.path());
    ++files;
    const fl::ustring text = fl::filesystem::readSourceFile(entry.path(), maximumFileSize).text;
    const auto analysis = analyzeText(text);
    EXPECT_FALSE(analysis->hasSyntaxError());
    EXPECT_EQ(analysis->getSubtreeText(*analysis->getRootNode()), text);

    std::map<std::size_t, std::string> reached;
    std::size_t visits = 0;
    astapi::NodeVisitor<astapi::Identifier> names([&](const astapi::Identifier& name) {
      ++visits;
      const fl::ustring written = name.text.getText();
      for (const auto& [at, word] : wordsOf(written)) reached[name.position + at] = word;
    });
    names(analysis->getRootNode());
    std::set<std::size_t> returns;
    astapi::NodeVisitor<astapi::ReturnStatement> returnVisitor(
        [&](const astapi::ReturnStatement& statement) { returns.insert(statement.position); });
    returnVisitor(analysis->getRootNode());

    std::map<std::size_t, std::string> expected;
    std::set<std::size_t> expectedReturns;
    for (const auto& [at, word] : wordsOf(withoutCommentsAndLiterals(text))) {
      if (word == "return") expectedReturns.insert(at);
      if (!otherWords.contains(word)) expected[at] = word;
    }
    // This word of a command is a name elsewhere.
    std::erase_if(expected, [&](const auto& word) {
      return word.second == "p" && text.compare(word.first - 6, 6, u"clear ") == 0;
    });
    EXPECT_EQ(reached, expected);
    EXPECT_EQ(returns, expectedReturns);
    EXPECT_LE(visits, reached.size());
  }
  EXPECT_EQ(files, 15U);
}

}  // namespace
}  // namespace ca
