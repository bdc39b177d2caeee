// The keyboard.
import { byId, h } from './dom.js';
import { showDialog } from './saving.js';

/** @typedef {import('./app.js').App} App */
/** @typedef {import('./model.js').Conversion} Conversion */
/** @typedef {import('./search.js').Hit} Hit */

/** @type {[string, string][]} */
const help = [
  ['j', 'next conversion'],
  ['k', 'conversion before'],
  ['n', 'next class'],
  ['p', 'class before'],
  ['y', 'accept, and go to the next one'],
  ['x', 'reject, and go to the next one'],
  ['u', 'take back the last decision'],
  ['s', 'both sides, or one below the other'],
  ['/', 'search'],
  ['?', 'this list'],
];

export function showHelp() {
  showDialog(
    'Keys',
    h(
      'dl',
      { class: 'keys' },
      help.flatMap(([key, text]) => [h('dt', {}, h('kbd', {}, key)), h('dd', {}, text)]),
    ),
    h('p', {}, 'With a filter, j and k go through the conversions that it shows.'),
  );
}

/** The conversions among which the keys move, and the present one. */
export class Cursor {
  /** @param {App} app */
  constructor(app) {
    this.app = app;
  }

  /** The notes on the page, in their order. */
  get notes() {
    return /** @type {HTMLElement[]} */ ([...document.querySelectorAll('main .note.conversion')]);
  }

  get current() {
    return /** @type {HTMLElement | null} */ (document.querySelector('main .note.current'));
  }

  /**
   * The conversion of a note on the page of a class or in a group.
   * @param {HTMLElement} note
   * @returns {Conversion | undefined}
   */
  conversionOf(note) {
    const owner = note.dataset.class ?? this.app.route.class;
    return this.app.report.byName.get(owner)?.conversions[Number(note.dataset.conversion)];
  }

  /** @param {HTMLElement | undefined} note */
  moveTo(note) {
    for (const each of document.querySelectorAll('.current')) each.classList.remove('current');
    if (!note) return;
    note.classList.add('current');
    note.focus({ preventScroll: true });
    note.scrollIntoView({ block: 'center' });
    const page = note.closest('.class');
    const index = ` ${note.dataset.conversion} `;
    for (const row of page?.querySelectorAll('tr[data-conversions]') ?? []) {
      const owners = /** @type {HTMLElement} */ (row).dataset.conversions ?? '';
      row.classList.toggle('current', owners.includes(index));
    }
    const conversion = this.conversionOf(note);
    if (page && conversion) this.app.nameConversion(this.app.report.partOf(conversion));
  }

  /**
   * Goes to the next or to the last conversion that the filter shows; at the end of a class to
   * those of the next one.
   * @param {1 | -1} step
   * @returns {void}
   */
  step(step) {
    const hasAll = this.app.route.view !== 'classes' || !this.app.isFiltered;
    const hit = this.app.hits.find(({ entry }) => entry.name === this.app.route.class);
    const isStop = (/** @type {HTMLElement} */ note) => {
      const conversion = this.conversionOf(note);
      return Boolean(conversion && (hasAll || hit?.conversions.includes(conversion)));
    };
    const notes = this.notes.filter((note) => isStop(note) || note === this.current);
    const present = this.current ? notes.indexOf(this.current) : -1;
    const next = present < 0 ? (step > 0 ? 0 : notes.length - 1) : present + step;
    if (notes[next]) return this.moveTo(notes[next]);
    const more = /** @type {HTMLElement | null} */ (document.querySelector('.more:not([hidden])'));
    if (more && step > 0) {
      more.click();
      return this.step(step);
    }
    if (this.app.route.view !== 'first') this.stepClass(step, true);
  }

  /**
   * @param {1 | -1} step
   * @param {boolean} toConversion whether the class must have a conversion that the filter shows
   */
  stepClass(step, toConversion = false) {
    const { hits, report, route } = this.app;
    // A decision may have taken the present class out of what is shown.
    const present = report.byName.get(route.class)?.order ?? (step > 0 ? -1 : Infinity);
    const isNext = (/** @type {Hit} */ { entry, conversions }) =>
      (entry.order - present) * step > 0 && (!toConversion || conversions.length > 0);
    const next = step > 0 ? hits.find(isNext) : [...hits].reverse().find(isNext);
    if (!next) return this.app.tell(step > 0 ? 'This is the last one.' : 'This is the first one.');
    const change = { class: next.entry.name, conversion: '' };
    this.app.go({ view: 'classes', group: '', ...change }, { isStep: true });
    if (toConversion) this.step(step);
  }

  /** @param {'yes' | 'no'} decision */
  decide(decision) {
    const note = this.current;
    const conversion = note && this.conversionOf(note);
    if (!conversion) return this.step(1);
    if (!conversion.canBeChosen)
      return this.app.tell('This one is left out, and cannot be chosen.');
    this.app.decide([conversion], decision);
    this.step(1);
  }
}

/**
 * @param {App} app
 * @param {Cursor} cursor
 */
export function listenToKeys(app, cursor) {
  /** @type {Record<string, () => void>} */
  const actions = {
    j: () => cursor.step(1),
    k: () => cursor.step(-1),
    n: () => cursor.stepClass(1),
    p: () => cursor.stepClass(-1),
    y: () => cursor.decide('yes'),
    x: () => cursor.decide('no'),
    u: () => app.decisions.undo(),
    s: () => app.changeLayout(),
    '/': () => /** @type {HTMLInputElement} */ (byId('search-text')).select(),
    '?': showHelp,
  };
  addEventListener('keydown', (event) => {
    const target = /** @type {HTMLElement} */ (event.target);
    if (event.ctrlKey || event.metaKey || event.altKey) return;
    if (target.closest('input, select, textarea, dialog')) {
      if (event.key === 'Escape') target.blur();
      return;
    }
    const action = actions[event.key];
    if (!action) return;
    event.preventDefault();
    action();
  });
}
