// How recorded texts are shown. Whatever was recorded only ever becomes text.

export const noText = /^\\x((?:[0-9a-f]{2})*)$/;

/** The parts of a stored text: [text, isByte] for each; bytes are those that are no part of a character. */
export function partsOf(stored) {
  const hex = noText.exec(stored);
  if (!hex) {
    return splitAtControls(stored);
  }
  const bytes = bytesOf(hex);
  const parts = [];
  for (let at = 0; at < bytes.length;) {
    const length = sequenceLength(bytes, at);
    if (length === 0) {
      parts.push([`\\x${bytes[at].toString(16).padStart(2, '0')}`, true]);
    } else {
      parts.push(...splitAtControls(new TextDecoder().decode(bytes.subarray(at, at + length))));
    }
    at += Math.max(1, length);
  }
  return joinParts(parts);
}

const bytesOf = (hex) => Uint8Array.from(hex[1].match(/../g) ?? [], (pair) => parseInt(pair, 16));

/** Length of the UTF-8 sequence at a place; 0 where there is none. */
function sequenceLength(bytes, at) {
  for (let length = 1; length <= 4 && at + length <= bytes.length; ++length) {
    try {
      new TextDecoder('utf-8', { fatal: true, ignoreBOM: true }).decode(bytes.subarray(at, at + length));
      return length;
    } catch {
      // not complete, or no character at all
    }
  }
  return 0;
}

// Control characters have no shape of their own, those of direction would turn what stands beside them, and a lone
// surrogate is a byte that another program stored.
function splitAtControls(text) {
  const parts = [];
  for (const piece of text.split(
    /([\p{Cc}\u061c\u200b-\u200f\u2028-\u202e\u2060-\u206f\ufeff\u{e0000}-\u{e007f}]|\p{Cs})/u,
  )) {
    const code = piece.codePointAt(0);
    const special = /^[\p{Cc}\p{Cf}\p{Zl}\p{Zp}\p{Cs}]$/u.test(piece);
    if (!special) {
      parts.push([piece, false]);
    } else if (code >= 0xdc80 && code <= 0xdcff) {
      parts.push([`\\x${(code & 0xff).toString(16)}`, true]);
    } else if (code <= 0xff) {
      parts.push([`\\x${code.toString(16).padStart(2, '0')}`, true]);
    } else {
      parts.push([`\\u${code.toString(16)}`, true]);
    }
  }
  return joinParts(parts);
}

function joinParts(parts) {
  const joined = [];
  for (const [text, isByte] of parts) {
    if (text !== '' && joined.length > 0 && joined[joined.length - 1][1] === isByte) {
      joined[joined.length - 1][0] += text;
    } else if (text !== '') {
      joined.push([text, isByte]);
    }
  }
  return joined;
}

/** A stored text as one that can be read, for drawings. */
export const readable = (stored) =>
  partsOf(stored)
    .map(([text]) => text)
    .join('');

/** The pieces of a stored text: [piece, isBreak] for each; breaks are line ends and tabs. */
export const linesOf = (stored) =>
  noText.test(stored) ? [[stored, false]] : stored.split(/(\r?\n|\t)/).map((piece, at) => [piece, at % 2 === 1]);

/** The begin of a stored text, itself a stored text: at most so many characters and lines. */
export function firstOf(stored, { characters, lines }) {
  if (noText.test(stored)) {
    return stored.length > 2 + 2 * characters ? stored.slice(0, 2 + 2 * characters) : stored;
  }
  let lastBreak = -1;
  for (let line = 0; line < lines && (line === 0 || lastBreak >= 0); ++line) {
    lastBreak = stored.indexOf('\n', lastBreak + 1);
  }
  const end = Math.min(stored.length, characters, lastBreak >= 0 ? lastBreak : Infinity);
  return stored.slice(0, /[\ud800-\udbff]/.test(stored[end - 1] ?? '') ? end - 1 : end);
}

/** How long a stored text is, in words. */
export const sizeOf = (stored) => {
  const hex = noText.exec(stored);
  return hex ? count(hex[1].length / 2, 'byte') : count(stored.length, 'character');
};

/** The name of an event, which may be empty. */
export const noName = '(no name)';
export const eventName = (stored) => readable(stored) || noName;

/** A text for a file: a byte that is no part of a character, and a zero, becomes the sign for that. */
export function wellFormed(stored) {
  const hex = noText.exec(stored);
  const text = hex ? new TextDecoder('utf-8', { ignoreBOM: true }).decode(bytesOf(hex)) : stored;
  return text.replace(/\p{Cs}|\0/gu, '\ufffd');
}

export const count = (number, one, many) =>
  `${number.toLocaleString('en')} ${number === 1 ? one : (many ?? `${one}s`)}`;
