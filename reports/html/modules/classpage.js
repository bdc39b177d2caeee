// One class: its hunks, with each conversion and each finding beside its lines.
import { conversionNote, decisionButtons } from './conversion.js';
import { diffTable } from './diff.js';
import { copyButton, count, h } from './dom.js';
import { foldedExplanation } from './explanations.js';
import { rowsOfHunks } from './hunks.js';
import { detailsOf, stateBits } from './model.js';
import { className, commandText, prose, quoteForShell, visible, withArguments } from './text.js';

/** @typedef {import('./app.js').App} App */
/** @typedef {import('./diff.js').Notes} Notes */
/** @typedef {import('./hunks.js').Row} Row */
/** @typedef {import('./model.js').ClassEntry} ClassEntry */
/** @typedef {import('./model.js').Conversion} Conversion */
/** @typedef {import('./model.js').Details} Details */
/** @typedef {import('./model.js').Finding} Finding */

/**
 * @param {App} app
 * @param {Finding} finding
 * @returns {HTMLElement}
 */
function findingNote(app, finding) {
  const message = app.report.messageOf(finding.message);
  const text = withArguments(message.text, finding.values);
  const detail = finding.detail === '' ? '' : `${text.replace(/\.$/, '')}; ${finding.detail}.`;
  return h(
    'article',
    { class: 'note finding', 'aria-label': 'Finding' },
    foldedExplanation(
      message,
      h('span', { class: 'badge finding' }, 'finding'),
      ' ',
      visible(detail || text),
      ' ',
      h('span', { class: 'id' }, app.report.nameOf(finding.message)),
    ),
  );
}

/** Gives out each note once, at the first row that it belongs to. */
class NotesOfClass {
  /**
   * @param {App} app
   * @param {ClassEntry} entry
   * @param {Details} details
   * @param {Row[]} rows
   */
  constructor(app, entry, details, rows) {
    this.app = app;
    this.details = details;
    const changed = new Set(rows.flatMap((row) => row.conversions));
    /** Conversions without lines of their own in the diff. */
    this.byLine = entry.conversions.filter((each) => !changed.has(each.index));
    this.byRow = entry.conversions.filter((each) => changed.has(each.index));
    this.findings = [...details.findings];
  }

  /** @param {Conversion} conversion */
  noteOf(conversion) {
    const texts = this.details.reasons.get(conversion.index) ?? [];
    return conversionNote(this.app, conversion, { texts });
  }

  /**
   * Takes the items that belong to the row out of the list.
   * @template Item
   * @param {Item[]} list
   * @param {(item: Item) => boolean} belongs
   * @returns {Item[]}
   */
  static take(list, belongs) {
    const taken = list.filter(belongs);
    for (const item of taken) list.splice(list.indexOf(item), 1);
    return taken;
  }

  /** @param {Row} row */
  before(row) {
    const lines = new Set(row.old.map((each) => each.number));
    return [
      ...NotesOfClass.take(this.byRow, (each) => row.conversions.includes(each.index)),
      ...NotesOfClass.take(this.byLine, (each) => lines.has(each.line)),
    ].map((each) => this.noteOf(each));
  }

  /** @param {Row} row */
  after(row) {
    const lines = new Set(row.old.map((each) => each.number));
    return NotesOfClass.take(this.findings, (each) => lines.has(each.line)).map((each) =>
      findingNote(this.app, each),
    );
  }

  /** What belongs to no line that is shown. */
  rest() {
    return [
      ...[...this.byRow, ...this.byLine].map((each) => this.noteOf(each)),
      ...this.findings.map((each) => findingNote(this.app, each)),
    ];
  }
}

/**
 * @param {Finding[]} findings
 * @returns {import('./diff.js').Mark[]}
 */
function marksOf(findings) {
  return findings.map(({ line, column, endColumn }) => ({ line, start: column, end: endColumn }));
}

/**
 * All hunks of the class, or only those of one conversion.
 * @param {App} app
 * @param {ClassEntry} entry
 * @returns {HTMLElement}
 */
function hunksOf(app, entry) {
  const details = detailsOf(entry);
  const hunks = rowsOfHunks(details.hunks);
  const notes = new NotesOfClass(app, entry, details, hunks.flat());
  const marks = marksOf(details.findings);
  const element = h('div', { class: 'hunks' });
  let next = 1;
  hunks.forEach((rows, index) => {
    const first = details.hunks[index].line;
    if (first > next) element.append(h('p', { class: 'gap' }, count(first - next, 'line')));
    element.append(
      diffTable(rows, app.layout, {
        before: (row) => notes.before(row),
        after: (row) => notes.after(row),
        marks,
      }),
    );
    next = Math.max(next, ...rows.flatMap((row) => row.old.map((line) => line.number + 1)));
  });
  const rest = notes.rest();
  if (rest.length > 0) element.append(h('div', { class: 'notes' }, rest));
  return element;
}

