// Random expressions, statements and functions.
#pragma once

#include "fuzz/SourceWriter.h"

namespace soca::fuzz {

// Writes syntactically correct code without a meaning. `depth` is the current nesting; beyond a
// limit only simple forms are written.
class RandomCode {
 public:
  // `writer` must outlive this object.
  explicit RandomCode(SourceWriter* writer) : writer_(writer) {}

  void expression(int depth);
  // An expression that may be an operand of any operator.
  void operand(int depth);
  // `{...}` or `[...]`
  void list(bool isCell, int depth);
  // The arguments of a call or an index, without the brackets.
  void arguments(int depth);

  // Up to `most` statements, each with its separator.
  void statements(std::size_t most, int depth);

  // The contents of a function line: its outputs, its name, its inputs.
  struct Head {
    std::vector<fl::ustring_view> outputs;
    fl::ustring_view name;
    std::vector<fl::ustring_view> inputs;
  };
  Head randomHead();
  // The line without the keyword.
  void head(const Head& head);
  void argumentBlock();
  // A whole function, without its separator.
  void function(int depth);

  // The parts of a declaration between the name and the default value.
  void size();
  void validators(fl::ustring_view property);
  void attributes(std::initializer_list<fl::ustring_view> names);

 private:
  void name();
  void literal();
  void binaryOperation(int depth);
  void chain(int depth);
  void chainLink(int depth);
  void anonymousFunction(int depth);
  void listElement(int depth);
  void statement(int depth);
  void assignment(int depth);
  void multipleAssignment(int depth);
  void controlStatement(int depth);
  void loop(int depth);
  void switchStatement(int depth);
  void tryStatement(int depth);
  void condition(int depth);
  void body(int depth);
  void command();

  SourceWriter* writer_;
};

}  // namespace soca::fuzz
