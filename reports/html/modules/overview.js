// What the run found, made and left out, by risk, kind, reason and package.
import { addressOf } from './app.js';
import { decidedText, decisionButtons } from './conversion.js';
import { bar, count, digits, h } from './dom.js';
import { stateBits } from './model.js';
import { emptyFilter } from './search.js';
import { className, prose, visible, wrappable } from './text.js';

/** @typedef {import('./app.js').App} App */
/** @typedef {import('./dom.js').Child} Child */
/** @typedef {import('./model.js').ClassEntry} ClassEntry */
/** @typedef {import('./model.js').Conversion} Conversion */
/** @typedef {import('./model.js').Failure} Failure */
/** @typedef {import('./model.js').Reason} Reason */
/** @typedef {import('./search.js').Filter} Filter */

/** The packages below which others are shown only when they are opened. */
const deepestOpen = 1;
const mostFailures = 50;

/**
 * @param {Partial<Filter>} filter
 * @returns {string}
 */
export function linkToClasses(filter) {
  return addressOf({ view: 'classes', filter: { ...emptyFilter(), ...filter } });
}

/**
 * @template Key
 * @param {Conversion[]} conversions
 * @param {(conversion: Conversion) => Key[]} keysOf
 * @returns {Map<Key, Conversion[]>}
 */
export function groupBy(conversions, keysOf) {
  /** @type {Map<Key, Conversion[]>} */
  const groups = new Map();
  for (const each of conversions) {
    for (const key of keysOf(each)) {
      const group = groups.get(key);
      if (group) group.push(each);
      else groups.set(key, [each]);
    }
  }
  return groups;
}

/** @param {Conversion} each */
const isMade = (each) => each.leftOut === -1;

/** The columns that a small screen has no room for, by their heads. */
const wideColumns = ['', 'Found', 'Classes', 'Decided'];

/**
 * @param {string[]} heads
 * @param {HTMLElement[]} rows
 */
function tableOf(heads, rows) {
  const headOf = (/** @type {string} */ head) =>
    h('th', { scope: 'col', class: wideColumns.includes(head) && 'wide' }, head);
  const body = h('tbody', {}, rows);
  return h('table', { class: 'numbers' }, h('thead', {}, h('tr', {}, heads.map(headOf))), body);
}

/**
 * @param {number} number
 * @param {string} [width]
 */
function cell(number, width = '') {
  return h('td', { class: `figure ${number === 0 ? 'zero' : ''} ${width}` }, digits(number));
}

/**
 * @param {string} title
 * @param {string} id
 * @param {...(Child | Child[])} children
 */
function section(title, id, ...children) {
  return h(
    'section',
    { class: `card ${id}`, 'aria-labelledby': `title-${id}` },
    h('h2', { id: `title-${id}` }, title),
    children.flat(),
  );
}

/** @param {App} app */
function headline(app) {
  const { report } = app;
  const changed = report.classes.filter((each) => each.state & stateBits.changed).length;
  const refused = report.classes.filter((each) => each.state & stateBits.refused).length;
  const uncommitted = report.classes.filter((each) => each.state & stateBits.uncommitted).length;
  const made = report.conversions.filter(isMade).length;
  const findings = report.classes.reduce((sum, each) => sum + each.messages.length, 0);
  const tile = (/** @type {number} */ number, /** @type {string} */ text, state = '', href = '') =>
    h(
      href === '' ? 'div' : 'a',
      { class: `tile ${number === 0 ? '' : state}`, href: href || undefined },
      h('b', {}, digits(number)),
      h('span', {}, text),
    );
  const would = report.tables.isWritten ? 'changed' : 'would change';
  return h(
    'div',
    { class: 'tiles' },
    tile(report.classes.length, 'classes looked at'),
    tile(changed, would),
    tile(
      made,
      report.tables.isWritten ? 'conversions made' : 'conversions to make',
      'made',
      linkToClasses({ state: 'made' }),
    ),
    tile(report.conversions.length - made, 'left out', 'left', linkToClasses({ state: 'left' })),
    tile(findings, 'findings'),
    refused > 0 && tile(refused, 'refused', 'failed'),
    tile(report.failures.length + report.undecided.length, 'failed or undecided', 'failed'),
    uncommitted > 0 && tile(uncommitted, 'with changes not committed', 'left'),
  );
}

