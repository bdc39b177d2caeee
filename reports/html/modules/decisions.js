// What the person decided about each conversion: yes, no, or nothing yet. Kept in the browser, so
// that a review can be interrupted.

/** @typedef {import('./model.js').Conversion} Conversion */
/** @typedef {import('./model.js').Decision} Decision */
/** @typedef {import('./model.js').Report} Report */
/** @typedef {{open: number, yes: number, no: number}} Counts */

const letters = { open: '-', yes: 'y', no: 'n' };

/**
 * @param {Iterable<Conversion>} conversions
 * @returns {Counts}
 */
export function countDecisions(conversions) {
  const counts = { open: 0, yes: 0, no: 0 };
  for (const each of conversions) if (each.canBeChosen) ++counts[each.decision];
  return counts;
}

export class Decisions {
  /** @param {Report} report */
  constructor(report) {
    this.report = report;
    this.key = keyOf(report);
    /** @type {(() => void)[]} */
    this.listeners = [];
    /** @type {{conversion: Conversion, decision: Decision}[]} */
    this.before = [];
    this.timer = 0;
    this.load();
    addEventListener('pagehide', () => this.save());
  }

  /** @param {() => void} listener */
  onChange(listener) {
    this.listeners.push(listener);
  }

  /**
   * Decides the same about all of them. What is accepted is accepted with all that it needs; what
   * needs a rejected one is rejected.
   * @param {Conversion[]} conversions
   * @param {Decision} decision
   * @returns {number} how many decisions changed
   */
  decide(conversions, decision) {
    this.before = [];
    for (const each of conversions) this.set(each, decision);
    this.changed();
    return this.before.length;
  }

  undo() {
    for (const { conversion, decision } of this.before) conversion.decision = decision;
    this.before = [];
    this.changed();
  }

  changed() {
    for (const listener of this.listeners) listener();
    clearTimeout(this.timer);
    this.timer = setTimeout(() => this.save(), 200);
  }

  /**
   * @param {Conversion} conversion
   * @param {Decision} decision
   */
  set(conversion, decision) {
    if (!conversion.canBeChosen || conversion.decision === decision) return;
    this.before.push({ conversion, decision: conversion.decision });
    conversion.decision = decision;
    const others = conversion.owner.conversions;
    if (decision === 'yes') for (const each of conversion.needs) this.set(others[each], 'yes');
    if (decision === 'yes') return;
    for (const each of others) {
      if (each.decision === 'yes' && each.needs.includes(conversion.index)) {
        this.set(each, decision);
      }
    }
  }

  load() {
    try {
      const stored = localStorage.getItem(this.key) ?? '';
      if (stored.length !== this.report.conversions.length) return;
      this.report.conversions.forEach((each, index) => {
        const letter = stored[index];
        if (!each.canBeChosen || letter === letters.open) return;
        each.decision = letter === letters.yes ? 'yes' : 'no';
      });
    } catch {
      // A browser may forbid a file to store anything: then the review lasts as long as the page.
    }
  }

  save() {
    try {
      localStorage.setItem(
        this.key,
        this.report.conversions.map((each) => letters[each.decision]).join(''),
      );
    } catch {
      // As above.
    }
  }
}

/**
 * Differs for other files or other conversions of them.
 * @param {Report} report
 * @returns {string}
 */
function keyOf(report) {
  let hash = 0;
  const add = (/** @type {string} */ text) => {
    for (let i = 0; i < text.length; ++i) hash = (Math.imul(hash, 31) + text.charCodeAt(i)) | 0;
  };
  for (const { name, sha256, conversions } of report.classes) {
    add(`${name} ${sha256.slice(0, 16)} ${conversions.length}`);
  }
  return `review:${report.conversions.length}:${hash >>> 0}`;
}
