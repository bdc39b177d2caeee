// Which conversions a person wants to see.

/** @typedef {import('./model.js').ClassEntry} ClassEntry */
/** @typedef {import('./model.js').Conversion} Conversion */
/** @typedef {import('./model.js').Reason} Reason */
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
 * Where a word occurs: in the tables, which are short, it is looked up once and not for each
 * conversion.
 */
class Word {
  /**
   * @param {Report} report
   * @param {string} text
   */
  constructor(report, text) {
    const isIn = (/** @type {string} */ name) => name.includes(text);
    this.text = text;
    this.report = report;
    this.kinds = report.tables.kinds.map(isIn);
    this.risks = report.tables.risks.map(isIn);
    /** @type {Map<Reason, boolean>} */
    this.reasons = new Map();
  }

  /** @param {Reason} reason */
  isInReason(reason) {
    if (reason === -1) return false;
    let found = this.reasons.get(reason);
    if (found === undefined) {
      const words = `${this.report.nameOf(reason)}\n${this.report.messageOf(reason).text}`;
      found = words.toLowerCase().includes(this.text);
      this.reasons.set(reason, found);
    }
    return found;
  }

  /** @param {Conversion} each */
  isIn(each) {
    return (
      this.kinds[each.kind] ||
      this.risks[each.risk] ||
      each.words.includes(this.text) ||
      this.isInReason(each.leftOut) ||
      each.reasons.some((reason) => this.isInReason(reason))
    );
  }
}

/**
 * The classes with anything to show that match, each with its conversions that do. A class without
 * conversions matches by its name and its findings.
 * @param {Report} report
 * @param {Filter} filter
 * @returns {Hit[]}
 */
export function search(report, filter) {
  const texts = filter.text.toLowerCase().split(/\s+/).filter(Boolean);
  const words = texts.map((text) => new Word(report, text));
  const risk = report.tables.risks.indexOf(filter.risk);
  const kind = report.tables.kinds.indexOf(filter.kind);
  const isAboutConversions = Boolean(filter.risk || filter.kind || filter.state);
  const hasReason = (/** @type {Reason} */ each) =>
    each !== -1 && report.nameOf(each) === filter.reason;
  const matches = (/** @type {Conversion} */ each) =>
    (filter.risk === '' || each.risk === risk) &&
    (filter.kind === '' || each.kind === kind) &&
    (filter.state === '' || hasState(each, filter.state)) &&
    (filter.reason === '' || hasReason(each.leftOut) || each.reasons.some(hasReason));
  /** @type {Hit[]} */
  const hits = [];
  for (const entry of report.classes) {
    if (filter.package !== '' && !isInPackage(entry, filter.package)) continue;
    const wanted = words.filter((word) => !entry.words.includes(word.text));
    const conversions = entry.conversions.filter(
      (each) => matches(each) && wanted.every((word) => word.isIn(each)),
    );
    const matchesAlone =
      !isAboutConversions &&
      (entry.conversions.length > 0 || entry.messages.length > 0 || entry.state > 1) &&
      (filter.reason === '' || entry.messages.some(hasReason)) &&
      wanted.every((word) => entry.messages.some((each) => word.isInReason(each)));
    if (conversions.length > 0 || matchesAlone) hits.push({ entry, conversions });
  }
  return hits;
}
