// The parser's scopes: levels of nesting, brackets, and lists that are being parsed. Also the
// creation of nodes. Only for the parser's own sources.
#pragma once

#include <algorithm>

#include "platform/analyzer/parser/Parser.h"
#include "platform/analyzer/tree/NodeKind.h"

namespace ca {

// One level of nesting.
class Parser::Level {
 public:
  explicit Level(Parser& parser) : parser_(parser) {
    if (++parser_.depth_ > maximumNesting) parser_.giveUp();
  }
  Level(const Level&) = delete;
  Level& operator=(const Level&) = delete;
  ~Level() { --parser_.depth_; }

 private:
  Parser& parser_;
};

// The text between two brackets, from after the opening one. The open brackets form a chain, with
// the innermost one first.
class Parser::Bracket {
 public:
  // Takes the opening bracket, which is the current token.
  Bracket(Parser& parser, BracketType type)
      : parser_(parser),
        level_(parser),
        outer_(parser.innermost_),
        type_(type),
        opening_(parser.token_) {
    parser_.innermost_ = this;
    parser_.inList_ = type == BracketType::list;
    if (type == BracketType::arguments) ++parser_.argumentDepth_;
    parser_.advance();
  }
  Bracket(const Bracket&) = delete;
  Bracket& operator=(const Bracket&) = delete;
  ~Bracket() { leave(); }

  // Takes the closing bracket, or reports that it is missing.
  void close() {
    if (!parser_.is(closing())) return failToClose();
    // The token after the bracket is read in the outer context.
    leave();
    parser_.advance();
  }

  TokenKind closing() const {
    switch (opening_.kind) {
      case TokenKind::OpenParenthesis:
        return TokenKind::CloseParenthesis;
      case TokenKind::OpenBracket:
        return TokenKind::CloseBracket;
      default:
        return TokenKind::CloseBrace;
    }
  }

  std::uint32_t position() const { return opening_.begin; }
  // The bracket around this one; null if there is none.
  const Bracket* outer() const { return outer_; }
  BracketType type() const { return type_; }

 private:
  void failToClose() const {
    const TokenKind kind = closing();
    const std::string closingText = kind == TokenKind::CloseParenthesis ? "`)`"
                                    : kind == TokenKind::CloseBracket   ? "`]`"
                                                                        : "`}`";
    parser_.fail(closingText + " to close " + parser_.describe(opening_));
  }

  void leave() {
    if (parser_.innermost_ != this) return;
    parser_.innermost_ = outer_;
    parser_.inList_ = outer_ != nullptr && outer_->type_ == BracketType::list;
    if (type_ == BracketType::arguments) --parser_.argumentDepth_;
  }

  Parser& parser_;
  Level level_;
  const Bracket* outer_;
  BracketType type_;
  Token opening_;
};

// Collects the nodes of one list; lists may be nested.
template <class T>
class Parser::ListBuilder {
 public:
  explicit ListBuilder(Parser& parser) : parser_(parser), first_(parser.scratch_.size()) {}
  ListBuilder(const ListBuilder&) = delete;
  ListBuilder& operator=(const ListBuilder&) = delete;
  ~ListBuilder() { parser_.scratch_.resize(first_); }

  void add(const Node* node) {
    if (node != nullptr) parser_.scratch_.push_back(node);
  }

  NodeList<T> take() {
    const std::size_t size = parser_.scratch_.size() - first_;
    if (size == 0) return {};
    const T** nodes = parser_.arena_.makeArray<const T*>(size);
    for (std::size_t index = 0; index < size; ++index) {
      nodes[index] = static_cast<const T*>(parser_.scratch_[first_ + index]);
    }
    return {nodes, size};
  }

 private:
  Parser& parser_;
  std::size_t first_;
};

template <class T>
T* Parser::makeNode(NodeKind kind, std::uint32_t position) {
  T* node = arena_.make<T>();
  node->kind = kind;
  node->position = position;
  node->lastPosition = position;
  return node;
}

template <class T>
T* Parser::finish(T* node) const {
  // If a syntax error left the node empty, the last token is before it.
  node->lastPosition = std::max(lastEnd_, node->position) - 1;
  return node;
}

}  // namespace ca
