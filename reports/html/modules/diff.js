// A hunk as a table: both sides beside each other, or below each other.
import { digits, h } from './dom.js';
import { tokensOf } from './lexer.js';
import { visible } from './text.js';

/** @typedef {import('./hunks.js').Row} Row */
/** @typedef {import('./hunks.js').Line} Line */
/** @typedef {import('./hunks.js').Part} Part */
/** Without changes, a hunk has one side. @typedef {'split' | 'unified' | 'single'} Layout */
/** The columns of a line that a message is about, one-based. @typedef {{line: number, start: number, end: number}} Mark */
/**
 * What stands between the lines: before or after a row, over all columns.
 * @typedef {{before: (row: Row) => HTMLElement[], after: (row: Row) => HTMLElement[], marks: Mark[]}} Notes
 */

const longestLine = 400;
const longestColouredLine = 20000;

/**
 * @param {string} text
 * @returns {string}
 */
function withoutReturn(text) {
  return text.endsWith('\r') ? text.slice(0, -1) : text;
}

/**
 * The places at which the form of a line changes, with what holds from there on.
 * @param {Line} line
 * @param {string} text
 * @param {Mark[]} marks
 * @param {number} start
 * @param {number} end
 */
function stretchesOf(line, text, marks, start, end) {
  const cuts = new Set([start, end]);
  const changed = [];
  let at = 0;
  for (const part of line.parts) {
    if (part.isChanged) changed.push({ start: at, end: at + part.text.length, type: 'changed' });
    at += part.text.length;
  }
  const tokens = text.length <= longestColouredLine ? tokensOf(text) : [];
  const found = marks.map((each) => ({ start: each.start - 1, end: each.end - 1, type: 'found' }));
  const layers = [tokens, changed, found];
  for (const layer of layers) {
    for (const each of layer) cuts.add(each.start).add(each.end);
  }
  const places = [...cuts].filter((each) => each >= start && each <= end).sort((a, b) => a - b);
  const next = layers.map(() => 0);
  return places.slice(0, -1).map((place, index) => {
    const types = layers.map((layer, number) => {
      while (next[number] < layer.length && layer[next[number]].end <= place) ++next[number];
      const item = layer[next[number]];
      return item && item.start <= place ? item.type : '';
    });
    return { text: text.slice(place, places[index + 1]), types };
  });
}

/**
 * @param {HTMLElement} cell
 * @param {Line} line
 * @param {'old' | 'new' | 'same'} side
 * @param {Mark[]} marks
 * @param {boolean} isWhole
 */
function fillCode(cell, line, side, marks, isWhole) {
  const text = withoutReturn(line.parts.map((part) => part.text).join(''));
  let start = 0;
  let end = text.length;
  if (!isWhole && end > longestLine) {
    const first = marks[0] ? marks[0].start - 1 : firstChange(line);
    start = Math.max(0, Math.min(first - 80, end - longestLine));
    end = start + longestLine;
  }
  cell.replaceChildren();
  if (start > 0) cell.append(h('span', { class: 'cut' }, '…'));
  const mark = side === 'old' ? 'del' : side === 'new' ? 'ins' : 'span';
  // Of a line that is new or gone as a whole, no part stands out.
  const isPartly = line.parts.some((part) => !part.isChanged && part.text.trim() !== '');
  for (const { text: piece, types } of stretchesOf(line, text, marks, start, end)) {
    const [token, changed, found] = types;
    const classes = [token, found].filter(Boolean).join(' ');
    /** @type {Node} */
    let node = document.createTextNode(visible(piece));
    if (classes) node = h('span', { class: classes }, node);
    if (changed && isPartly) node = h(mark, {}, node);
    cell.append(node);
  }
  if (end - start === text.length) return;
  cell.append(
    h('span', { class: 'cut' }, '…'),
    h(
      'button',
      {
        type: 'button',
        class: 'quiet',
        click: () => fillCode(cell, line, side, marks, true),
      },
      `show all ${digits(text.length)} characters`,
    ),
  );
}

