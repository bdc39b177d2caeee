// The file with the accepted conversions, and what comes after it.
import { byId, copyButton, count, digits, fill, h } from './dom.js';
import { commandText, quoteForShell } from './text.js';

/** @typedef {import('./app.js').App} App */

const fileName = 'selection.json';

/**
 * The accepted conversions, in the form that the program reads.
 * @param {App} app
 * @returns {string}
 */
export function selectionText(app) {
  const { report } = app;
  const classes = report.classes.flatMap((entry) => {
    const chosen = entry.conversions.filter((each) => each.decision === 'yes');
    if (chosen.length === 0) return [];
    const conversions = chosen.map((each) =>
      JSON.stringify({
        id: report.idOf(each),
        risk: report.tables.risks[each.risk],
        line: each.line,
      }),
    );
    const head = JSON.stringify({ class: entry.name, file: entry.file, sha256: entry.sha256 });
    return [`${head.slice(0, -1)},"conversions":[\n    ${conversions.join(',\n    ')}]}`];
  });
  return `{"version":1,"classes":[\n  ${classes.join(',\n  ')}]}\n`;
}

/** @param {App} app */
function download(app) {
  const file = new Blob([selectionText(app)], { type: 'application/json' });
  const address = URL.createObjectURL(file);
  const link = h('a', { href: address, download: fileName });
  link.click();
  setTimeout(() => URL.revokeObjectURL(address), 10000);
}

/**
 * @param {App} app
 * @returns {string}
 */
function commandAfter(app) {
  const { command, arguments: targets } = app.report.tables;
  return `${command} --selection ${quoteForShell(fileName)} --write${targets && ` ${targets}`}`;
}

/**
 * The open dialog with this content, and a button to close it.
 * @param {string} title
 * @param {...import('./dom.js').Child} children
 */
export function showDialog(title, ...children) {
  const dialog = /** @type {HTMLDialogElement} */ (byId('dialog'));
  const close = () => (dialog.close ? dialog.close() : dialog.removeAttribute('open'));
  fill(
    dialog,
    h('h2', { id: 'dialog-title' }, title),
    children,
    h(
      'p',
      { class: 'end' },
      h('button', { type: 'button', class: 'primary', click: close }, 'Close'),
    ),
  );
  if (dialog.open) return;
  // Browsers of 2021 know no dialogs: there it is a part of the page.
  if (dialog.showModal) dialog.showModal();
  else dialog.setAttribute('open', '');
}

/** @param {App} app */
export function saveSelection(app) {
  const { yes, no, open } = app.counts;
  if (yes === 0) {
    showDialog(
      'Nothing is accepted yet',
      h('p', {}, 'Accept conversions, one by one or many at once: only these are saved.'),
    );
    return;
  }
  download(app);
  const command = commandAfter(app);
  const rest = [no > 0 && `${digits(no)} rejected`, open > 0 && `${digits(open)} open ones`];
  const others = rest.filter(Boolean).join(' and ');
  showDialog(
    `${count(yes, 'conversion')} saved`,
    h(
      'p',
      {},
      `They are in ${fileName}, in the folder for downloads. Move it to where you ran the update, and type:`,
    ),
    h('p', { class: 'command' }, commandText(command), copyButton(command, 'Copy the command')),
    others !== '' && h('p', {}, `The ${others} are not made.`),
  );
}

/**
 * The counter and the button in the head of the page.
 * @param {App} app
 */
export function showProgress(app) {
  const element = byId('progress');
  const button = byId('save');
  if (app.report.tables.isWritten) {
    button.hidden = true;
    fill(element, h('span', {}, 'These files have been written.'));
    return;
  }
  button.addEventListener('click', () => saveSelection(app));
  const refresh = () => {
    const { yes, no, open } = app.counts;
    const total = yes + no + open;
    const meter = h('progress', {
      max: Math.max(total, 1),
      value: yes + no,
      'aria-label': 'Decided',
    });
    fill(
      element,
      meter,
      h('span', { class: 'yes-count' }, `${digits(yes)} accepted`),
      h('span', { class: 'no-count' }, `${digits(no)} rejected`),
      h('span', { class: 'open-count' }, `${digits(open)} open`),
    );
  };
  app.decisions.onChange(refresh);
  refresh();
}