/** @param {App} app */
function riskTable(app) {
  const { report } = app;
  /** @type {Map<string, {filter: Partial<Filter>, text: string, list: Conversion[]}>} */
  const rows = new Map();
  report.tables.risks.forEach((risk, number) => {
    const own = report.conversions.filter((each) => each.risk === number && each.canBeChosen);
    const made = own.filter(isMade);
    const left = own.filter((each) => !isMade(each));
    if (made.length > 0 || number < 2) {
      rows.set(risk, { filter: { risk, state: 'made' }, text: risk, list: made });
    }
    if (left.length > 0) {
      const text = `${risk}, left out`;
      rows.set(text, { filter: { risk, state: 'left' }, text, list: left });
    }
  });
  const total = report.conversions.length;
  return tableOf(
    ['Risk', 'Conversions', '', 'Decided', 'Decision'],
    [...rows.values()].map(({ filter, text, list }) =>
      h(
        'tr',
        {},
        h(
          'th',
          { scope: 'row' },
          h(
            'a',
            { href: linkToClasses(filter) },
            h('span', { class: `badge ${filter.risk}` }, filter.risk),
            text.slice(filter.risk?.length),
          ),
        ),
        cell(list.length),
        h(
          'td',
          { class: 'chart wide' },
          bar([{ name: String(filter.risk), size: list.length }], total),
        ),
        h(
          'td',
          { class: 'figure' },
          decidedText(app, () => list),
        ),
        h(
          'td',
          {},
          decisionButtons(app, () => list, `all that are ${text}`),
        ),
      ),
    ),
  );
}

/** @param {App} app */
function kindTable(app) {
  const { report } = app;
  const groups = groupBy(report.conversions, (each) => [each.kind]);
  const most = Math.max(0, ...[...groups.values()].map((each) => each.length));
  const rows = [...groups].sort(([, left], [, right]) => right.length - left.length);
  return tableOf(
    ['Kind', 'Found', 'Made', 'Left out', '', 'Decided', 'Decision'],
    rows.map(([kind, list]) => {
      const name = report.tables.kinds[kind];
      const made = list.filter(isMade);
      return h(
        'tr',
        {},
        h('th', { scope: 'row' }, h('a', { href: linkToClasses({ kind: name }) }, name)),
        cell(list.length, 'wide'),
        cell(made.length),
        cell(list.length - made.length),
        h(
          'td',
          { class: 'chart wide' },
          bar(
            [
              { name: 'made', size: made.length },
              { name: 'left', size: list.length - made.length },
            ],
            most,
          ),
        ),
        h(
          'td',
          { class: 'figure' },
          decidedText(app, () => made),
        ),
        h(
          'td',
          {},
          decisionButtons(app, () => made, `all ${name} that are made`),
        ),
      );
    }),
  );
}

/**
 * @param {App} app
 * @param {Map<Reason, number>} groups
 * @param {string} head
 */
function reasonTable(app, groups, head) {
  const most = Math.max(0, ...groups.values());
  const rows = [...groups].sort(([, left], [, right]) => right - left);
  return tableOf(
    [head, 'Number', ''],
    rows.map(([reason, number]) => {
      const name = app.report.nameOf(reason);
      return h(
        'tr',
        {},
        h(
          'th',
          { scope: 'row' },
          h('a', { href: linkToClasses({ reason: name }) }, wrappable(name)),
          h('span', { class: 'meaning' }, prose(app.report.titleOf(reason))),
        ),
        cell(number),
        h('td', { class: 'chart wide' }, bar([{ name: 'left', size: number }], most)),
      );
    }),
  );
}

/** @param {App} app */
function leftOutTable(app) {
  /** @type {Map<Reason, number>} */
  const groups = new Map();
  for (const { leftOut } of app.report.conversions) {
    if (leftOut !== -1) groups.set(leftOut, (groups.get(leftOut) ?? 0) + 1);
  }
  return (
    groups.size > 0 &&
    section('Left out, by reason', 'left-out', reasonTable(app, groups, 'Reason'))
  );
}

/** @param {App} app */
function findingTable(app) {
  /** @type {Map<Reason, number>} */
  const groups = new Map();
  for (const { messages } of app.report.classes) {
    for (const each of messages) groups.set(each, (groups.get(each) ?? 0) + 1);
  }
  return groups.size > 0 && section('Findings', 'findings', reasonTable(app, groups, 'Finding'));
}

/**
 * A package with what is in it and in the packages below it.
 * @typedef {object} Package
 * @property {string} name
 * @property {Map<string, Package>} below
 * @property {number} classes
 * @property {number} failed
 * @property {Conversion[]} conversions
 */

/**
 * @param {string} name
 * @returns {Package}
 */
function emptyPackage(name) {
  return { name, below: new Map(), classes: 0, failed: 0, conversions: [] };
}

/**
 * The package itself and those around it, the outermost first.
 * @param {Package} root
 * @param {string} className
 */
function packagesAround(root, className) {
  const around = [root];
  const parts = className.split('.').slice(0, -1);
  parts.forEach((part, index) => {
    const { below } = around[around.length - 1];
    const next = below.get(part) ?? emptyPackage(parts.slice(0, index + 1).join('.'));
    below.set(part, next);
    around.push(next);
  });
  return around;
}

/** @param {App} app */
function packageTree(app) {
  const root = emptyPackage('');
  // The classes of a package follow each other.
  let around = [root];
  let present = '';
  for (const entry of app.report.classes) {
    if (entry.package !== present) around = packagesAround(root, entry.name);
    present = entry.package;
    for (const each of around) {
      ++each.classes;
      for (const conversion of entry.conversions) each.conversions.push(conversion);
    }
  }
  for (const failure of [...app.report.failures, ...app.report.undecided]) {
    if (failure.name.includes('/')) continue;
    for (const each of packagesAround(root, failure.name)) ++each.failed;
  }
  return root;
}