/**
 * The lines of one conversion, for a list of conversions of several classes.
 * @param {App} app
 * @param {Conversion} conversion
 * @returns {{texts: string[], element: HTMLElement}}
 */
export function linesOfConversion(app, conversion) {
  const details = detailsOf(conversion.owner);
  const element = h('div', { class: 'hunks' });
  const isMade = conversion.leftOut === -1;
  for (const rows of rowsOfHunks(details.hunks)) {
    const belongs = (/** @type {Row} */ row) =>
      isMade
        ? row.conversions.includes(conversion.index)
        : row.old.some((line) => line.number === conversion.line);
    const kept = withContext(rows, belongs);
    if (kept.length === 0) continue;
    const none = () => [];
    element.append(diffTable(kept, app.layout, { before: none, after: none, marks: [] }));
  }
  return { texts: details.reasons.get(conversion.index) ?? [], element };
}

/**
 * @param {Row[]} rows
 * @param {(row: Row) => boolean} belongs
 * @returns {Row[]}
 */
function withContext(rows, belongs) {
  const kept = new Set();
  rows.forEach((row, index) => {
    if (!belongs(row)) return;
    for (let i = index - 1; i <= index + 1; ++i) kept.add(i);
  });
  return rows.filter((_, index) => kept.has(index));
}

/**
 * What a person types to make just what is made and not rejected. It is a run over all classes: in
 * one of a single class, its uses in others would not be known.
 * @param {App} app
 * @param {ClassEntry} entry
 * @returns {string}
 */
function commandFor(app, entry) {
  const { command, arguments: targets, risks } = app.report.tables;
  const wanted = entry.conversions.filter((each) => each.leftOut === -1 && each.decision !== 'no');
  if (wanted.length === 0) return '';
  const option = (/** @type {string} */ name, /** @type {Conversion[]} */ list) =>
    list.map((each) => ` ${name} ${quoteForShell(app.report.idOf(each))}`).join('');
  const unsafe = risks.length - 1;
  // What the run was told to leave out, it would make when it is not told.
  const isNarrowed = entry.conversions.some(
    ({ leftOut, canBeChosen, risk }) =>
      leftOut !== -1 &&
      (app.report.nameOf(leftOut) === 'NotSelected' || (canBeChosen && risk < unsafe)),
  );
  const rejected = entry.conversions.filter((each) => each.decision === 'no');
  const selection = isNarrowed
    ? option('--only', wanted)
    : ` --only ${quoteForShell(`${entry.name}#*`)}${option('--skip', rejected)}`;
  const risk = wanted.some((each) => each.risk === unsafe) ? ` --risk ${risks[unsafe]}` : '';
  return `${command}${risk}${selection} --write${targets && ` ${targets}`}`;
}

/**
 * @param {App} app
 * @param {ClassEntry} entry
 * @returns {HTMLElement}
 */
function commandLine(app, entry) {
  const line = h('p', { class: 'command' });
  app.refreshing(() => {
    const command = commandFor(app, entry);
    line.hidden = command === '';
    line.replaceChildren(commandText(command), copyButton(command, 'Copy the command'));
  });
  return line;
}

/**
 * Changes between both sides and one; a small screen has no room for both.
 * @param {App} app
 */
function layoutButton(app) {
  if (app.isNarrow) return null;
  const label = app.layout === 'split' ? 'One side' : 'Both sides';
  return h('button', { type: 'button', class: 'quiet', click: () => app.changeLayout() }, label);
}

/** @param {string[]} notes */
function warningsOf(notes) {
  if (notes.length === 0) return null;
  const [first, ...rest] = notes.map((text) => prose(text));
  if (rest.length === 0) return h('p', { class: 'warning' }, first);
  return h(
    'details',
    { class: 'warning folded' },
    h('summary', {}, first, h('span', { class: 'quiet' }, ` and ${rest.length} more`)),
    rest.map((text) => h('p', {}, text)),
  );
}

/**
 * @param {App} app
 * @param {ClassEntry} entry
 * @returns {HTMLElement}
 */
export function classPage(app, entry) {
  const { notes } = detailsOf(entry);
  const isChanged = (entry.state & stateBits.changed) !== 0;
  return h(
    'section',
    { class: 'class', 'aria-labelledby': 'class-title' },
    h(
      'header',
      { class: 'class-head' },
      h('h2', { id: 'class-title' }, className(entry.name)),
      h(
        'span',
        { class: 'tools' },
        layoutButton(app),
        decisionButtons(app, () => entry.conversions, `all conversions of ${visible(entry.name)}`),
      ),
      h('p', { class: 'file' }, visible(entry.file)),
    ),
    warningsOf(notes),
    hunksOf(app, entry),
    isChanged && !app.report.tables.isWritten && commandLine(app, entry),
  );
}
