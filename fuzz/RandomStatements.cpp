#include "fuzz/RandomCode.h"

namespace soca::fuzz {

void RandomCode::statements(std::size_t most, int depth) {
  writer_->separated(most, [this, depth] { statement(depth); });
}

void RandomCode::statement(int depth) {
  SourceWriter& out = *writer_;
  const std::size_t choice = out.dice().roll(depth > 3 ? 10 : 15);
  if (choice < 4) return assignment(depth);
  if (choice < 5) return multipleAssignment(depth);
  if (choice < 6) return command();
  if (choice < 7) {
    out.put(out.pick({u"global", u"persistent"}));
    out.space();
    out.identifier(out.pick({u"g", u"Mode"}));
    out.put(u" ");
    return out.identifier(u"h");
  }
  if (choice < 9) return out.put(out.pick({u"return", u"return", u"break", u"continue"}));
  if (choice < 10) {
    name();
    out.put(u"(");
    arguments(depth);
    return out.put(u")");
  }
  if (choice < 14) return controlStatement(depth + 1);
  function(depth + 1);
}

void RandomCode::assignment(int depth) {
  SourceWriter& out = *writer_;
  out.identifier(out.pick({u"flag", u"x", u"y", u"varargout"}));
  if (out.once(4)) chainLink(depth + 1);
  out.putBetweenGaps(u"=");
  if (out.once(3)) return out.identifier(out.pick({u"true", u"false"}));
  expression(depth);
}

void RandomCode::multipleAssignment(int depth) {
  SourceWriter& out = *writer_;
  out.put(u"[");
  const std::size_t targets = 1 + out.dice().roll(3);
  for (std::size_t number = 0; number < targets; ++number) {
    if (number > 0) out.put(out.pick({u", ", u",", u" "}));
    if (out.once(4)) {
      out.put(u"~");
      continue;
    }
    out.identifier(out.pick({u"flag", u"x", u"y"}));
    if (out.once(3)) chainLink(depth + 1);
  }
  out.put(u"]");
  out.putBetweenGaps(u"=");
  expression(depth);
}

void RandomCode::command() {
  SourceWriter& out = *writer_;
  out.identifier(out.pick({u"hold", u"format", u"import", u"isInputSizeLockedImpl"}));
  out.put(out.pick({u" ", u"  ", u"\t"}));
  out.put(out.pick({u"on", u"long g", u"pkg.*", u"'a;b' c", u"-b", u".f x", u"obj.ModeSet",
                    u"return", u"[1", u"{1}", u"a ...\n more", u"\"x, y\"", u"@f"}));
}

void RandomCode::condition(int depth) {
  SourceWriter& out = *writer_;
  out.put(u" ");
  if (!out.once(3)) {
    expression(depth);
    return out.headEnd();
  }
  out.put(u"(");
  expression(depth + 1);
  out.put(u")");
  if (out.once(3)) return out.put(out.pick({u", ", u";", u" , "}));
  out.lineEnd();
}

void RandomCode::body(int depth) {
  statements(2, depth);
  writer_->indent();
}

void RandomCode::controlStatement(int depth) {
  SourceWriter& out = *writer_;
  const std::size_t choice = out.dice().roll(6);
  if (choice == 0) return loop(depth);
  if (choice == 1) return switchStatement(depth);
  if (choice == 2) return tryStatement(depth);
  if (choice == 3) {
    out.put(u"spmd");
    out.headEnd();
    body(depth);
    return out.put(u"end");
  }
  const bool isIf = choice == 4 || out.once(2);
  out.put(isIf ? u"if" : u"while");
  condition(depth);
  body(depth);
  while (isIf && out.once(3)) {
    out.put(u"elseif");
    condition(depth);
    body(depth);
  }
  if (isIf && out.once(3)) {
    out.put(u"else");
    out.optionalSeparator();
    body(depth);
  }
  out.put(u"end");
}

void RandomCode::loop(int depth) {
  SourceWriter& out = *writer_;
  const bool isParallel = out.once(3);
  const bool isWrapped = out.once(3);
  out.put(isParallel ? u"parfor" : u"for");
  out.space();
  if (isWrapped) out.put(u"(");
  out.identifier(u"k");
  if (out.once(8)) {
    out.put(u".");
    out.identifier(u"x");
  }
  out.putBetweenGaps(u"=");
  expression(depth);
  if (isParallel && isWrapped && out.once(2)) {
    out.put(u", ");
    operand(depth);
  }
  if (isWrapped) out.put(u")");
  out.headEnd();
  body(depth);
  out.put(u"end");
}

void RandomCode::switchStatement(int depth) {
  SourceWriter& out = *writer_;
  out.put(u"switch");
  condition(depth);
  const std::size_t cases = out.dice().roll(3);
  for (std::size_t number = 0; number < cases; ++number) {
    out.put(u"case");
    condition(depth);
    body(depth);
  }
  if (out.once(2)) {
    out.put(u"otherwise");
    out.optionalSeparator();
    body(depth);
  }
  out.put(u"end");
}

void RandomCode::tryStatement(int depth) {
  SourceWriter& out = *writer_;
  out.put(u"try");
  out.headEnd();
  body(depth);
  if (!out.once(4)) {
    out.put(u"catch");
    if (out.once(2)) {
      out.put(u" ");
      out.identifier(u"problem");
    }
    out.headEnd();
    body(depth);
  }
  out.put(u"end");
}

// --- functions ---

RandomCode::Head RandomCode::randomHead() {
  SourceWriter& out = *writer_;
  Head head;
  head.name = out.pick({u"f", u"helper", u"stepImpl", u"resetImpl", u"isLocked"});
  constexpr fl::ustring_view outputs[] = {u"flag", u"y", u"varargout"};
  constexpr fl::ustring_view inputs[] = {u"obj", u"~", u"varargin"};
  head.outputs.assign(outputs, outputs + out.dice().roll(4));
  head.inputs.assign(inputs, inputs + out.dice().roll(4));
  return head;
}

void RandomCode::head(const Head& head) {
  SourceWriter& out = *writer_;
  const bool isList = head.outputs.size() > 1 || out.once(8);
  if (isList) {
    out.put(u"[");
    const fl::ustring_view delimiter = out.pick({u", ", u",", u" "});
    for (std::size_t number = 0; number < head.outputs.size(); ++number) {
      if (number > 0) out.put(delimiter);
      out.identifier(head.outputs[number]);
    }
    out.put(u"]");
  } else if (!head.outputs.empty()) {
    out.identifier(head.outputs.front());
  }
  if (isList || !head.outputs.empty()) {
    out.putBetweenGaps(u"=");
  }
  out.identifier(head.name);
  if (head.inputs.empty() && out.once(2)) return;
  out.gap();
  out.put(u"(");
  out.commaSeparated(head.inputs.size(), [&](std::size_t number) {
    const fl::ustring_view input = head.inputs[number];
    input == u"~" ? out.put(input) : out.identifier(input);
    out.gap();
  });
  out.put(u")");
}

void RandomCode::function(int depth) {
  SourceWriter& out = *writer_;
  out.put(u"function");
  out.space();
  head(randomHead());
  out.headEnd();
  if (out.once(6)) argumentBlock();
  body(depth);
  out.put(u"end");
}

void RandomCode::argumentBlock() {
  SourceWriter& out = *writer_;
  out.put(u"arguments");
  if (out.once(3)) {
    out.gap();
    attributes({u"Input", u"Repeating"});
  }
  out.lineEnd();
  out.separated(2, [this, &out] {
    out.dottedIdentifiers(out.pick({u"obj", u"opts.Gain", u"y"}));
    if (out.once(2)) size();
    if (out.once(2)) {
      out.space();
      out.identifier(out.pick({u"double", u"pkg.Type"}));
    }
    if (out.once(2)) validators(u"obj");
    if (out.once(2)) {
      out.put(u" = ");
      expression(3);
    }
  });
  out.put(u"end");
  out.lineEnd();
}

void RandomCode::size() {
  SourceWriter& out = *writer_;
  out.gap();
  out.put(u"(");
  out.gap();
  out.put(out.pick({u"1,1", u"2, 2", u":", u"1, :", u"1,1,1", u":,:"}));
  out.gap();
  out.put(u")");
}

void RandomCode::validators(fl::ustring_view property) {
  SourceWriter& out = *writer_;
  out.gap();
  out.put(u"{");
  const std::size_t count = out.once(8) ? 0 : 1 + out.dice().roll(3);
  out.commaSeparated(count, [&](std::size_t) {
    out.dottedIdentifiers(
        out.pick({u"mustBePositive", u"mustBeInteger", u"check", u"pkg.check", u"mustBeMember"}));
    if (out.once(3)) {
      out.put(u"(");
      out.identifier(property);
      out.put(u", ");
      operand(2);
      out.put(u")");
    }
    out.gap();
  });
  out.put(u"}");
}

void RandomCode::attributes(std::initializer_list<fl::ustring_view> names) {
  SourceWriter& out = *writer_;
  out.put(u"(");
  const std::size_t count = out.once(10) ? 0 : 1 + out.dice().roll(3);
  out.commaSeparated(count, [&](std::size_t) {
    const bool isNegated = out.once(6);
    if (isNegated) out.put(u"~");
    const fl::ustring_view name = out.pick(names);
    out.identifier(name);
    const bool isAccess = name.ends_with(u"Access");
    if (isNegated || (!isAccess && !out.once(3))) return;
    out.putBetweenGaps(u"=");
    if (out.once(12)) {
      expression(3);
    } else if (isAccess) {
      const fl::ustring_view value = out.pick({u"private", u"protected", u"public", u"immutable",
                                               u"'private'", u"'protected'", u"'Public'"});
      value.starts_with(u'\'') ? out.put(value) : out.identifier(value);
    } else {
      out.identifier(out.pick({u"true", u"false", u"true", u"x"}));
    }
    out.gap();
  });
  out.put(u")");
}

}  // namespace soca::fuzz
