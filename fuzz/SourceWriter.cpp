#include "fuzz/SourceWriter.h"

namespace soca::fuzz {

SourceWriter::SourceWriter(bench::Dice* dice)
    : dice_(dice),
      lineEnd_(pick({u"\n", u"\n", u"\r\n"})),
      oddness_(4 + dice->roll(20)),
      isCrowded_(once(3)) {
  if (once(20)) put(u"\uFEFF");
}

void SourceWriter::identifier(fl::ustring_view name) {
  identifiers_.push_back({text_.size(), name.size()});
  put(name);
}

void SourceWriter::dottedIdentifiers(fl::ustring_view name) {
  for (std::size_t dot = name.find(u'.'); dot != fl::ustring_view::npos; dot = name.find(u'.')) {
    identifier(name.substr(0, dot));
    put(u".");
    name.remove_prefix(dot + 1);
  }
  identifier(name);
}

void SourceWriter::gap() {
  if (isInList_) return;
  if (once(4 * oddness_)) return continuation();
  if (once(oddness_)) return put(pick({u"  ", u"\t", u" \v", u"\f", u"\r", u"   "}));
  if (!once(3)) put(u" ");
}

void SourceWriter::putBetweenGaps(fl::ustring_view mark) {
  gap();
  put(mark);
  gap();
}

void SourceWriter::space() {
  if (once(4 * oddness_)) return continuation();
  put(once(oddness_) ? pick({u"  ", u"\t", u" \v ", u"\f", u"\r"}) : u" ");
}

void SourceWriter::continuation() {
  // A point directly after a number is part of the number.
  const bool isAfterNumber = u'0' <= text_.back() && text_.back() <= u'9';
  put(isAfterNumber || once(2) ? u" " : u"");
  put(u"...");
  if (once(3))
    put(pick({u" note", u" % note", u" 'open", u" obj.ModeSet", u"...", u" end", u"\t"}));
  put(lineEnd_);
  if (once(4)) put(pick({u"  ", u"\t"}));
}

void SourceWriter::comment() {
  put(u"%");
  put(pick({u"", u" note", u" see obj.ModeSet", u" .RateSetting", u" isInputSizeLockedImpl(obj, 1)",
            u" end", u" 'open", u" \"open", u"{ not a block", u"} nor this", u" ... no", u"% %",
            u" \u00E9\U0001D49C \u4E2D", u" velum.system.StringSet({'a'})", u" )]}"}));
}

void SourceWriter::blockComment(int depth) {
  put(pick({u"", u"  ", u"\t"}));
  put(u"%{");
  put(pick({u"", u"", u" "}));
  put(lineEnd_);
  const std::size_t lines = dice_->roll(3);
  for (std::size_t line = 0; line < lines; ++line) {
    if (depth < 2 && once(4)) {
      blockComment(depth + 1);
      continue;
    }
    put(pick({u"end", u" .ModeSet {", u"%} not yet", u"", u"'", u"...", u"function f"}));
    put(lineEnd_);
  }
  put(pick({u"", u"\t "}));
  put(u"%}");
  put(lineEnd_);
}

void SourceWriter::lineEnd() {
  if (once(oddness_)) put(pick({u" ", u"\t", u"  "}));
  if (once(oddness_)) comment();
  put(lineEnd_);
  while (once(oddness_)) {
    if (once(4)) {
      blockComment(0);
      continue;
    }
    put(pick({u"", u"  ", u"\t"}));
    if (once(2)) comment();
    put(lineEnd_);
  }
}

void SourceWriter::headEnd() {
  if (!isCrowded_ || once(3)) return lineEnd();
  put(pick({u", ", u"; ", u",", u" ;\t", u" , "}));
}

void SourceWriter::separator() {
  if (once(2 * oddness_)) gap();
  if (isCrowded_ && !once(3)) return put(pick({u";", u", ", u"; ", u" ;,", u"; "}));
  if (once(oddness_)) return put(pick({u";", u",", u" ; ", u", ", u";;", u";,"}));
  if (once(2)) {
    put(pick({u";", u";", u",", u" ;"}));
    gap();
  }
  lineEnd();
}

void SourceWriter::optionalSeparator() {
  if (once(oddness_) || (isCrowded_ && !once(3)))
    return put(pick({u" ", u", ", u"; ", u" , ", u";"}));
  lineEnd();
}

void SourceWriter::indent() {
  put(once(oddness_) ? pick({u"", u"\t", u" "}) : pick({u"    ", u"        "}));
}

void SourceWriter::lastLines() {
  const bool isOdd = once(3);
  if (!isOdd) return put(lineEnd_);
  put(pick({u"", u" ", u"\n  ", u" ...\n  ... last", u"\n\n\t\n", u" % last .ModeSet", u";", u"\r",
            u"\n% the end", u"\n%{\nx\n%}", u"\n%{\nx\n%}\n"}));
}

}  // namespace soca::fuzz
