// embed.js OUTPUT LIBRARY SCRIPTS LICENCE...: writes the pages without their data as C++ for page/writer/Frame.h. The
// folder SCRIPTS has the script of each.
import { createHash } from 'node:crypto';
import { readFileSync, writeFileSync } from 'node:fs';

const longest = 60000; // bytes of a text that every compiler must take: 65536

const [output, libraryFile, scripts, ...licenceFiles] = process.argv.slice(2);
// Browsers and compilers alike take a carriage return for a line end, of which hashes and lengths must not depend.
const read = (file) => readFileSync(file, 'utf8').replaceAll('\r\n', '\n');
const here = (name) => read(new URL(name, import.meta.url));
const library = read(libraryFile);
const licences = licenceFiles.map(read).join('');

// Nothing is loaded, and nothing runs but our own style and scripts: what was recorded cannot.
const hashOf = (text) => `'sha256-${createHash('sha256').update(text).digest('base64')}'`;
const policyOf = (parts) =>
  "default-src 'none'; base-uri 'none'; form-action 'none'; img-src data: blob:; " +
  `style-src ${hashOf(parts.style)}; script-src ${hashOf(library)} ${hashOf(parts.script)}`;

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

/** What stands before the data of a page, between them and the library, and after it. */
function frameOf(page, script, { styles = ['view/page.css'], allowed = '', live = '' } = {}) {
  const parts = { style: styles.map(here).join(''), script: read(`${scripts}/${script}.js`), live, licences };
  for (const [part, text] of Object.entries({ ...parts, library })) {
    if (/<\/(script|style)|<!--/i.test(text)) {
      throw new Error(`the ${part} of the page has the end of a script or style in it, or a comment of HTML`);
    }
  }
  parts.policy = policyOf(parts) + allowed;
  const split = here(page)
    .replace(/{{(\w+)}}/g, (place, part) => parts[part] ?? place)
    .split(/{{(?:data|library)}}/);
  if (split.length !== 3 || [...split, library].some((text) => text.includes(')velora"'))) {
    throw new Error('the page lacks data or library, or has )velora" in it, which ends a text of the generated C++');
  }
  return split;
}

const definition = (variable, text) =>
  `static constexpr std::string_view ${variable}Pieces[] = {\n${pieces(text)}};\n` +
  `static constexpr FramePart ${variable}(std::begin(${variable}Pieces), std::end(${variable}Pieces));\n`;
function frameDefinition(name, texts) {
  const places = ['Head', 'Middle', 'Tail'].map((place) => name + place);
  return `${places
    .map((place, at) => definition(place, texts[at]))
    .join('')}Frame ${name}() { return {${places[0]}, ${places[1]}, libraryText, ${places[2]}}; }\n`;
}
const ofStore = ['view/page.css', 'store/store.css'];
const asking = "; connect-src 'self'"; // the server that they come from
const liveParts = { styles: ofStore, allowed: asking, live: here('store/run-bar.html') };
writeFileSync(
  output,
  `#include "page/writer/Frame.h"

#include <iterator>

namespace Velora::Page {

${definition('libraryText', library)}
${frameDefinition('RunFrame', frameOf('view/page.html', 'run'))}
${frameDefinition('StatisticsFrame', frameOf('statistics/page.html', 'statistics'))}
${frameDefinition('StoreFrame', frameOf('store/page.html', 'store', { styles: ofStore, allowed: asking }))}
${frameDefinition('LiveRunFrame', frameOf('view/page.html', 'live-run', liveParts))}
}  // namespace Velora::Page
`,
);
