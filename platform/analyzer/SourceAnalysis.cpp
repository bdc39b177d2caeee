#include "platform/analyzer/SourceAnalysis.h"

#include <utility>

namespace ca {

namespace {

bool hasFunction(const astapi::Node& root) {
  for (const astapi::Node* element : static_cast<const astapi::ListNode&>(root).elements) {
    if (element->kind == lf::astapi::NodeKind::FunctionDefinition) return true;
  }
  return false;
}

bool isLessFaulty(const Parser::Result& left, const Parser::Result& right) {
  if (left.isTooDeep != right.isTooDeep) return right.isTooDeep;
  return left.errors.size() < right.errors.size();
}

}  // namespace

SourceAnalysis::SourceAnalysis(fl::ustring text)
    : SourceAnalysis(std::make_shared<const fl::ustring>(std::move(text))) {}

SourceAnalysis::SourceAnalysis(fl::filesystem::SourceFileText file, const KnownFunctions* known)
    : SourceAnalysis(std::make_shared<const fl::ustring>(std::move(file.text)), known) {
  if (!file.recentlyChanged) file_ = {file.stamp, file.encoding};
}

SourceAnalysis::SourceAnalysis(std::shared_ptr<const fl::ustring> text, const KnownFunctions* known)
    : SourceAnalysis(std::move(text), known, ParserMemory::ofThread()) {}

SourceAnalysis::SourceAnalysis(std::shared_ptr<const fl::ustring> text, const KnownFunctions* known,
                               ParserMemory& memory)
    : text_(std::move(text)), lines_(memory.read(*text_), text_->size()) {
  using Style = Parser::FunctionStyleType;
  Parser parser(*text_, memory, arena_, names_, Style::closed);
  parser.skipKnown(known, this);
  Parser::Result result = parser.parse();
  // In a file without a class all functions may omit their `end`.
  const bool isFaulty = !result.errors.empty() || result.isTooDeep;
  if (result.classdef == nullptr && isFaulty && hasFunction(*result.root)) {
    Parser::Result open = Parser(*text_, memory, arena_, names_, Style::open).parse();
    if (open.classdef == nullptr && isLessFaulty(open, result)) result = std::move(open);
  }
  take(std::move(result));
  memory.shrink();
}

KnownFunctions SourceAnalysis::knownFunctions() const {
  KnownFunctions known{text_, {}};
  if (hasSyntaxError() || isTooDeep_ || classdef_ == nullptr) return known;
  const auto add = [&](const astapi::Node& node) {
    if (node.kind != lf::astapi::NodeKind::FunctionDefinition) return;
    known.ranges.push_back({node.position, node.lastPosition + 1});
  };
  for (const astapi::FunctionDeclaration* method : classdef_->getMethods()) add(*method);
  for (const auto* each : static_cast<const astapi::ListNode&>(*root_).elements) add(*each);
  return known;
}

void SourceAnalysis::read(const astapi::FunctionDefinition& function) const {
  const std::lock_guard lock(mutex_);
  if (function.reader.load(std::memory_order_relaxed) == nullptr) return;
  // The nodes of a tree that is not complete are not really constant.
  auto& skipped = const_cast<astapi::FunctionDefinition&>(function);
  ParserMemory& memory = ParserMemory::ofThread();
  memory.readPart(*text_, function.position, function.lastPosition + 1);
  Parser(*text_, memory, arena_, names_, Parser::FunctionStyleType::closed)
      .parseSkipped(classdef_, skipped);
  skipped.reader.store(nullptr, std::memory_order_release);
}

void SourceAnalysis::take(Parser::Result result) {
  root_ = result.root;
  classdef_ = result.classdef;
  isTooDeep_ = result.isTooDeep;
  for (SyntaxErrorRecord& error : result.errors) {
    const std::uint32_t line = lines_.lineOf(error.position);
    diagnostics_.push_back({.line = line,
                            .column = error.position - lines_.startOf(line),
                            .message = std::move(error.message)});
  }
}

std::uint64_t SourceAnalysis::getLineAndColumn(std::uint32_t position) const {
  const std::uint64_t line = lines_.lineOf(position);
  const std::uint64_t column = position - lines_.startOf(static_cast<std::uint32_t>(line));
  return (column + 1) << 32U | (line + 1);
}

fl::ustring SourceAnalysis::getSourceText(bool /*canonical*/) const { return *text_; }

fl::ustring SourceAnalysis::getNodeText(const astapi::Node& node, bool /*canonical*/) const {
  return fl::ustring(nodeTextView(node));
}

fl::ustring SourceAnalysis::getSubtreeText(const astapi::Node& node) const {
  return fl::ustring(nodeTextView(node));
}

fl::ustring_view SourceAnalysis::nodeTextView(const astapi::Node& node) const {
  // An empty subtree ends before its beginning, and wraps at the start of the text.
  const std::uint32_t length = node.lastPosition + 1 - node.position;
  return fl::ustring_view(*text_).substr(node.position, length);
}

}  // namespace ca
