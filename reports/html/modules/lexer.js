// The tokens of one line of source, for colours only: a line of a hunk has no context, so a line
// inside a block comment is read as code.

/** @typedef {{start: number, end: number, type: string}} Token */

const keywords = new Set(
  (
    'break case catch classdef continue else elseif end for function global if otherwise parfor ' +
    'persistent return spmd switch try while properties methods events enumeration arguments'
  ).split(' '),
);

// In this order, each at the place where the one before it ended.
const pattern = new RegExp(
  [
    '(?<comment>%.*|\\.\\.\\..*)',
    '(?<string>"(?:[^"]|"")*"?)',
    "(?<quote>')",
    '(?<number>0[xX][0-9a-fA-F]+\\w*|0[bB][01]+\\w*|(?:\\d+\\.?\\d*|\\.\\d+)(?:[eEdD][+-]?\\d+)?[ij]?)',
    '(?<word>[\\p{L}][\\p{L}0-9_]*)',
    '(?<blank>\\s+)',
    '(?<other>.)',
  ].join('|'),
  'uy',
);

/**
 * The tokens that have a colour, in their order.
 * @param {string} line
 * @returns {Token[]}
 */
export function tokensOf(line) {
  /** @type {Token[]} */
  const tokens = [];
  // Whether a quote would be a transpose: after an operand, without a blank between.
  let isOperand = false;
  let isField = false;
  pattern.lastIndex = 0;
  for (let match = pattern.exec(line); match; match = pattern.exec(line)) {
    const groups = match.groups ?? {};
    const start = match.index;
    let end = pattern.lastIndex;
    let type = '';
    if (groups.comment) type = 'comment';
    else if (groups.string) type = 'string';
    else if (groups.number) type = 'number';
    else if (groups.word && !isField && keywords.has(groups.word)) type = 'keyword';
    else if (groups.quote && !isOperand) {
      type = 'string';
      end = endOfLiteral(line, start);
      pattern.lastIndex = end;
    }
    if (type) tokens.push({ start, end, type });
    const other = groups.other ?? '';
    isOperand =
      Boolean(groups.string || groups.number || groups.quote) ||
      Boolean(groups.word && (type !== 'keyword' || groups.word === 'end')) ||
      ')]}'.includes(other || ' ') ||
      (other === '.' && isOperand);
    isField = other === '.';
  }
  return tokens;
}

/**
 * The end of a character literal, in which a quote is written twice.
 * @param {string} line
 * @param {number} start
 * @returns {number}
 */
function endOfLiteral(line, start) {
  for (let at = start + 1; at < line.length; ++at) {
    if (line[at] !== "'") continue;
    if (line[at + 1] !== "'") return at + 1;
    ++at;
  }
  return line.length;
}
