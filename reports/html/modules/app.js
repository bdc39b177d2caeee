// What the views share: the data, the decisions, and what is shown.
import { byId, digits, fill, h } from './dom.js';
import { countDecisions } from './decisions.js';
import { emptyFilter, filterKeys, isEmpty, search } from './search.js';

/** @typedef {import('./decisions.js').Decisions} Decisions */
/** @typedef {import('./diff.js').Layout} Layout */
/** @typedef {import('./model.js').Conversion} Conversion */
/** @typedef {import('./model.js').Decision} Decision */
/** @typedef {import('./model.js').Report} Report */
/** @typedef {import('./search.js').Filter} Filter */
/** @typedef {import('./search.js').Hit} Hit */
/** @typedef {'overview' | 'first' | 'classes'} ViewName */
/**
 * What the address names. The conversion is its id within the class, the group a reason.
 * @typedef {object} Route
 * @property {ViewName} view
 * @property {string} class
 * @property {string} conversion
 * @property {string} group
 * @property {Filter} filter
 */

/** @type {('class' | 'conversion' | 'group')[]} */
const placeKeys = ['class', 'conversion', 'group'];
const narrow = matchMedia('(max-width: 60rem)');

/** @returns {Route} */
function routeOfAddress() {
  const values = new URLSearchParams(location.hash.slice(1));
  const view = values.get('view');
  const filter = emptyFilter();
  for (const key of filterKeys) filter[key] = values.get(key) ?? '';
  return {
    view: view === 'first' || view === 'classes' ? view : 'overview',
    class: values.get('class') ?? '',
    conversion: values.get('conversion') ?? '',
    group: values.get('group') ?? '',
    filter,
  };
}

/**
 * @param {Partial<Route>} route
 * @returns {string}
 */
export function addressOf(route) {
  const values = new URLSearchParams({ view: route.view ?? 'overview' });
  for (const key of placeKeys) if (route[key]) values.set(key, route[key]);
  for (const key of filterKeys) if (route.filter?.[key]) values.set(key, route.filter[key]);
  return `#${values}`;
}

export class App {
  /**
   * @param {Report} report
   * @param {Decisions} decisions
   */
  constructor(report, decisions) {
    this.report = report;
    this.decisions = decisions;
    this.route = routeOfAddress();
    /** @type {Hit[] | undefined} */
    this.foundHits = undefined;
    /** Called after each decision, until another view is shown. @type {(() => void)[]} */
    this.refreshers = [];
    /** Shows the route. @type {(before: Route | undefined) => void} */
    this.show = () => {};
    this.chosenLayout = '';
    decisions.onChange(() => {
      if (this.route.filter.state !== '') this.foundHits = undefined;
      for (const refresh of this.refreshers) refresh();
    });
    addEventListener('hashchange', () => this.take(routeOfAddress()));
    narrow.addEventListener('change', () => this.show(undefined));
  }

  /** The hits of the filter, computed once. */
  get hits() {
    this.foundHits ??= search(this.report, this.route.filter);
    return this.foundHits;
  }

  /** @param {Route} route */
  take(route) {
    const before = this.route;
    this.route = route;
    if (addressOf({ filter: before.filter }) !== addressOf({ filter: route.filter })) {
      this.foundHits = undefined;
    }
    this.show(before);
  }

  /**
   * Shows another place; what is not given stays. A step, such as to the next conversion, is none
   * to which the browser should go back.
   * @param {Partial<Route>} change
   * @param {{isStep?: boolean}} [how]
   */
  go(change, { isStep = false } = {}) {
    const route = { ...this.route, ...change };
    const address = addressOf(route);
    if (address === location.hash) return;
    if (isStep) history.replaceState(null, '', address);
    else history.pushState(null, '', address);
    this.take(route);
  }

  /**
   * Puts the conversion that is looked at into the address.
   * @param {string} conversion
   */
  nameConversion(conversion) {
    this.route.conversion = conversion;
    history.replaceState(null, '', addressOf(this.route));
  }

  /** @param {() => void} refresh to be called now and after each decision */
  refreshing(refresh) {
    this.refreshers.push(refresh);
    refresh();
  }

  /**
   * Decides, and offers to take it back if it was about several.
   * @param {Conversion[]} conversions
   * @param {Decision} decision
   */
  decide(conversions, decision) {
    const changed = this.decisions.decide(conversions, decision);
    const words = { yes: 'accepted', no: 'rejected', open: 'open again' };
    if (changed > 1) {
      const text = `${digits(changed)} conversions ${words[decision]}.`;
      this.tell(text, 'Undo', () => this.decisions.undo());
    } else {
      this.tell('');
    }
  }

  /**
   * @param {string} text
   * @param {string} [label]
   * @param {() => void} [action]
   */
  tell(text, label, action) {
    const button =
      action &&
      h(
        'button',
        {
          type: 'button',
          click: () => {
            this.tell('');
            action();
          },
        },
        label,
      );
    fill(byId('toast'), text && h('div', {}, h('span', {}, text), button));
  }

  changeLayout() {
    this.chosenLayout = this.layout === 'split' ? 'unified' : 'split';
    this.show(undefined);
  }

  /** @returns {Layout} */
  get layout() {
    if (narrow.matches) return 'unified';
    return this.chosenLayout === 'unified' ? 'unified' : 'split';
  }

  get isNarrow() {
    return narrow.matches;
  }

  get isFiltered() {
    return !isEmpty(this.route.filter);
  }

  get counts() {
    return countDecisions(this.report.conversions);
  }
}
