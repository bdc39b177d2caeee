// "Look at these first": what a person should not accept unseen, grouped by the reason.
import { addressOf } from './app.js';
import { conversionNote, decidedText, decisionButtons } from './conversion.js';
import { count, h } from './dom.js';
import { explanation } from './explanations.js';
import { linesOfConversion } from './classpage.js';
import { groupBy, linkToClasses } from './overview.js';
import { className, prose } from './text.js';

/** @typedef {import('./app.js').App} App */
/** @typedef {import('./model.js').Conversion} Conversion */
/** @typedef {import('./model.js').Reason} Reason */
/**
 * Conversions with the same reason: all that are made, or those that are left out mainly for it.
 * @typedef {{reason: Reason, name: string, risk: number, isMade: boolean, conversions: Conversion[]}} Group
 */

const mostAtOnce = 10;

/**
 * The conversions that are not safe.
 * @param {App} app
 * @returns {Conversion[]}
 */
export function conversionsToReview(app) {
  return app.report.conversions.filter(
    (each) => each.reasons.length > 0 && (each.canBeChosen || each.leftOut === -1),
  );
}

/**
 * What is made comes before what is left out: it is what a person answers for.
 * @param {App} app
 * @returns {Group[]}
 */
export function groupsToReview(app) {
  const risky = conversionsToReview(app);
  const groupsOf = (/** @type {boolean} */ isMade) => {
    const own = risky.filter((each) => (each.leftOut === -1) === isMade);
    const reasonsOf = (/** @type {Conversion} */ { reasons }) =>
      isMade ? [...new Set(reasons)] : reasons.slice(0, 1);
    return [...groupBy(own, reasonsOf)].map(([reason, conversions]) => ({
      reason,
      name: `${isMade ? 'made' : 'left'}:${app.report.nameOf(reason)}`,
      risk: Math.min(...conversions.map((each) => each.risk)),
      isMade,
      conversions,
    }));
  };
  const inOrder = (/** @type {Group} */ left, /** @type {Group} */ right) =>
    right.risk - left.risk || right.conversions.length - left.conversions.length;
  return [...groupsOf(true).sort(inOrder), ...groupsOf(false).sort(inOrder)];
}

/**
 * @param {App} app
 * @param {Group} group
 * @returns {HTMLElement}
 */
function groupHead(app, group) {
  const { conversions, reason, risk } = group;
  const words = `${count(conversions.length, 'conversion')}${group.isMade ? '' : ', left out'}`;
  return h(
    'div',
    { class: 'group-head' },
    h('span', { class: `badge ${app.report.tables.risks[risk]}` }, app.report.tables.risks[risk]),
    h(
      'a',
      { class: 'group-title', href: addressOf({ view: 'first', group: group.name }) },
      prose(app.report.titleOf(reason)),
    ),
    h('span', { class: 'quiet' }, words),
    h(
      'span',
      { class: 'state' },
      h(
        'span',
        {},
        decidedText(app, () => conversions),
        ' decided',
      ),
      decisionButtons(app, () => conversions, `all ${words}: ${app.report.nameOf(reason)}`),
    ),
  );
}

/**
 * The groups without their conversions, for the overview.
 * @param {App} app
 * @returns {HTMLElement | null}
 */
export function groupSummary(app) {
  const groups = groupsToReview(app);
  if (groups.length === 0) return null;
  return h(
    'section',
    { class: 'card first', 'aria-labelledby': 'title-first' },
    h('h2', { id: 'title-first' }, 'Look at these first'),
    groups.map((group) => groupHead(app, group)),
  );
}

/**
 * @param {App} app
 * @param {Group} group
 * @param {Conversion} conversion
 */
function itemOf(app, group, conversion) {
  const { texts, element } = linesOfConversion(app, conversion);
  const href = addressOf({
    view: 'classes',
    class: conversion.owner.name,
    conversion: app.report.partOf(conversion),
  });
  const title = [h('a', { class: 'title', href }, className(conversion.owner.name))];
  const note = conversionNote(app, conversion, { texts, known: [group.reason], title });
  note.append(element);
  return note;
}

/**
 * @param {App} app
 * @param {Group} group
 */
function openGroup(app, group) {
  const items = h('div', { class: 'items' });
  let shown = 0;
  const more = h('button', { type: 'button', class: 'more' });
  const showMore = () => {
    const next = group.conversions.slice(shown, shown + mostAtOnce);
    for (const each of next) items.append(itemOf(app, group, each));
    shown += next.length;
    more.hidden = shown >= group.conversions.length;
    more.textContent = `Show ${Math.min(mostAtOnce, group.conversions.length - shown)} more of ${group.conversions.length - shown}`;
  };
  more.addEventListener('click', showMore);
  showMore();
  return h(
    'section',
    { class: 'card group', 'aria-label': app.report.nameOf(group.reason) },
    groupHead(app, group),
    explanation(app.report.messageOf(group.reason)),
    items,
    h(
      'p',
      { class: 'group-end' },
      more,
      h(
        'a',
        {
          href: linkToClasses({
            reason: app.report.nameOf(group.reason),
            state: group.isMade ? 'made' : 'left',
          }),
        },
        'Go through them class by class',
      ),
    ),
  );
}

/**
 * All groups as a menu, and one of them with its conversions.
 * @param {App} app
 * @returns {HTMLElement}
 */
export function reviewPage(app) {
  const groups = groupsToReview(app);
  if (groups.length === 0) {
    return h(
      'p',
      { class: 'loading' },
      'All conversions are safe: there is nothing to look at first.',
    );
  }
  const open = groups.find((each) => each.name === app.route.group) ?? groups[0];
  return h(
    'div',
    { class: 'first-page' },
    h(
      'nav',
      { class: 'groups', 'aria-label': 'Reasons' },
      groups.map((group) =>
        h(
          'a',
          {
            href: addressOf({ view: 'first', group: group.name }),
            'aria-current': group === open ? 'true' : undefined,
          },
          h('span', { class: `dot ${app.report.tables.risks[group.risk]}`, 'aria-hidden': 'true' }),
          h('span', { class: 'title' }, app.report.nameOf(group.reason)),
          h(
            'span',
            { class: 'content' },
            `${count(group.conversions.length, 'conversion')}${group.isMade ? '' : ', left out'}`,
          ),
        ),
      ),
    ),
    openGroup(app, open),
  );
}
