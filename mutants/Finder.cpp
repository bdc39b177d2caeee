#include "mutants/Finder.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <functional>
#include <regex>
#include <set>
#include <utility>

#include "mutants/Source.h"

namespace mutants {
namespace {

using Names = std::set<std::string_view, std::less<>>;

constexpr std::array<std::pair<std::string_view, std::string_view>, 6> comparisons = {
    {{"<", "<="}, {"<=", "<"}, {">", ">="}, {">=", ">"}, {"==", "!="}, {"!=", "=="}}};

// Messages are left alone, because the tests do not repeat all of their words.
constexpr std::size_t longestText = 24;

std::string oneLine(const std::string& text) {
  static const std::regex spaces(R"(\s*\n\s*)");
  return std::regex_replace(text, spaces, " ");
}

bool isPlain(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; }

class Finder {
 public:
  Finder(std::string file, std::string_view text)
      : file_(std::move(file)), text_(text), source_(text) {
    findConstants();
  }

  std::vector<Mistake> find() {
    for (std::size_t i = 0; i < source_.size(); ++i) {
      // What the compiler computes can't be changed at run time.
      if (isComputedByCompiler(i)) {
        i = source_.endOfDeclaration(i);
        continue;
      }
      visit(i);
    }
    return std::move(found_);
  }

 private:
  void visit(std::size_t i) {
    const Token& token = source_[i];
    if (source_.isBinaryOperator(i)) changeOperator(i);
    if (token.text == "(") visitParentheses(i);
    if (token.type == TokenType::number || token.type == TokenType::character) changeNumber(i);
    if (token.type == TokenType::text) changeText(i);
    if (token.text == "true") replace(KindType::constant, {i, i}, "false");
    if (token.text == "false") replace(KindType::constant, {i, i}, "true");
    if (constants_.contains(token.text) && isFree(i)) changeNumber(i);
    if (startsStatement(i) && isDispensable(i)) drop(i);
  }

  bool isComputedByCompiler(std::size_t i) const {
    static const Names words = {"constexpr", "static_assert", "enum", "using"};
    return words.contains(source_[i].text);
  }

  // Names of numbers that the file declares as constants.
  void findConstants() {
    static const std::regex numeric("(unsigned|int|char|char16_t|.*_t)");
    for (std::size_t i = 0; i + 2 < source_.size(); ++i) {
      if (!source_.is(i, "constexpr")) continue;
      std::size_t name = i + 2;
      while (source_.is(name, "::")) name += 2;
      const std::string type(source_[name - 1].text);
      if (source_.is(name + 1, "=") && std::regex_match(type, numeric)) {
        constants_.insert(source_[name].text);
      }
    }
  }

  // Whether the word is a name of its own, and not that of a member.
  bool isFree(std::size_t i) const {
    static const Names links = {".", "->", "::"};
    return !links.contains(source_[i - 1].text) && !links.contains(source_[i + 1].text);
  }

  // a < b   ->   a <= b        a && b   ->   a, b
  void changeOperator(std::size_t i) {
    const Part before = source_.operandBefore(i);
    const Part after = source_.operandAfter(i);
    if (source_.is(i, "&&") || source_.is(i, "||")) {
      setCondition(before, source_.is(i, "&&"));
      setCondition(after, source_.is(i, "&&"));
      return;
    }
    for (const auto& [from, to] : comparisons) {
      if (!source_.is(i, from)) continue;
      replace(KindType::comparison, {before.first, after.last},
              fmt::format("{} {} {}", source_.textOf(before), to, source_.textOf(after)));
    }
  }

  void visitParentheses(std::size_t i) {
    if (source_[i].partner == i + 1) return;
    const std::string_view before = source_[i - 1].text;
    if (before == "if" || before == "while") {
      changeConditionIn(i);
    } else if (source_[i - 1].type == TokenType::word && before != "for" && before != "switch") {
      swapArguments(source_.split(i), before);
    }
  }

  // if (a)   ->   if (true), if (false)        while (a)   ->   while (false)
  void changeConditionIn(std::size_t bracket) {
    const Part part = {bracket + 1, source_[bracket].partner - 1};
    for (std::size_t i = part.first; i <= part.last; i = source_[i].partner + 1) {
      static const Names others = {";", "=", "&&", "||", "true"};
      if (others.contains(source_[i].text)) return;
    }
    setCondition(part, false);
    if (source_.is(bracket - 1, "if")) setCondition(part, true);
  }

  void setCondition(const Part& part, bool value) {
    add(KindType::condition, part, value ? "true" : "false",
        {value ? Wrapping{{}, "(", " || static_cast<bool>(", "))"}
               : Wrapping{{}, "(!", " && static_cast<bool>(", "))"}});
  }

  // f(a, b)   ->   f(b, a)
  void swapArguments(const std::vector<Part>& arguments, std::string_view function) {
    static const Names symmetric = {"max", "min", "swap", "tie"};
    if (symmetric.contains(function) ||
        !std::ranges::all_of(arguments, [&](const Part& part) { return isArgument(part); })) {
      return;
    }
    for (std::size_t i = 1; i < arguments.size(); ++i) swap(arguments[i - 1], arguments[i]);
  }

  // Parameters of a declaration have a type before a name.
  bool isArgument(const Part& part) const {
    const auto isWord = [&](std::size_t i) { return source_[i].type == TokenType::word; };
    for (std::size_t i = part.first; i < part.last; ++i) {
      if (isWord(i) && isWord(i + 1)) return false;
      const bool isReference = source_.is(i, "&") || source_.is(i, "*") || source_.is(i, "&&");
      if (isReference && i > part.first && !source_.isBinaryOperator(i)) return false;
    }
    return !source_.is(part.first, "[") && !source_.is(part.first, "{");
  }

