// From a hunk, old lines and the edits in them, to rows of old and new lines.

/**
 * A part of a line; what is changed is not on the other side.
 * @typedef {{text: string, isChanged: boolean, conversions: number[]}} Part
 */
/** @typedef {{number: number, parts: Part[]}} Line */
/**
 * Lines that are on both sides, or old lines and the new ones in their place.
 * @typedef {{isChanged: boolean, old: Line[], new: Line[], conversions: number[]}} Row
 */
/** @typedef {{gap: number, length: number, text: string, conversions: number[]}} Edit */
/** @typedef {{line: number, text: string, edits: Edit[]}} Hunk */
/** @typedef {{same: string, old: string, new: string, conversions: number[]}} Step */

/**
 * @param {string} text
 * @returns {number}
 */
export function lineEndsIn(text) {
  let found = 0;
  for (let at = text.indexOf('\n'); at >= 0; at = text.indexOf('\n', at + 1)) ++found;
  return found;
}

/**
 * Unchanged text followed by an edit; the last one has no edit.
 * @param {Hunk} hunk
 * @returns {Step[]}
 */
function stepsOf(hunk) {
  /** @type {Step[]} */
  const steps = [];
  let at = 0;
  for (const edit of hunk.edits) {
    const start = at + edit.gap;
    const end = start + edit.length;
    steps.push({
      same: hunk.text.slice(at, start),
      old: hunk.text.slice(start, end),
      new: edit.text,
      conversions: edit.conversions,
    });
    at = end;
  }
  steps.push({ same: hunk.text.slice(at), old: '', new: '', conversions: [] });
  for (let i = 0; i + 1 < steps.length; ++i) alignWithLines(steps[i], steps[i + 1]);
  return steps;
}

/**
 * Moves an edit that deletes or inserts lines to where a line begins, if the text is the same:
 * "a[\n  b]\n" is "a\n[  b\n]".
 * @param {Step} step
 * @param {Step} next
 */
function alignWithLines(step, next) {
  const side = step.old === '' ? 'new' : 'old';
  if (step.old !== '' && step.new !== '') return;
  const text = step[side];
  const end = text.indexOf('\n');
  if (end < 0 || step.same === '' || step.same.endsWith('\n')) return;
  const head = text.slice(0, end + 1);
  if (next.same.startsWith(head)) {
    step.same += head;
    step[side] = text.slice(head.length) + head;
    next.same = next.same.slice(head.length);
    return;
  }
  const tail = text.slice(text.lastIndexOf('\n') + 1);
  if (!step.same.endsWith(`\n${tail}`)) return;
  step.same = step.same.slice(0, step.same.length - tail.length);
  step[side] = tail + text.slice(0, text.length - tail.length);
  next.same = tail + next.same;
}

/** Collects the lines of both sides, and makes a row wherever a line ends on both. */
class RowMaker {
  /**
   * @param {number} oldNumber
   * @param {number} newNumber
   */
  constructor(oldNumber, newNumber) {
    /** @type {Row[]} */
    this.rows = [];
    this.next = { old: oldNumber, new: newNumber };
    /** @type {{old: Line[], new: Line[]}} */
    this.lines = { old: [], new: [] };
    /** @type {{old: Part[], new: Part[]}} */
    this.parts = { old: [], new: [] };
    this.isAtLineStart = { old: true, new: true };
    /** @type {Set<number>} */
    this.conversions = new Set();
    this.isChanged = false;
  }

  /** @param {string} text */
  addSame(text) {
    text.split('\n').forEach((piece, index) => {
      if (index > 0) this.endLines();
      this.addPiece('old', piece, false, []);
      this.addPiece('new', piece, false, []);
    });
  }

  /** @param {Step} step */
  addEdit(step) {
    if (step.old === '' && step.new === '') return;
    this.isChanged = true;
    for (const each of step.conversions) this.conversions.add(each);
    this.addChanged('old', step.old, step.conversions);
    this.addChanged('new', step.new, step.conversions);
    if (this.isAtLineStart.old && this.isAtLineStart.new) this.flush();
  }

  /**
   * @param {'old' | 'new'} side
   * @param {string} text
   * @param {number[]} conversions
   */
  addChanged(side, text, conversions) {
    text.split('\n').forEach((piece, index) => {
      if (index > 0) this.endLine(side);
      this.addPiece(side, piece, true, conversions);
    });
  }

  /**
   * @param {'old' | 'new'} side
   * @param {string} text
   * @param {boolean} isChanged
   * @param {number[]} conversions
   */
  addPiece(side, text, isChanged, conversions) {
    if (text === '') return;
    this.parts[side].push({ text, isChanged, conversions });
    this.isAtLineStart[side] = false;
  }

  /** @param {'old' | 'new'} side */
  endLine(side) {
    this.lines[side].push({ number: this.next[side]++, parts: this.parts[side] });
    this.parts[side] = [];
    this.isAtLineStart[side] = true;
  }

  endLines() {
    this.endLine('old');
    this.endLine('new');
    this.flush();
  }

  flush() {
    if (this.lines.old.length + this.lines.new.length === 0) return;
    this.rows.push({
      isChanged: this.isChanged,
      old: this.lines.old,
      new: this.lines.new,
      conversions: [...this.conversions],
    });
    this.lines = { old: [], new: [] };
    this.conversions = new Set();
    this.isChanged = false;
  }

  finish() {
    if (!this.isAtLineStart.old) this.endLine('old');
    if (!this.isAtLineStart.new) this.endLine('new');
    this.flush();
    return this.rows;
  }
}

/**
 * The rows of all hunks of a class, those of each hunk together.
 * @param {Hunk[]} hunks
 * @returns {Row[][]}
 */
export function rowsOfHunks(hunks) {
  let shift = 0;
  return hunks.map((hunk) => {
    const maker = new RowMaker(hunk.line, hunk.line + shift);
    for (const step of stepsOf(hunk)) {
      maker.addSame(step.same);
      maker.addEdit(step);
      shift += lineEndsIn(step.new) - lineEndsIn(step.old);
    }
    return maker.finish();
  });
}
