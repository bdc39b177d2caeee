// Text of sources and messages in a form that a person can trust.
import { h } from './dom.js';

// Control characters, what changes the direction of text, and what has no width.
const hidden =
  // eslint-disable-next-line no-control-regex
  /[\0-\x08\x0b-\x1f\x7f-\x9f\xad\u034f\u061c\u115f\u1160\u180e\u200b-\u200f\u2028-\u202e\u2060-\u206f\u3164\ufeff\uffa0\ufff9-\ufffb\u{e0000}-\u{e0fff}]/gu;

/**
 * The text with a visible form of each character that would be invisible or change others.
 * @param {string} text
 * @returns {string}
 */
export function visible(text) {
  return text.replace(hidden, (character) => {
    const code = character.codePointAt(0) ?? 0;
    if (code < 0x20) return String.fromCharCode(0x2400 + code);
    if (code === 0x7f) return '\u2421';
    return `\u2039U+${code.toString(16).toUpperCase().padStart(4, '0')}\u203a`;
  });
}

/**
 * A sentence in which source code is enclosed in backticks.
 * @param {string} text
 * @returns {Node[]}
 */
export function prose(text) {
  return text
    .split('`')
    .map((part, index) =>
      index % 2 === 1 ? h('code', {}, visible(part)) : document.createTextNode(visible(part)),
    );
}

/**
 * The text with arguments in the place of `{0}`, `{1}` and so on.
 * @param {string} template
 * @param {string[]} values
 * @returns {string}
 */
export function withArguments(template, values) {
  return template.replace(/\{(\d)\}/g, (mark, index) => values[Number(index)] ?? mark);
}

/**
 * A dotted name that may be wrapped after each dot, its last part set apart.
 * @param {string} name
 * @returns {Child[]}
 */
export function className(name) {
  const dot = name.lastIndexOf('.') + 1;
  return [
    dot > 0 && h('span', { class: 'package' }, visible(name.slice(0, dot))),
    h('span', { class: 'name' }, visible(name.slice(dot))),
  ];
}

/**
 * A long name in mixed case, which may be wrapped before each of its words.
 * @param {string} name
 * @returns {Child[]}
 */
export function wrappable(name) {
  return name.split(/(?=[A-Z][a-z])/).flatMap((word) => [h('wbr', {}), word]);
}

/**
 * A command, which is wrapped only between its words.
 * @param {string} command
 * @returns {HTMLElement}
 */
export function commandText(command) {
  const words = command.split(' ').map((word) => h('span', {}, visible(word)));
  return h(
    'code',
    {},
    words.flatMap((word, index) => [index > 0 && ' ', word]),
  );
}

/**
 * The text as one word for a shell.
 * @param {string} text
 * @returns {string}
 */
export function quoteForShell(text) {
  return /^[\w./,:+=@%-]+$/.test(text) ? text : `'${text.replaceAll("'", "'\\''")}'`;
}

/** @typedef {import('./dom.js').Child} Child */
