// embed.js OUTPUT LIBRARY RUN_SCRIPT STATISTICS_SCRIPT STORE_SCRIPT LIVE_RUN_SCRIPT LICENCE...: writes the pages
// without their data as C++ for page/writer/Frame.h.
import { createHash } from 'node:crypto';
import { readFileSync, writeFileSync } from 'node:fs';

const longest = 60000; // bytes of a text that every compiler must take: 65536

const [output, libraryFile, runScript, statisticsScript, storeScript, liveRunScript, ...licences] =
  process.argv.slice(2);
// Browsers and compilers alike take a carriage return for a line end, of which hashes and lengths must not depend.
const read = (file) => readFileSync(file, 'utf8').replaceAll('\r\n', '\n');
const here = (name) => read(new URL(name, import.meta.url));
const library = read(libraryFile);
const style = here('view/page.css');
const licenceTexts = licences.map(read).join('');

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
function frameOf(html, parts, allowed = '') {
  for (const [name, text] of Object.entries({ ...parts, library, licences: licenceTexts })) {
    if (/<\/(script|style)|<!--/i.test(text)) {
      throw new Error(`the ${name} of the page has the end of a script or style in it, or a comment of HTML`);
    }
  }
  const split = html
    .replace(
      /{{(\w+)}}/g,
      (place, name) => ({ ...parts, policy: policyOf(parts) + allowed, licences: licenceTexts })[name] ?? place,
    )
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
// The pages of a store ask the server that they come from.
const asking = "; connect-src 'self'";
const storeParts = { style: style + here('store/store.css'), script: read(storeScript) };
const liveParts = { ...storeParts, script: read(liveRunScript), live: here('store/run-bar.html') };
const reportParts = { style, script: read(runScript), live: '' };
writeFileSync(
  output,
  `#include "page/writer/Frame.h"

#include <iterator>

namespace Velora::Page {

${definition('libraryText', library)}
${frameDefinition('RunFrame', frameOf(here('view/page.html'), reportParts))}
${frameDefinition('StatisticsFrame', frameOf(here('statistics/page.html'), { style, script: read(statisticsScript) }))}
${frameDefinition('StoreFrame', frameOf(here('store/page.html'), storeParts, asking))}
${frameDefinition('LiveRunFrame', frameOf(here('view/page.html'), liveParts, asking))}
}  // namespace Velora::Page
`,
);