  void swap(const Part& left, const Part& right) {
    const std::string leftText = oneLine(source_.textOf(left));
    const std::string rightText = oneLine(source_.textOf(right));
    if (leftText == rightText) return;
    add(KindType::arguments, {left.first, right.last}, rightText + ", " + leftText,
        {{source_.spanOf(left), "(", " ? (" + rightText + ") : (", "))"},
         {source_.spanOf(right), "(", " ? (" + leftText + ") : (", "))"}});
  }

  // 7   ->   7 + 1        limit   ->   limit + 1
  void changeNumber(std::size_t i) {
    // There it must be a constant.
    const bool isOfTemplate = source_.is(i + 1, ">") && !source_.isBinaryOperator(i + 1);
    if (isOfTemplate || source_.is(i - 1, "case")) return;
    const std::string text(source_[i].text);
    add(KindType::constant, {i, i}, text + " + 1",
        {{{}, "(", " ? ::mutants::next(" + text + ") : (", "))"}});
  }

  // "name"   ->   "xame"
  void changeText(std::size_t i) {
    std::string text(source_[i].text);
    const bool isPartOfText = source_[i - 1].type == TokenType::text ||
                              source_[i + 1].type == TokenType::text || source_.is(i - 1, "extern");
    if (isPartOfText || text.size() > longestText || text.find_first_of("{\\(") < text.size())
      return;
    const std::size_t quote = text.find('"');
    const auto place =
        std::find_if(text.begin() + static_cast<std::ptrdiff_t>(quote) + 1, text.end(), isPlain);
    if (place == text.end()) return;
    *place = *place == 'x' ? 'y' : 'x';
    replace(KindType::constant, {i, i}, text);
  }

  bool startsStatement(std::size_t i) const {
    static const Names before = {";", "{", "}", "else"};
    if (source_.is(source_[i].parent, "(")) return false;
    if (before.contains(source_[i - 1].text)) return true;
    // Of a label, and not of `a ? b : c`.
    if (source_.is(i - 1, ":")) return text_[source_[i - 1].span.end] == '\n';
    static const Names heads = {"if", "for", "while"};
    return source_.is(i - 1, ")") && heads.contains(source_[source_[i - 1].partner - 1].text);
  }

  // Whether the statement can be dropped: it is a jump, a call or an assignment, and declares
  // nothing.
  bool isDispensable(std::size_t i) const {
    static const Names jumps = {"break", "continue", "return"};
    if (jumps.contains(source_[i].text)) return source_.is(i + 1, ";");
    static const Names kept = {"throw", "return", "static_cast", "delete"};
    if (kept.contains(source_[i].text)) return false;
    if (source_.is(i, "++") || source_.is(i, "--") || source_.is(i, "*")) ++i;
    static const Names links = {".", "->", "::"};
    bool isCall = false;
    for (bool isLinked = true;; ++i) {
      const Token& token = source_[i];
      if (token.type == TokenType::word) {
        static const Names idle = {"reserve", "shrink_to_fit"};
        if (!isLinked || idle.contains(token.text)) return false;
        isLinked = false;
      } else if (links.contains(token.text)) {
        isLinked = true;
      } else if (token.text == "(" || token.text == "[") {
        isCall = isCall || token.text == "(";
        i = token.partner;
      } else {
        static const Names ends = {"=", "+=", "-=", "|=", "&=", "++", "--"};
        return ends.contains(token.text) || (isCall && token.text == ";");
      }
    }
  }

  // f(a);   ->   nothing
  void drop(std::size_t i) {
    add(KindType::statement, {i, source_.endOfStatement(i)}, "nothing",
        {{{}, "if (", ") {} else ", ""}});
  }

  void replace(KindType kind, const Part& part, const std::string& replacement) {
    add(kind, part, replacement, {{{}, "(", " ? (" + oneLine(replacement) + ") : (", "))"}});
  }

  // A wrapping without a span is around the part.
  void add(KindType kind, const Part& part, const std::string& replacement,
           std::vector<Wrapping> wrappings) {
    const Span span = source_.spanOf(part);
    const std::string original = source_.textOf(part);
    // A comment would swallow what follows it in the same line.
    if (original.find("//") != std::string::npos) return;
    for (Wrapping& wrapping : wrappings) {
      if (wrapping.span.end == 0) wrapping.span = span;
    }
    found_.push_back({.file = file_,
                      .line = source_.lineAt(span.begin),
                      .lastLine = source_.lineAt(span.end),
                      .kind = kind,
                      .original = oneLine(original),
                      .replacement = oneLine(replacement),
                      .wrappings = std::move(wrappings),
                      .number = numberOf(span, replacement)});
  }

  unsigned numberOf(const Span& span, const std::string& replacement) const {
    const std::size_t start = text_.rfind('\n', span.begin) + 1;
    const auto line = text_.substr(start, text_.find('\n', span.begin) - start);
    const auto key = fmt::format("{} {} {} {} {}", file_, line, span.begin - start,
                                 span.end - span.begin, replacement);
    return static_cast<unsigned>(1 + std::hash<std::string>()(key) % (numberLimit - 1));
  }

  std::string file_;
  std::string_view text_;
  Source source_;
  Names constants_;
  std::vector<Mistake> found_;
};

}  // namespace

const char* nameOf(KindType kind) {
  static constexpr const char* names[] = {"arguments", "comparison", "condition", "constant",
                                          "statement"};
  return names[static_cast<std::size_t>(kind)];
}

std::vector<Mistake> findMistakes(const std::string& file, std::string_view text) {
  return Finder(file, text).find();
}

}  // namespace mutants
