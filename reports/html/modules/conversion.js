// One conversion, or several, with the buttons that decide about them.
import { addressOf } from './app.js';
import { countDecisions } from './decisions.js';
import { digits, h } from './dom.js';
import { foldedExplanation } from './explanations.js';
import { visible } from './text.js';

/** @typedef {import('./app.js').App} App */
/** @typedef {import('./dom.js').Child} Child */
/** @typedef {import('./model.js').Conversion} Conversion */
/** @typedef {import('./model.js').Decision} Decision */
/** @typedef {import('./model.js').Reason} Reason */

const verbs = { yes: 'Accept', no: 'Reject' };
const signs = { yes: '✓', no: '✕' };

/**
 * Two buttons that decide about all of these. A second press takes the decision back.
 * @param {App} app
 * @param {() => Conversion[]} conversionsOf
 * @param {string} label what they are, for those who do not see it; several begin with "all"
 * @returns {HTMLElement | null} nothing, if nothing can be decided
 */
export function decisionButtons(app, conversionsOf, label) {
  if (!conversionsOf().some((each) => each.canBeChosen)) return null;
  const isOfSeveral = label.startsWith('all ');
  const button = (/** @type {'yes' | 'no'} */ decision) => {
    const element = h(
      'button',
      { type: 'button', class: `decide ${decision}`, 'aria-label': `${verbs[decision]} ${label}` },
      h('span', { 'aria-hidden': 'true' }, signs[decision]),
      h('span', { class: 'verb' }, ` ${verbs[decision]}${isOfSeveral ? ' all' : ''}`),
    );
    const isDone = () =>
      conversionsOf().every((each) => each.decision === decision || !each.canBeChosen);
    element.addEventListener('click', (event) => {
      event.preventDefault();
      app.decide(conversionsOf(), isDone() ? 'open' : decision);
    });
    app.refreshing(() => element.setAttribute('aria-pressed', String(isDone())));
    return element;
  };
  const group = { class: 'decisions', role: 'group', 'aria-label': `Decision about ${label}` };
  return h('span', group, button('yes'), button('no'));
}

/**
 * "12 of 40", kept up to date.
 * @param {App} app
 * @param {() => Conversion[]} conversionsOf
 * @returns {HTMLElement}
 */
export function decidedText(app, conversionsOf) {
  const element = h('span', { class: 'decided' });
  app.refreshing(() => {
    const { open, yes, no } = countDecisions(conversionsOf());
    const total = open + yes + no;
    element.textContent = total === 0 ? '' : `${digits(yes + no)} of ${digits(total)}`;
  });
  return element;
}

/**
 * @param {App} app
 * @param {Conversion} conversion
 * @returns {HTMLElement}
 */
export function riskBadge(app, conversion) {
  const isLeftOut = conversion.leftOut !== -1;
  const risk = app.report.tables.risks[conversion.risk];
  const name = isLeftOut && !conversion.reasons.includes(conversion.leftOut) ? 'left' : risk;
  return h('span', { class: `badge ${name}` }, name === 'left' ? 'left out' : risk);
}

/**
 * The kind and the subject: "impl/rename f → g".
 * @param {App} app
 * @param {Conversion} conversion
 * @returns {Child[]}
 */
export function subjectOf(app, conversion) {
  const { member, newName } = conversion;
  return [
    h('span', { class: 'kind' }, app.report.tables.kinds[conversion.kind]),
    member !== '' && h('code', { class: 'member' }, visible(member)),
    newName !== '' && ' → ',
    newName !== '' && h('code', { class: 'member' }, visible(newName)),
  ];
}

/**
 * @param {App} app
 * @param {Conversion} conversion
 * @returns {string}
 */
export function labelOf(app, conversion) {
  return visible(app.report.partOf(conversion));
}

/**
 * @param {App} app
 * @param {Conversion} conversion
 * @returns {string}
 */
export function linkTo(app, conversion) {
  const part = app.report.partOf(conversion);
  return addressOf({ view: 'classes', class: conversion.owner.name, conversion: part });
}

/**
 * The reasons for its risk, and for leaving it out.
 * @param {App} app
 * @param {Conversion} conversion
 * @param {string[]} texts
 * @param {Reason[]} known whose meaning is shown elsewhere
 * @returns {HTMLElement[]}
 */
function reasonsOf(app, conversion, texts, known) {
  const { leftOut, reasons } = conversion;
  const isOwnReason = leftOut !== -1 && !reasons.includes(leftOut);
  const all = isOwnReason ? [leftOut, ...reasons] : reasons;
  return all.map((reason, index) => {
    const message = app.report.messageOf(reason);
    const line = [
      reason === leftOut && h('strong', {}, 'Left out: '),
      visible(texts[index] || message.text),
      ' ',
      h('span', { class: 'id' }, app.report.nameOf(reason)),
    ];
    return known.includes(reason) ? h('p', {}, line) : foldedExplanation(message, ...line);
  });
}

/**
 * A conversion with its risk, its reasons and its buttons.
 * @param {App} app
 * @param {Conversion} conversion
 * @param {{texts: string[], known?: Reason[], title?: Child[]}} options
 * @returns {HTMLElement}
 */
export function conversionNote(app, conversion, { texts, known = [], title = [] }) {
  const label = labelOf(app, conversion);
  const element = h(
    'article',
    {
      class: 'note conversion',
      tabindex: -1,
      'aria-label': label,
      'data-class': conversion.owner.name,
      'data-conversion': conversion.index,
    },
    h(
      'header',
      {},
      riskBadge(app, conversion),
      title,
      h('span', { class: 'subject' }, subjectOf(app, conversion)),
      h(
        'a',
        {
          class: 'link',
          href: linkTo(app, conversion),
          'aria-label': `Link to ${label}`,
          title: app.report.idOf(conversion),
        },
        '#',
      ),
      decisionButtons(app, () => [conversion], label),
    ),
    reasonsOf(app, conversion, texts, known),
  );
  app.refreshing(() => {
    element.dataset.decision = conversion.decision;
  });
  return element;
}
