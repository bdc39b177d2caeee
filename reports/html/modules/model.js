// The data of the run: what is needed of all classes at once, and the details of one when they are
// asked for.

/** @typedef {import('./hunks.js').Hunk} Hunk */
/** @typedef {'open' | 'yes' | 'no'} Decision */
/** The number of a message in the tables, or an id that is not in them. @typedef {number | string} Reason */

/**
 * @typedef {object} Message
 * @property {string} id
 * @property {string} text
 * @property {string} meaning
 * @property {string} cause
 * @property {string} fix
 * @property {string} before
 * @property {string} after
 */
/**
 * @typedef {object} Conversion
 * @property {ClassEntry} owner
 * @property {number} index among those of the class
 * @property {number} kind
 * @property {string} member
 * @property {number} risk
 * @property {Reason} leftOut -1 if it is made
 * @property {number} line
 * @property {Reason[]} reasons of the risk
 * @property {number[]} needs indices of those without which it is not made
 * @property {string} newName
 * @property {boolean} canBeChosen
 * @property {Decision} decision
 * @property {string} words its names, in lower case
 */
/**
 * @typedef {object} ClassEntry
 * @property {string} name
 * @property {number} order its place in the run
 * @property {string} package
 * @property {string} file
 * @property {string} sha256
 * @property {number} state
 * @property {Conversion[]} conversions
 * @property {Reason[]} messages of the findings
 * @property {string} details
 * @property {string} words its name, in lower case
 */
/**
 * @typedef {object} Finding
 * @property {Reason} message
 * @property {number} line
 * @property {number} column
 * @property {number} endColumn
 * @property {string} detail
 * @property {string[]} values
 */
/**
 * @typedef {object} Details
 * @property {Hunk[]} hunks
 * @property {Map<number, string[]>} reasons of each conversion by its index
 * @property {Finding[]} findings
 * @property {string[]} notes
 */
/**
 * @typedef {object} Failure
 * @property {string} name
 * @property {Reason} message
 * @property {string} text
 * @property {string[]} hints
 * @property {{line: number, column: number, text: string}[]} places
 */
/**
 * @typedef {object} Tables
 * @property {number} version
 * @property {string} program
 * @property {string} command
 * @property {string} arguments
 * @property {boolean} isWritten
 * @property {string[]} kinds
 * @property {string[]} risks
 * @property {Message[]} messages
 */

export const stateBits = { changed: 1, refused: 2, uncommitted: 4 };

/** @param {string} id */
function jsonOf(id) {
  return JSON.parse(document.getElementById(id)?.textContent || '[]');
}

/**
 * @param {string} name
 * @returns {string}
 */
export function packageOf(name) {
  return name.slice(0, Math.max(name.lastIndexOf('.'), 0));
}

export class Report {
  constructor() {
    const tables = jsonOf('tables');
    tables.messages = tables.messages.map(messageOf);
    /** @type {Tables} */
    this.tables = tables;
    /** @type {Failure[]} */
    this.failures = jsonOf('failures').map(failureOf);
    /** @type {Failure[]} */
    this.undecided = jsonOf('undecided').map(failureOf);
    /** @type {Failure[]} */
    this.skipped = jsonOf('skipped').map(failureOf);
    /** @type {ClassEntry[]} */
    this.classes = [];
    /** @type {Conversion[]} */
    this.conversions = [];
    for (const element of document.querySelectorAll('script.classes')) {
      this.readClasses((element.textContent ?? '').split('\n'));
      // The texts of the classes are kept, and not needed twice.
      element.remove();
    }
    /** @type {Map<string, ClassEntry>} */
    this.byName = new Map(this.classes.map((each) => [each.name, each]));
  }

  /** @param {string[]} lines after an empty one, two for each class */
  readClasses(lines) {
    for (let at = 1; lines[at]; at += 2) {
      const [name, file = '', sha256 = '', state = 0, conversions = [], messages = []] = JSON.parse(
        lines[at],
      );
      /** @type {ClassEntry} */
      const entry = {
        name,
        order: this.classes.length,
        package: packageOf(name),
        file,
        sha256,
        state,
        conversions: [],
        messages,
        details: lines[at + 1],
        words: name.toLowerCase(),
      };
      entry.conversions = conversions.map(
        (/** @type {any[]} */ each, /** @type {number} */ index) =>
          this.conversionOf(entry, each, index),
      );
      this.classes.push(entry);
      for (const each of entry.conversions) this.conversions.push(each);
    }
  }

  /**
   * @param {ClassEntry} owner
   * @param {any[]} data
   * @param {number} index
   * @returns {Conversion}
   */
  conversionOf(owner, data, index) {
    const [kind, member, risk, leftOut, line, reasons = [], needs = [], newName = ''] = data;
    return {
      owner,
      index,
      kind,
      member,
      risk,
      leftOut,
      line,
      reasons,
      needs,
      newName,
      canBeChosen: !this.tables.isWritten && (leftOut === -1 || reasons.includes(leftOut)),
      decision: 'open',
      words: `${member}\n${newName}`.toLowerCase(),
    };
  }

  /**
   * @param {Reason} reason
   * @returns {Message}
   */
  messageOf(reason) {
    if (typeof reason === 'number') return this.tables.messages[reason];
    return messageOf([reason, reason, '', '', '', '', '']);
  }

  /**
   * Its text without a subject.
   * @param {Reason} reason
   * @returns {string}
   */
  titleOf(reason) {
    return this.messageOf(reason).text.replace(/\{\d\}/g, '…');
  }

  /**
   * The id without its catalog.
   * @param {Reason} reason
   * @returns {string}
   */
  nameOf(reason) {
    const { id } = this.messageOf(reason);
    return id.slice(id.lastIndexOf(':') + 1);
  }

  /**
   * @param {Conversion} conversion
   * @returns {string}
   */
  idOf(conversion) {
    return `${conversion.owner.name}#${this.partOf(conversion)}`;
  }

  /**
   * The id within the class.
   * @param {Conversion} conversion
   * @returns {string}
   */
  partOf(conversion) {
    const kind = this.tables.kinds[conversion.kind];
    return conversion.member === '' ? kind : `${kind}:${conversion.member}`;
  }
}

/** @param {string[]} data @returns {Message} */
function messageOf([id, text, meaning, cause, fix, before, after]) {
  return { id, text, meaning, cause, fix, before, after };
}

/** @param {any[]} data @returns {Failure} */
function failureOf([name, message, text, hints, ...places]) {
  return {
    name,
    message,
    text,
    hints,
    places: places.map(([line, column, what]) => ({ line, column, text: what })),
  };
}

/**
 * @param {ClassEntry} entry
 * @returns {Details}
 */
export function detailsOf(entry) {
  const [hunks = [], reasons = [], findings = [], notes = []] = JSON.parse(entry.details || '[]');
  return {
    hunks: hunks.map((/** @type {any[]} */ [line, text, ...edits]) => ({
      line,
      text,
      edits: edits.map(([gap, length, newText, ...conversions]) => ({
        gap,
        length,
        text: newText,
        conversions,
      })),
    })),
    reasons: new Map(
      reasons.map((/** @type {any[]} */ [conversion, ...texts]) => [conversion, texts]),
    ),
    findings: findings.map(
      (/** @type {any[]} */ [message, line, column, endColumn, detail, ...values]) => ({
        message,
        line,
        column,
        endColumn,
        detail,
        values,
      }),
    ),
    notes,
  };
}
