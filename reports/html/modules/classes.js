// The list of classes, of which only what is on the screen is in the document.
import { addressOf } from './app.js';
import { decisionButtons } from './conversion.js';
import { countDecisions } from './decisions.js';
import { count, digits, fill, h } from './dom.js';
import { emptyFilter, states } from './search.js';
import { className, visible } from './text.js';

/** @typedef {import('./app.js').App} App */
/** @typedef {import('./model.js').ClassEntry} ClassEntry */
/** @typedef {import('./search.js').Filter} Filter */
/** @typedef {import('./search.js').Hit} Hit */

const rowHeight = 50;
const rowsAround = 8;

/**
 * "3 made · 1 left out · 2 findings"
 * @param {ClassEntry} entry
 * @returns {string}
 */
export function contentOf(entry) {
  const made = entry.conversions.filter((each) => each.leftOut === -1).length;
  const left = entry.conversions.length - made;
  return [
    made > 0 && `${digits(made)} made`,
    left > 0 && `${digits(left)} left out`,
    entry.messages.length > 0 && count(entry.messages.length, 'finding'),
  ]
    .filter(Boolean)
    .join(' · ');
}

/**
 * The highest risk of what is made, or otherwise found.
 * @param {App} app
 * @param {ClassEntry} entry
 * @returns {string}
 */
function riskOf(app, entry) {
  const risks = entry.conversions.filter((each) => each.canBeChosen).map((each) => each.risk);
  return risks.length > 0 ? app.report.tables.risks[Math.max(...risks)] : 'left';
}

/**
 * @param {App} app
 * @param {Hit} hit
 * @param {number} index
 * @returns {HTMLElement}
 */
function rowOf(app, hit, index) {
  const { entry } = hit;
  const { open, yes, no } = countDecisions(entry.conversions);
  const total = open + yes + no;
  const isDone = total > 0 && open === 0;
  const row = h(
    'li',
    { 'aria-setsize': app.hits.length, 'aria-posinset': index + 1 },
    h(
      'a',
      {
        href: addressOf({ ...app.route, class: entry.name, conversion: '' }),
        class: isDone ? 'done' : '',
        'aria-current': entry.name === app.route.class ? 'true' : undefined,
      },
      h('span', { class: `dot ${riskOf(app, entry)}`, 'aria-hidden': 'true' }),
      h('span', { class: 'title' }, className(entry.name)),
      h('span', { class: 'content' }, contentOf(entry)),
      total > 0 &&
        h(
          'span',
          { class: 'decided', 'aria-label': `${yes + no} of ${total} decided` },
          isDone ? (no === 0 ? '✓' : yes === 0 ? '✕' : '✓✕') : `${yes + no}/${total}`,
        ),
    ),
  );
  row.style.top = `${index * rowHeight}px`;
  return row;
}

/**
 * @param {App} app
 * @returns {{element: HTMLElement, draw: () => void, reveal: () => void}}
 */
export function classList(app) {
  const list = h('ol', { class: 'rows' });
  const element = h('nav', { class: 'list', 'aria-label': 'Classes' }, list);
  const resize = () => {
    list.style.height = `${app.hits.length * rowHeight}px`;
  };
  const draw = () => {
    resize();
    const first = Math.max(0, Math.floor(element.scrollTop / rowHeight) - rowsAround);
    const size = Math.ceil((element.clientHeight || 800) / rowHeight) + 2 * rowsAround;
    const rows = app.hits.slice(first, first + size);
    fill(
      list,
      rows.map((hit, index) => rowOf(app, hit, first + index)),
    );
  };
  const reveal = () => {
    resize();
    const index = app.hits.findIndex((hit) => hit.entry.name === app.route.class);
    const top = index * rowHeight;
    const isSeen =
      top >= element.scrollTop && top + rowHeight <= element.scrollTop + element.clientHeight;
    if (index >= 0 && !isSeen) element.scrollTop = top - element.clientHeight / 3;
  };
  let isDrawing = false;
  element.addEventListener('scroll', () => {
    if (isDrawing) return;
    isDrawing = true;
    requestAnimationFrame(() => {
      isDrawing = false;
      draw();
    });
  });
  return { element, draw, reveal };
}

/**
 * A menu of the words that a filter can have.
 * @param {App} app
 * @param {keyof Filter} key
 * @param {string} all
 * @param {[string, string][]} choices
 */
function menu(app, key, all, choices) {
  const select = h('select', { 'aria-label': all, name: key }, h('option', { value: '' }, all));
  for (const [value, text] of choices) select.append(h('option', { value }, text));
  select.value = app.route.filter[key];
  select.classList.toggle('active', select.value !== '');
  select.addEventListener('change', () => {
    app.go({ filter: { ...app.route.filter, [key]: select.value } });
  });
  return select;
}

/**
 * The reasons and findings that there are, the most frequent first.
 * @param {App} app
 * @returns {[string, string][]}
 */
export function reasonChoices(app) {
  /** @type {Map<import('./model.js').Reason, number>} */
  const found = new Map();
  const add = (/** @type {import('./model.js').Reason} */ each) =>
    found.set(each, (found.get(each) ?? 0) + 1);
  for (const { leftOut, reasons } of app.report.conversions) {
    reasons.forEach(add);
    if (leftOut !== -1 && !reasons.includes(leftOut)) add(leftOut);
  }
  for (const entry of app.report.classes) entry.messages.forEach(add);
  return [...found]
    .sort(([, left], [, right]) => right - left)
    .map(([reason, number]) => {
      const name = app.report.nameOf(reason);
      return [name, `${name} (${digits(number)})`];
    });
}

/**
 * The menus, and the buttons that decide about all that is shown.
 * @param {App} app
 * @param {[string, string][]} choices of reasons
 * @returns {HTMLElement}
 */
export function filterBar(app, choices) {
  const { filter } = app.route;
  const { kinds, risks } = app.report.tables;
  const same = (/** @type {string[]} */ words) =>
    words.map((word) => /** @type {[string, string]} */ ([word, word]));
  const shown = app.hits.flatMap((hit) => hit.conversions);
  const conversions = () => shown;
  return h(
    'div',
    { class: 'filter', role: 'group', 'aria-label': 'Filter' },
    menu(app, 'risk', 'Any risk', same(risks)),
    menu(app, 'kind', 'Any kind', same(kinds)),
    menu(app, 'reason', 'Any reason', choices),
    menu(app, 'state', 'Any state', Object.entries(states)),
    filter.package !== '' &&
      h(
        'button',
        {
          type: 'button',
          class: 'chip',
          'aria-label': `All packages, and not only ${visible(filter.package)}`,
          click: () => app.go({ filter: { ...filter, package: '' } }),
        },
        `${visible(filter.package)} ✕`,
      ),
    app.isFiltered &&
      h(
        'button',
        { type: 'button', class: 'quiet', click: () => app.go({ filter: emptyFilter() }) },
        'Show all',
      ),
    h(
      'span',
      { class: 'shown', role: 'status' },
      `${count(shown.length, 'conversion')} in ${count(app.hits.length, 'class', 'classes')}`,
    ),
    decisionButtons(app, conversions, `all of the ${count(shown.length, 'conversion')} shown`),
  );
}
