// What a reason or a finding means, as in the manual.
import { h } from './dom.js';
import { tokensOf } from './lexer.js';
import { prose, visible } from './text.js';

/** @typedef {import('./dom.js').Child} Child */
/** @typedef {import('./model.js').Message} Message */

/**
 * @param {string} source
 * @returns {HTMLElement}
 */
function sourceBlock(source) {
  const block = h('pre', { class: 'source', tabindex: 0 });
  source.split('\n').forEach((line, index) => {
    if (index > 0) block.append('\n');
    let at = 0;
    for (const { start, end, type } of tokensOf(line)) {
      block.append(visible(line.slice(at, start)));
      block.append(h('span', { class: type }, visible(line.slice(start, end))));
      at = end;
    }
    block.append(visible(line.slice(at)));
  });
  return block;
}

/**
 * Meaning, cause and remedy, with the source before and after it.
 * @param {Message} message
 * @returns {HTMLElement}
 */
export function explanation(message) {
  const paragraph = (/** @type {string} */ title, /** @type {string} */ text) =>
    text && h('p', {}, h('strong', {}, `${title}: `), prose(text));
  return h(
    'div',
    { class: 'explanation' },
    h(
      'div',
      {},
      message.meaning && h('p', {}, prose(message.meaning)),
      paragraph('Cause', message.cause),
      paragraph('Remedy', message.fix),
    ),
    message.before &&
      h(
        'div',
        { class: 'examples' },
        h('figure', {}, h('figcaption', {}, 'Before'), sourceBlock(message.before)),
        h('figure', {}, h('figcaption', {}, 'After'), sourceBlock(message.after)),
      ),
  );
}

/**
 * A line that unfolds the explanation.
 * @param {Message} message
 * @param {...Child} line
 * @returns {HTMLElement}
 */
export function foldedExplanation(message, ...line) {
  const details = h('details', { class: 'folded' }, h('summary', {}, line));
  details.addEventListener('toggle', () => {
    if (details.open && details.childElementCount === 1) details.append(explanation(message));
  });
  return details;
}