/**
 * @param {App} app
 * @param {Package} branch
 * @param {number} depth
 * @param {number} most
 * @param {HTMLElement} body
 * @returns {HTMLElement[]} the rows that it added
 */
function addPackageRows(app, branch, depth, most, body) {
  const made = branch.conversions.filter(isMade);
  const left = branch.conversions.length - made.length;
  const names = branch.name.split('.');
  const text = branch.name === '' ? 'all packages' : names[names.length - 1];
  const isOpen = depth < deepestOpen;
  const toggle = h(
    'button',
    {
      type: 'button',
      class: 'toggle',
      'aria-label': `Packages in ${visible(text)}`,
      'aria-expanded': String(isOpen),
    },
    '›',
  );
  const link = h('a', { href: linkToClasses({ package: branch.name }) }, visible(text));
  const head = h(
    'th',
    { scope: 'row', class: `depth-${Math.min(depth, 8)}` },
    branch.below.size > 0 ? toggle : h('span', { class: 'toggle' }),
    link,
  );
  const row = h(
    'tr',
    {},
    head,
    cell(branch.classes, 'wide'),
    cell(made.length),
    cell(left),
    cell(branch.failed),
    h(
      'td',
      { class: 'chart wide' },
      bar(
        [
          { name: 'made', size: made.length },
          { name: 'left', size: left },
          { name: 'failed', size: branch.failed },
        ],
        most,
      ),
    ),
    h(
      'td',
      { class: 'figure' },
      decidedText(app, () => made),
    ),
    h(
      'td',
      {},
      decisionButtons(app, () => made, `all that are made in ${visible(text)}`),
    ),
  );
  body.append(row);
  const branches = [...branch.below.values()].sort((a, b) => (a.name < b.name ? -1 : 1));
  /** @type {HTMLElement[]} */
  let below = [];
  const open = () => {
    const rest = h('tbody', {});
    below = branches.flatMap((each) => addPackageRows(app, each, depth + 1, most, rest));
    row.after(...below);
  };
  if (isOpen) open();
  toggle.addEventListener('click', () => {
    const wasOpen = toggle.getAttribute('aria-expanded') === 'true';
    toggle.setAttribute('aria-expanded', String(!wasOpen));
    if (below.length === 0) open();
    else for (const each of below) each.hidden = wasOpen;
  });
  return [row, ...below];
}

/** @param {App} app */
function packageTable(app) {
  const root = packageTree(app);
  const most = root.conversions.length + root.failed;
  const biggest = Math.max(1, ...[...root.below.values()].map((each) => each.conversions.length));
  const table = tableOf(
    ['Package', 'Classes', 'Made', 'Left out', 'Failed', '', 'Decided', 'Decision'],
    [],
  );
  const body = /** @type {HTMLElement} */ (table.lastElementChild);
  addPackageRows(app, root, 0, root.below.size > 0 ? Math.min(most, 2 * biggest) : most, body);
  return table;
}

/**
 * @param {string} title
 * @param {string} id
 * @param {Failure[]} failures
 */
export function failureList(title, id, failures) {
  if (failures.length === 0) return null;
  const itemOf = (/** @type {Failure} */ each) =>
    h(
      'li',
      {},
      h('strong', {}, className(each.name)),
      h('span', {}, ' ', visible(each.text)),
      each.places.map(({ line, column, text }) =>
        h('div', { class: 'place' }, `${line}:${column} `, prose(text)),
      ),
      each.hints.map((hint) => h('div', { class: 'place' }, prose(hint))),
    );
  const list = h('ul', { class: 'failures' }, failures.slice(0, mostFailures).map(itemOf));
  const rest = failures.slice(mostFailures);
  const more = h('button', { type: 'button', class: 'quiet' }, `Show ${digits(rest.length)} more`);
  more.addEventListener('click', () => {
    for (const each of rest) list.append(itemOf(each));
    more.remove();
  });
  return h(
    'details',
    { class: `card ${id}` },
    h(
      'summary',
      {},
      h('h2', {}, title),
      ' ',
      h('span', { class: 'quiet' }, count(failures.length, 'class', 'classes')),
    ),
    list,
    rest.length > 0 && more,
  );
}

/**
 * @param {App} app
 * @param {HTMLElement | null} first the groups to look at first
 * @returns {HTMLElement}
 */
export function overview(app, first) {
  const { failures, undecided, skipped } = app.report;
  return h(
    'div',
    { class: 'overview' },
    headline(app),
    first,
    h('div', { class: 'column' }, section('By risk', 'risks', riskTable(app)), leftOutTable(app)),
    h('div', { class: 'column' }, section('By kind', 'kinds', kindTable(app)), findingTable(app)),
    section('By package', 'packages', packageTable(app)),
    failureList('Failed', 'failed', failures),
    failureList('Undecided', 'undecided', undecided),
    failureList('Skipped: no System objects', 'skipped', skipped),
  );
}
