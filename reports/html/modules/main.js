// Shows the view that the address names.
import { addressOf, App } from './app.js';
import { classList, filterBar, reasonChoices } from './classes.js';
import { classPage } from './classpage.js';
import { Decisions } from './decisions.js';
import { byId, digits, fill, h } from './dom.js';
import { Cursor, listenToKeys, showHelp } from './keys.js';
import { Report } from './model.js';
import { failureList, overview } from './overview.js';
import { conversionsToReview, groupSummary, reviewPage } from './review.js';
import { showProgress } from './saving.js';
import { emptyFilter } from './search.js';
import { visible } from './text.js';

/** @typedef {import('./app.js').Route} Route */

/**
 * @param {App} app
 * @param {{first: number, classes: number}} numbers
 */
function showViews(app, numbers) {
  const link = (
    /** @type {import('./app.js').ViewName} */ view,
    /** @type {string} */ text,
    /** @type {number} */ number,
  ) =>
    h(
      'a',
      {
        href: addressOf({ view, filter: emptyFilter() }),
        'aria-current': app.route.view === view ? 'page' : undefined,
      },
      text,
      number > 0 && h('span', { class: 'number' }, digits(number)),
    );
  fill(
    byId('views'),
    link('overview', 'Overview', 0),
    link('first', 'Look first', numbers.first),
    link('classes', 'Classes', numbers.classes),
    h('button', { type: 'button', class: 'quiet', 'aria-label': 'Keys', click: showHelp }, '?'),
  );
}

/** The view of classes: the list stays when another class is shown. */
class ClassesView {
  /**
   * @param {App} app
   * @param {Cursor} cursor
   */
  constructor(app, cursor) {
    this.app = app;
    this.cursor = cursor;
    this.list = classList(app);
    this.reasons = reasonChoices(app);
    this.bar = h('div', {});
    this.page = h('div', { class: 'page' });
    this.element = h('div', { class: 'classes' }, this.bar, this.list.element, this.page);
  }

  show() {
    const { app } = this;
    if (app.route.class === '' && !app.isNarrow && app.hits.length > 0) {
      app.route.class = app.hits[0].entry.name;
    }
    this.element.classList.toggle('has-class', app.route.class !== '');
    fill(this.bar, filterBar(app, this.reasons));
    this.list.reveal();
    app.refreshing(() => this.list.draw());
    const entry = app.report.byName.get(app.route.class);
    fill(this.page, this.back(), entry ? classPage(app, entry) : this.nothing());
    this.page.scrollTop = 0;
    this.moveToConversion();
  }

  back() {
    const href = addressOf({ ...this.app.route, class: '', conversion: '' });
    return h('a', { class: 'back', href }, '← All classes');
  }

  nothing() {
    const { class: name, filter } = this.app.route;
    const { failures, undecided, skipped } = this.app.report;
    const wanted = (name || filter.text).toLowerCase();
    const others = [...failures, ...undecided, ...skipped].filter((each) =>
      each.name.toLowerCase().includes(wanted),
    );
    const text = name === '' ? 'Nothing matches.' : `Nothing is to be shown of ${visible(name)}.`;
    const list = wanted !== '' && failureList('Failed, undecided or skipped', 'failed', others);
    return h('div', {}, h('p', { class: 'loading' }, text), list);
  }

  moveToConversion() {
    const { class: name, conversion } = this.app.route;
    if (conversion === '') return;
    const entry = this.app.report.byName.get(name);
    const found = entry?.conversions.find((each) => this.app.report.partOf(each) === conversion);
    const notes = this.cursor.notes;
    this.cursor.moveTo(notes.find((note) => note.dataset.conversion === String(found?.index)));
  }
}

/** @param {App} app */
function listenToSearch(app) {
  const form = /** @type {HTMLFormElement} */ (byId('search'));
  const input = /** @type {HTMLInputElement} */ (byId('search-text'));
  let timer = 0;
  const search = () => {
    clearTimeout(timer);
    const filter = { ...app.route.filter, text: input.value.trim() };
    app.go({ view: 'classes', class: '', conversion: '', group: '', filter }, { isStep: true });
  };
  input.addEventListener('input', () => {
    clearTimeout(timer);
    timer = setTimeout(search, 20);
  });
  form.addEventListener('submit', (event) => {
    event.preventDefault();
    search();
    input.blur();
  });
}

/**
 * Whether a page that scrolls as a whole begins at its top again.
 * @param {Route} before
 * @param {Route} route
 */
function isOtherPlace(before, route) {
  if (route.conversion !== '') return false;
  return ['view', 'class', 'group'].some(
    (key) => before[/** @type {'view'} */ (key)] !== route[/** @type {'view'} */ (key)],
  );
}

function start() {
  const report = new Report();
  const app = new App(report, new Decisions(report));
  const cursor = new Cursor(app);
  const main = byId('main');
  const input = /** @type {HTMLInputElement} */ (byId('search-text'));
  const numbers = {
    first: conversionsToReview(app).length,
    classes: report.classes.filter((each) => each.details !== '').length,
  };
  /** @type {ClassesView | undefined} */
  let classes;
  app.show = (before) => {
    app.refreshers = [];
    const { view, filter } = app.route;
    if (document.activeElement !== input) input.value = filter.text;
    showViews(app, numbers);
    main.dataset.view = view;
    if (view === 'classes') {
      classes ??= new ClassesView(app, cursor);
      if (!main.contains(classes.element)) fill(main, classes.element);
      classes.show();
    } else {
      fill(main, view === 'first' ? reviewPage(app) : overview(app, groupSummary(app)));
    }
    if (before && isOtherPlace(before, app.route)) scrollTo(0, 0);
  };
  showProgress(app);
  listenToSearch(app);
  listenToKeys(app, cursor);
  app.show(undefined);
}

start();
