#include "conversions/risk/DeletedComments.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "conversions/parts/LinePlace.h"
#include "conversions/risk/Reasons.h"
#include "model/AnalyzerPositions.h"
#include "model/SourceFile.h"
#include "platform/analyzer/lexer/Lexer.h"
#include "platform/text/TextSearch.h"

namespace soca {
namespace {

using ca::Token;
using ca::TokenKind;

constexpr fl::ustring_view blanks = u"\t\v\f\r ";
constexpr fl::ustring_view continuation = u"...";

// A part of the text, by the positions of its first code unit and of the one after it.
struct Range {
  std::size_t start;
  std::size_t end;
};

// The first comment between two tokens, with all that follow it there. Empty if there is none.
Range findCommentIn(fl::ustring_view text, Range gap) {
  fl::ustring_view rest = text.substr(0, gap.end);
  for (std::size_t at = gap.start; at < gap.end; ++at) {
    const bool isContinuation = rest.substr(at).starts_with(continuation);
    // The rest of the line after a continuation is a comment too.
    if (isContinuation) at = rest.find_first_not_of(blanks, at + continuation.size());
    if (at >= gap.end) break;
    if (rest[at] == u'%' || (isContinuation && rest[at] != u'\n')) {
      return {at, rest.find_last_not_of(u"\t\n\v\f\r ") + 1};
    }
  }
  return {gap.end, gap.end};
}

// Splits a text that begins with a token into tokens.
class Tokens final : private ca::LexicalErrors {
 public:
  explicit Tokens(const fl::ustring* text) : map_(mapOf(*text)), lexer_(*text, map_, *this) {}

  // The next token. A line end begins where the token before it ended, because it has the comments
  // after it.
  Token next() {
    Token token = lexer_.scan(position_);
    const bool isLiteral = token.kind == TokenKind::DoubleQuote ||
                           (token.kind == TokenKind::Quote && !isTranspose(token));
    if (isLiteral) token = lexer_.scanLiteral(token.begin, token.blankBefore);
    follow(token);
    position_ = token.end;
    return token;
  }

 private:
  static ca::CharacterMap mapOf(fl::ustring_view text) {
    ca::CharacterMap map;
    map.read(text);
    return map;
  }

  void reportLexicalError(std::uint32_t /*position*/, const char* /*message*/) override {}

  bool isTranspose(const Token& quote) const {
    const bool isInList = !lists_.empty() && lists_.back();
    return endsOperand_ && (!quote.blankBefore || !isInList);
  }

  // Remembers whether the token ends an operand, and whether a list is open.
  void follow(const Token& token) {
    endsOperand_ = false;
    switch (token.kind) {
      case TokenKind::OpenBracket:
      case TokenKind::OpenBrace:
        lists_.push_back(true);
        return;
      case TokenKind::OpenParenthesis:
        lists_.push_back(false);
        return;
      case TokenKind::CloseBracket:
      case TokenKind::CloseBrace:
      case TokenKind::CloseParenthesis:
        if (!lists_.empty()) lists_.pop_back();
        [[fallthrough]];
      case TokenKind::Identifier:
      case TokenKind::Number:
      case TokenKind::Quote:
      case TokenKind::DoubleQuote:
      case TokenKind::DotQuote:
        endsOperand_ = true;
        return;
      default:
        return;
    }
  }

  ca::CharacterMap map_;
  ca::Lexer lexer_;
  std::uint32_t position_ = 0;
  bool endsOperand_ = false;
  // For each open bracket, whether it opened a list.
  std::vector<bool> lists_;
};

// The comments in a text that begins with a token, each with those that follow it directly.
std::vector<Range> findComments(const fl::ustring& text) {
  std::vector<Range> comments;
  Tokens tokens(&text);
  std::size_t end = 0;
  while (true) {
    const Token token = tokens.next();
    const bool isGap = token.kind == TokenKind::LineEnd || token.kind == TokenKind::EndOfText;
    const Range comment = findCommentIn(text, {end, isGap ? token.end : token.begin});
    if (comment.start < comment.end) comments.push_back(comment);
    end = token.end;
    if (token.kind == TokenKind::EndOfText) return comments;
  }
}

// The text of the comment without what begins it.
fl::ustring_view wordsOf(fl::ustring_view text, const Range& comment) {
  text = text.substr(0, comment.end);
  return text.substr(std::min(text.find_first_not_of(u"%\t ", comment.start), text.size()));
}

// The words of all comments in a text that begins with a token.
std::multiset<fl::ustring, std::less<>> findWords(const fl::ustring& text) {
  std::multiset<fl::ustring, std::less<>> words;
  for (const Range& comment : findComments(text)) words.emplace(wordsOf(text, comment));
  return words;
}

bool mayHoldComment(fl::ustring_view text) {
  return text.find(u'%') != fl::ustring_view::npos ||
         text.find(continuation) != fl::ustring_view::npos;
}

// The comments that a conversion deletes. Many conversions may delete the same block with many
// comments, so only the first of them are kept.
struct DeletedComments {
  std::size_t count = 0;
  std::vector<Range> first;

  void add(const std::vector<Range>& comments) {
    count += comments.size();
    const std::size_t added = std::min(comments.size(), mostPlaces - first.size());
    first.insert(first.end(), comments.begin(),
                 comments.begin() + static_cast<std::ptrdiff_t>(added));
  }
};

class CommentSearch {
 public:
  CommentSearch(const PlannedClass* planned, std::vector<ConversionRisk>* risks)
      : planned_(*planned), text_(*planned->oldText), risks_(*risks) {}

