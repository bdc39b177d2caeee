// Which conversions a person wants to see.

/** @typedef {import('./model.js').ClassEntry} ClassEntry */
/** @typedef {import('./model.js').Conversion} Conversion */
/** @typedef {import('./model.js').Report} Report */
/**
 * All are texts, as in the address; an empty one excludes nothing.
 * @typedef {object} Filter
 * @property {string} text
 * @property {string} risk
 * @property {string} kind
 * @property {string} reason
 * @property {string} state
 * @property {string} package
 */
/** @typedef {{entry: ClassEntry, conversions: Conversion[]}} Hit */

/** @type {(keyof Filter)[]} */
export const filterKeys = ['text', 'risk', 'kind', 'reason', 'state', 'package'];

/** What can be asked about the state of a conversion, with its words for people. */
export const states = {
  made: 'made',
  left: 'left out',
  open: 'not decided',
  yes: 'accepted',
  no: 'rejected',
};

/** @returns {Filter} */
export function emptyFilter() {
  return { text: '', risk: '', kind: '', reason: '', state: '', package: '' };
}

/**
 * @param {Filter} filter
 * @returns {boolean}
 */
export function isEmpty(filter) {
  return filterKeys.every((key) => filter[key] === '');
}

/**
 * @param {ClassEntry} entry
 * @param {string} name
 * @returns {boolean}
 */
export function isInPackage(entry, name) {
  return entry.package === name || entry.package.startsWith(`${name}.`);
}

/**
 * @param {Conversion} conversion
 * @param {string} state
 * @returns {boolean}
 */
function hasState(conversion, state) {
  if (state === 'made') return conversion.leftOut === -1;
  if (state === 'left') return conversion.leftOut !== -1;
  return conversion.canBeChosen && conversion.decision === state;
}

/**
 * The classes with anything to show that match, each with its conversions that do. A class without
 * conversions matches by its name and its findings.
 * @param {Report} report
 * @param {Filter} filter
 * @returns {Hit[]}
 */
export function search(report, filter) {
  const words = filter.text.toLowerCase().split(/\s+/).filter(Boolean);
  const risk = report.tables.risks.indexOf(filter.risk);
  const kind = report.tables.kinds.indexOf(filter.kind);
  const isAboutConversions = Boolean(filter.risk || filter.kind || filter.state);
  const hasWords = (/** @type {string} */ text) => words.every((word) => text.includes(word));
  const hasReason = (/** @type {import('./model.js').Reason} */ each) =>
    each !== -1 && report.nameOf(each) === filter.reason;
  const matches = (/** @type {Conversion} */ each) =>
    (filter.risk === '' || each.risk === risk) &&
    (filter.kind === '' || each.kind === kind) &&
    (filter.state === '' || hasState(each, filter.state)) &&
    (filter.reason === '' || hasReason(each.leftOut) || each.reasons.some(hasReason)) &&
    hasWords(each.words);
  /** @type {Hit[]} */
  const hits = [];
  for (const entry of report.classes) {
    if (filter.package !== '' && !isInPackage(entry, filter.package)) continue;
    const conversions = entry.conversions.filter(matches);
    const matchesAlone =
      !isAboutConversions &&
      (entry.conversions.length > 0 || entry.messages.length > 0 || entry.state > 1) &&
      (filter.reason === '' || entry.messages.some(hasReason)) &&
      hasWords(entry.words);
    if (conversions.length > 0 || matchesAlone) hits.push({ entry, conversions });
  }
  return hits;
}
