// embed.js OUTPUT LIBRARY SCRIPT LICENCE...: writes the page without its data as C++ for page/writer/Frame.h.
import { createHash } from 'node:crypto';
import { readFileSync, writeFileSync } from 'node:fs';

const longest = 60000; // bytes of a text that every compiler must take: 65536

const [output, library, script, ...licences] = process.argv.slice(2);
// Browsers and compilers alike take a carriage return for a line end, of which hashes and lengths must not depend.
const read = (file) => readFileSync(file, 'utf8').replaceAll('\r\n', '\n');
const here = (name) => read(new URL(`view/${name}`, import.meta.url));
const parts = {
  style: here('page.css'),
  licences: licences.map(read).join(''),
  library: read(library),
  script: read(script),
};
for (const [name, text] of Object.entries(parts)) {
  if (/<\/(script|style)|<!--/i.test(text)) {
    throw new Error(`the ${name} of the page has the end of a script or style in it, or a comment of HTML`);
  }
}

// Nothing is loaded, and nothing runs but our own style and scripts: what was recorded cannot.
const hashOf = (text) => `'sha256-${createHash('sha256').update(text).digest('base64')}'`;
const policy =
  "default-src 'none'; base-uri 'none'; form-action 'none'; img-src data: blob:; " +
  `style-src ${hashOf(parts.style)}; script-src ${hashOf(parts.library)} ${hashOf(parts.script)}`;

/** A text as C++, in pieces that end before an ASCII character, so that none of several bytes is torn apart. */
function pieces(text) {
  const bytes = Buffer.from(text);
  const list = [];
  for (let begin = 0; begin < bytes.length;) {
    let end = Math.min(begin + longest, bytes.length);
    while (end < bytes.length && bytes[end] > 0x7f) {
      --end;
    }
    list.push(`{R"velora(${bytes.subarray(begin, end)})velora", ${end - begin}},\n`);
    begin = end;
  }
  return list.join('');
}

const frame = here('page.html').replace(/{{(\w+)}}/g, (place, name) =>
  name === 'data' ? place : { policy, ...parts }[name],
);
if (frame.includes(')velora"')) {
  throw new Error('the page has )velora" in it, which ends a text of the generated C++');
}
const [head, tail] = frame.split('{{data}}');
const definition = (variable, text) =>
  `static constexpr std::string_view ${variable}Pieces[] = {\n${pieces(text)}};\n` +
  `const FramePart ${variable}(std::begin(${variable}Pieces), std::end(${variable}Pieces));\n`;
writeFileSync(
  output,
  `#include "page/writer/Frame.h"

#include <iterator>

namespace Velora::Page {

${definition('frameHead', head)}
${definition('frameTail', tail)}
}  // namespace Velora::Page
`,
);