  void search() {
    for (std::size_t i = 0; i < planned_.actions.size(); ++i) {
      const auto& edits = planned_.actions[i].edits;
      if (std::ranges::none_of(edits, mayDeleteComments)) continue;
      found_.clear();
      const auto owners = planned_.ownersOf(i);
      for (const PlannedEdit& edit : edits) {
        if (mayDeleteComments(edit)) searchEdit(edit, isMethod(owners.front()));
      }
      if (found_.empty()) continue;
      for (const ActionOwner& owner : owners) comments_[owner.conversion].add(found_);
    }
    searchLastLine();
    for (auto& [conversion, comments] : comments_) report(std::move(comments), risks_[conversion]);
  }

 private:
  // A comment ends with its line, so other edits of one line delete none.
  static bool mayDeleteComments(const PlannedEdit& edit) {
    return edit.extent.start.line != edit.extent.end.line || edit.text.empty();
  }

  bool isMethod(const ActionOwner& owner) const {
    return planned_.conversions[owner.conversion].method != nullptr;
  }

  std::size_t lineStart(const SourcePosition& position) const {
    return planned_.analysis->lineStart(static_cast<std::uint32_t>(position.line));
  }

  std::size_t offsetOf(const SourcePosition& position) const {
    return lineStart(position) + position.column;
  }

  void searchEdit(const PlannedEdit& edit, bool isMethodDeletion) {
    const std::size_t start = offsetOf(edit.extent.start);
    const std::size_t end = offsetOf(edit.extent.end);
    if (!isMethodDeletion) searchText({start, end}, edit.text);
    searchTail(edit, start, end);
  }

  void searchText(Range deleted, const fl::ustring& replacement) {
    const fl::ustring_view text = text_.substr(deleted.start, deleted.end - deleted.start);
    if (!mayHoldComment(text)) return;
    auto kept = findWords(replacement);
    for (const Range& comment : findComments(fl::ustring(text))) {
      const auto same = kept.find(wordsOf(text, comment));
      if (same == kept.end()) {
        found_.push_back({deleted.start + comment.start, deleted.start + comment.end});
      } else {
        kept.erase(same);
      }
    }
  }

  // The comment of a continuation after the edit is deleted too if the edit takes a delimiter that
  // follows it, or if nothing else is left of the line.
  void searchTail(const PlannedEdit& edit, std::size_t start, std::size_t end) {
    bool spansLines = edit.extent.start.line != edit.extent.end.line;
    if ((edit.delimiterFlags & SourceFile::ConsumeListDelimiter) != 0) {
      for (end = skipBlanks(end); isContinuation(end); end = skipBlanks(end)) {
        end = addContinuation(end);
        spansLines = true;
      }
      if (end < text_.size() && (text_[end] == u';' || text_[end] == u',')) ++end;
    }
    const bool isAlone = edit.text.empty() && isBlank(lineStart(edit.extent.start), start);
    end = skipBlanks(end);
    if ((spansLines || isAlone) && isContinuation(end)) addContinuation(end);
  }

  // Any edit of the file also deletes the last line if it is only a continuation.
  void searchLastLine() {
    const std::size_t lineEnd = text_.rfind(u'\n');
    const std::size_t start = skipBlanks(lineEnd == fl::ustring_view::npos ? 0 : lineEnd + 1);
    found_.clear();
    if (isContinuation(start)) addContinuation(start);
    if (found_.empty()) return;
    for (std::size_t i = 0; i < risks_.size(); ++i) comments_[i].add(found_);
  }

  std::size_t skipBlanks(std::size_t position) const {
    return std::min(text_.find_first_not_of(blanks, position), text_.size());
  }

  bool isBlank(std::size_t start, std::size_t end) const { return skipBlanks(start) >= end; }

  bool isContinuation(std::size_t position) const {
    return text_.substr(position).starts_with(continuation);
  }

  // Adds the comment of the continuation, if it has one, and returns the start of the next line.
  std::size_t addContinuation(std::size_t position) {
    const std::size_t start = skipBlanks(position + continuation.size());
    const std::size_t end = std::min(fl::findLineEnd(text_, start), text_.size());
    if (start < end) found_.push_back({start, end});
    return std::min(end + 1, text_.size());
  }

  void report(DeletedComments comments, ConversionRisk& risk) const {
    std::ranges::sort(comments.first, {}, &Range::start);
    const Range& first = comments.first.front();
    const std::string text = shortened(text_.substr(first.start, first.end - first.start));
    ConversionReason reason{"soca:CommentDeleted", {}, {}};
    reason.detail = comments.count == 1
                        ? fmt::format("the comment \"{}\" would be deleted", text)
                        : fmt::format("{} comments would be deleted, the first of which is \"{}\"",
                                      comments.count, text);
    for (const Range& comment : comments.first) {
      reason.places.push_back({placeOf(extentOf(comment)), "The comment."});
    }
    addReason(RiskType::review, std::move(reason), risk);
  }

  Extent extentOf(const Range& comment) const {
    return {makePosition(*planned_.analysis, static_cast<std::uint32_t>(comment.start), false),
            makePosition(*planned_.analysis, static_cast<std::uint32_t>(comment.end - 1), true)};
  }

  const PlannedClass& planned_;
  fl::ustring_view text_;
  std::vector<ConversionRisk>& risks_;
  // Those of the current action.
  std::vector<Range> found_;
  // Those of each conversion.
  std::map<std::size_t, DeletedComments> comments_;
};

}  // namespace

void findDeletedComments(const PlannedClass& planned, std::vector<ConversionRisk>& risks) {
  CommentSearch(&planned, &risks).search();
}

}  // namespace soca
