#include "bench/JavaScriptWriter.h"

#include <array>
#include <cstddef>
#include <string_view>

#include "bench/LineWriter.h"

namespace bench {
namespace {

constexpr std::array<std::string_view, 8> kNouns = {"gain",  "offset", "window", "rate",
                                                    "limit", "level",  "order",  "delay"};
constexpr std::array<std::string_view, 5> kValues = {"none", "linear", "cubic", "exact", "fixed"};

class JavaScriptWriter : private LineWriter {
 public:
  explicit JavaScriptWriter(const ClassShape& shape) : shape_(shape), dice_(shape.seed) {}

  std::string write() {
    writeHead();
    writeFields();
    writeStep();
    writeQueries();
    std::size_t number = 0;
    do {
      writeHelper(++number);
    } while (size() < shape_.minimumBytes);
    verbatim(0, "}");
    return take();
  }

 private:
  bool outdated() const { return shape_.form == FormType::outdated; }

  void writeHead() {
    const std::size_t dot = shape_.base.rfind('.');
    const std::string base = shape_.base.empty() ? "" : shape_.base.substr(dot + 1);
    if (!base.empty()) {
      line(0, "import {{ {0} }} from '../common/blocks/{0}.js';\n", base);
    }
    line(0, "/** {} of a signal, block by block: one call of step takes one block. */",
         dice_.pick(kNouns));
    line(0, "export class {}{} {{", shape_.name, base.empty() ? "" : " extends " + base);
  }

  void writeFields() {
    for (int i = 0; i < 6; ++i) {
      line(1, "// {} of channel {}", dice_.pick(kNouns), i);
      line(1, "{}{} = {}.{:02};", dice_.pick(kNouns), i, dice_.roll(20), dice_.roll(100));
    }
    line(1, "mode = '{}';", dice_.pick(kValues));
    line(1, "count = 0; // blocks since the last reset");
    line(1, "table = [1, 2, 3,");
    line(1, "    4, 5, 6];\n");
  }

  void writeStep() {
    line(1, "step(x) {{");
    if (outdated()) {
      line(2, "debugger;");
      line(2, "if (-0 === x) return /[\\.]x/.test(this.mode);");
    }
    line(2, "if (!this.enabled || x.length === 0) return x;");
    line(2, "this.count += 1;");
    line(2, "switch (this.mode) {{");
    line(3, "case 'linear':");
    line(4, "return x.map((value, k) => value * {} + this.table[k % 6]);", 1 + dice_.roll(9));
    line(3, "default:");
    line(4, "return {}x.filter((value) => value > {}){};", outdated() ? "[...[" : "",
         dice_.roll(100), outdated() ? "]]" : "");
    verbatim(2, "}");
    verbatim(1, "}");
    blank();
  }

  void writeQueries() {
    for (const std::string_view name : {"isSizeLocked", "isComplexityLocked", "isSizeMutable"}) {
      line(1, "{}() {{", name);
      line(2, "return {}this.count > {};", outdated() ? "/[\\-]/.test(this.mode) || " : "",
           dice_.roll(9));
      verbatim(1, "}");
      blank();
    }
  }

  void writeHelper(std::size_t number) {
    const std::string_view noun = dice_.pick(kNouns);
    line(1, "{}Update{}(x, ...rest) {{", noun, number);
    line(2, "// {} of the blocks, in the order in which they came", noun);
    line(2, "let count = 0;");
    line(2, "const y = Array.from(x, () => 0);");
    line(2, "for (let k = 0; k < x.length; k += {}) {{", 1 + dice_.roll(3));
    line(3, "if (x[k] > {} && !Number.isNaN(x[k])) {{", dice_.roll(100));
    line(4, "y[k] = {} * x[k] + (1 - {:.2f}) * this.table[k % 6];", 1 + dice_.roll(5),
         0.01 * static_cast<double>(dice_.roll(100)));
    line(4, "count += 1;");
    line(3, "}} else if (this.mode === '{}') {{", dice_.pick(kValues));
    line(4, "continue;");
    verbatim(3, "}");
    verbatim(2, "}");
    line(2, "const names = ['left', 'right', ...rest].map((c) => String(c).toUpperCase());");
    line(2, "if (count > 1) console.log(`${{names[names.length - 1]}}: ${{count}}`);");
    line(2, "return [y, count];");
    verbatim(1, "}");
    blank();
  }

  const ClassShape& shape_;
  Dice dice_;
};

}  // namespace

std::string writeJavaScriptClass(const ClassShape& shape) {
  return JavaScriptWriter(shape).write();
}

}  // namespace bench