/** @param {Line} line */
function firstChange(line) {
  let at = 0;
  for (const part of line.parts) {
    if (part.isChanged) return at;
    at += part.text.length;
  }
  return 0;
}

/**
 * @param {Line | undefined} line
 * @param {'old' | 'new' | 'same'} side
 * @param {Mark[]} marks
 * @returns {HTMLElement[]} the cells of the number and of the code
 */
function cellsOf(line, side, marks) {
  if (!line) return [h('td', { class: 'number' }), h('td', { class: 'code none' })];
  const code = h('td', { class: `code ${side}` });
  const ownMarks = side === 'new' ? [] : marks.filter((each) => each.line === line.number);
  fillCode(code, line, side, ownMarks, false);
  return [h('td', { class: 'number' }, line.number), code];
}

/** @param {string} label */
function signCell(label) {
  return h('td', { class: 'sign' }, label);
}

/**
 * @param {Row} row
 * @param {Layout} layout
 * @param {Mark[]} marks
 * @returns {HTMLElement[]}
 */
function linesOf(row, layout, marks) {
  const attributes = {
    class: row.isChanged ? 'changed' : 'context',
    'data-conversions': row.conversions.length > 0 ? ` ${row.conversions.join(' ')} ` : undefined,
  };
  if (layout === 'split') {
    const size = Math.max(row.old.length, row.new.length);
    return Array.from({ length: size }, (_, index) => {
      const sides = row.isChanged ? /** @type {const} */ (['old', 'new']) : undefined;
      return h(
        'tr',
        attributes,
        cellsOf(row.old[index], sides?.[0] ?? 'same', marks),
        cellsOf(row.new[index], sides?.[1] ?? 'same', []),
      );
    });
  }
  if (layout === 'single') return [h('tr', attributes, cellsOf(row.old[0], 'same', marks))];
  if (!row.isChanged) {
    const [number, code] = cellsOf(row.old[0], 'same', marks);
    const newNumber = h('td', { class: 'number' }, row.new[0].number);
    return [h('tr', attributes, number, newNumber, signCell(''), code)];
  }
  const blank = () => h('td', { class: 'number' });
  return [
    ...row.old.map((line) => {
      const [number, code] = cellsOf(line, 'old', marks);
      return h('tr', attributes, number, blank(), signCell('−'), code);
    }),
    ...row.new.map((line) => {
      const [number, code] = cellsOf(line, 'new', marks);
      return h('tr', attributes, blank(), number, signCell('+'), code);
    }),
  ];
}

/**
 * @param {Row[]} rows
 * @param {Layout} wanted
 * @param {Notes} notes
 * @returns {HTMLElement}
 */
export function diffTable(rows, wanted, notes) {
  const layout = rows.some((row) => row.isChanged) ? wanted : 'single';
  const body = h('tbody', {});
  const addNotes = (/** @type {HTMLElement[]} */ elements) => {
    if (elements.length > 0) {
      body.append(
        h('tr', { class: 'notes' }, h('td', { colspan: layout === 'single' ? 2 : 4 }, elements)),
      );
    }
  };
  for (const row of rows) {
    addNotes(notes.before(row));
    body.append(...linesOf(row, layout, notes.marks));
    addNotes(notes.after(row));
  }
  return h('table', { class: `diff ${layout}` }, columnsOf(layout), body);
}

/** The class of each column, and its head. */
const columns = {
  split: {
    number: 'Old line',
    code: 'Old text',
    'number other': 'New line',
    'code other': 'New text',
  },
  unified: { number: 'Old line', 'number other': 'New line', sign: 'Change', code: 'Text' },
  single: { number: 'Line', code: 'Text' },
};

/** @param {Layout} layout */
function columnsOf(layout) {
  const names = Object.entries(columns[layout]);
  const heads = names.map(([, head]) => h('th', { scope: 'col' }, head));
  return [
    h(
      'colgroup',
      {},
      names.map(([name]) => h('col', { class: name })),
    ),
    h('thead', { class: 'unseen' }, h('tr', {}, heads)),
  ];
}
