#include "fuzz/RandomCode.h"

namespace soca::fuzz {

void RandomCode::name() {
  writer_->identifier(writer_->pick({u"x",
                                     u"y",
                                     u"obj",
                                     u"Mode",
                                     u"ModeSet",
                                     u"count",
                                     u"isInputSizeLockedImpl",
                                     u"isOutputSizeLockedImpl",
                                     u"isInputSizeMutableImpl",
                                     u"\u00E9t\u00E9",
                                     u"\U0001D49Cx",
                                     u"properties",
                                     u"methods",
                                     u"events",
                                     u"true",
                                     u"false",
                                     u"a_1",
                                     u"get",
                                     u"e1",
                                     u"i"}));
}

void RandomCode::literal() {
  writer_->put(
      writer_->pick({u"1",       u"0.5",          u".5",       u"3.",    u"1e3",
                     u"1E-3",    u"2d+1",         u"4i",       u"2.5j",  u"0x1F",
                     u"0b101u8", u"0xFFs16",      u"12345678", u"'a'",   u"'it''s'",
                     u"''",      u"'% no'",       u"'...'",    u"\"b\"", u"\"say \"\"x\"\"\"",
                     u"\"%{\"",  u"'\U0001D49C'", u"\"it's\"", u"'x;,&'"}));
}

void RandomCode::operand(int depth) {
  SourceWriter& out = *writer_;
  const std::size_t choice = out.dice().roll(depth > 3 ? 5 : 12);
  if (choice < 2) return name();
  if (choice < 4) return literal();
  if (choice < 6) return chain(depth + 1);
  if (choice < 8) return list(out.once(2), depth + 1);
  if (choice < 9) {
    out.put(out.pick({u"-", u"+", u"~", u"~~", u"--"}));
    return operand(depth + 1);
  }
  if (choice < 10) {
    chain(depth + 1);
    return out.put(out.pick({u"'", u".'", u"''", u"'.'"}));
  }
  out.put(u"(");
  {
    const SourceWriter::ListScope scope(writer_, false);
    out.gap();
    expression(depth + 1);
    out.gap();
  }
  out.put(u")");
}

void RandomCode::expression(int depth) {
  SourceWriter& out = *writer_;
  const std::size_t choice = out.dice().roll(depth > 3 ? 6 : 16);
  if (choice < 6) return operand(depth);
  if (choice < 12) return binaryOperation(depth);
  if (choice < 13) return anonymousFunction(depth);
  if (choice < 14) {
    out.put(u"@");
    return out.dottedIdentifiers(out.pick({u"sin", u"pkg.f", u"a.b.c", u"isInputSizeLockedImpl"}));
  }
  if (choice < 15) {
    out.put(u"?");
    return out.identifier(out.pick({u"A", u"pkg.A", u"velum.System"}));
  }
  operand(depth + 1);
  out.put(u":");
  if (out.once(2)) {
    operand(depth + 1);
    out.put(u":");
  }
  operand(depth + 1);
}

// An operator has blanks on both sides or on neither: with a blank on one side only it would
// separate two elements of a list, or begin a command at the start of a statement.
void RandomCode::binaryOperation(int depth) {
  SourceWriter& out = *writer_;
  operand(depth + 1);
  const std::size_t operators = 1 + out.dice().roll(3);
  for (std::size_t number = 0; number < operators; ++number) {
    const bool hasBlanks = out.once(2);
    if (hasBlanks) out.space();
    out.put(out.pick({u"||", u"&&", u"|", u"&",  u"<", u"<=", u">",  u">=",  u"==", u"~=",
                      u"+",  u"-",  u"*", u".*", u"/", u"./", u"\\", u".\\", u"^",  u".^"}));
    if (hasBlanks) out.space();
    operand(depth + 1);
  }
}

void RandomCode::chain(int depth) {
  SourceWriter& out = *writer_;
  name();
  if (out.once(20)) {
    out.put(u"@");
    out.identifier(out.pick({u"Base", u"pkg.Base", u"velum.System"}));
    out.put(u"(");
    arguments(depth);
    return out.put(u")");
  }
  const std::size_t links = out.dice().roll(4);
  for (std::size_t link = 0; link < links; ++link) chainLink(depth);
}

void RandomCode::chainLink(int depth) {
  SourceWriter& out = *writer_;
  const std::size_t choice = out.dice().roll(depth > 3 ? 3 : 6);
  if (choice < 3) {
    out.put(u".");
    return out.identifier(
        out.pick({u"x", u"Mode", u"ModeSet", u"RateSet", u"Rate", u"end", u"if", u"properties"}));
  }
  const fl::ustring_view brackets = out.pick({u"()", u"()", u"{}"});
  if (choice == 5 && out.once(3)) {
    out.put(u".(");
    const SourceWriter::ListScope scope(writer_, false);
    expression(depth + 1);
    return out.put(u")");
  }
  out.put(brackets.substr(0, 1));
  arguments(depth);
  out.put(brackets.substr(1));
}

void RandomCode::arguments(int depth) {
  SourceWriter& out = *writer_;
  const SourceWriter::ListScope scope(writer_, false);
  const std::size_t count = out.dice().roll(4);
  out.commaSeparated(count, [&](std::size_t) {
    const std::size_t choice = out.dice().roll(12);
    if (choice == 0) {
      out.put(u":");
    } else if (choice == 1) {
      out.put(out.pick({u"end", u"end-1", u"1:end", u"(end)"}));
    } else {
      if (choice == 2) {
        out.identifier(out.pick({u"Name", u"Mode"}));
        out.put(out.pick({u"=", u" = "}));
      }
      expression(depth + 1);
    }
    out.gap();
  });
}

void RandomCode::anonymousFunction(int depth) {
  SourceWriter& out = *writer_;
  const SourceWriter::ListScope scope(writer_, false);
  // In parentheses, because its body extends as far as possible.
  out.put(u"(@(");
  out.commaSeparated(out.dice().roll(3), [&out](std::size_t) {
    out.once(4) ? out.put(u"~") : out.identifier(out.pick({u"a", u"b", u"ModeSet"}));
  });
  out.put(u")");
  out.gap();
  expression(depth + 1);
  out.put(u")");
}

void RandomCode::list(bool isCell, int depth) {
  SourceWriter& out = *writer_;
  const SourceWriter::ListScope scope(writer_, true);
  out.put(isCell ? u"{" : u"[");
  if (out.once(8)) out.put(out.pick({u" ", u",", u";", u"\n", u" % list\n", u" ...\n"}));
  const std::size_t count = out.dice().roll(5);
  for (std::size_t number = 0; number < count; ++number) {
    if (number > 0) {
      out.put(out.pick({u", ", u",", u" ", u" ", u"; ", u";", u"\n", u", ...\n", u" ...\r\n ",
                        u" % row\n", u",;", u";\n\n", u"\n%{\nx\n%}\n"}));
    }
    listElement(depth);
  }
  if (out.once(8)) out.put(out.pick({u" ", u",", u";", u"\n", u" % end\n", u",,"}));
  out.put(isCell ? u"}" : u"]");
}

void RandomCode::listElement(int depth) {
  const std::size_t choice = writer_->dice().roll(8);
  if (choice < 5) return literal();
  if (choice < 6) return expression(depth + 1);
  operand(depth + 1);
}

}  // namespace soca::fuzz
